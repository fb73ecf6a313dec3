// The reversible 5/3 wavelet (T.800 Annex F).
#pragma once

#include "jpeg2k/wavelet_kernels.h"

namespace zorj {

// d(k) = x(2k + 1) - ((x(2k) + x(2k + 2)) >> 1), s(k) = x(2k) + ((d(k - 1) + d(k) + 2) >> 2), and its inverse. Sums of
// 32-bit samples wrap; those of 16-bit samples are formed in 32 bits, and each d and each result keeps its low 16 bits.
template <class T>
struct Wavelet53Kernels : WaveletKernels<T> {
  // One step of a column, for `width` columns. Sums wrap at the width of a sample.
  void (*forwardStep)(const T* x0, const T* x1, const T* x2, T* low, const T* previousHigh, T* high, size_t width);
  void (*inverseStep)(const T* low, const T* previousHigh, const T* high, const T* previousEven, T* odd, T* even,
                      size_t width);
};

template <class T>
const Wavelet53Kernels<T>& wavelet53Kernels();

}  // namespace zorj
