// Constants of the fixed-point 8x8 DCT, forward and inverse.
//
// The column passes factor the DCT into rotations by tangents and leave row k of their result scaled by a factor of
// its own; the weights of the row passes carry the inverse of that factor (Arai, Agui, Nakajima 1988 scale the
// quantisation table in the same spirit).
#pragma once

#include <cstdint>

namespace zorj {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kSqrt2 = 1.41421356237309504880;

// cos(k pi / 16), by the Taylor series: the library's own function is no constant expression.
constexpr double cosineOfSixteenths(int k) {
  const double x = (k % 32) * (kPi / 16);
  double term = 1, sum = 1;
  for (int n = 1; n <= 25; ++n) {
    term *= -x * x / ((2 * n - 1) * (2 * n));
    sum += term;
  }
  return sum;
}

// The row of the 8-point DCT matrix for frequency u, with a DC row of ones.
constexpr double dctBasis(int u, int x) { return u == 0 ? 1 : kSqrt2 * cosineOfSixteenths((2 * x + 1) * u); }

// Weight of sample x for frequency u in row r of the fixed-point row passes, with 14 fractional bits.
constexpr int16_t dctRowWeight(int r, int u, int x) {
  constexpr int kFold[8] = {4, 1, 2, 3, 4, 3, 2, 1};
  const double weight = 16384 * kSqrt2 * cosineOfSixteenths(kFold[r]) * dctBasis(u, x);
  return static_cast<int16_t>(weight < 0 ? weight - 0.5 : weight + 0.5);
}

// tan(k pi / 16) with 16 fractional bits; those above one half are kept less one, to fit a signed 16-bit factor.
inline constexpr int16_t kTan1 = 13036;
inline constexpr int16_t kTan2 = 27146;
inline constexpr int16_t kTan3Less1 = -21746;
// cos(pi / 4), with 15 fractional bits, and less one with 16.
inline constexpr int16_t kCos4 = 23170;
inline constexpr int16_t kCos4Less1 = -19195;

}  // namespace zorj
