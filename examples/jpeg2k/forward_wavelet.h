// The forward wavelets on rows that arrive one after the other: 5/3 on integers, 9/7 on floats (T.800 Annex F).
#pragma once

#include <cstdint>
#include <memory>

#include "jpeg2k/wavelet_level.h"

namespace examples::jpeg2k {

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
