// The single-precision DCT of 12-bit samples, with the quantisation as a multiplication by floats.
#pragma once

#include <cstdint>

namespace zorj {

struct DctFloatKernels {
  // dst = F T rounded to nearest with ties to even and saturated to 16 bits (NaN: 0); F the DCT of int16(s) - 2048.
  void (*forward)(const uint16_t* src, int32_t srcStep, int16_t* dst, const float* table);
  // clamp(f + 2048, 0, 4095) truncated (NaN: 0); f the inverse DCT of src[i] T[i].
  void (*inverse)(const int16_t* src, uint16_t* dst, int32_t dstStep, const float* table);
};

const DctFloatKernels& dctFloatKernels();

}  // namespace zorj
