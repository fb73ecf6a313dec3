// The photo core transform.
#pragma once

#include <cstdint>

namespace zorj {

struct PhotoCoreKernels {
  // Every 4 x 4 block of a region, in place; the formula is in zorj/hdp.h.
  using Transform = void (*)(int32_t* samples, int32_t step, int32_t width, int32_t height);
  Transform forward;
  Transform inverse;
};

const PhotoCoreKernels& photoCoreKernels();

}  // namespace zorj
