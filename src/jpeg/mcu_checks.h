// Argument checks of functions on one MCU.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/checks.h"

namespace zorj {

// Unlike a whole image's, an MCU's planes are looked at after the step.
template <size_t kPlanes, class Pixel>
StatusCode checkMcu(const Pixel* pixels, int32_t step, const int16_t* const* mcu) {
  if (anyNull(pixels, mcu)) return StatusNullPointer;
  if (step < 1) return StatusBadStep;
  const bool planeIsNull = std::any_of(mcu, mcu + kPlanes, [](const int16_t* plane) { return plane == nullptr; });
  return planeIsNull ? StatusNullPointer : StatusOk;
}

}  // namespace zorj
