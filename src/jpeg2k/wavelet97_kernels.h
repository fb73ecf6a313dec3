// The irreversible 9/7 wavelet (T.800 Annex F).
#pragma once

#include "jpeg2k/wavelet_kernels.h"

namespace zorj {

// In floats:
//   d1(k) = (x(2k) + x(2k + 2)) alpha + x(2k + 1)      s1(k) = (d1(k - 1) + d1(k)) beta + x(2k)
//   d2(k) = (s1(k) + s1(k + 1)) gamma + d1(k)          s2(k) = (d2(k - 1) + d2(k)) delta + s1(k)
//   s(k) = s2(k) / K                                   d(k) = d2(k) K
// and backwards. In 32-bit fixed point every line is one rounding of a 64-bit sum of products by 2^16, and the last two
// steps of a low sample are one. 16-bit samples take that arithmetic and are saturated as they are written.
template <class T>
struct Wavelet97Kernels : WaveletKernels<T> {
  // One step of a column, for `width` columns; 16-bit samples in saturating arithmetic of their own. Forward: e =
  // d1(k), b = s1(k), d = d2(k - 1), a = s(k - 1), c = d(k - 2) from d = d1(k - 1), a = s1(k - 1), c = d2(k - 2).
  // Inverse: b = s1(k), d = d1(k - 1), a = x(2k - 2), c = x(2k - 3) from a = s1(k - 1), c = d1(k - 2), e = x(2k - 4).
  void (*forwardStep)(const T* x0, const T* x1, const T* x2, T* a, T* b, T* c, T* d, T* e, size_t width);
  void (*inverseStep)(const T* low, const T* previousHigh, const T* high, T* a, T* b, T* c, T* d, const T* e,
                      size_t width);
};

template <class T>
const Wavelet97Kernels<T>& wavelet97Kernels();

}  // namespace zorj
