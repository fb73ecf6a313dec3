// Row-parallel execution of whole-image functions. The only user of OpenMP.
#pragma once

#include <zorcore.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zorj/types.h"

namespace zorj {

// Images of up to this many pixels run in the calling thread: a team costs more than it saves.
inline constexpr int64_t kSerialPixelLimit = 8192;

template <class T>
T* rowAt(T* base, int32_t step, int32_t y) {
  using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<ptrdiff_t>(y) * step);
}

// Calls row(y) for every row of an image of `size`, in contiguous bands of rows on a team of threads if it is
// large. `row` may not fail.
template <class Row>
void forEachRow(RoiSize size, const Row& row) {
  [[maybe_unused]] const int threads = ownGetNumThreads();
  const bool large = int64_t{size.width} * size.height > kSerialPixelLimit;
  if (!large) {
    for (int32_t y = 0; y < size.height; ++y) row(y);
    return;
  }
#pragma omp parallel for schedule(static) num_threads(threads)
  for (int32_t y = 0; y < size.height; ++y) row(y);
}

}  // namespace zorj
