// Rows of the multiple component transforms (T.800 Annex G).
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj {

template <class T>
using TransformPlanes = void (*)(T* plane0, T* plane1, T* plane2, size_t width);
template <class T>
using PixelsToPlanes = void (*)(const T* pixels, T* plane0, T* plane1, T* plane2, size_t width);
template <class T>
using PlanesToPixels = void (*)(const T* plane0, const T* plane1, const T* plane2, T* pixels, size_t width);

// Planes 0, 1, 2 hold R, G, B on one side and Y, U, V or Y, Cb, Cr on the other; pixels are R, G, B. Sums of 16-bit
// samples are formed in 32 bits, those of 32-bit samples wrap; q(x) = (x + 8192) >> 14.
struct ComponentTransformKernels {
  // Y = (R + 2 G + B) >> 2, U = B - G, V = R - G, and its inverse G = Y - ((U + V) >> 2), R = V + G, B = U + G. Results
  // keep their low 16 or 32 bits.
  TransformPlanes<int16_t> rctForward16;
  TransformPlanes<int32_t> rctForward32;
  PixelsToPlanes<int16_t> rctForwardPixels16;
  PixelsToPlanes<int32_t> rctForwardPixels32;
  TransformPlanes<int16_t> rctInverse16;
  TransformPlanes<int32_t> rctInverse32;
  PlanesToPixels<int16_t> rctInversePixels16;
  PlanesToPixels<int32_t> rctInversePixels32;

  // 16 bits: S = 4899 R + 9617 G + 1868 B, Y = q(S), Cb = q(9246 dB), Cr = q(11686 dR) with dB and dR the low 16 bits
  // of q(16384 B - S) and q(16384 R - S). 32 bits: Y = q(S), Cb = q(8192 B - 2765 R - 5427 G), Cr = q(8192 R - 6860 G -
  // 1332 B). Floats: Y = 0.299 R + 0.587 G + 0.114 B, Cb = -0.16875 R - 0.33126 G + 0.5 B, Cr = 0.5 R - 0.41869 G -
  // 0.08131 B.
  TransformPlanes<int16_t> ictForward16;
  TransformPlanes<int32_t> ictForward32;
  TransformPlanes<float> ictForwardFloat;
  PixelsToPlanes<float> ictForwardPixelsFloat;

  // Integers: R = Y + q(22970 Cr), B = Y + q(29032 Cb); 16 bits: G = Y - q(5638 Cb + 11700 Cr), all saturated;
  // 32 bits: G = Y + q(-5638 Cb - 11700 Cr).
  // Floats: R = Cr 1.402 + Y, G = (-0.34413 Cb - 0.71414 Cr) + Y, B = Cb 1.772 + Y.
  TransformPlanes<int16_t> ictInverse16;
  TransformPlanes<int32_t> ictInverse32;
  TransformPlanes<float> ictInverseFloat;
  PlanesToPixels<float> ictInversePixelsFloat;
};

const ComponentTransformKernels& componentTransformKernels();

}  // namespace zorj
