// Rows of the whole-image level shift.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj {

struct LevelShiftKernels {
  // dst = src - 128
  void (*subtract)(const uint8_t* src, int16_t* dst, size_t width);
  // dst = clamp(src + 128, 0, 255)
  void (*add)(const int16_t* src, uint8_t* dst, size_t width);
};

const LevelShiftKernels& levelShiftKernels();

}  // namespace zorj
