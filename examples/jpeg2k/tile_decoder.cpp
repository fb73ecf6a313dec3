#include "jpeg2k/tile_decoder.h"

#include <zorj.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <variant>

#include "common/error.h"
#include "jpeg2k/block_decoder.h"
#include "jpeg2k/component_decoder.h"
#include "jpeg2k/packet_reader.h"
#include "jpeg2k/parallel.h"

namespace examples::jpeg2k {
namespace {

using AnyComponentDecoder = std::variant<ComponentDecoder<int16_t>, ComponentDecoder<int32_t>, ComponentDecoder<float>>;

// Reversible coding of so many bits cannot leave 16 bits, whatever the image.
constexpr int32_t kMaxShortPrecision = 10;
constexpr int32_t kStripRows = 64;
constexpr int64_t kSamplesWorthThreads = 1 << 16;

struct Job {
  const PacketBlock* block;
  Rect rect;
  int32_t component;
  int32_t resolution;
  int32_t band;
};

void invertColors(int16_t* const planes[3], int32_t step, RoiSize size) {
  zoriRCTInv_JPEG2K_16s_P3IR(planes, step, size);
}
void invertColors(int32_t* const planes[3], int32_t step, RoiSize size) {
  zoriRCTInv_JPEG2K_32s_P3IR(planes, step, size);
}
void invertColors(float* const planes[3], int32_t step, RoiSize size) {
  zoriICTInv_JPEG2K_32f_P3IR(planes, step, size);
}

// Samples of this precision, raised to start at 0.
template <class T>
void raise(const T* from, int32_t count, int32_t precision, uint16_t* to) {
  const int32_t middle = 1 << (precision - 1);
  for (int32_t x = 0; x < count; ++x) {
    const T low = static_cast<T>(-middle), high = static_cast<T>(middle - 1);
    const T value = from[x] < low ? low : from[x] > high ? high : from[x];
    if constexpr (std::is_same_v<T, float>) {
      // Adding this number leaves the nearest integer in the low bits.
      constexpr float kRounder = 12582912;  // 1.5 * 2^23
      to[x] = static_cast<uint16_t>(std::bit_cast<int32_t>(value + kRounder) + middle);
    } else {
      to[x] = static_cast<uint16_t>(value + middle);
    }
  }
}

class TileDecoder {
 public:
  // What is passed must outlive the decoder.
  TileDecoder(const ImageSize& size, const Tile& tile, const TileCoding& coding, const Selection& selection,
              int32_t threads)
      : size_(size),
        tile_(tile),
        coding_(coding),
        selection_(selection),
        threads_(threads),
        packets_(size_, tile_, coding_) {
    for (size_t c = 0; c < tile_.components.size(); ++c) addComponent(c);
  }

  TileReport decode(const TileData& data, SampleSink& sink) {
    TileReport report;
    std::vector<uint8_t> joined;
    packets_.read(wholeData(data, joined), data.packed, data.packetHeaders, {selection_.layers, selection_.reduce});
    report.problem = packets_.problem();
    report.damagedBlocks = decodeBlocks();
    transform();
    store(sink);
    return report;
  }

 private:
  size_t componentCount() const { return components_.size(); }

  void addComponent(size_t c) {
    const TileComponent& component = tile_.components[c];
    const CodingStyle& style = coding_.components[c].style;
    const int32_t resolutions = style.levels + 1 - selection_.reduce;
    if (resolutions < 1) throw Error("there are not as many resolutions");
    wanted_.push_back(selection_.inTile(size_, tile_.number, c));
    if (!style.reversible) {
      components_.emplace_back(std::in_place_type<ComponentDecoder<float>>, component, resolutions, wanted_.back());
    } else if (size_.components[c].precision <= kMaxShortPrecision) {
      components_.emplace_back(std::in_place_type<ComponentDecoder<int16_t>>, component, resolutions, wanted_.back());
    } else {
      components_.emplace_back(std::in_place_type<ComponentDecoder<int32_t>>, component, resolutions, wanted_.back());
    }
  }

  // The data of all tile-parts.
  static std::span<const uint8_t> wholeData(const TileData& data, std::vector<uint8_t>& joined) {
    if (data.parts.size() == 1) return data.parts[0];
    for (const std::span<const uint8_t> part : data.parts) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
  }

