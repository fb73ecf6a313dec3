// Models of the 8x8 DCT: exact, fixed-point and reduced.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "reference/quant.h"

namespace zorj::reference {

using Block = std::array<int16_t, 64>;
using ExactBlock = std::array<double, 64>;

// C(u) cos((2x + 1) u pi / 2n), with C(0) = 1 / sqrt(2)
inline double basis(int n, int u, int x) {
  return (u == 0 ? std::sqrt(0.5) : 1.0) * std::cos((2 * x + 1) * u * std::acos(-1.0) / (2 * n));
}

// basis(n, u, x) / 2, stored [u][x].
inline std::array<std::array<double, 8>, 8> matrix(int n) {
  std::array<std::array<double, 8>, 8> result{};
  for (int u = 0; u < n; ++u) {
    for (int x = 0; x < n; ++x) result[u][x] = basis(n, u, x) / 2;
  }
  return result;
}

inline ExactBlock exactForward(const ExactBlock& f) {
  static const auto m = matrix(8);
  ExactBlock rows{}, result{};
  for (int i = 0; i < 512; ++i) rows[i / 8] += f[i / 64 * 8 + i % 8] * m[i / 8 % 8][i % 8];
  for (int i = 0; i < 512; ++i) result[i / 8] += rows[i % 8 * 8 + i / 8 % 8] * m[i / 64][i % 8];
  return result;
}

// The n-point inverse of the lowest n x n coefficients in the scale where F(0,0) = 8s gives s; samples at 8 y + x.
inline ExactBlock exactInverse(const ExactBlock& coefficients, int n = 8) {
  static const std::array<std::array<std::array<double, 8>, 8>, 3> matrices = {matrix(2), matrix(4), matrix(8)};
  const auto& m = matrices[n == 2 ? 0 : n == 4 ? 1 : 2];
  ExactBlock rows{}, result{};
  for (int v = 0; v < n; ++v) {
    for (int x = 0; x < n; ++x) {
      for (int u = 0; u < n; ++u) rows[8 * v + x] += coefficients[8 * v + u] * m[u][x];
    }
  }
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      for (int v = 0; v < n; ++v) result[8 * y + x] += rows[8 * v + x] * m[v][y];
    }
  }
  return result;
}

// 16-bit arithmetic of the column passes.
inline int sat16(int64_t value) { return static_cast<int>(std::clamp<int64_t>(value, -32768, 32767)); }
inline int wrap16(int64_t value) { return static_cast<int16_t>(static_cast<uint64_t>(value)); }
inline int wrap32(int64_t value) { return static_cast<int32_t>(static_cast<uint64_t>(value)); }
inline int mulhi(int x, int k) { return static_cast<int>(std::floor(x * static_cast<double>(k) / 65536)); }

inline int exactRowWeight(int r, int u, int x) {
  const double pi = std::acos(-1.0);
  const int fold = std::min(r, 8 - r);
  const double k = r % 4 == 0 ? 1 : std::sqrt(2) * std::cos(fold * pi / 16);
  return static_cast<int>(std::lround(16384 * k * std::sqrt(2) * basis(8, u, x)));
}

inline int rowWeight(int r, int u, int x) {
  static const auto weights = [] {
    std::array<int, 512> all{};
    for (int i = 0; i < 512; ++i) all[i] = exactRowWeight(i / 64, i / 8 % 8, i % 8);
    return all;
  }();
  return weights[64 * r + 8 * u + x];
}

