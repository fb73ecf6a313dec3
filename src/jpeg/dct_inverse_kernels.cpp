#include "jpeg/dct_inverse_kernels.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"
#include "jpeg/dct_constants.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/dct_inverse_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/dct_arithmetic-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The fixed-point column pass, on one column or on all of them: the transpose of the forward one. With kRows below 8
// the rows from there on are zero, or, where the row pass left its rounding alone in row 2, that.
template <int kRows, class V>
HWY_INLINE void inverseColumns(V (&y)[8]) {
  V s = y[1], u = mulHigh(y[1], kTan1), t, v;
  if constexpr (kRows == 8) {
    s = add(s, mulHigh(y[7], kTan1));
    u = sub(u, y[7]);
    t = add(y[3], add(mulHigh(y[5], kTan3Less1), y[5]));
    v = sub(y[5], add(mulHigh(y[3], kTan3Less1), y[3]));
  } else if constexpr (kRows == 4) {
    t = y[3];
    v = sub(y[4], add(mulHigh(y[3], kTan3Less1), y[3]));  // row 4 is zero
  }
  V odd[4] = {s, s, u, u};
  V p = s, m = u;
  if constexpr (kRows > 2) {
    p = sub(s, t);
    m = sub(u, v);
    odd[0] = add(s, t);
    odd[3] = add(u, v);
  }
  const V b = add(p, m), d = sub(p, m);
  odd[1] = add(b, mulHigh(b, kCos4Less1));
  odd[2] = add(d, mulHigh(d, kCos4Less1));

  V outer = y[0], outerDifference = y[0], inner = y[2], innerDifference = mulHigh(y[2], kTan2);
  if constexpr (kRows == 8) {
    outer = add(y[0], y[4]);
    outerDifference = sub(y[0], y[4]);
    inner = add(y[2], mulHigh(y[6], kTan2));
    innerDifference = sub(innerDifference, y[6]);
  }
  const V even[4] = {add(outer, inner), add(outerDifference, innerDifference), sub(outerDifference, innerDifference),
                     sub(outer, inner)};
  for (size_t i = 0; i < 4; ++i) {
    y[i] = shiftRight<kInverseColumnShift>(add(even[i], odd[i]));
    y[7 - i] = shiftRight<kInverseColumnShift>(sub(even[i], odd[i]));
  }
}

// The weights of the single-precision transform, one dimension: sqrt(2) C(u) cos(...) / (2 sqrt(2)).
struct FloatWeights {
  alignas(16) float even[4][4];  // [u / 2][x]
  alignas(16) float odd[4][4];
};
constexpr FloatWeights kFloatWeights = [] {
  FloatWeights weights{};
  for (size_t i = 0; i < 4; ++i) {
    for (size_t x = 0; x < 4; ++x) {
      weights.even[i][x] = static_cast<float>(dctBasis(2 * i, x) / (2 * std::numbers::sqrt2));
      weights.odd[i][x] = static_cast<float>(dctBasis(2 * i + 1, x) / (2 * std::numbers::sqrt2));
    }
  }
  return weights;
}();

constexpr float kFloatLevel = 2048.0f;
constexpr float kFloatMaximum = 4095.0f;

// sqrt(2) cos(pi / 8) and sqrt(2) cos(3 pi / 8): the odd half of the transform of four.
constexpr float kCosine1Of4 = static_cast<float>(std::numbers::sqrt2 * cosine(std::numbers::pi / 8));
constexpr float kCosine3Of4 = static_cast<float>(std::numbers::sqrt2 * cosine(3 * std::numbers::pi / 8));

// Coefficient times step, wrapped to 16 bits.
int16_t dequantisedAt(const int16_t* src, const uint16_t* table, size_t i) {
  return static_cast<int16_t>(int64_t{loadUnaligned(src + i)} * loadUnaligned(table + i));
}

uint8_t levelShift(int32_t value) { return static_cast<uint8_t>(std::clamp(saturate16(value) + 128, 0, 255)); }

void levelShiftedFromDc(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  const int64_t product = int64_t{loadUnaligned(src)} * loadUnaligned(table);
  const int16_t value = static_cast<int16_t>((product >> 3) + 128);
  for (int32_t y = 0; y < 8; ++y) std::memset(rowAt(dst, dstStep, y), std::clamp<int>(value, 0, 255), 8);
}

