// Blocks of the standalone quantisation.
#pragma once

#include <cstdint>

namespace zorj {

struct QuantKernels {
  // c -> (floor((8 c) (T / 2) / 65536) + 1) >> 1, 8 c wrapped to 16 bits, T / 2 rounded down.
  void (*quantise)(int16_t* block, const uint16_t* forwardTable);
  // c -> the low 16 bits of c q.
  void (*dequantise)(int16_t* block, const uint16_t* inverseTable);
};

const QuantKernels& quantKernels();

}  // namespace zorj
