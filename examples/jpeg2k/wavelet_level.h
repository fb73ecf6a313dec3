// A level of the wavelet in memory, as the forward and the inverse transform have it.
#pragma once

#include <zorj.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace examples::jpeg2k {

template <class T>
struct Plane {
  T* samples = nullptr;
  ptrdiff_t step = 0;  // samples from row to row

  T* row(ptrdiff_t y) const { return samples + y * step; }
};

// Memory that is not set to anything.
template <class T>
std::unique_ptr<T[]> uninitialised(size_t count) {
  return std::make_unique_for_overwrite<T[]>(count);
}

// What one level makes of a component of a tile, or of the LL subband of the level before. Rows of all four subbands
// have room for half of the width, rounded up.
template <class T>
struct WaveletLevel {
  TileRect rect;  // what is transformed, on its canvas
  Plane<T> ll, hl, lh, hh;

  // Pairs of rows, of an even and an odd position; the first or last may miss one.
  int32_t pairs() const { return (rect.height + (rect.y & 1) + 1) / 2; }
};

// The subband LL of a level on its canvas.
inline TileRect halved(const TileRect& rect) {
  const int32_t x = (rect.x + 1) / 2, y = (rect.y + 1) / 2;
  return {x, y, (rect.x + rect.width + 1) / 2 - x, (rect.y + rect.height + 1) / 2 - y};
}

// The row that stands at position `at` of rows `first` to `last` that are reflected about both ends.
inline int32_t reflected(int32_t at, int32_t first, int32_t last) {
  while (at < first || at > last) at = (at < first ? 2 * first : 2 * last) - at;
  return at;
}

}  // namespace examples::jpeg2k