// The inverse transform of two points is a sum and a difference.
void levelShiftedTo2x2(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  const int32_t f00 = dequantisedAt(src, table, 0), f01 = dequantisedAt(src, table, 1);
  const int32_t f10 = dequantisedAt(src, table, 8), f11 = dequantisedAt(src, table, 9);
  const auto round = [](int32_t sum) { return levelShift((sum + 4) >> 3); };
  uint8_t* upper = dst;
  uint8_t* lower = rowAt(dst, dstStep, 1);
  upper[0] = round(f00 + f01 + f10 + f11);
  upper[1] = round(f00 - f01 + f10 - f11);
  lower[0] = round(f00 + f01 - f10 - f11);
  lower[1] = round(f00 - f01 - f10 + f11);
}

#if ZORJ_SIMD

// The weights of the row pass, for multiplyPairs: [t][row][2 x + k] is the weight of frequency 4 (t % 2) + 2 k in
// tables 0 and 1, and of the next higher one in tables 2 and 3, for sample x.
struct RowTables {
  alignas(64) int16_t weights[4][8][8];
  alignas(64) int32_t biases[8][4];
};
constexpr RowTables kRowTables = [] {
  RowTables tables{};
  for (size_t r = 0; r < 8; ++r) {
    for (size_t i = 0; i < 8; ++i) {
      for (size_t t = 0; t < 4; ++t) tables.weights[t][r][i] = rowWeight(r, 4 * (t % 2) + 2 * (i % 2) + t / 2, i / 2);
    }
    for (size_t i = 0; i < 4; ++i) tables.biases[r][i] = kInverseRowBias[r];
  }
  return tables;
}();

template <class D>
HWY_INLINE hn::Vec<D> loadDequantised(D d, const int16_t* src, const uint16_t* table) {
  const hn::RebindToUnsigned<D> du;
  return hn::Mul(hn::LoadU(d, src), hn::BitCast(d, hn::LoadU(du, table)));
}

// The row pass on the rows from number `row` on; with kColumns = 4 the coefficients from the fifth on are taken as
// zero.
template <int kColumns, class D>
HWY_INLINE hn::Vec<D> inverseRows(D d, hn::Vec<D> coefficients, size_t row) {
  const hn::Repartition<int32_t, D> d32;
  const auto weights = [&](size_t table) HWY_ATTR { return hn::Load(d, kRowTables.weights[table][row]); };
  const auto c = permuteRows(d, coefficients, {0, 2, 4, 6, 1, 3, 5, 7});
  auto even = hn::Add(multiplyPairs(broadcastPair<0>(c), weights(0)), hn::Load(d32, kRowTables.biases[row]));
  auto odd = multiplyPairs(broadcastPair<2>(c), weights(2));
  if constexpr (kColumns == 8) {
    even = hn::Add(even, multiplyPairs(broadcastPair<1>(c), weights(1)));
    odd = hn::Add(odd, multiplyPairs(broadcastPair<3>(c), weights(3)));
  }
  const auto left = hn::ShiftRight<kInverseRowShift>(hn::Add(even, odd));
  const auto right = hn::ShiftRight<kInverseRowShift>(hn::Sub(even, odd));  // from the outside in
  return permuteRows(d, hn::ReorderDemote2To(d, left, right), {0, 1, 2, 3, 7, 6, 5, 4});
}

HWY_INLINE void inverse(const int16_t* src, const uint16_t* table, Row (&rows)[8]) {
  const RowsTag d;
  for (size_t r = 0; r < 8; r += kRowsPerVector) {
    splitRows(d, inverseRows<8>(d, loadDequantised(d, src + 8 * r, table + 8 * r), r), rows + r);
  }
  inverseColumns<8>(rows);
}

// From the kSize x kSize lowest coefficients.
template <int kSize>
HWY_INLINE void inverseOfLowest(const int16_t* src, const uint16_t* table, Row (&rows)[8]) {
  const RowTag d;
  for (size_t r = 0; r < 8; ++r) {
    rows[r] = hn::Set(d, static_cast<int16_t>(kInverseRowBias[r] >> kInverseRowShift));
  }
  for (size_t r = 0; r < kSize; ++r) {
    const Row coefficients = hn::IfThenElseZero(hn::FirstN(d, kSize), loadDequantised(d, src + 8 * r, table + 8 * r));
    rows[r] = inverseRows<4>(d, coefficients, r);
  }
  inverseColumns<kSize>(rows);
}

