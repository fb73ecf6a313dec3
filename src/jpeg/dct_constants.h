// Constants of the fixed-point DCT. Its columns use a factorisation by tangents that leaves every row of the result
// scaled by a factor of its own; the weights of the rows undo that.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace zorj {

// Cosine by its Taylor series, for 0 <= angle <= 4 pi: a constant expression, which std::cos is not.
constexpr double cosine(double angle) {
  constexpr double kTurn = 2 * std::numbers::pi;
  while (angle > kTurn / 2) angle -= kTurn;
  double term = 1, sum = 1;
  for (int n = 1; n <= 20; ++n) {
    term *= -angle * angle / ((2 * n - 1) * (2 * n));
    sum += term;
  }
  return sum;
}

// sqrt(2) C(u) cos((2x + 1) u pi / 16), C(0) = 1 / sqrt(2) and C(u) = 1 otherwise: the one-dimensional DCT basis.
constexpr double dctBasis(size_t u, size_t x) {
  if (u == 0) return 1;
  return std::numbers::sqrt2 * cosine(static_cast<double>((2 * x + 1) * u) * std::numbers::pi / 16);
}

// What the column pass leaves row r to be multiplied by.
constexpr double rowFactor(size_t r) {
  const size_t k = r % 4 == 0 ? 0 : r < 4 ? r : 8 - r;
  return k == 0 ? 1 : std::numbers::sqrt2 * cosine(static_cast<double>(k) * std::numbers::pi / 16);
}

// The weight of sample x for frequency u in row r, in units of 2^-14.
constexpr int16_t rowWeight(size_t r, size_t u, size_t x) {
  const double exact = 16384 * rowFactor(r) * dctBasis(u, x);
  return static_cast<int16_t>(exact < 0 ? exact - 0.5 : exact + 0.5);
}

// Column constants: tangents in units of 2^-16 (the third less 1), cos(pi / 4) in units of 2^-15, and less 1 in 2^-16.
inline constexpr int16_t kTan1 = 13036;
inline constexpr int16_t kTan2 = 27146;
inline constexpr int16_t kTan3Less1 = -21746;
inline constexpr int16_t kCos4 = 23170;
inline constexpr int16_t kCos4Less1 = -19195;

// Rounding of the inverse row pass. The values fold in the rounding of the column pass's last shift.
inline constexpr std::array<int32_t, 8> kInverseRowBias = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};

// The shifts of the weighted sums: 14 bits of the weights and 6 of the column pass; inverse 11, and 6 in the columns.
inline constexpr int kForwardRowShift = 20;
inline constexpr int kInverseRowShift = 11;
inline constexpr int kInverseColumnShift = 6;

}  // namespace zorj
