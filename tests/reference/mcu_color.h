// Models of the colour conversion of one MCU.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zorj::reference {

struct Ycc {
  int y, cb, cr;
};

struct Rgb {
  int red, green, blue;
};

inline int floorShift(int64_t value, int bits) {
  return static_cast<int>(std::floor(static_cast<double>(value) / static_cast<double>(int64_t{1} << bits)));
}

inline int lumaOf(Rgb p) { return floorShift(4899 * p.red + 9617 * p.green + 1868 * p.blue - 2088960, 14); }

// Cb and Cr of 1 << log2Pixels pixels whose channels are summed.
inline int blueChroma(Rgb sum, int log2Pixels) {
  return floorShift(8192 * sum.blue - 5428 * sum.green - 2764 * sum.red + (8192 << log2Pixels), 14 + log2Pixels);
}
inline int redChroma(Rgb sum, int log2Pixels) {
  return floorShift(8192 * sum.red - 6860 * sum.green - 1332 * sum.blue + (8192 << log2Pixels), 14 + log2Pixels);
}

inline int narrowed(int value) { return std::clamp(value, -32768, 32767); }
inline int wrappingSum(int a, int b) { return static_cast<int16_t>(static_cast<uint16_t>(a + b)); }
inline int asByte(int value) { return std::clamp(value, 0, 255); }

inline Rgb pixelOf444(Ycc s) {
  const int red = narrowed(floorShift(22970LL * s.cr + 2105344, 14));
  const int green = narrowed(floorShift(-5638LL * s.cb - 11700LL * s.cr + 2105344, 14));
  const int blue = narrowed(floorShift(29032LL * s.cb + 2105344, 14));
  return {asByte(wrappingSum(s.y, red)), asByte(wrappingSum(s.y, green)), asByte(wrappingSum(s.y, blue))};
}

inline Rgb pixelOf411(Ycc s) {
  const int red = narrowed(floorShift(11485LL * s.cr + 1052672, 13));
  const int green = narrowed(floorShift(5638LL * s.cb + 11700LL * s.cr - 2088960, 14));
  const int blue = narrowed(floorShift(14516LL * s.cb + 1052672, 13));
  return {asByte(wrappingSum(s.y, red)), asByte(wrappingSum(s.y, -green)), asByte(wrappingSum(s.y, blue))};
}

}  // namespace zorj::reference