inline Block fixedForward(const Block& samples) {
  Block y{};
  for (int column = 0; column < 8; ++column) {
    int x[8];
    for (int i = 0; i < 8; ++i) x[i] = samples[8 * i + column];
    const int e = sat16(x[0] + x[7]), a = sat16(x[1] + x[6]), c = sat16(x[2] + x[5]), g = sat16(x[3] + x[4]);
    const int f = wrap16(sat16(x[0] - x[7]) * 8), b = wrap16(sat16(x[1] - x[6]) * 16);
    const int d = wrap16(sat16(x[2] - x[5]) * 16), h = wrap16(sat16(x[3] - x[4]) * 8);
    const int A = wrap16(a * 8), C = wrap16(c * 8), P = wrap16(sat16(e + g) * 8), Q = wrap16(sat16(e - g) * 8);
    const int p = mulhi(sat16(b + d), 23170) | 1, m = mulhi(sat16(b - d), 23170);
    const int U = sat16(h + m), V = sat16(h - m), S = sat16(f + p), T = sat16(f - p);
    const int out[8] = {sat16(P + sat16(A + C)),
                        sat16(mulhi(U, 13036) + S) | 1,
                        sat16(mulhi(sat16(A - C), 27146) + Q) | 1,
                        sat16(T - sat16(mulhi(V, -21746) + V)),
                        sat16(P - sat16(A + C)),
                        sat16(sat16(mulhi(T, -21746) + T) + V),
                        sat16(mulhi(Q, 27146) - sat16(A - C)) | 1,
                        sat16(mulhi(S, 13036) - U)};
    for (int k = 0; k < 8; ++k) y[8 * k + column] = static_cast<int16_t>(out[k]);
  }
  Block result{};
  for (int i = 0; i < 64; ++i) {
    int64_t sum = 1 << 19;
    for (int x = 0; x < 4; ++x) {
      const int left = y[i / 8 * 8 + x], right = y[i / 8 * 8 + 7 - x];
      sum += int64_t{rowWeight(i / 8, i % 8, x)} * sat16(i % 2 == 0 ? left + right : left - right);
    }
    result[i] = static_cast<int16_t>(sat16(wrap32(sum) >> 20));
  }
  return result;
}

inline int16_t quantisedToEven(int16_t coefficient, uint16_t reciprocal) {
  return static_cast<int16_t>(sat16(std::llrint(static_cast<double>(coefficient) * reciprocal / 32768)));
}

inline Block fixedInverse(const Block& coefficients) {
  constexpr int kBias[8] = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};
  Block rows{};
  for (int i = 0; i < 64; ++i) {
    int64_t sum = kBias[i / 8];
    for (int u = 0; u < 8; ++u) sum += int64_t{rowWeight(i / 8, u, i % 8)} * coefficients[i / 8 * 8 + u];
    rows[i] = static_cast<int16_t>(sat16(wrap32(sum) >> 11));
  }
  Block result{};
  for (int column = 0; column < 8; ++column) {
    int y[8];
    for (int i = 0; i < 8; ++i) y[i] = rows[8 * i + column];
    const int S = sat16(y[1] + mulhi(y[7], 13036)), U = sat16(mulhi(y[1], 13036) - y[7]);
    const int T = sat16(y[3] + sat16(mulhi(y[5], -21746) + y[5]));
    const int V = sat16(y[5] - sat16(mulhi(y[3], -21746) + y[3]));
    const int p = sat16(S - T), m = sat16(U - V), b = sat16(p + m), d = sat16(p - m);
    const int odd[4] = {sat16(S + T), sat16(b + mulhi(b, -19195)), sat16(d + mulhi(d, -19195)), sat16(U + V)};
    const int P = sat16(y[0] + y[4]), Q = sat16(y[0] - y[4]);
    const int R = sat16(y[2] + mulhi(y[6], 27146)), X = sat16(mulhi(y[2], 27146) - y[6]);
    const int even[4] = {sat16(P + R), sat16(Q + X), sat16(Q - X), sat16(P - R)};
    for (int i = 0; i < 4; ++i) {
      result[8 * i + column] = static_cast<int16_t>(sat16(even[i] + odd[i]) >> 6);
      result[8 * (7 - i) + column] = static_cast<int16_t>(sat16(even[i] - odd[i]) >> 6);
    }
  }
  return result;
}

// The 4-point inverse as this library does it: weights of 13 bits, and 5 fractional bits kept between the passes.
inline void fourPointInverse(int (&v)[4], int shift) {
  int result[4];
  for (int x = 0; x < 4; ++x) {
    int64_t sum = int64_t{1} << (shift - 1);
    for (int u = 0; u < 4; ++u) sum += std::lround(8192 * std::sqrt(2) * basis(4, u, x)) * v[u];
    result[x] = sat16(sum >> shift);
  }
  std::copy(result, result + 4, v);
}

}  // namespace zorj::reference
