// Models of the 9/7 wavelet: the lifting formulas of each type of arithmetic, and lines by them.
#pragma once

#include <type_traits>

#include "reference/wavelet.h"

namespace zorj::reference {

// Single precision, every product and sum rounded.
struct FloatLifting {
  using Value = float;

  static float d1(float x, float a, float b) { return product(a + b, -1.586134315f) + x; }
  static float s1(float x, float a, float b) { return product(a + b, -0.0529801175f) + x; }
  static float d2(float d1, float a, float b) { return product(a + b, 0.8829110861f) + d1; }
  static float low(float s1, float a, float b) { return product(product(a + b, 0.4435068667f) + s1, 0.8128930926f); }
  static float high(float d2) { return product(d2, 1.230174065f); }

  static float s1OfBands(float low, float a, float b) {
    return product(low, 1.230174065f) - product(product(a, 0.8128930926f) + product(b, 0.8128930926f), 0.4435068667f);
  }
  static float d1OfBands(float high, float a, float b) {
    return product(high, 0.8128930926f) - product(a + b, 0.8829110861f);
  }
  static float even(float s1, float a, float b) { return s1 - product(a + b, -0.0529801175f); }
  static float odd(float d1, float a, float b) { return d1 - product(a + b, -1.586134315f); }
};

// 32 bits that wrap, with one rounding of a sum of products in 64 bits.
struct FixedLifting {
  using Value = int32_t;

  static int32_t d1(int32_t x, int32_t a, int32_t b) { return sum(x, rounded(-103949 * of(a, b))); }
  static int32_t s1(int32_t x, int32_t a, int32_t b) { return sum(x, rounded(-3472 * of(a, b))); }
  static int32_t d2(int32_t d1, int32_t a, int32_t b) { return sum(d1, rounded(57862 * of(a, b))); }
  static int32_t low(int32_t s1, int32_t a, int32_t b) { return rounded(int64_t{53274} * s1 + 23627 * of(a, b)); }
  static int32_t high(int32_t d2) { return rounded(int64_t{80621} * d2); }

  static int32_t s1OfBands(int32_t low, int32_t a, int32_t b) {
    return rounded(int64_t{80621} * low - 23627 * of(a, b));
  }
  static int32_t d1OfBands(int32_t high, int32_t a, int32_t b) {
    return rounded(int64_t{53274} * high - 57862 * of(a, b));
  }
  static int32_t even(int32_t s1, int32_t a, int32_t b) { return sum(s1, -int64_t{rounded(-3472 * of(a, b))}); }
  static int32_t odd(int32_t d1, int32_t a, int32_t b) { return sum(d1, -int64_t{rounded(-103949 * of(a, b))}); }

 private:
  static int64_t of(int32_t a, int32_t b) { return wrapped<int32_t>(int64_t{a} + b); }
  static int32_t sum(int32_t a, int64_t b) { return wrapped<int32_t>(a + b); }
  static int32_t rounded(int64_t x) { return wrapped<int32_t>(floorDivide(x + 32768, 65536)); }
};

// 16 bits: sums of neighbours and results are saturated.
struct SaturatingLifting {
  using Value = int16_t;

  static int16_t d1(int16_t x, int16_t a, int16_t b) { return saturated16(x + scaled(of(a, b), -51974)); }
  static int16_t s1(int16_t x, int16_t a, int16_t b) { return saturated16(x + scaled(of(a, b), -1736)); }
  static int16_t d2(int16_t d1, int16_t a, int16_t b) { return saturated16(d1 + scaled(of(a, b), 28931)); }
  static int16_t low(int16_t s1, int16_t a, int16_t b) {
    return saturated16(scaled(saturated16(s1 + scaled(of(a, b), 14533)), 26637));
  }
  static int16_t high(int16_t d2) { return saturated16(scaled(saturated16(2 * d2), 20155)); }

  static int16_t s1OfBands(int16_t low, int16_t a, int16_t b) {
    return saturated16(scaled(low, 40310) - scaled(of(a, b), 11814));
  }
  static int16_t d1OfBands(int16_t high, int16_t a, int16_t b) {
    return saturated16(scaled(high, 26637) - scaled(of(a, b), 28931));
  }
  static int16_t even(int16_t s1, int16_t a, int16_t b) { return saturated16(s1 - scaled(of(a, b), -1736)); }
  static int16_t odd(int16_t d1, int16_t a, int16_t b) { return saturated16(d1 - scaled(of(a, b), -51974)); }

 private:
  static int64_t of(int16_t a, int16_t b) { return saturated16(a + b); }
  static int64_t scaled(int64_t x, int64_t factor) { return floorDivide(x * factor + 16384, 32768); }
};

// Lines: floats in their own arithmetic, integers in 32 bits, of which 16-bit samples are saturated as they are stored.
template <class T, class Lifting = std::conditional_t<std::is_same_v<T, float>, FloatLifting, FixedLifting>>
struct Wavelet97 {
  using Sample = T;
  using Value = typename Lifting::Value;

  static T low(const At<T>& x, int k) { return stored(Lifting::low(s1(x, k), d2(x, k - 1), d2(x, k))); }
  static T high(const At<T>& x, int k) { return stored(Lifting::high(d2(x, k))); }
  static T even(const At<T>& low, const At<T>& high, int k) { return stored(x0(low, high, k)); }
  static T odd(const At<T>& low, const At<T>& high, int k) {
    return stored(Lifting::odd(d1(low, high, k), x0(low, high, k), x0(low, high, k + 1)));
  }
  static T stored(float x) { return x; }
  static T stored(int64_t x) {
    if constexpr (std::is_same_v<T, int16_t>) return saturated16(x);
    return wrapped<T>(x);
  }
  static T stored(int32_t x) { return stored(int64_t{x}); }
  static int64_t difference(int64_t a, int64_t b) { return wrapped<int32_t>(a - b); }

 private:
  static Value d1(const At<T>& x, int k) { return Lifting::d1(x(2 * k + 1), x(2 * k), x(2 * k + 2)); }
  static Value s1(const At<T>& x, int k) { return Lifting::s1(x(2 * k), d1(x, k - 1), d1(x, k)); }
  static Value d2(const At<T>& x, int k) { return Lifting::d2(d1(x, k), s1(x, k), s1(x, k + 1)); }

  static Value s1(const At<T>& low, const At<T>& high, int k) {
    return Lifting::s1OfBands(low(k), high(k - 1), high(k));
  }
  static Value d1(const At<T>& low, const At<T>& high, int k) {
    return Lifting::d1OfBands(high(k), s1(low, high, k), s1(low, high, k + 1));
  }
  static Value x0(const At<T>& low, const At<T>& high, int k) {
    return Lifting::even(s1(low, high, k), d1(low, high, k - 1), d1(low, high, k));
  }
};

}  // namespace zorj::reference
