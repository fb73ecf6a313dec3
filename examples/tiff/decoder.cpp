#include <zorj.h>

#include <algorithm>

#include "common/error.h"
#include "tiff/codec.h"
#include "tiff/directory.h"

namespace examples::tiff {
namespace {

constexpr uint32_t kMaxDimension = 1 << 24;
constexpr uint32_t kMaxSamplesPerPixel = 16;
// Two bytes of PackBits become 128 at most; more pixels than that must be missing.
constexpr uint64_t kMaxExpansion = 64;
// Strips that lie at the same place may take so many bytes of packets together, and so many for each byte of the file.
constexpr size_t kAlwaysAllowedBytes = 1 << 24;
constexpr size_t kMaxReadings = 16;

int32_t colorsOf(uint32_t photometric) {
  switch (photometric) {
    case kWhiteIsZero:
    case kBlackIsZero:
      return 1;
    case kRgb:
      return 3;
    case kSeparated:
      return 4;
    default:
      throw Error("photometric interpretation " + std::to_string(photometric) +
                  " is not supported, only grey, RGB and CMYK");
  }
}

void requireSupported(const Description& d, size_t fileBytes) {
  if (d.width < 1 || d.height < 1 || d.width > kMaxDimension || d.height > kMaxDimension) {
    throw Error("bad width or height");
  }
  if (d.bitsPerSample != 8 && d.bitsPerSample != 16) {
    throw Error("samples of " + std::to_string(d.bitsPerSample) + " bits are not supported, only of 8 or 16");
  }
  if (d.compression != uint32_t(Compression::none) && d.compression != uint32_t(Compression::packBits)) {
    throw Error("compression " + std::to_string(d.compression) +
                " is not supported, only 1 (none) and 32773 (PackBits)");
  }
  if (d.samplesPerPixel < static_cast<uint32_t>(colorsOf(d.photometric)) || d.samplesPerPixel > kMaxSamplesPerPixel) {
    throw Error("bad number of samples a pixel");
  }
  const uint64_t bytes = uint64_t{d.width} * d.height * d.samplesPerPixel * (d.bitsPerSample / 8);
  if (bytes / kMaxExpansion > fileBytes) throw Error("too little data for so many pixels");
}

// Decodes strips row by row.
class StripReader {
 public:
  StripReader(const Description& description, std::span<const uint8_t> tiff)
      : description_(description),
        tiff_(tiff),
        file_(tiff.begin(), tiff.end()),
        samplesPerPixel_(description.separatePlanes ? 1 : description.samplesPerPixel),
        row_(size_t{description.width} * samplesPerPixel_ * description.bitsPerSample / 8),
        samples_(size_t{description.width} * samplesPerPixel_),
        bytesLeft_(kAlwaysAllowedBytes + kMaxReadings * tiff.size()) {
    file_.push_back(0);  // the library may read a byte behind the last
  }

  size_t samplesPerPixel() const { return samplesPerPixel_; }

  // Why there is nothing to read; empty if there is.
  std::string open(size_t strip) {
    const auto& counts = description_.stripByteCounts;
    position_ = end_ = 0;
    if (strip >= description_.stripOffsets.size()) return "is not in the directory";
    position_ = description_.stripOffsets[strip];
    if (position_ >= tiff_.size()) return "lies beyond the end of the file";
    const size_t left = tiff_.size() - position_;
    // Where the directory does not say how long the strip is, it is all that follows.
    end_ = position_ + (strip < counts.size() ? std::min<size_t>(counts[strip], left) : left);
    return "";
  }

  // The next row's samples, with zeros for what is missing.
  const std::vector<uint16_t>& next(bool& whole) {
    std::fill(row_.begin(), row_.end(), uint8_t{0});
    whole = description_.compression == uint32_t(Compression::packBits) ? unpackRow() : copyRow();
    toSamples();
    return samples_;
  }