HWY_INLINE void storeLevelShifted(const Row (&rows)[8], uint8_t* dst, int32_t dstStep) {
  const RowTag d;
  const hn::Rebind<uint8_t, RowTag> d8;
  for (int32_t y = 0; y < 8; ++y) {
    hn::StoreU(hn::DemoteTo(d8, hn::SaturatedAdd(rows[y], hn::Set(d, 128))), d8, rowAt(dst, dstStep, y));
  }
}

void levelShifted(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  Row rows[8];
  inverse(src, table, rows);
  storeLevelShifted(rows, dst, dstStep);
}

template <int kSize>
void levelShiftedFromLowest(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  Row rows[8];
  inverseOfLowest<kSize>(src, table, rows);
  storeLevelShifted(rows, dst, dstStep);
}

void centred(const int16_t* src, int16_t* dst, const uint16_t* table) {
  const RowTag d;
  Row rows[8];
  inverse(src, table, rows);
  for (size_t y = 0; y < 8; ++y) hn::StoreU(rows[y], d, dst + 8 * y);
}

using FloatTag = hn::FixedTag<float, 4>;
using Floats = hn::Vec<FloatTag>;

// Four points from four coefficients, one dimension, in the scale where the first passes through.
HWY_INLINE void inverseFour(Floats (&f)[4]) {
  const FloatTag d;
  const Floats c1 = hn::Set(d, kCosine1Of4), c3 = hn::Set(d, kCosine3Of4);
  const Floats even0 = hn::Add(f[0], f[2]), even1 = hn::Sub(f[0], f[2]);
  const Floats odd0 = hn::Add(hn::Mul(c1, f[1]), hn::Mul(c3, f[3])),
               odd1 = hn::Sub(hn::Mul(c3, f[1]), hn::Mul(c1, f[3]));
  f[0] = hn::Add(even0, odd0);
  f[1] = hn::Add(even1, odd1);
  f[2] = hn::Sub(even1, odd1);
  f[3] = hn::Sub(even0, odd0);
}

HWY_INLINE void transpose(Floats (&f)[4]) {
  const FloatTag d;
  const hn::Repartition<double, FloatTag> d64;
  const auto pair = [&](Floats a) HWY_ATTR { return hn::BitCast(d64, a); };
  const Floats a = hn::InterleaveLower(d, f[0], f[1]), b = hn::InterleaveLower(d, f[2], f[3]);
  const Floats c = hn::InterleaveUpper(d, f[0], f[1]), e = hn::InterleaveUpper(d, f[2], f[3]);
  f[0] = hn::BitCast(d, hn::InterleaveLower(d64, pair(a), pair(b)));
  f[1] = hn::BitCast(d, hn::InterleaveUpper(d64, pair(a), pair(b)));
  f[2] = hn::BitCast(d, hn::InterleaveLower(d64, pair(c), pair(e)));
  f[3] = hn::BitCast(d, hn::InterleaveUpper(d64, pair(c), pair(e)));
}

void levelShiftedTo4x4(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  const FloatTag d;
  const hn::Rebind<int32_t, FloatTag> d32;
  const hn::Rebind<int16_t, FloatTag> d16;
  const hn::Rebind<uint8_t, FloatTag> d8;
  Floats f[4];
  for (size_t v = 0; v < 4; ++v)
    f[v] = hn::ConvertTo(d, hn::PromoteTo(d32, loadDequantised(d16, src + 8 * v, table + 8 * v)));
  inverseFour(f);
  transpose(f);
  inverseFour(f);
  transpose(f);
  for (int32_t y = 0; y < 4; ++y) {
    const auto rounded = hn::NearestInt(hn::Mul(f[y], hn::Set(d, 0.125f)));
    const auto shifted = hn::SaturatedAdd(hn::DemoteTo(d16, rounded), hn::Set(d16, 128));
    hn::StoreU(hn::DemoteTo(d8, shifted), d8, rowAt(dst, dstStep, y));
  }
}

HWY_INLINE Floats weightedSum(Floats a, Floats b, Floats c, Floats d, Floats wa, Floats wb, Floats wc, Floats wd) {
  return hn::Add(hn::Add(hn::Add(hn::Mul(wa, a), hn::Mul(wb, b)), hn::Mul(wc, c)), hn::Mul(wd, d));
}

