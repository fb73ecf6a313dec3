// Models of the DCT with quantisation, and the exact transform they approximate.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace zorj::reference {

using Block = std::array<int16_t, 64>;
using Steps = std::array<uint16_t, 64>;

inline double basis(int frequency, int sample, int points = 8) {
  const double c = frequency == 0 ? std::numbers::sqrt2 / 2 : 1.0;
  return c * std::cos((2 * sample + 1) * frequency * std::numbers::pi / (2 * points));
}

// F(u, v) = 1/4 C(u) C(v) sum of f(x, y) cos cos.
inline std::array<double, 64> exactForward(const std::array<double, 64>& samples) {
  std::array<double, 64> result{};
  for (int v = 0; v < 8; ++v) {
    for (int u = 0; u < 8; ++u) {
      double sum = 0;
      for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) sum += samples[static_cast<size_t>(8 * y + x)] * basis(u, x) * basis(v, y);
      }
      result[static_cast<size_t>(8 * v + u)] = sum / 4;
    }
  }
  return result;
}

// Sample (x, y) of the inverse of `points` x `points`, in the scale where a lone F(0, 0) = 8 s gives s.
inline double exactInverse(const std::array<double, 64>& coefficients, int x, int y, int points = 8) {
  double sum = 0;
  for (int v = 0; v < points; ++v) {
    for (int u = 0; u < points; ++u) {
      sum += coefficients[static_cast<size_t>(8 * v + u)] * basis(u, x, points) * basis(v, y, points);
    }
  }
  return sum / 4;
}

inline int saturated(int value) { return std::clamp(value, -32768, 32767); }
inline int wrapped(int64_t value) { return static_cast<int16_t>(static_cast<uint16_t>(value)); }
inline int mulhi(int x, int k) { return static_cast<int>(std::floor(static_cast<double>(x) * k / 65536)); }
inline int clampedByte(int value) { return std::clamp(value, 0, 255); }

inline int rowWeight(int r, int u, int x) {
  const int k = r < 5 ? r % 4 : 8 - r;
  const double factor = k == 0 ? 1.0 : std::numbers::sqrt2 * std::cos(k * std::numbers::pi / 16);
  return static_cast<int>(std::lround(16384 * factor * std::numbers::sqrt2 * basis(u, x)));
}

inline constexpr int kTangent1 = 13036, kTangent2 = 27146, kTangent3Less1 = -21746;

// Level-shifted samples to unquantised coefficients in fixed point.
inline Block forwardFixed(const Block& samples) {
  const auto plus = [](int a, int b) { return saturated(a + b); };
  const auto minus = [](int a, int b) { return saturated(a - b); };
  const auto shl = [](int a, int bits) { return wrapped(int64_t{a} * (1 << bits)); };
  int y[8][8];
  for (int column = 0; column < 8; ++column) {
    const auto x = [&](int row) { return int{samples[static_cast<size_t>(8 * row + column)]}; };
    const int e = plus(x(0), x(7)), a = plus(x(1), x(6)), c = plus(x(2), x(5)), g = plus(x(3), x(4));
    const int f = shl(minus(x(0), x(7)), 3), b = shl(minus(x(1), x(6)), 4), d = shl(minus(x(2), x(5)), 4),
              h = shl(minus(x(3), x(4)), 3);
    const int A = shl(a, 3), C = shl(c, 3), P = shl(plus(e, g), 3), Q = shl(minus(e, g), 3);
    const int p = mulhi(plus(b, d), 23170) | 1, m = mulhi(minus(b, d), 23170);
    const int U = plus(h, m), V = minus(h, m), S = plus(f, p), T = minus(f, p);
    y[0][column] = plus(P, plus(A, C));
    y[1][column] = plus(mulhi(U, kTangent1), S) | 1;
    y[2][column] = plus(mulhi(minus(A, C), kTangent2), Q) | 1;
    y[3][column] = minus(T, plus(mulhi(V, kTangent3Less1), V));
    y[4][column] = minus(P, plus(A, C));
    y[5][column] = plus(plus(mulhi(T, kTangent3Less1), T), V);
    y[6][column] = minus(mulhi(Q, kTangent2), minus(A, C)) | 1;
    y[7][column] = minus(mulhi(S, kTangent1), U);
  }
  Block result;
  for (int r = 0; r < 8; ++r) {
    for (int u = 0; u < 8; ++u) {
      int64_t sum = 0;
      for (int x = 0; x < 4; ++x) {
        const int folded = u % 2 == 0 ? plus(y[r][x], y[r][7 - x]) : minus(y[r][x], y[r][7 - x]);
        sum += int64_t{rowWeight(r, u, x)} * folded;
      }
      const int32_t rounded = static_cast<int32_t>(static_cast<uint32_t>(sum + 524288)) >> 20;
      result[static_cast<size_t>(8 * r + u)] = static_cast<int16_t>(saturated(rounded));
    }
  }
  return result;
}

