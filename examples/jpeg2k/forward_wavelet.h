// The forward wavelets on rows that arrive one after the other: 5/3 on integers, 9/7 on floats (T.800 Annex F).
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

// Transforms pairs of rows [begin, end) of a level. Parts of a level are independent of each other.
template <class T>
class LevelTransform {
 public:
  LevelTransform(const WaveletLevel<T>& level, int32_t begin, int32_t end);

  // The steps to make are numbered firstStep() to endStep() - 1; a step needs three rows, of which positions outside
  // are reflected: row(2k), row(2k + 1) and row(2k + 2), where row 0 is the first, or the second if rect.y is odd.
  int32_t firstStep() const;
  int32_t endStep() const;
  void step(int32_t k, const T* even, const T* odd, const T* next);
  // Instead of all steps where the level has a single row.
  void singleRow(const T* row);

 private:
  static constexpr int kMargin = 8;  // samples around a row that the row filters may read
  static constexpr int kStateRows = 5;

  void finishLow(int32_t k, T* row);
  void finishHigh(int32_t k, T* row);
  void splitRow(T* row, T* low, T* high);

  const WaveletLevel<T>& level_;
  int32_t begin_;
  int32_t end_;
  std::unique_ptr<T[]> memory_;
  T* rows_[kStateRows];  // what the column filters keep
};

// Transforms pairs of rows [begin, end) of one level from rows that lie in memory.
template <class T>
void transformRows(const Plane<T>& source, const WaveletLevel<T>& level, int32_t begin, int32_t end);

}  // namespace examples::jpeg2k
