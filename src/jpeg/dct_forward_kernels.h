// Blocks of the forward DCT with quantisation.
#pragma once

#include <cstdint>

namespace zorj {

struct DctForwardKernels {
  // Subtracts 128, transforms in fixed point, quantises: coefficient times table / 2^15, ties to even, saturated.
  void (*levelShifted)(const uint8_t* src, int32_t srcStep, int16_t* dst, const uint16_t* table);
  // The same without the level shift; `src` may be `dst`.
  void (*centred)(const int16_t* src, int16_t* dst, const uint16_t* table);
  // Reads samples as signed, subtracts 2048, transforms in single precision, multiplies by the table, rounds with ties
  // to even, saturates; not a number gives 0.
  void (*levelShiftedFloat)(const uint16_t* src, int32_t srcStep, int16_t* dst, const float* table);
};

const DctForwardKernels& dctForwardKernels();

}  // namespace zorj
