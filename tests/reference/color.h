// Models of the colour conversion of whole images: one pixel at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace zorj::reference {

// R, G, B or Y, Cb, Cr or C, M, Y; then K.
using Channels = std::array<int, 4>;

inline int clampedQuotient(int sum, int bits) {
  return std::clamp(static_cast<int>(std::floor(sum / std::ldexp(1.0, bits))), 0, 255);
}

inline Channels fineYcc(const Channels& p) {
  const auto [red, green, blue, key] = p;
  return {clampedQuotient(9798 * red + 19235 * green + 3736 * blue + 16266, 15),
          clampedQuotient(-5529 * red - 10855 * green + 16384 * blue + 4210688, 15),
          clampedQuotient(16384 * red - 13720 * green - 2664 * blue + 4210704, 15), key};
}

inline Channels coarseYcc(const Channels& p) {
  const auto [red, green, blue, key] = p;
  return {clampedQuotient(4899 * red + 9617 * green + 1868 * blue + 8192, 14),
          clampedQuotient(-2764 * red - 5428 * green + 8192 * blue + 2105344, 14),
          clampedQuotient(8192 * red - 6860 * green - 1332 * blue + 2105344, 14), key};
}

inline Channels rgbOf(const Channels& p) {
  const auto [y, cb, cr, key] = p;
  return {clampedQuotient(16384 * y + 22970 * cr - 2932015, 14),
          clampedQuotient(16384 * y - 5638 * cb - 11700 * cr + 2227566, 14),
          clampedQuotient(16384 * y + 29032 * cb - 3707961, 14), key};
}

// By the tables of rounded products that serve packed pixels.
inline Channels tabledRgbOf(const Channels& p) {
  const auto [y, cb, cr, key] = p;
  const int blueChroma = cb - 128, redChroma = cr - 128;
  return {
      std::clamp(y + static_cast<int>(std::floor((91881 * redChroma + 32768) / 65536.0)), 0, 255),
      std::clamp(y + static_cast<int>(std::floor((32768 - 22554 * blueChroma - 46802 * redChroma) / 65536.0)), 0, 255),
      std::clamp(y + static_cast<int>(std::floor((116130 * blueChroma + 32768) / 65536.0)), 0, 255), key};
}

inline Channels complemented(const Channels& p) { return {255 - p[0], 255 - p[1], 255 - p[2], p[3]}; }

}  // namespace zorj::reference
