// An image in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace examples {

static_assert(sizeof(size_t) == 8, "the codecs compute sizes of files and images in size_t");

// Grey (1 channel), RGB (3 channels) or CMYK (4 channels, the largest value for full ink), or one of the first two with
// opacity as a channel more; pixels interleaved, rows without padding. Samples are 0 to 2^precision - 1.
template <class Sample>
struct BasicImage {
  int32_t width = 0;
  int32_t height = 0;
  int32_t channels = 0;
  int32_t precision = 8 * int32_t{sizeof(Sample)};
  bool hasOpacity = false;  // in the last channel
  std::vector<Sample> samples;

  BasicImage() = default;
  BasicImage(int32_t imageWidth, int32_t imageHeight, int32_t imageChannels) {
    reshape(imageWidth, imageHeight, imageChannels);
  }

  // Keeps the memory where it suffices; the samples are then what they were.
  void reshape(int32_t newWidth, int32_t newHeight, int32_t newChannels) {
    width = newWidth;
    height = newHeight;
    channels = newChannels;
    samples.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels));
  }

  int32_t largest() const { return (1 << precision) - 1; }
  // Bytes from row to row.
  int32_t step() const { return width * channels * int32_t{sizeof(Sample)}; }
  Sample* at(int32_t x, int32_t y) { return samples.data() + offset(x, y); }
  const Sample* at(int32_t x, int32_t y) const { return samples.data() + offset(x, y); }

 private:
  ptrdiff_t offset(int32_t x, int32_t y) const { return (ptrdiff_t{y} * width + x) * channels; }
};

// 8 bits a sample.
using Image = BasicImage<uint8_t>;
// 1 to 16 bits a sample.
using DeepImage = BasicImage<uint16_t>;

}  // namespace examples
