// Forward DCT and quantisation of one 8x8 block.
#pragma once

#include <cstdint>

namespace zorj {

struct DctForwardKernels {
  // dst = F T / 32768, rounded to nearest with ties to even; F the fixed-point DCT of the block, T the table.
  // dst may be src.
  void (*block)(const int16_t* src, int16_t* dst, const uint16_t* table);
  // The same of 8 rows of 8 samples s, taken as s - 128.
  void (*levelShifted)(const uint8_t* src, int32_t srcStep, int16_t* dst, const uint16_t* table);
};

const DctForwardKernels& dctForwardKernels();

}  // namespace zorj
