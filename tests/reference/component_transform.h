// Models of the component transforms: each turns one pixel into another.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace zorj::reference {

template <class T>
using Pixel = std::array<T, 3>;

// The low bits of a sum, as a signed sample.
template <class T>
T wrapped(int64_t x) {
  return static_cast<T>(x);
}

inline int64_t floorDivide(int64_t x, int64_t divisor) { return x / divisor - (x % divisor < 0 ? 1 : 0); }

// (x + 8192) / 16384, of a sum that wraps at 32 bits.
inline int64_t roundedQ14(int64_t x) { return floorDivide(wrapped<int32_t>(x + 8192), 16384); }

inline int16_t saturated16(int64_t x) { return static_cast<int16_t>(std::clamp<int64_t>(x, -32768, 32767)); }

template <class T>
Pixel<T> rctForward(Pixel<T> p) {
  const int64_t r = p[0], g = p[1], b = p[2];
  return {wrapped<T>(floorDivide(wrapped<int32_t>(r + 2 * g + b), 4)), wrapped<T>(b - g), wrapped<T>(r - g)};
}

template <class T>
Pixel<T> rctInverse(Pixel<T> p) {
  const int64_t y = p[0], u = p[1], v = p[2];
  const int64_t g = y - floorDivide(wrapped<int32_t>(u + v), 4);
  return {wrapped<T>(v + g), wrapped<T>(g), wrapped<T>(u + g)};
}

inline Pixel<int32_t> ictForward32(Pixel<int32_t> p) {
  const int64_t r = p[0], g = p[1], b = p[2];
  return {wrapped<int32_t>(roundedQ14(4899 * r + 9617 * g + 1868 * b)),
          wrapped<int32_t>(roundedQ14(-2765 * r - 5427 * g + 8192 * b)),
          wrapped<int32_t>(roundedQ14(8192 * r - 6860 * g - 1332 * b))};
}

inline Pixel<int32_t> ictInverse32(Pixel<int32_t> p) {
  const int64_t y = p[0], cb = p[1], cr = p[2];
  return {wrapped<int32_t>(y + roundedQ14(22970 * cr)), wrapped<int32_t>(y + roundedQ14(-5638 * cb - 11700 * cr)),
          wrapped<int32_t>(y + roundedQ14(29032 * cb))};
}

inline Pixel<int16_t> ictForward16(Pixel<int16_t> p) {
  const int64_t r = p[0], g = p[1], b = p[2];
  const int64_t s = 4899 * r + 9617 * g + 1868 * b;
  const auto blue = wrapped<int16_t>(roundedQ14(b * 16384 - s)), red = wrapped<int16_t>(roundedQ14(r * 16384 - s));
  return {saturated16(roundedQ14(s)), saturated16(roundedQ14(blue * 9246)), saturated16(roundedQ14(red * 11686))};
}

inline Pixel<int16_t> ictInverse16(Pixel<int16_t> p) {
  const int64_t y = p[0], cb = p[1], cr = p[2];
  return {saturated16(y + roundedQ14(22970 * cr)), saturated16(y - roundedQ14(5638 * cb + 11700 * cr)),
          saturated16(y + roundedQ14(29032 * cb))};
}

// Each product is stored before it is added, so that no compiler fuses the two.
inline float product(float a, float b) {
  volatile float stored = a * b;
  return stored;
}

inline Pixel<float> ictForwardFloat(Pixel<float> p) {
  const auto [r, g, b] = p;
  return {(product(r, 0.299f) + product(g, 0.587f)) + product(b, 0.114f),
          (product(r, -0.16875f) + product(g, -0.33126f)) + product(b, 0.5f),
          (product(r, 0.5f) + product(g, -0.41869f)) + product(b, -0.08131f)};
}

inline Pixel<float> ictInverseFloat(Pixel<float> p) {
  const auto [y, cb, cr] = p;
  return {product(cr, 1.402f) + y, (product(cb, -0.34413f) + product(cr, -0.71414f)) + y, product(cb, 1.772f) + y};
}

}  // namespace zorj::reference