// coefficient * entry / 32768 to the nearest, ties to even; doubles hold the quotient exactly.
inline int16_t quantisedByReciprocal(int16_t coefficient, uint16_t entry) {
  return static_cast<int16_t>(saturated(static_cast<int>(std::nearbyint(coefficient * double{1} * entry / 32768))));
}

inline Block dequantised(const Block& coefficients, const Steps& steps) {
  Block result;
  for (size_t i = 0; i < 64; ++i) result[i] = static_cast<int16_t>(wrapped(int64_t{coefficients[i]} * steps[i]));
  return result;
}

// Dequantised coefficients to signed samples in fixed point.
inline Block inverseFixed(const Block& coefficients) {
  constexpr int kBias[8] = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};
  const auto plus = [](int a, int b) { return saturated(a + b); };
  const auto minus = [](int a, int b) { return saturated(a - b); };
  int rows[8][8];
  for (int r = 0; r < 8; ++r) {
    for (int x = 0; x < 8; ++x) {
      int64_t sum = kBias[r];
      for (int u = 0; u < 8; ++u) sum += int64_t{rowWeight(r, u, x)} * coefficients[static_cast<size_t>(8 * r + u)];
      rows[r][x] = saturated(static_cast<int32_t>(static_cast<uint32_t>(sum)) >> 11);
    }
  }
  Block result;
  for (int x = 0; x < 8; ++x) {
    const auto y = [&](int r) { return rows[r][x]; };
    const int S = plus(y(1), mulhi(y(7), kTangent1)), U = minus(mulhi(y(1), kTangent1), y(7));
    const int T = plus(y(3), plus(mulhi(y(5), kTangent3Less1), y(5)));
    const int V = minus(y(5), plus(mulhi(y(3), kTangent3Less1), y(3)));
    const int p = minus(S, T), m = minus(U, V), b = plus(p, m), d = minus(p, m);
    const int odd[4] = {plus(S, T), plus(b, mulhi(b, -19195)), plus(d, mulhi(d, -19195)), plus(U, V)};
    const int P = plus(y(0), y(4)), Q = minus(y(0), y(4));
    const int R = plus(y(2), mulhi(y(6), kTangent2)), X = minus(mulhi(y(2), kTangent2), y(6));
    const int even[4] = {plus(P, R), plus(Q, X), minus(Q, X), minus(P, R)};
    for (int i = 0; i < 4; ++i) {
      result[static_cast<size_t>(8 * i + x)] = static_cast<int16_t>(plus(even[i], odd[i]) >> 6);
      result[static_cast<size_t>(8 * (7 - i) + x)] = static_cast<int16_t>(minus(even[i], odd[i]) >> 6);
    }
  }
  return result;
}

// The single-precision transforms, one dimension on every eighth value: sums of four products from the left, weights
// basis / 2.
inline float floatWeight(int u, int x) { return static_cast<float>(basis(u, x) / 2); }

inline void forwardFloat(float* f, int step) {
  float result[8];
  for (int u = 0; u < 8; ++u) {
    float sum = 0;
    for (int x = 0; x < 4; ++x) {
      const float a = f[x * step], b = f[(7 - x) * step];
      const float product = floatWeight(u, x) * (u % 2 == 0 ? a + b : a - b);
      sum = x == 0 ? product : sum + product;
    }
    result[u] = sum;
  }
  for (int u = 0; u < 8; ++u) f[u * step] = result[u];
}

inline void inverseFloat(float* f, int step) {
  float result[8];
  for (int x = 0; x < 4; ++x) {
    float parity[2];
    for (int u = 0; u < 8; ++u) {
      const float product = floatWeight(u, x) * f[u * step];
      parity[u % 2] = u < 2 ? product : parity[u % 2] + product;
    }
    result[x] = parity[0] + parity[1];
    result[7 - x] = parity[0] - parity[1];
  }
  for (int x = 0; x < 8; ++x) f[x * step] = result[x];
}

inline int16_t roundedTo16(float value) {
  if (std::isnan(value)) return 0;
  return static_cast<int16_t>(std::nearbyint(std::clamp(value, -32768.0f, 32767.0f)));
}

// The single-precision inverse of four points by its two rotations' worth of products.
inline void inverseFour(float* f, int step) {
  const float c1 = static_cast<float>(std::numbers::sqrt2 * std::cos(std::numbers::pi / 8));
  const float c3 = static_cast<float>(std::numbers::sqrt2 * std::cos(3 * std::numbers::pi / 8));
  const float f0 = f[0], f1 = f[step], f2 = f[2 * step], f3 = f[3 * step];
  const float odd0 = c1 * f1 + c3 * f3, odd1 = c3 * f1 - c1 * f3;
  f[0] = (f0 + f2) + odd0;
  f[step] = (f0 - f2) + odd1;
  f[2 * step] = (f0 - f2) - odd1;
  f[3 * step] = (f0 + f2) - odd0;
}

}  // namespace zorj::reference
