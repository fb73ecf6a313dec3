#include <algorithm>
#include <type_traits>
#include <utility>

#include "common/error.h"
#include "common/image_file.h"
#include "jpeg2k/codec.h"
#include "jpeg2k/codestream_reader.h"
#include "jpeg2k/jp2_reader.h"
#include "jpeg2k/picture.h"
#include "jpeg2k/tile_decoder.h"

namespace examples::jpeg2k {
namespace {

constexpr int32_t kMaxReduce = kMaxLevels;

// Components that are all alike go into an image at once.
template <class Sample>
class ImageSink : public SampleSink {
 public:
  ImageSink(BasicImage<Sample>& image, const Rect& place) : image_(image), place_(place) {}

  void take(int32_t first, std::span<const uint16_t* const> rows, int32_t x, int32_t y, int32_t width) override {
    Sample* to = image_.at(x - place_.x0, y - place_.y0) + first;
    switch (rows.size()) {
      case 1:
        return interleave<1>(rows, width, to);
      case 3:
        return interleave<3>(rows, width, to);
      default:
        for (size_t i = 0; i < rows.size(); ++i) interleave<1>(rows.subspan(i), width, to + i);
    }
  }

 private:
  template <size_t kCount>
  void interleave(std::span<const uint16_t* const> rows, int32_t width, Sample* to) const {
    const ptrdiff_t step = image_.channels;
    for (int32_t x = 0; x < width; ++x, to += step) {
      for (size_t i = 0; i < kCount; ++i) to[i] = static_cast<Sample>(rows[i][x]);
    }
  }

  BasicImage<Sample>& image_;
  Rect place_;
};

class PlaneSink : public SampleSink {
 public:
  PlaneSink(std::vector<ComponentSamples>& planes, const std::vector<Rect>& places)
      : planes_(planes), places_(places) {}

  void take(int32_t first, std::span<const uint16_t* const> rows, int32_t x, int32_t y, int32_t width) override {
    for (size_t i = 0; i < rows.size(); ++i) {
      const size_t c = static_cast<size_t>(first) + i;
      const ptrdiff_t at = ptrdiff_t{y - places_[c].y0} * places_[c].width() + (x - places_[c].x0);
      std::copy(rows[i], rows[i] + width, planes_[c].samples.begin() + at);
    }
  }

 private:
  std::vector<ComponentSamples>& planes_;
  const std::vector<Rect>& places_;
};

class Decoder {
 public:
  Decoder(std::span<const uint8_t> bytes, const DecodeOptions& options)
      : file_(readJp2(bytes)), codestream_(file_.codestream), options_(options) {
    if (options.reduce < 0 || options.reduce > kMaxReduce || options.layers < 0 || options.threads < 1) {
      throw Error("an option is out of range");
    }
    for (const ComponentCoding& component : codestream_.mainCoding().components) {
      if (component.style.levels < options.reduce) throw Error("there are not as many resolutions");
    }
    layout_ = makeLayout(codestream_.size(), options);
  }

  const Layout& layout() const { return layout_; }
  const Jp2File& file() const { return file_; }
  const ImageSize& size() const { return codestream_.size(); }

  // Whether the components are the channels of the picture as they are.
  bool plain() const {
    const std::vector<ComponentSize>& components = size().components;
    const std::vector<Channel> channels = file_.colors(static_cast<int32_t>(components.size()));
    if (channels.size() != components.size() || file_.colorSpace == ColorSpace::ycc) return false;
    for (size_t c = 0; c < channels.size(); ++c) {
      if (channels[c].component != static_cast<int32_t>(c) || channels[c].column >= 0 ||
          components[c].precision != components[0].precision || components[c].dx != components[0].dx ||
          components[c].dy != components[0].dy) {
        return false;
      }
    }
    return true;
  }

  void decode(SampleSink& sink) {
    codestream_.readTiles();
    Selection selection;
    selection.reduce = options_.reduce;
    selection.layers = options_.layers > 0 ? options_.layers : INT32_MAX;
    selection.components = layout_.components;
    for (int32_t number = 0; number < tileCount(size()); ++number) {
      if (!selection.holds(size(), number)) continue;
      ++tiles_;
      const TileData data = std::move(codestream_.tiles()[static_cast<size_t>(number)]);
      if (data.parts.empty()) {
        ++incompleteTiles_;
        storeGreyTile(size(), number, selection, sink);
        continue;
      }
      try {
        const TileReport report = decodeTile(codestream_, number, data, selection, options_.threads, sink);
        if (!report.problem.empty()) ++incompleteTiles_;
        damagedBlocks_ += report.damagedBlocks;
      } catch (const Error& error) {
        if (++failedTiles_ == tileCount(size())) throw;
        if (failedTiles_ == 1) failure_ = error.what();
        ++incompleteTiles_;
        storeGreyTile(size(), number, selection, sink);
      }
    }
  }

