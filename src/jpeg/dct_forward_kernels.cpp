#include "jpeg/dct_forward_kernels.h"

#include <cmath>
#include <cstddef>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"
#include "jpeg/dct_constants.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/dct_forward_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/dct_arithmetic-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The fixed-point column pass, on one column or on all of them: samples from top to bottom become frequencies. Setting
// the lowest bit corrects a bias of the truncating products.
template <class V>
HWY_INLINE void forwardColumns(V (&x)[8]) {
  const V e = add(x[0], x[7]), f = shiftLeft<3>(sub(x[0], x[7]));
  const V a = shiftLeft<3>(add(x[1], x[6])), b = shiftLeft<4>(sub(x[1], x[6]));
  const V c = shiftLeft<3>(add(x[2], x[5])), d = shiftLeft<4>(sub(x[2], x[5]));
  const V g = add(x[3], x[4]), h = shiftLeft<3>(sub(x[3], x[4]));

  const V outer = shiftLeft<3>(add(e, g)), outerDifference = shiftLeft<3>(sub(e, g));
  const V inner = add(a, c), innerDifference = sub(a, c);
  x[0] = add(outer, inner);
  x[4] = sub(outer, inner);
  x[2] = setLowestBit(add(mulHigh(innerDifference, kTan2), outerDifference));
  x[6] = setLowestBit(sub(mulHigh(outerDifference, kTan2), innerDifference));

  const V p = setLowestBit(mulHigh(add(b, d), kCos4)), m = mulHigh(sub(b, d), kCos4);
  const V u = add(h, m), v = sub(h, m), s = add(f, p), t = sub(f, p);
  x[1] = setLowestBit(add(mulHigh(u, kTan1), s));
  x[7] = sub(mulHigh(s, kTan1), u);
  x[3] = sub(t, add(mulHigh(v, kTan3Less1), v));
  x[5] = add(add(mulHigh(t, kTan3Less1), t), v);
}

// The weights of the single-precision transform, one dimension: sqrt(2) C(u) cos(...) / (2 sqrt(2)).
struct FloatWeights {
  alignas(16) float even[4][4];  // [x][u / 2]
  alignas(16) float odd[4][4];
};
constexpr FloatWeights kFloatWeights = [] {
  FloatWeights weights{};
  for (size_t x = 0; x < 4; ++x) {
    for (size_t i = 0; i < 4; ++i) {
      weights.even[x][i] = static_cast<float>(dctBasis(2 * i, x) / (2 * std::numbers::sqrt2));
      weights.odd[x][i] = static_cast<float>(dctBasis(2 * i + 1, x) / (2 * std::numbers::sqrt2));
    }
  }
  return weights;
}();

constexpr float kFloatLevel = 2048.0f;

#if ZORJ_SIMD

// The weights of the row pass, for multiplyPairs: [t][row][2 l + k] is the weight of sample 2 (t % 2) + k for frequency
// 2 l in tables 0 and 1, 2 l + 1 in tables 2 and 3.
struct RowTables {
  alignas(64) int16_t weights[4][8][8];
};
constexpr RowTables kRowTables = [] {
  RowTables tables{};
  for (size_t t = 0; t < 4; ++t) {
    for (size_t r = 0; r < 8; ++r) {
      for (size_t i = 0; i < 8; ++i) tables.weights[t][r][i] = rowWeight(r, i / 2 * 2 + t / 2, 2 * (t % 2) + i % 2);
    }
  }
  return tables;
}();

template <class D>
HWY_INLINE hn::Vec<D> rowTable(D d, size_t table, size_t row) {
  return hn::Load(d, kRowTables.weights[table][row]);
}

// Four sums of one parity of every row, rounded.
template <class D32, class V16>
HWY_INLINE hn::Vec<D32> rowSums(D32 d32, V16 pair0, V16 pair1, V16 weights0, V16 weights1) {
  const auto sum = hn::Add(multiplyPairs(pair0, weights0), multiplyPairs(pair1, weights1));
  return hn::ShiftRight<kForwardRowShift>(hn::Add(sum, hn::Set(d32, 1 << (kForwardRowShift - 1))));
}