  // Calls visit(resolution, band) for those that are used.
  template <class Visit>
  void forEachBand(size_t c, const Visit& visit) const {
    const int32_t resolutions = coding_.components[c].style.levels + 1 - selection_.reduce;
    for (int32_t r = 0; r < resolutions; ++r) {
      for (int32_t b = 0; b < (r == 0 ? 1 : 3); ++b) visit(r, b);
    }
  }

  Rect windowRect(size_t c, int32_t resolution, int32_t band) const {
    return std::visit([&](const auto& decoder) { return decoder.window(resolution, band).rect; }, components_[c]);
  }

  std::vector<Job> wantedBlocks() const {
    std::vector<Job> jobs;
    for (size_t c = 0; c < componentCount(); ++c) {
      forEachBand(c, [&](int32_t r, int32_t b) { addJobs(static_cast<int32_t>(c), r, b, jobs); });
    }
    return jobs;
  }

  void addJobs(int32_t c, int32_t r, int32_t b, std::vector<Job>& jobs) const {
    const Resolution& resolution = tile_.components[static_cast<size_t>(c)].resolutions[static_cast<size_t>(r)];
    const Rect window = windowRect(static_cast<size_t>(c), r, b);
    for (int32_t p = 0; p < resolution.precincts(); ++p) {
      const std::vector<PrecinctBand>* const bands = packets_.bands(c, r, p);
      if (bands == nullptr) continue;
      const PrecinctBand& band = (*bands)[static_cast<size_t>(b)];
      for (int32_t i = 0; i < band.grid.count(); ++i) {
        const PacketBlock& block = band.blocks[static_cast<size_t>(i)];
        if (block.firstPiece < 0) continue;
        const Rect rect = band.grid.block(i);
        if (!intersection(rect, window).empty()) jobs.push_back({&block, rect, c, r, b});
      }
    }
  }

  // Returns how many blocks were damaged.
  int64_t decodeBlocks() {
    std::vector<std::vector<std::array<BandCoding, 3>>> codings(componentCount());
    for (size_t c = 0; c < componentCount(); ++c) {
      codings[c].resize(tile_.components[c].resolutions.size());
      forEachBand(c, [&](int32_t r, int32_t b) {
        const size_t resolution = static_cast<size_t>(r), band = static_cast<size_t>(b);
        codings[c][resolution][band] = bandCoding(
            coding_.components[c], tile_.components[c].resolutions[resolution].bands[b], size_.components[c].precision);
      });
    }
    const std::vector<Job> jobs = wantedBlocks();
    std::vector<BlockDecoder> decoders(static_cast<size_t>(std::max(threads_, 1)));
    std::atomic<int64_t> damaged = 0;
    inParallel(static_cast<int64_t>(jobs.size()), threads_, [&](int64_t number, int32_t thread) {
      const Job& job = jobs[static_cast<size_t>(number)];
      const size_t c = static_cast<size_t>(job.component);
      const BandCoding& coding = codings[c][static_cast<size_t>(job.resolution)][static_cast<size_t>(job.band)];
      const bool good = std::visit(
          [&](const auto& component) {
            return decoders[static_cast<size_t>(thread)].decode(packets_, *job.block, job.rect, coding,
                                                                component.window(job.resolution, job.band));
          },
          components_[c]);
      if (!good) ++damaged;
    });
    return damaged;
  }

  // All levels of the wavelet but the last, which store() goes through.
  void transform() {
    struct Strip {
      size_t component;
      int32_t begin;
      int32_t end;
    };
    for (int32_t r = 1; r < kMaxLevels; ++r) {
      std::vector<Strip> strips;
      int64_t samples = 0;
      for (size_t c = 0; c < componentCount(); ++c) {
        const Rect rect =
            std::visit([&](const auto& decoder) { return r + 1 < decoder.resolutions() ? decoder.rect(r) : Rect{}; },
                       components_[c]);
        if (rect.empty()) continue;
        samples += int64_t{rect.width()} * rect.height();
        for (int32_t y = 0; y < rect.height(); y += kStripRows) {
          strips.push_back({c, y, std::min(y + kStripRows, rect.height())});
        }
      }
      const int32_t threads = samples < kSamplesWorthThreads ? 1 : threads_;
      inParallel(static_cast<int64_t>(strips.size()), threads, [&](int64_t number, int32_t) {
        const Strip& strip = strips[static_cast<size_t>(number)];
        std::visit([&](auto& decoder) { decoder.transform(r, strip.begin, strip.end); }, components_[strip.component]);
      });
    }
  }

