// Pictures to code: gradients with edges and a little noise, so that every block and every pixel's place shows.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/image_file.h"
#include "support/random.h"

namespace interop {

using examples::DeepImage;
using examples::Image;
using zorj::test::Random;

inline Image picture(int32_t width, int32_t height, int32_t channels, uint64_t seed = 1) {
  Random random(seed);
  Image image(width, height, channels);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      for (int32_t c = 0; c < channels; ++c) {
        const double wave = 30 * std::sin(0.21 * x * (c + 1) + 0.13 * y) + 25 * std::cos(0.17 * y - 0.07 * x * c);
        const double edge = (x / 5 + y / 7 + c) % 3 == 0 ? 25 : -10;
        const double value = 125 + wave + edge + static_cast<double>(random.between(-12, 12));
        image.at(x, y)[c] = static_cast<uint8_t>(std::clamp(value, 0.0, 255.0));
      }
    }
  }
  return image;
}

inline DeepImage deepPicture(int32_t width, int32_t height, int32_t channels, int32_t precision) {
  DeepImage image = examples::withPrecision<uint16_t>(picture(width, height, channels), precision);
  Random random(static_cast<uint64_t>(precision));
  // The low bits of a scaled picture would say nothing.
  for (uint16_t& sample : image.samples)
    sample ^= static_cast<uint16_t>(random.next() & 3u & unsigned(image.largest()));
  return image;
}

struct Size {
  int32_t width;
  int32_t height;
};

// Widths and heights around one, two and four blocks.
inline std::vector<Size> oddSizes() {
  return {{1, 1},   {1, 33},  {33, 1},  {3, 5},   {7, 9},  {8, 8},  {9, 16},
          {15, 17}, {16, 16}, {17, 31}, {24, 25}, {31, 7}, {33, 33}};
}

inline double psnr(const Image& a, const Image& b) {
  double sum = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) sum += std::pow(a.samples[i] - b.samples[i], 2);
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.samples.size()) / std::max(sum, 1e-9));
}

}  // namespace interop