// The row pass on the rows from number `row` on.
template <class D>
HWY_INLINE hn::Vec<D> forwardRows(D d, hn::Vec<D> y, size_t row) {
  const hn::Repartition<int32_t, D> d32;
  const hn::Repartition<uint64_t, D> d64;
  const auto reversed = permuteRows(d, y, {7, 6, 5, 4, 3, 2, 1, 0});
  const auto sums = hn::BitCast(d64, hn::SaturatedAdd(y, reversed));
  const auto differences = hn::BitCast(d64, hn::SaturatedSub(y, reversed));
  const auto both = hn::BitCast(d, hn::InterleaveLower(d64, sums, differences));
  const auto even =
      rowSums(d32, broadcastPair<0>(both), broadcastPair<1>(both), rowTable(d, 0, row), rowTable(d, 1, row));
  const auto odd =
      rowSums(d32, broadcastPair<2>(both), broadcastPair<3>(both), rowTable(d, 2, row), rowTable(d, 3, row));
  return permuteRows(d, hn::ReorderDemote2To(d, even, odd), {0, 4, 1, 5, 2, 6, 3, 7});
}

// coefficient * entry / 2^15 with ties to even, saturated. The product of 16 signed and 16 unsigned bits is formed from
// its halves.
template <class D>
HWY_INLINE hn::Vec<D> quantise(D d, hn::Vec<D> coefficients, hn::Vec<D> entries) {
  const hn::Repartition<int32_t, D> d32;
  const auto low = hn::Mul(coefficients, entries);
  const auto high = hn::Add(hn::MulHigh(coefficients, entries), hn::And(coefficients, hn::BroadcastSignBit(entries)));
  const auto round = [&](auto product) HWY_ATTR {
    const auto odd = hn::And(hn::ShiftRight<15>(product), hn::Set(d32, 1));
    return hn::ShiftRight<15>(hn::Add(product, hn::Add(odd, hn::Set(d32, 0x3FFF))));
  };
  return hn::ReorderDemote2To(d, round(hn::BitCast(d32, hn::InterleaveLower(d, low, high))),
                              round(hn::BitCast(d32, hn::InterleaveUpper(d, low, high))));
}

HWY_INLINE void transform(Row (&rows)[8], int16_t* dst, const uint16_t* table) {
  const RowsTag d;
  const hn::RebindToUnsigned<RowsTag> du;
  forwardColumns(rows);
  for (size_t r = 0; r < 8; r += kRowsPerVector) {
    const auto coefficients = forwardRows(d, joinRows(d, rows + r), r);
    hn::StoreU(quantise(d, coefficients, hn::BitCast(d, hn::LoadU(du, table + 8 * r))), d, dst + 8 * r);
  }
}

void levelShifted(const uint8_t* src, int32_t srcStep, int16_t* dst, const uint16_t* table) {
  const RowTag d;
  const hn::Rebind<uint8_t, RowTag> d8;
  Row rows[8];
  for (int y = 0; y < 8; ++y) {
    rows[y] = hn::Sub(hn::PromoteTo(d, hn::LoadU(d8, rowAt(src, srcStep, y))), hn::Set(d, 128));
  }
  transform(rows, dst, table);
}

void centred(const int16_t* src, int16_t* dst, const uint16_t* table) {
  const RowTag d;
  Row rows[8];
  for (size_t y = 0; y < 8; ++y) rows[y] = hn::LoadU(d, src + 8 * y);
  transform(rows, dst, table);
}

using FloatTag = hn::FixedTag<float, 4>;
using Floats = hn::Vec<FloatTag>;

HWY_INLINE Floats weightedSum(Floats a, Floats b, Floats c, Floats d, Floats wa, Floats wb, Floats wc, Floats wd) {
  return hn::Add(hn::Add(hn::Add(hn::Mul(wa, a), hn::Mul(wb, b)), hn::Mul(wc, c)), hn::Mul(wd, d));
}

