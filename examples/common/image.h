// An image in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace examples {

// 8-bit grey (1 channel), RGB (3 channels) or CMYK (4 channels, 255 for full ink); pixels interleaved, rows without
// padding.
struct Image {
  int32_t width = 0;
  int32_t height = 0;
  int32_t channels = 0;
  std::vector<uint8_t> samples;

  Image() = default;
  Image(int32_t imageWidth, int32_t imageHeight, int32_t imageChannels) {
    reshape(imageWidth, imageHeight, imageChannels);
  }

  // Keeps the memory where it suffices; the samples are then what they were.
  void reshape(int32_t newWidth, int32_t newHeight, int32_t newChannels) {
    width = newWidth;
    height = newHeight;
    channels = newChannels;
    samples.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels));
  }

  int32_t step() const { return width * channels; }
  uint8_t* at(int32_t x, int32_t y) { return samples.data() + offset(x, y); }
  const uint8_t* at(int32_t x, int32_t y) const { return samples.data() + offset(x, y); }

 private:
  ptrdiff_t offset(int32_t x, int32_t y) const { return ptrdiff_t{y} * step() + ptrdiff_t{x} * channels; }
};

}  // namespace examples
