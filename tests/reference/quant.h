// Models of the quantisation tables and of quantisation without a transform.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zorj::reference {

// T.81 figure A.6: the zig-zag position of each coefficient.
inline constexpr int kZigZag[64] = {0,  1,  5,  6,  14, 15, 27, 28,  //
                                    2,  4,  7,  13, 16, 26, 29, 42,  //
                                    3,  8,  12, 17, 25, 30, 41, 43,  //
                                    9,  11, 18, 24, 31, 40, 44, 53,  //
                                    10, 19, 23, 32, 39, 45, 52, 54,  //
                                    20, 22, 33, 38, 46, 51, 55, 60,  //
                                    21, 34, 37, 47, 50, 56, 59, 61,  //
                                    35, 36, 48, 49, 57, 58, 62, 63};

inline uint8_t scaledStep(uint8_t step, int quality) {
  const int64_t scale = quality < 50 ? 5000 / quality : 200 - 2 * int64_t{quality};
  return static_cast<uint8_t>(std::clamp<int64_t>((step * scale + 50) / 100, 1, 255));
}

inline uint16_t reciprocal(uint8_t step) {
  if (step == 0) return 0xFFFF;
  return static_cast<uint16_t>(32768.0 / step + 0.5);
}

inline int16_t quantised(int16_t coefficient, uint16_t reciprocal) {
  const auto scaled = static_cast<int16_t>(static_cast<uint16_t>(coefficient) << 3);
  const int product = (scaled * (reciprocal / 2)) >> 16;
  return static_cast<int16_t>((product + 1) >> 1);
}

inline int16_t dequantised(int16_t coefficient, uint16_t step) {
  return static_cast<int16_t>(static_cast<uint16_t>(int64_t{coefficient} * step));
}

}  // namespace zorj::reference
