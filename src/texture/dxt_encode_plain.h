// DXT encoding of a block, pixel by pixel as the formulas say: all of the portable level.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "core/unaligned.h"

namespace zorj::plain {

// The sixteen pixels of a block.
using Pixels = uint8_t[16][4];

// The box of a channel, moved inwards.
struct Box {
  int low = 255, high = 0;

  Box(const Pixels& pixels, int channel) {
    for (const auto& pixel : pixels) {
      low = std::min<int>(low, pixel[channel]);
      high = std::max<int>(high, pixel[channel]);
    }
    const int inset = (high - low) >> 4;
    low += inset;
    high -= inset;
  }
};

// The colours c0 and c1, in eight bits a channel.
struct Ends {
  int colours[2][3];

  explicit Ends(const Pixels& pixels) {
    for (int channel = 0; channel < 3; ++channel) {
      const Box box(pixels, channel);
      colours[0][channel] = box.high;
      colours[1][channel] = box.low;
    }
  }
};

inline void encodeColours(const Pixels& pixels, const Ends& ends, uint8_t* dst) {
  int palette[4][3];
  for (int channel = 0; channel < 3; ++channel) {
    const int bits = channel == 1 ? 6 : 5;
    for (int i = 0; i < 2; ++i) {
      const int kept = ends.colours[i][channel] >> (8 - bits) << (8 - bits);
      palette[i][channel] = kept | kept >> bits;
    }
    palette[2][channel] = (2 * palette[0][channel] + palette[1][channel]) / 3;
    palette[3][channel] = (palette[0][channel] + 2 * palette[1][channel]) / 3;
  }
  for (int i = 0; i < 2; ++i) {
    const int* const colour = ends.colours[i];
    const int packed = (colour[0] & 0xF8) << 8 | (colour[1] & 0xFC) << 3 | colour[2] >> 3;
    storeUnaligned(reinterpret_cast<uint16_t*>(dst + 2 * i), static_cast<uint16_t>(packed));
  }
  uint32_t indices = 0;
  for (int pixel = 15; pixel >= 0; --pixel) {
    int d[4] = {};
    for (int i = 0; i < 4; ++i) {
      for (int channel = 0; channel < 3; ++channel) d[i] += std::abs(pixels[pixel][channel] - palette[i][channel]);
    }
    const bool lower = d[2] > d[3] && d[0] > d[3];
    const bool upper = (d[1] > d[2] && d[0] > d[2]) || (d[0] > d[3] && d[1] > d[3]);
    indices = indices << 2 | static_cast<uint32_t>(2 * upper + lower);
  }
  storeUnaligned(reinterpret_cast<uint32_t*>(dst + 4), indices);
}

inline void encodeInterpolatedAlphas(const Pixels& pixels, uint8_t* dst) {
  const Box box(pixels, 3);
  const int bias = (box.high - box.low) / 14;
  uint64_t indices = 0;
  for (int pixel = 15; pixel >= 0; --pixel) {
    int count = 0;
    for (int k = 0; k < 7; ++k) count += pixels[pixel][3] <= ((7 - k) * box.low + k * box.high) / 7 + bias;
    constexpr uint8_t kIndex[8] = {0, 2, 3, 4, 5, 6, 7, 1};
    indices = indices << 3 | kIndex[count];
  }
  dst[0] = static_cast<uint8_t>(box.high);
  dst[1] = static_cast<uint8_t>(box.low);
  for (int i = 0; i < 6; ++i) dst[2 + i] = static_cast<uint8_t>(indices >> 8 * i);
}

struct RgbaPixels {
  static constexpr size_t pixelBytes = 4;
  static void load(const uint8_t* from, uint8_t (&pixel)[4]) { std::memcpy(pixel, from, 4); }
};

struct Dxt1 : RgbaPixels {
  static constexpr size_t blockBytes = 8;
  static void encode(const Pixels& pixels, uint8_t* dst) { encodeColours(pixels, Ends(pixels), dst); }
};

struct Dxt3 : RgbaPixels {
  static constexpr size_t blockBytes = 16;
  static void encode(const Pixels& pixels, uint8_t* dst) {
    for (int i = 0; i < 8; ++i) dst[i] = static_cast<uint8_t>(pixels[2 * i][3] >> 4 | (pixels[2 * i + 1][3] & 0xF0));
    encodeColours(pixels, Ends(pixels), dst + 8);
  }
};

struct Dxt5 : RgbaPixels {
  static constexpr size_t blockBytes = 16;
  static void encode(const Pixels& pixels, uint8_t* dst) {
    encodeInterpolatedAlphas(pixels, dst);
    encodeColours(pixels, Ends(pixels), dst + 8);
  }
};

struct Dxt5YCoCg {
  static constexpr size_t pixelBytes = 3, blockBytes = 16;

  static void load(const uint8_t* from, uint8_t (&pixel)[4]) {
    pixel[0] = from[1];
    pixel[1] = from[2];
    pixel[3] = from[0];
  }

  static void encode(Pixels& pixels, uint8_t* dst) {
    int largest = 0;
    for (const auto& pixel : pixels) largest = std::max({largest, std::abs(pixel[0] - 128), std::abs(pixel[1] - 128)});
    const int scale = largest <= 31 ? 4 : largest <= 63 ? 2 : 1;
    int least[2] = {255, 255}, most[2] = {0, 0};
    for (auto& pixel : pixels) {
      for (int i = 0; i < 2; ++i) {
        pixel[i] = static_cast<uint8_t>((pixel[i] - 128) * scale + 128);
        least[i] = std::min<int>(least[i], pixel[i]);
        most[i] = std::max<int>(most[i], pixel[i]);
      }
      pixel[2] = static_cast<uint8_t>(8 * (scale - 1));
    }
    int covariance = 0;
    for (const auto& pixel : pixels) {
      covariance += (pixel[0] - ((least[0] + most[0] + 1) >> 1)) * (pixel[1] - ((least[1] + most[1] + 1) >> 1));
    }
    Ends ends(pixels);
    if (covariance < 0) std::swap(ends.colours[0][1], ends.colours[1][1]);
    encodeInterpolatedAlphas(pixels, dst);
    encodeColours(pixels, ends, dst + 8);
  }
};

}  // namespace zorj::plain