void levelShiftedFloat(const int16_t* src, uint16_t* dst, int32_t dstStep, const float* table) {
  const FloatTag d;
  const hn::Rebind<int32_t, FloatTag> d32;
  const hn::Rebind<int16_t, FloatTag> d16;
  const hn::Rebind<uint16_t, FloatTag> du16;
  Floats halves[2][8];  // the left and right half of every row after the row pass
  for (size_t v = 0; v < 8; ++v) {
    const auto coefficients = [&](size_t u) HWY_ATTR {
      const auto integers = hn::PromoteTo(d32, hn::LoadU(d16, src + 8 * v + u));
      return hn::Mul(hn::ConvertTo(d, integers), hn::LoadU(d, table + 8 * v + u));
    };
    const Floats low = coefficients(0), high = coefficients(4);
    const auto sum = [&](const float(&w)[4][4], Floats a, Floats b, Floats c, Floats e) HWY_ATTR {
      return weightedSum(a, b, c, e, hn::Load(d, w[0]), hn::Load(d, w[1]), hn::Load(d, w[2]), hn::Load(d, w[3]));
    };
    const Floats even = sum(kFloatWeights.even, hn::Broadcast<0>(low), hn::Broadcast<2>(low), hn::Broadcast<0>(high),
                            hn::Broadcast<2>(high));
    const Floats odd = sum(kFloatWeights.odd, hn::Broadcast<1>(low), hn::Broadcast<3>(low), hn::Broadcast<1>(high),
                           hn::Broadcast<3>(high));
    halves[0][v] = hn::Add(even, odd);
    halves[1][v] = hn::Reverse(d, hn::Sub(even, odd));
  }
  const auto storeSamples = [&](Floats value, int32_t y, size_t half) HWY_ATTR {
    const Floats shifted = hn::Add(value, hn::Set(d, kFloatLevel));
    const Floats clamped = hn::Min(hn::Max(shifted, hn::Zero(d)), hn::Set(d, kFloatMaximum));
    const auto integers = hn::ConvertTo(d32, hn::IfThenZeroElse(hn::IsNaN(shifted), clamped));
    hn::StoreU(hn::DemoteTo(du16, integers), du16, rowAt(dst, dstStep, y) + 4 * half);
  };
  for (size_t half = 0; half < 2; ++half) {
    const Floats(&f)[8] = halves[half];
    for (int32_t y = 0; y < 4; ++y) {
      const auto sum = [&](const float(&w)[4][4], size_t u) HWY_ATTR {
        return weightedSum(f[u], f[u + 2], f[u + 4], f[u + 6], hn::Set(d, w[0][y]), hn::Set(d, w[1][y]),
                           hn::Set(d, w[2][y]), hn::Set(d, w[3][y]));
      };
      const Floats even = sum(kFloatWeights.even, 0), odd = sum(kFloatWeights.odd, 1);
      storeSamples(hn::Add(even, odd), y, half);
      storeSamples(hn::Sub(even, odd), 7 - y, half);
    }
  }
}

#else

// The row pass of row r on the kColumns lowest coefficients, in place.
template <int kColumns>
void inverseRow(int16_t* row, size_t r) {
  static constexpr auto kWeights = [] {
    std::array<std::array<std::array<int16_t, 4>, 8>, 8> weights{};
    for (size_t k = 0; k < 8; ++k) {
      for (size_t u = 0; u < 8; ++u) {
        for (size_t x = 0; x < 4; ++x) weights[k][u][x] = rowWeight(k, u, x);
      }
    }
    return weights;
  }();
  int16_t result[8];
  for (size_t x = 0; x < 4; ++x) {
    uint32_t even = static_cast<uint32_t>(kInverseRowBias[r]), odd = 0;
    for (size_t u = 0; u < kColumns; u += 2) {
      even += static_cast<uint32_t>(kWeights[r][u][x] * row[u]);
      odd += static_cast<uint32_t>(kWeights[r][u + 1][x] * row[u + 1]);
    }
    result[x] = saturate16(static_cast<int32_t>(even + odd) >> kInverseRowShift);
    result[7 - x] = saturate16(static_cast<int32_t>(even - odd) >> kInverseRowShift);
  }
  std::memcpy(row, result, sizeof result);
}

// From the kSize x kSize lowest coefficients.
template <int kSize>
void inverse(const int16_t* src, const uint16_t* table, int16_t (&block)[64]) {
  for (size_t r = 0; r < 8; ++r) {
    int16_t* row = block + 8 * r;
    if (r < kSize) {
      for (size_t u = 0; u < kSize; ++u) row[u] = dequantisedAt(src, table, 8 * r + u);
      inverseRow<kSize>(row, r);
    } else {
      std::fill_n(row, 8, static_cast<int16_t>(kInverseRowBias[r] >> kInverseRowShift));
    }
  }
  for (size_t column = 0; column < 8; ++column) {
    int16_t y[8];
    for (size_t r = 0; r < 8; ++r) y[r] = block[8 * r + column];
    inverseColumns<kSize>(y);
    for (size_t r = 0; r < 8; ++r) block[8 * r + column] = y[r];
  }
}