  DecodeReport report() const {
    DecodeReport report;
    report.problem = codestream_.problem();
    const auto add = [&](const std::string& text) { report.problem += (report.problem.empty() ? "" : ": ") + text; };
    if (incompleteTiles_ > 0) {
      add(std::to_string(incompleteTiles_) + " of " + std::to_string(tiles_) + " tiles are incomplete");
    }
    if (failedTiles_ > 0) add(failure_);
    if (damagedBlocks_ > 0) add(std::to_string(damagedBlocks_) + " code-blocks are damaged");
    return report;
  }

 private:
  Jp2File file_;
  CodestreamReader codestream_;
  DecodeOptions options_;
  Layout layout_;
  int64_t tiles_ = 0;
  int64_t incompleteTiles_ = 0;
  int64_t failedTiles_ = 0;
  std::string failure_;  // of the first of them
  int64_t damagedBlocks_ = 0;
};

// Planes for all components.
std::vector<ComponentSamples> makePlanes(const ImageSize& size, const Layout& layout) {
  std::vector<ComponentSamples> planes;
  for (size_t c = 0; c < size.components.size(); ++c) {
    const ComponentSize& component = size.components[c];
    const Rect& rect = layout.components[c];
    ComponentSamples& plane = planes.emplace_back();
    plane = {rect.width(), rect.height(), component.precision, component.isSigned, {}};
    plane.samples.resize(static_cast<size_t>(rect.width()) * static_cast<size_t>(rect.height()));
  }
  return planes;
}

template <class Sample>
void decodePlainly(Decoder& decoder, BasicImage<Sample>& image) {
  const Rect& pixels = decoder.layout().pixels;
  const int32_t precision = decoder.size().components[0].precision;
  image.reshape(pixels.width(), pixels.height(), static_cast<int32_t>(decoder.size().components.size()));
  image.precision = precision;
  ImageSink<Sample> sink(image, pixels);
  decoder.decode(sink);
}

void decodeDeep(Decoder& decoder, DeepImage& image) {
  if (decoder.plain()) return decodePlainly(decoder, image);
  std::vector<ComponentSamples> planes = makePlanes(decoder.size(), decoder.layout());
  PlaneSink sink(planes, decoder.layout().components);
  decoder.decode(sink);
  assemble(decoder.file(), decoder.size(), decoder.layout(), planes, image);
}

}  // namespace

Description describe(std::span<const uint8_t> bytes) {
  const Jp2File file = readJp2(bytes);
  const CodestreamReader codestream(file.codestream);
  const Layout layout = makeLayout(codestream.size(), {});
  Description description;
  description.width = layout.pixels.width();
  description.height = layout.pixels.height();
  const std::vector<Channel> channels = file.colors(static_cast<int32_t>(codestream.size().components.size()));
  description.channels = static_cast<int32_t>(channels.size());
  for (const Channel& channel : channels) {
    const int32_t precision = channel.column >= 0
                                  ? file.palette->columns[static_cast<size_t>(channel.column)].precision
                                  : codestream.size().components[static_cast<size_t>(channel.component)].precision;
    description.precision = std::max(description.precision, precision);
  }
  return description;
}

DecodeReport decode(std::span<const uint8_t> file, const DecodeOptions& options, DeepImage& image) {
  Decoder decoder(file, options);
  decodeDeep(decoder, image);
  return decoder.report();
}

DecodeReport decode(std::span<const uint8_t> file, const DecodeOptions& options, Image& image) {
  Decoder decoder(file, options);
  if (decoder.plain() && decoder.size().components[0].precision == 8) {
    decodePlainly(decoder, image);
  } else {
    DeepImage deep;
    decodeDeep(decoder, deep);
    image = withPrecision<uint8_t>(deep, 8);
  }
  return decoder.report();
}

DecodeReport decodeComponents(std::span<const uint8_t> file, const DecodeOptions& options,
                              std::vector<ComponentSamples>& components) {
  Decoder decoder(file, options);
  components = makePlanes(decoder.size(), decoder.layout());
  PlaneSink sink(components, decoder.layout().components);
  decoder.decode(sink);
  return decoder.report();
}

}  // namespace examples::jpeg2k
