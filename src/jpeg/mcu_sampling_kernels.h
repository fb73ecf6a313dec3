// One MCU between interleaved three-channel pixels and level-shifted blocks, without colour conversion.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj {

struct McuSamplingKernels {
  // block sample = ((sum of the n samples it covers + n / 2) / n) - 128, with n = 1 in plane 0
  using Down = void (*)(const uint8_t* src, ptrdiff_t step, int16_t* const mcu[3]);
  // pixel channel = clamp(block sample + 128, 0, 255)
  using Up = void (*)(const int16_t* const mcu[3], uint8_t* dst, ptrdiff_t step);

  Down down411;
  Down down422;
  Down down444;
  Up up411;
  Up up422;
  Up up444;
};

const McuSamplingKernels& mcuSamplingKernels();

}  // namespace zorj