// One dimension on four columns at once.
HWY_INLINE void forwardFloatColumns(Floats (&x)[8]) {
  const FloatTag d;
  Floats sum[4], difference[4];
  for (size_t k = 0; k < 4; ++k) {
    sum[k] = hn::Add(x[k], x[7 - k]);
    difference[k] = hn::Sub(x[k], x[7 - k]);
  }
  const auto weight = [&](const float(&weights)[4][4], size_t k, size_t i)
                          HWY_ATTR { return hn::Set(d, weights[k][i]); };
  for (size_t i = 0; i < 4; ++i) {
    const auto& even = kFloatWeights.even;
    const auto& odd = kFloatWeights.odd;
    x[2 * i] = weightedSum(sum[0], sum[1], sum[2], sum[3], weight(even, 0, i), weight(even, 1, i), weight(even, 2, i),
                           weight(even, 3, i));
    x[2 * i + 1] = weightedSum(difference[0], difference[1], difference[2], difference[3], weight(odd, 0, i),
                               weight(odd, 1, i), weight(odd, 2, i), weight(odd, 3, i));
  }
}

HWY_INLINE Floats rowSum(Floats x, const float (&weights)[4][4]) {
  const FloatTag d;
  return weightedSum(hn::Broadcast<0>(x), hn::Broadcast<1>(x), hn::Broadcast<2>(x), hn::Broadcast<3>(x),
                     hn::Load(d, weights[0]), hn::Load(d, weights[1]), hn::Load(d, weights[2]),
                     hn::Load(d, weights[3]));
}

// Rounds to the nearest with ties to even, within 16 bits; not a number gives 0.
HWY_INLINE hn::Vec<hn::FixedTag<int32_t, 4>> roundTo16(Floats x) {
  const FloatTag d;
  const auto clamped = hn::Min(hn::Max(x, hn::Set(d, -32768.0f)), hn::Set(d, 32767.0f));
  return hn::NearestInt(hn::IfThenZeroElse(hn::IsNaN(x), clamped));
}

void levelShiftedFloat(const uint16_t* src, int32_t srcStep, int16_t* dst, const float* table) {
  const FloatTag d;
  const RowTag d16;
  const hn::Rebind<int32_t, FloatTag> d32;
  const hn::Rebind<int16_t, FloatTag> dHalf16;
  Floats columns[2][8];
  for (size_t half = 0; half < 2; ++half) {
    for (int y = 0; y < 8; ++y) {
      const auto samples = reinterpret_cast<const int16_t*>(rowAt(src, srcStep, y)) + 4 * half;
      const auto integers = hn::PromoteTo(d32, hn::LoadU(dHalf16, samples));
      columns[half][y] = hn::Sub(hn::ConvertTo(d, integers), hn::Set(d, kFloatLevel));
    }
    forwardFloatColumns(columns[half]);
  }
  for (size_t v = 0; v < 8; ++v) {
    const Floats right = hn::Reverse(d, columns[1][v]);
    const Floats even = rowSum(hn::Add(columns[0][v], right), kFloatWeights.even);
    const Floats odd = rowSum(hn::Sub(columns[0][v], right), kFloatWeights.odd);
    const float* multipliers = table + 8 * v;
    const auto low = hn::Mul(hn::InterleaveLower(d, even, odd), hn::LoadU(d, multipliers));
    const auto high = hn::Mul(hn::InterleaveUpper(d, even, odd), hn::LoadU(d, multipliers + 4));
    hn::StoreU(hn::ReorderDemote2To(d16, roundTo16(low), roundTo16(high)), d16, dst + 8 * v);
  }
}

#else

int16_t quantise(int16_t coefficient, uint16_t entry) {
  const int32_t product = static_cast<int32_t>(int64_t{coefficient} * entry);
  return saturate16((product + 0x3FFF + (product >> 15 & 1)) >> 15);
}

