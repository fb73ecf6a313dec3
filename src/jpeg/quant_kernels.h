// Quantisation and dequantisation of one block of 64 coefficients, without a transform.
#pragma once

#include <cstdint>

namespace zorj {

struct QuantKernels {
  // c = (((c * 8) * (T >> 1) >> 16) + 1) >> 1, with c * 8 wrapping in 16 bits.
  void (*forward)(int16_t* block, const uint16_t* table);
  // c = c * T, wrapping in 16 bits.
  void (*inverse)(int16_t* block, const uint16_t* table);
};

const QuantKernels& quantKernels();

}  // namespace zorj
