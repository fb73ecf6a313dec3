// Models of DXT blocks, one pixel at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace zorj::reference {

using Rgba = std::array<uint8_t, 4>;

// `count` bits from bit `first` on of the bytes, taken as one little-endian number.
inline int bitsAt(const uint8_t* bytes, int first, int count) {
  int value = 0;
  for (int i = 0; i < count; ++i) value |= (bytes[(first + i) / 8] >> ((first + i) % 8) & 1) << i;
  return value;
}

// The colour that index `index` selects, with alpha 255.
inline Rgba dxtColour(const uint8_t* block, int index, bool thirdsAlways) {
  const int firstBits[3] = {11, 5, 0}, counts[3] = {5, 6, 5};
  const bool thirds = thirdsAlways || bitsAt(block, 0, 16) > bitsAt(block, 16, 16);
  Rgba colour = {255, 255, 255, 255};
  if (!thirds && index == 3) return colour;
  for (size_t i = 0; i < 3; ++i) {
    const int unit = 1 << (8 - counts[i]);
    const int c0 = bitsAt(block, firstBits[i], counts[i]) * unit,
              c1 = bitsAt(block, 16 + firstBits[i], counts[i]) * unit;
    const int values[4] = {c0, c1, thirds ? (2 * c0 + c1) / 3 : (c0 + c1) / 2, (c0 + 2 * c1) / 3};
    colour[i] = static_cast<uint8_t>(values[index]);
  }
  return colour;
}

inline Rgba dxt1Pixel(const uint8_t* block, int x, int y) {
  return dxtColour(block, bitsAt(block, 32 + 2 * (4 * y + x), 2), false);
}

inline Rgba dxt3Pixel(const uint8_t* block, int x, int y) {
  Rgba pixel = dxtColour(block + 8, bitsAt(block, 96 + 2 * (4 * y + x), 2), true);
  pixel[3] = static_cast<uint8_t>(bitsAt(block, 4 * (4 * y + x), 4) * 16);
  return pixel;
}

inline int dxt5Alpha(int a0, int a1, int i) {
  if (i < 2) return i == 0 ? a0 : a1;
  if (a0 > a1) return ((8 - i) * a0 + (i - 1) * a1 + 3) / 7;
  return i < 6 ? ((6 - i) * a0 + (i - 1) * a1 + 2) / 5 : (i - 6) * 255;
}

inline Rgba dxt5Pixel(const uint8_t* block, int x, int y) {
  Rgba pixel = dxtColour(block + 8, bitsAt(block, 96 + 2 * (4 * y + x), 2), true);
  pixel[3] = static_cast<uint8_t>(dxt5Alpha(block[0], block[1], bitsAt(block, 16 + 3 * (4 * y + x), 3)));
  return pixel;
}

// ---- Encoding

using BlockPixels = std::array<Rgba, 16>;

inline void setBits(uint8_t* bytes, int first, int count, int value) {
  for (int i = 0; i < count; ++i) {
    uint8_t& byte = bytes[(first + i) / 8];
    const int bit = 1 << ((first + i) % 8);
    byte = static_cast<uint8_t>((value >> i & 1) != 0 ? byte | bit : byte & ~bit);
  }
}

struct DxtRange {
  int least, largest;
  int inset() const { return (largest - least) >> 4; }
  int high() const { return std::max(largest - inset(), 0); }
  int low() const { return std::min(least + inset(), 255); }
};

inline DxtRange dxtRange(const BlockPixels& pixels, size_t channel) {
  DxtRange range = {255, 0};
  for (const Rgba& pixel : pixels) {
    range.least = std::min<int>(range.least, pixel[channel]);
    range.largest = std::max<int>(range.largest, pixel[channel]);
  }
  return range;
}

