// Row-parallel execution of whole-image functions. The only user of OpenMP.
#pragma once

#include <zorcore.h>

#include <algorithm>
#include <cstdint>

#include "zorj/types.h"

namespace zorj {

// Images of up to this many pixels run in the calling thread: a team costs more than it saves.
inline constexpr int64_t kSerialPixelLimit = 8192;
// A team of more threads than the address space has stacks for would end the process.
inline constexpr int kMostThreads = sizeof(void*) == 8 ? 256 : 64;

// Calls row(y) for every row of an image of `size`, in contiguous bands of rows on a team of threads if it is
// large. `row` may not fail.
template <class Row>
void forEachRow(RoiSize size, const Row& row) {
  const int threads = std::min(ownGetNumThreads(), kMostThreads);
  const bool large = int64_t{size.width} * size.height > kSerialPixelLimit;
  if (!large || threads == 1) {
    for (int32_t y = 0; y < size.height; ++y) row(y);
    return;
  }
#pragma omp parallel for schedule(static) num_threads(threads)
  for (int32_t y = 0; y < size.height; ++y) row(y);
}

}  // namespace zorj
