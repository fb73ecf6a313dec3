// Models of DXT blocks, one pixel at a time.
#pragma once

#include <array>
#include <cstdint>

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

}  // namespace zorj::reference
