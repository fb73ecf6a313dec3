// Blocks of the inverse DCT with dequantisation: coefficients times the table, wrapped to 16 bits.
#pragma once

#include <cstdint>

namespace zorj {

struct DctInverseKernels {
  using ToSamples = void (*)(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table);

  // 8x8 samples, plus 128, clamped: from all coefficients, or from the 4x4 or 2x2 lowest.
  ToSamples levelShifted;
  ToSamples levelShiftedFrom4x4;
  ToSamples levelShiftedFrom2x2;
  // 8x8 samples of one value: the DC coefficient's 32-bit product / 8 rounded down, plus 128 in 16 bits, clamped.
  ToSamples levelShiftedFromDc;
  // 4x4 or 2x2 samples from as many lowest coefficients: the inverse of that size, rounded, plus 128, clamped.
  ToSamples levelShiftedTo4x4;
  ToSamples levelShiftedTo2x2;
  // 8x8 signed values; `src` may be `dst`.
  void (*centred)(const int16_t* src, int16_t* dst, const uint16_t* table);
  // Coefficients times the table, transformed in single precision, plus 2048, truncated, clamped to 0 .. 4095.
  void (*levelShiftedFloat)(const int16_t* src, uint16_t* dst, int32_t dstStep, const float* table);
};

const DctInverseKernels& dctInverseKernels();

}  // namespace zorj