  // Components that are alike are finished together, all three of a colour transform among them.
  void store(SampleSink& sink) const {
    for (size_t first = 0, end; first < componentCount(); first = end) {
      end = first + 1;
      while (end < componentCount() && wanted_[end] == wanted_[first] &&
             components_[end].index() == components_[first].index()) {
        ++end;
      }
      const bool colors = coding_.colorTransform && first == 0;
      if (colors && end < 3) throw Error("components of a colour transform differ in size");
      if (wanted_[first].empty()) continue;
      std::visit([&](const auto& decoder) { storeGroup(decoder, first, end, colors, sink); }, components_[first]);
    }
  }

  template <class T>
  void storeGroup(const ComponentDecoder<T>& firstDecoder, size_t first, size_t end, bool colors,
                  SampleSink& sink) const {
    const Rect& wanted = wanted_[first];
    const int32_t length = firstDecoder.rowLength(), column = firstDecoder.firstColumn();
    const size_t count = end - first;
    inParallel(ceilDivide(wanted.height(), kStripRows), threads_, [&](int64_t strip, int32_t) {
      const int32_t rowBegin = static_cast<int32_t>(strip) * kStripRows;
      const int32_t rowEnd = std::min(rowBegin + kStripRows, wanted.height());
      const size_t area = static_cast<size_t>(length) * static_cast<size_t>(rowEnd - rowBegin);
      const std::unique_ptr<T[]> memory = uninitialised<T>(count * area);
      T* planes[4];
      for (size_t i = 0; i < count; ++i) {
        planes[i] = memory.get() + i * area;
        std::get<ComponentDecoder<T>>(components_[first + i]).rows(rowBegin, rowEnd, {planes[i], length});
      }
      if (colors) invertColors(planes, length * int32_t{sizeof(T)}, {length, rowEnd - rowBegin});
      const std::unique_ptr<uint16_t[]> raised = uninitialised<uint16_t>(count * static_cast<size_t>(wanted.width()));
      const uint16_t* rows[4];
      for (int32_t y = rowBegin; y < rowEnd; ++y) {
        for (size_t i = 0; i < count; ++i) {
          uint16_t* const to = raised.get() + i * static_cast<size_t>(wanted.width());
          raise(planes[i] + ptrdiff_t{y - rowBegin} * length + column, wanted.width(),
                size_.components[first + i].precision, to);
          rows[i] = to;
        }
        sink.take(static_cast<int32_t>(first), {rows, count}, wanted.x0, wanted.y0 + y, wanted.width());
      }
    });
  }

  const ImageSize& size_;
  const Tile& tile_;
  const TileCoding& coding_;
  const Selection& selection_;
  int32_t threads_;
  PacketReader packets_;
  std::vector<Rect> wanted_;  // of each component
  std::vector<AnyComponentDecoder> components_;
};

}  // namespace

Rect Selection::inTile(const ImageSize& size, int32_t tile, size_t component) const {
  const Rect whole = reduced(componentRect(size.components[component], tileRect(size, tile)), reduce);
  const Rect wanted = intersection(whole, components[component]);
  return wanted.empty() ? Rect{} : wanted;
}

bool Selection::holds(const ImageSize& size, int32_t tile) const {
  for (size_t c = 0; c < components.size(); ++c) {
    if (!inTile(size, tile, c).empty()) return true;
  }
  return false;
}

void storeGreyTile(const ImageSize& size, int32_t number, const Selection& selection, SampleSink& sink) {
  for (size_t c = 0; c < size.components.size(); ++c) {
    const Rect rect = selection.inTile(size, number, c);
    const std::vector<uint16_t> grey(static_cast<size_t>(rect.width()),
                                     static_cast<uint16_t>(1 << (size.components[c].precision - 1)));
    const uint16_t* const row = grey.data();
    for (int32_t y = rect.y0; y < rect.y1; ++y) {
      sink.take(static_cast<int32_t>(c), {&row, 1}, rect.x0, y, rect.width());
    }
  }
}

TileReport decodeTile(CodestreamReader& codestream, int32_t number, const TileData& data, const Selection& selection,
                      int32_t threads, SampleSink& sink) {
  const std::unique_ptr<CodingHeaders> own = codestream.ownHeaders(data);
  const TileCoding& coding = own ? own->coding() : codestream.mainCoding();
  const Tile tile = makeTile(codestream.size(), coding, number);
  codestream.addPrecincts(tile);
  return TileDecoder(codestream.size(), tile, coding, selection, threads).decode(data, sink);
}

}  // namespace examples::jpeg2k
