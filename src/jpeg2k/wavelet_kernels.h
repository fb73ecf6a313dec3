// What the wavelet transforms share: lines, images, and the kernel table of a wavelet and sample type.
//
// Positions on a line count from its first even coordinate: low sample k stands at 2k and high sample k at 2k + 1. A
// line of `parity` 0 starts at position 0; one of parity 1 at position -1, with high sample -1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zorj/jpeg2k_transform.h"

namespace zorj {

// Samples in rows, `step` bytes apart.
template <class T>
struct Image {
  T* data;
  ptrdiff_t step;

  T* row(ptrdiff_t y) const {
    using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(data) + times(step, y));
  }
  Image<const T> toRead() const { return {data, step}; }
  // Every other row, from row y on.
  Image everyOther(ptrdiff_t y) const { return {row(y), times(step, 2)}; }

 private:
  // Wraps: the row beyond an only row may be out of reach.
  static ptrdiff_t times(ptrdiff_t bytes, ptrdiff_t count) {
    return static_cast<ptrdiff_t>(static_cast<size_t>(bytes) * static_cast<size_t>(count));
  }
};

// A line of samples and its subbands.
struct Line {
  ptrdiff_t length;
  int parity;

  ptrdiff_t lows() const { return (length + 1 - parity) / 2; }
  ptrdiff_t highs() const { return (length + parity) / 2; }
  ptrdiff_t first() const { return -parity; }
  ptrdiff_t last() const { return length - 1 - parity; }
  ptrdiff_t firstHigh() const { return -parity; }
  ptrdiff_t endHigh() const { return highs() - parity; }
};

// The order of the four subbands of a level in the arrays of the caller.
enum Subband { kLL, kLH, kHL, kHH, kSubbands };

template <class T>
struct Level {
  Line across;
  Line down;
  T* line;  // room for `across`
};

// A wavelet on samples of type T.
template <class T>
struct WaveletKernels {
  using Forward = void (*)(Image<const T> src, Image<T> low, Image<T> high, RoiSize band, int phase);
  using Inverse = void (*)(Image<const T> low, Image<const T> high, Image<T> dst, RoiSize band, int phase);
  // Lines of twice the samples of a band, with borders from around them.
  Forward forwardRows;
  Inverse inverseRows;
  Forward forwardColumns;
  Inverse inverseColumns;

  // A level of a tile, subbands side by side in its place, or apart by way of a buffer for the whole tile.
  void (*forwardInPlace)(Image<T> tile, const Level<T>& level);
  void (*inverseInPlace)(Image<T> tile, const Level<T>& level);
  void (*forwardApart)(Image<const T> src, const Image<T> (&subbands)[kSubbands], Image<T> buffer,
                       const Level<T>& level);
  void (*inverseApart)(const Image<const T> (&subbands)[kSubbands], Image<T> dst, Image<T> buffer,
                       const Level<T>& level);
};

}  // namespace zorj
