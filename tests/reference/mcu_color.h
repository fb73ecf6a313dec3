// Models of the colour conversion of one MCU.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "reference/color.h"

namespace zorj::reference {

inline int floorShift(int64_t value, int bits) {
  return static_cast<int>(std::floor(static_cast<double>(value) / static_cast<double>(int64_t{1} << bits)));
}

// The level-shifted samples of 1 << log2Pixels pixels whose channels are summed; Y and K only of one.
inline Channels mcuYcc(const Channels& sum, int log2Pixels) {
  const auto [red, green, blue, key] = sum;
  return {floorShift(4899 * red + 9617 * green + 1868 * blue - 2088960, 14),
          floorShift(8192 * blue - 5428 * green - 2764 * red + (8192 << log2Pixels), 14 + log2Pixels),
          floorShift(8192 * red - 6860 * green - 1332 * blue + (8192 << log2Pixels), 14 + log2Pixels), key - 128};
}

inline int narrowed(int value) { return std::clamp(value, -32768, 32767); }
inline int wrappingSum(int a, int b) { return static_cast<int16_t>(static_cast<uint16_t>(a + b)); }
inline int asByte(int value) { return std::clamp(value, 0, 255); }

inline Channels pixelOf444(const Channels& sample) {
  const auto [y, cb, cr, key] = sample;
  const int red = narrowed(floorShift(22970LL * cr + 2105344, 14));
  const int green = narrowed(floorShift(-5638LL * cb - 11700LL * cr + 2105344, 14));
  const int blue = narrowed(floorShift(29032LL * cb + 2105344, 14));
  return {asByte(wrappingSum(y, red)), asByte(wrappingSum(y, green)), asByte(wrappingSum(y, blue)), asByte(key + 128)};
}

inline Channels pixelOf411(const Channels& sample) {
  const auto [y, cb, cr, key] = sample;
  const int red = narrowed(floorShift(11485LL * cr + 1052672, 13));
  const int green = narrowed(floorShift(5638LL * cb + 11700LL * cr - 2088960, 14));
  const int blue = narrowed(floorShift(14516LL * cb + 1052672, 13));
  return {asByte(wrappingSum(y, red)), asByte(wrappingSum(y, -green)), asByte(wrappingSum(y, blue)), asByte(key + 128)};
}

// Without colour conversion, of pixels that have the chroma they share.
inline Channels mcuSplit(const Channels& sum, int log2Pixels) {
  return {sum[0] - 128, (sum[1] >> log2Pixels) - 128, (sum[2] >> log2Pixels) - 128, 0};
}
inline Channels pixelOfJoined(const Channels& sample) {
  return {asByte(sample[0] + 128), asByte(sample[1] + 128), asByte(sample[2] + 128), 0};
}

}  // namespace zorj::reference