inline void encodeDxtColours(const BlockPixels& pixels, Rgba high, Rgba low, uint8_t* block) {
  const Rgba ends[2] = {high, low};
  int palette[4][3];
  for (int i = 0; i < 2; ++i) {
    const int r = ends[i][0], g = ends[i][1], b = ends[i][2];
    setBits(block, 16 * i, 16, ((r & 248) << 8) | ((g & 252) << 3) | (b >> 3));
    const int expanded[3] = {(r & 248) | (r >> 5), (g & 252) | (g >> 6), (b & 248) | (b >> 5)};
    for (int c = 0; c < 3; ++c) palette[i][c] = expanded[c];
  }
  for (int c = 0; c < 3; ++c) {
    palette[2][c] = (2 * palette[0][c] + palette[1][c]) / 3;
    palette[3][c] = (palette[0][c] + 2 * palette[1][c]) / 3;
  }
  for (size_t p = 0; p < 16; ++p) {
    int d[4] = {};
    for (int j = 0; j < 4; ++j) {
      for (size_t c = 0; c < 3; ++c) d[j] += std::abs(pixels[p][c] - palette[j][c]);
    }
    const int bit0 = (d[2] > d[3]) & (d[0] > d[3]);
    const int bit1 = ((d[1] > d[2]) & (d[0] > d[2])) | ((d[0] > d[3]) & (d[1] > d[3]));
    setBits(block, 32 + 2 * static_cast<int>(p), 2, 2 * bit1 + bit0);
  }
}

inline void encodeDxt5Alphas(const BlockPixels& pixels, uint8_t* block) {
  const int a0 = dxtRange(pixels, 3).high(), a1 = dxtRange(pixels, 3).low(), bias = (a0 - a1) / 14;
  block[0] = static_cast<uint8_t>(a0);
  block[1] = static_cast<uint8_t>(a1);
  for (size_t p = 0; p < 16; ++p) {
    int c = 1;
    for (int k = 0; k < 7; ++k) c += pixels[p][3] <= (k * a0 + (7 - k) * a1) / 7 + bias ? 1 : 0;
    c &= 7;
    setBits(block, 16 + 3 * static_cast<int>(p), 3, c < 2 ? c ^ 1 : c);
  }
}

inline void encodeRgbaColours(const BlockPixels& pixels, uint8_t* block) {
  Rgba high = {}, low = {};
  for (size_t c = 0; c < 3; ++c) {
    high[c] = static_cast<uint8_t>(dxtRange(pixels, c).high());
    low[c] = static_cast<uint8_t>(dxtRange(pixels, c).low());
  }
  encodeDxtColours(pixels, high, low, block);
}

inline void encodeDxt1(const BlockPixels& pixels, uint8_t* block) { encodeRgbaColours(pixels, block); }

inline void encodeDxt3(const BlockPixels& pixels, uint8_t* block) {
  for (size_t p = 0; p < 16; ++p) setBits(block, 4 * static_cast<int>(p), 4, pixels[p][3] >> 4);
  encodeRgbaColours(pixels, block + 8);
}

inline void encodeDxt5(const BlockPixels& pixels, uint8_t* block) {
  encodeDxt5Alphas(pixels, block);
  encodeRgbaColours(pixels, block + 8);
}

// Y, Co, Cg and nothing in the pixels' four bytes.
inline void encodeDxt5YCoCg(const BlockPixels& pixels, uint8_t* block) {
  int m = 0;
  for (const Rgba& pixel : pixels) m = std::max({m, std::abs(pixel[1] - 128), std::abs(pixel[2] - 128)});
  const int s = m <= 31 ? 4 : m <= 63 ? 2 : 1;
  BlockPixels moved;
  for (size_t p = 0; p < 16; ++p) {
    const auto chroma = [&](size_t c) { return static_cast<uint8_t>((pixels[p][c] - 128) * s + 128); };
    moved[p] = {chroma(1), chroma(2), static_cast<uint8_t>(8 * (s - 1)), pixels[p][0]};
  }
  const DxtRange red = dxtRange(moved, 0), green = dxtRange(moved, 1);
  int covariance = 0;
  for (const Rgba& pixel : moved) {
    covariance +=
        (pixel[0] - ((red.least + red.largest + 1) >> 1)) * (pixel[1] - ((green.least + green.largest + 1) >> 1));
  }
  int high = green.high(), low = green.low();
  if (covariance < 0) std::swap(high, low);
  encodeDxt5Alphas(moved, block);
  encodeDxtColours(moved, {static_cast<uint8_t>(red.high()), static_cast<uint8_t>(high), moved[0][2], 0},
                   {static_cast<uint8_t>(red.low()), static_cast<uint8_t>(low), moved[0][2], 0}, block + 8);
}

}  // namespace zorj::reference