// `block` holds the samples of a block and is changed; `dst` may overlap what it was read from.
void transform(int16_t (&block)[64], int16_t* dst, const uint16_t* table) {
  for (size_t column = 0; column < 8; ++column) {
    int16_t x[8];
    for (size_t y = 0; y < 8; ++y) x[y] = block[8 * y + column];
    forwardColumns(x);
    for (size_t v = 0; v < 8; ++v) block[8 * v + column] = x[v];
  }
  static constexpr auto kWeights = [] {
    std::array<std::array<std::array<int16_t, 4>, 8>, 8> weights{};
    for (size_t r = 0; r < 8; ++r) {
      for (size_t u = 0; u < 8; ++u) {
        for (size_t x = 0; x < 4; ++x) weights[r][u][x] = rowWeight(r, u, x);
      }
    }
    return weights;
  }();
  for (size_t r = 0; r < 8; ++r) {
    const int16_t* y = block + 8 * r;
    int16_t folded[2][4];  // sums for the even frequencies, differences for the odd ones
    for (size_t x = 0; x < 4; ++x) {
      folded[0][x] = add(y[x], y[7 - x]);
      folded[1][x] = sub(y[x], y[7 - x]);
    }
    for (size_t u = 0; u < 8; ++u) {
      const auto& weights = kWeights[r][u];
      const int16_t* samples = folded[u % 2];
      uint32_t sum = 1u << (kForwardRowShift - 1);
      for (size_t x = 0; x < 4; ++x) sum += static_cast<uint32_t>(weights[x] * samples[x]);
      const int16_t coefficient = saturate16(static_cast<int32_t>(sum) >> kForwardRowShift);
      storeUnaligned(dst + 8 * r + u, quantise(coefficient, loadUnaligned(table + 8 * r + u)));
    }
  }
}

void levelShifted(const uint8_t* src, int32_t srcStep, int16_t* dst, const uint16_t* table) {
  int16_t block[64];
  for (int32_t y = 0; y < 8; ++y) {
    const uint8_t* row = rowAt(src, srcStep, y);
    for (int32_t x = 0; x < 8; ++x) block[8 * y + x] = static_cast<int16_t>(row[x] - 128);
  }
  transform(block, dst, table);
}

void centred(const int16_t* src, int16_t* dst, const uint16_t* table) {
  int16_t block[64];
  std::memcpy(block, static_cast<const void*>(src), sizeof block);
  transform(block, dst, table);
}

// One dimension; `step` apart.
void forwardFloat(float* x, size_t step) {
  float sum[4], difference[4];
  for (size_t k = 0; k < 4; ++k) {
    sum[k] = x[k * step] + x[(7 - k) * step];
    difference[k] = x[k * step] - x[(7 - k) * step];
  }
  const auto weighted = [](const float(&values)[4], const float(&weights)[4][4], size_t i) {
    return ((weights[0][i] * values[0] + weights[1][i] * values[1]) + weights[2][i] * values[2]) +
           weights[3][i] * values[3];
  };
  for (size_t i = 0; i < 4; ++i) {
    x[2 * i * step] = weighted(sum, kFloatWeights.even, i);
    x[(2 * i + 1) * step] = weighted(difference, kFloatWeights.odd, i);
  }
}

int16_t roundTo16(float x) {
  if (std::isnan(x)) return 0;
  return static_cast<int16_t>(std::lrint(std::min(std::max(x, -32768.0f), 32767.0f)));
}

void levelShiftedFloat(const uint16_t* src, int32_t srcStep, int16_t* dst, const float* table) {
  float block[64];
  for (int32_t y = 0; y < 8; ++y) {
    const uint16_t* row = rowAt(src, srcStep, y);
    for (int32_t x = 0; x < 8; ++x) block[8 * y + x] = static_cast<int16_t>(loadUnaligned(row + x)) - kFloatLevel;
  }
  for (size_t x = 0; x < 8; ++x) forwardFloat(block + x, 8);
  for (size_t v = 0; v < 8; ++v) forwardFloat(block + 8 * v, 1);
  for (size_t i = 0; i < 64; ++i) storeUnaligned(dst + i, roundTo16(block[i] * loadUnaligned(table + i)));
}

#endif

constexpr DctForwardKernels kernels = {&levelShifted, &centred, &levelShiftedFloat};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DctForwardKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DctForwardKernels& dctForwardKernels() { return *perIsa; }

}  // namespace zorj
#endif