template <int kSize>
void levelShiftedFromLowest(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  int16_t block[64];
  inverse<kSize>(src, table, block);
  for (int32_t y = 0; y < 8; ++y) {
    uint8_t* row = rowAt(dst, dstStep, y);
    for (int32_t x = 0; x < 8; ++x) row[x] = levelShift(block[8 * y + x]);
  }
}

void levelShifted(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  levelShiftedFromLowest<8>(src, dst, dstStep, table);
}

void centred(const int16_t* src, int16_t* dst, const uint16_t* table) {
  int16_t block[64];
  inverse<8>(src, table, block);
  std::memcpy(static_cast<void*>(dst), block, sizeof block);
}

// Four points from four coefficients `step` apart, in the scale where the first passes through.
void inverseFour(float* f, size_t step) {
  const float f0 = f[0], f1 = f[step], f2 = f[2 * step], f3 = f[3 * step];
  const float even0 = f0 + f2, even1 = f0 - f2;
  const float odd0 = kCosine1Of4 * f1 + kCosine3Of4 * f3, odd1 = kCosine3Of4 * f1 - kCosine1Of4 * f3;
  f[0] = even0 + odd0;
  f[step] = even1 + odd1;
  f[2 * step] = even1 - odd1;
  f[3 * step] = even0 - odd0;
}

void levelShiftedTo4x4(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  float f[16];
  for (size_t i = 0; i < 16; ++i) f[i] = dequantisedAt(src, table, 8 * (i / 4) + i % 4);
  for (size_t u = 0; u < 4; ++u) inverseFour(f + u, 4);
  for (size_t y = 0; y < 4; ++y) inverseFour(f + 4 * y, 1);
  for (int32_t y = 0; y < 4; ++y) {
    uint8_t* row = rowAt(dst, dstStep, y);
    for (int32_t x = 0; x < 4; ++x) row[x] = levelShift(static_cast<int32_t>(std::lrint(f[4 * y + x] * 0.125f)));
  }
}

// One dimension; `step` apart.
void inverseFloat(float* f, size_t step) {
  float result[8];
  for (size_t x = 0; x < 4; ++x) {
    const auto weighted = [&](const float(&weights)[4][4], size_t u) {
      return ((weights[0][x] * f[u * step] + weights[1][x] * f[(u + 2) * step]) + weights[2][x] * f[(u + 4) * step]) +
             weights[3][x] * f[(u + 6) * step];
    };
    const float even = weighted(kFloatWeights.even, 0), odd = weighted(kFloatWeights.odd, 1);
    result[x] = even + odd;
    result[7 - x] = even - odd;
  }
  for (size_t x = 0; x < 8; ++x) f[x * step] = result[x];
}

void levelShiftedFloat(const int16_t* src, uint16_t* dst, int32_t dstStep, const float* table) {
  float block[64];
  for (size_t i = 0; i < 64; ++i) block[i] = static_cast<float>(loadUnaligned(src + i)) * loadUnaligned(table + i);
  for (size_t v = 0; v < 8; ++v) inverseFloat(block + 8 * v, 1);
  for (size_t x = 0; x < 8; ++x) inverseFloat(block + x, 8);
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t x = 0; x < 8; ++x) {
      const float shifted = block[8 * y + x] + kFloatLevel;
      const float clamped = std::isnan(shifted) ? 0.0f : std::min(std::max(shifted, 0.0f), kFloatMaximum);
      storeUnaligned(rowAt(dst, dstStep, y) + x, static_cast<uint16_t>(clamped));
    }
  }
}

#endif

constexpr DctInverseKernels kernels = {&levelShifted,
                                       &levelShiftedFromLowest<4>,
                                       &levelShiftedFromLowest<2>,
                                       &levelShiftedFromDc,
                                       &levelShiftedTo4x4,
                                       &levelShiftedTo2x2,
                                       &centred,
                                       &levelShiftedFloat};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DctInverseKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DctInverseKernels& dctInverseKernels() { return *perIsa; }

}  // namespace zorj
#endif
