// Dequantisation and inverse DCT of one 8x8 block.
#pragma once

#include <cstdint>

namespace zorj {

struct DctInverseKernels {
  using ToSamples = void (*)(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table);

  // f = the fixed-point inverse DCT of src[i] table[i] (wrapping in 16 bits). dst may be src.
  void (*block)(const int16_t* src, int16_t* dst, const uint16_t* table);
  // clamp(f + 128, 0, 255), from all coefficients, or from the lowest 4x4 or 2x2 of them with the others taken as 0.
  ToSamples toSamples;
  ToSamples toSamplesFrom4x4;
  ToSamples toSamplesFrom2x2;
  // The 4-point inverse DCT of the lowest 4x4 coefficients, in the scale where F(0,0) = 8s gives s: 4x4 samples.
  ToSamples to4x4Samples;
};

const DctInverseKernels& dctInverseKernels();

}  // namespace zorj