 private:
  bool unpackRow() {
    const auto length = static_cast<int32_t>(std::min<size_t>({end_ - position_, bytesLeft_, INT32_MAX}));
    if (length == 0) return false;
    int32_t taken = 0;
    const StatusCode status = zoriUnpackBitsRow_TIFF_8u_C1(file_.data() + position_, &taken, length, row_.data(),
                                                           static_cast<int32_t>(row_.size()));
    const auto consumed = static_cast<size_t>(std::min(taken, length));
    position_ += consumed;
    bytesLeft_ -= consumed;
    return status == StatusOk && taken <= length;
  }

  bool copyRow() {
    const size_t count = std::min(row_.size(), end_ - position_);
    std::copy_n(file_.begin() + static_cast<ptrdiff_t>(position_), count, row_.begin());
    position_ += count;
    return count == row_.size();
  }

  // The row's samples in the processor's byte order.
  void toSamples() {
    if (description_.bitsPerSample == 8) {
      std::copy(row_.begin(), row_.end(), samples_.begin());
      return;
    }
    const size_t high = description_.littleEndian ? 1 : 0;
    for (size_t i = 0; i < samples_.size(); ++i) {
      samples_[i] = static_cast<uint16_t>(row_[2 * i + high] << 8 | row_[2 * i + 1 - high]);
    }
  }

  const Description& description_;
  std::span<const uint8_t> tiff_;
  std::vector<uint8_t> file_;
  size_t samplesPerPixel_;
  std::vector<uint8_t> row_;
  std::vector<uint16_t> samples_;
  size_t position_ = 0, end_ = 0;
  size_t bytesLeft_;  // of packets, in all strips
};

// A pixel's colours among its samples, and where they go.
struct Channels {
  int32_t first, count;
};

void storeRow(const std::vector<uint16_t>& samples, size_t samplesPerPixel, Channels channels, bool inverted,
              DeepImage& image, int32_t y) {
  const auto inversion = static_cast<uint16_t>(inverted ? image.largest() : 0);
  const uint16_t* from = samples.data();
  for (int32_t x = 0; x < image.width; ++x, from += samplesPerPixel) {
    uint16_t* const to = image.at(x, y) + channels.first;
    for (int32_t c = 0; c < channels.count; ++c) to[c] = from[c] ^ inversion;
  }
}

}  // namespace

DecodeReport decode(std::span<const uint8_t> tiff, DeepImage& image) {
  const Description d = describe(tiff);
  requireSupported(d, tiff.size());
  const int32_t colors = colorsOf(d.photometric);
  image.reshape(static_cast<int32_t>(d.width), static_cast<int32_t>(d.height), colors);
  image.precision = static_cast<int32_t>(d.bitsPerSample);
  std::fill(image.samples.begin(), image.samples.end(), uint16_t{0});

  StripReader reader(d, tiff);
  const uint32_t strips = (d.height - 1) / d.rowsPerStrip + 1;
  const int32_t planes = d.separatePlanes ? colors : 1;
  std::string firstProblem;
  uint32_t damaged = 0;
  bool anyRow = false;
  for (uint32_t strip = 0; strip < strips * static_cast<uint32_t>(planes); ++strip) {
    const auto plane = static_cast<int32_t>(strip / strips);
    const uint32_t firstRow = strip % strips * d.rowsPerStrip;
    std::string problem = reader.open(strip);
    for (uint32_t y = firstRow; problem.empty() && y < std::min(firstRow + d.rowsPerStrip, d.height); ++y) {
      bool whole;
      const std::vector<uint16_t>& samples = reader.next(whole);
      storeRow(samples, reader.samplesPerPixel(), {plane, colors / planes}, d.photometric == kWhiteIsZero, image,
               static_cast<int32_t>(y));
      if (!whole) problem = "is damaged or incomplete from row " + std::to_string(y) + " on";
      anyRow |= whole;
    }
    if (problem.empty()) continue;
    if (damaged++ == 0) {
      firstProblem =
          "strip " + std::to_string(strip + 1) + " of " + std::to_string(strips * uint32_t(planes)) + " " + problem;
    }
  }
  if (!anyRow) throw Error(firstProblem);
  if (damaged > 1) firstProblem += "; " + std::to_string(damaged) + " strips are damaged";
  return {firstProblem};
}

}  // namespace examples::tiff
