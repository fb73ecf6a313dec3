#include "jpeg/dct_inverse_kernels.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/dct_constants.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/dct_inverse_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/dct_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// The row pass adds half a unit of its result, and in row 0 half a unit of the column pass's: that one reaches every
// sample. What the truncating products of the column pass lose on average is in the other rows.
constexpr int32_t kRowBias[8] = {65536, 2901, 2260, 1704, 1024, 455, 512, 373};
constexpr int kRowShift = 11;
constexpr int kColumnShift = 6;

// The halves of a column: sample i is (even[i] + odd[i]) >> 6, sample 7 - i is (even[i] - odd[i]) >> 6.
struct Halves {
  Columns even[4];
  Columns odd[4];
};

// Rows of coefficients that are 0, and what follows from them.
struct Zero {};
HWY_INLINE Zero multiplyHigh(Zero, int16_t) { return {}; }
HWY_INLINE Zero add(Zero, Zero) { return {}; }
HWY_INLINE Columns add(Columns a, Zero) { return a; }
HWY_INLINE Columns add(Zero, Columns b) { return b; }
HWY_INLINE Zero subtract(Zero, Zero) { return {}; }
HWY_INLINE Columns subtract(Columns a, Zero) { return a; }
HWY_INLINE Columns subtract(Zero, Columns b) { return subtract(constant(0), b); }

template <class Y2, class Y3, class Y4, class Y5, class Y6, class Y7>
HWY_INLINE Halves transformColumns(Columns y0, Columns y1, Y2 y2, Y3 y3, Y4 y4, Y5 y5, Y6 y6, Y7 y7) {
  const auto s = add(y1, multiplyHigh(y7, kTan1)), u = subtract(multiplyHigh(y1, kTan1), y7);
  const auto t = add(y3, add(multiplyHigh(y5, kTan3Less1), y5)),
             v = subtract(y5, add(multiplyHigh(y3, kTan3Less1), y3));
  const auto p = subtract(s, t), m = subtract(u, v);
  const auto b = add(p, m), d = subtract(p, m);
  const auto sum = add(y0, y4), difference = subtract(y0, y4);
  const auto r = add(y2, multiplyHigh(y6, kTan2)), x = subtract(multiplyHigh(y2, kTan2), y6);
  return {{add(sum, r), add(difference, x), subtract(difference, x), subtract(sum, r)},
          {add(s, t), add(b, multiplyHigh(b, kCos4Less1)), add(d, multiplyHigh(d, kCos4Less1)), add(u, v)}};
}

// The column pass where all rows of coefficients from kSize on are 0. The row pass makes 0 of them too, except for
// row 2, of which its bias makes 1.
template <int kSize>
HWY_INLINE Halves transformColumns(const Columns (&y)[kSize]) {
  constexpr Zero zero;
  if constexpr (kSize == 8) {
    return transformColumns(y[0], y[1], y[2], y[3], y[4], y[5], y[6], y[7]);
  } else if constexpr (kSize == 4) {
    return transformColumns(y[0], y[1], y[2], y[3], zero, zero, zero, zero);
  } else {
    static_assert(kSize == 2 && kRowBias[2] >> kRowShift == 1);
    return transformColumns(y[0], y[1], constant(1), zero, zero, zero, zero, zero);
  }
}

// The 4-point transform keeps 13 bits of its weights' fractions, and between its passes 5 bits of the samples'.
constexpr int kSmallWeightBits = 13;
constexpr int kSmallFirstShift = kSmallWeightBits - 2;
constexpr int kSmallSecondShift = kSmallWeightBits + 5;
constexpr int16_t kSmallEven = 8192;   // 1
constexpr int16_t kSmallOdd1 = 10703;  // sqrt(2) cos(pi / 8)
constexpr int16_t kSmallOdd3 = 4433;   // sqrt(2) cos(3 pi / 8)

#if ZORJ_SIMD

// The order of the pairs of coefficients in kPairs and kPairWeights.
enum Pair { kPair02, kPair46, kPair13, kPair57, kPairCount };
constexpr int kFirstOfPair[kPairCount] = {0, 4, 1, 5};

// Byte numbers that fill a row with one pair of its coefficients. `single`: the first of the pair and zeros.
struct alignas(16) PairBytes {
  uint8_t at[16];
};
constexpr PairBytes pairBytes(Pair pair, bool single) {
  PairBytes bytes{};
  for (int i = 0; i < 16; ++i) {
    const bool second = i / 2 % 2 == 1;
    bytes.at[i] = static_cast<uint8_t>(second && single ? 0x80 : 2 * kFirstOfPair[pair] + i % 2 + (second ? 4 : 0));
  }
  return bytes;
}

// Weights by pair and row, for samples 0..3.
struct alignas(64) PairWeights {
  int16_t at[kPairCount][8][8];
  int32_t bias[8][4];
};
constexpr PairWeights kPairWeights = [] {
  PairWeights weights{};
  for (int i = 0; i < kPairCount * 8 * 8; ++i) {
    const int pair = i / 64, row = i / 8 % 8, lane = i % 8;
    weights.at[pair][row][lane] = dctRowWeight(row, kFirstOfPair[pair] + 2 * (lane % 2), lane / 2);
  }
  for (int i = 0; i < 32; ++i) weights.bias[i / 4][i % 4] = kRowBias[i / 4];
  return weights;
}();

// The row pass from the lowest kSize coefficients of each row. The samples come in the order 0 1 2 3 7 6 5 4, which
// restoreOrder changes after the column pass.
template <int kSize, class D>
HWY_INLINE hn::Vec<D> transformRows(D d, hn::Vec<D> coefficients, int firstRow) {
  constexpr hn::RepartitionToWide<D> d32;
  const auto product = [&](hn::Vec<decltype(d32)> sum, Pair pair) HWY_ATTR {
    static constexpr PairBytes kBytes[kPairCount] = {pairBytes(kPair02, kSize == 2), pairBytes(kPair46, false),
                                                     pairBytes(kPair13, kSize == 2), pairBytes(kPair57, false)};
    const auto bytes = hn::BitCast(d, hn::LoadDup128(hn::Repartition<uint8_t, D>(), kBytes[pair].at));
    return addPairProducts(sum, hn::TableLookupBytes(coefficients, bytes),
                           hn::LoadU(d, kPairWeights.at[pair][firstRow]));
  };
  auto even = product(hn::LoadU(d32, kPairWeights.bias[firstRow]), kPair02);
  auto odd = product(hn::Zero(d32), kPair13);
  if constexpr (kSize == 8) {
    even = product(even, kPair46);
    odd = product(odd, kPair57);
  }
  return hn::ReorderDemote2To(d, hn::ShiftRight<kRowShift>(hn::Add(even, odd)),
                              hn::ShiftRight<kRowShift>(hn::Sub(even, odd)));
}

template <class D>
HWY_INLINE hn::Vec<D> dequantise(D d, const int16_t* src, const uint16_t* table) {
  return hn::Mul(hn::LoadU(d, src), hn::BitCast(d, hn::LoadU(hn::RebindToUnsigned<D>(), table)));
}

template <int kSize>
HWY_INLINE Halves transform(const int16_t* src, const uint16_t* table) {
  constexpr RowsTag<kSize> d;
  Columns y[kSize];
  HWY_UNROLL(8)
  for (int row = 0; row < kSize; row += kRowsPerVector<kSize>) {
    split(transformRows<kSize>(d, dequantise(d, src + 8 * row, table + 8 * row), row), y + row);
  }
  return transformColumns(y);
}

// Samples first to first + kRowsPerVector - 1 of each column, and those as far from the other end, mirrored.
template <class D>
HWY_INLINE void finish(D, const Halves& halves, int first, hn::Vec<D>& upper, hn::Vec<D>& lower) {
  hn::Vec<D> even, odd;
  join(halves.even + first, even);
  join(halves.odd + first, odd);
  upper = hn::ShiftRight<kColumnShift>(hn::SaturatedAdd(even, odd));
  lower = hn::ShiftRight<kColumnShift>(hn::SaturatedSub(even, odd));
}

void block(const int16_t* src, int16_t* dst, const uint16_t* table) {
  constexpr RowsTag<4> d;
  alignas(16) static constexpr uint8_t kOrder[16] = {0, 1, 2, 3, 4, 5, 6, 7, 14, 15, 12, 13, 10, 11, 8, 9};
  const auto order = hn::BitCast(d, hn::LoadDup128(hn::Repartition<uint8_t, RowsTag<4>>(), kOrder));
  const Halves halves = transform<8>(src, table);
  HWY_UNROLL(4)
  for (int first = 0; first < 4; first += kRowsPerVector<4>) {
    hn::Vec<RowsTag<4>> upper, lower;
    finish(d, halves, first, upper, lower);
    hn::StoreU(hn::TableLookupBytes(upper, order), d, dst + 8 * first);
    Columns mirrored[kRowsPerVector<4>];
    split(hn::TableLookupBytes(lower, order), mirrored);
    for (int i = 0; i < kRowsPerVector<4>; ++i) {
      hn::StoreU(mirrored[i], hn::FixedTag<int16_t, 8>(), dst + 8 * (7 - first - i));
    }
  }
}

template <int kSize>
void toSamples(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  constexpr RowsTag<4> d;
  constexpr hn::Repartition<int8_t, RowsTag<4>> d8;
  // 128 is added after the saturation, to signed bytes.
  alignas(16) static constexpr int8_t kOrder[16] = {0, 1, 2, 3, 7, 6, 5, 4, 8, 9, 10, 11, 15, 14, 13, 12};
  const auto order = hn::LoadDup128(d8, kOrder);
  const Halves halves = transform<kSize>(src, table);
  HWY_UNROLL(4)
  for (int first = 0; first < 4; first += kRowsPerVector<4>) {
    hn::Vec<RowsTag<4>> upper, lower;
    finish(d, halves, first, upper, lower);
    const auto samples = hn::Xor(hn::TableLookupBytes(packToBytes(upper, lower), order), hn::Set(d8, -128));
    Columns rows[kRowsPerVector<4>];
    split(hn::BitCast(d, samples), rows);
    for (int i = 0; i < kRowsPerVector<4>; ++i) {
      uint8_t* const row = dst + static_cast<ptrdiff_t>(first + i) * dstStep;
      uint8_t* const mirrored = dst + static_cast<ptrdiff_t>(7 - first - i) * dstStep;
      _mm_storel_epi64(reinterpret_cast<__m128i*>(row), rows[i].raw);
      _mm_storeh_pd(reinterpret_cast<double*>(mirrored), _mm_castsi128_pd(rows[i].raw));
    }
  }
}

// The 4-point transform along the columns of the 4x4 block whose rows 0 and 1, then 2 and 3, are given.
template <int kShift>
HWY_INLINE void transform4(hn::Vec128<int16_t>& rows01, hn::Vec128<int16_t>& rows23) {
  constexpr hn::FixedTag<int16_t, 8> d;
  constexpr hn::FixedTag<int32_t, 4> d32;
  const auto weights = [&](int first, int second) HWY_ATTR {
    return hn::BitCast(d, hn::Set(d32, static_cast<int32_t>(static_cast<uint32_t>(second) << 16 | (first & 0xFFFF))));
  };
  const auto rows02 = hn::InterleaveLower(rows01, rows23), rows13 = hn::InterleaveUpper(d, rows01, rows23);
  const auto rounding = hn::Set(d32, 1 << (kShift - 1)), zero = hn::Zero(d32);
  const auto even0 = addPairProducts(rounding, rows02, weights(kSmallEven, kSmallEven));
  const auto even1 = addPairProducts(rounding, rows02, weights(kSmallEven, -kSmallEven));
  const auto odd0 = addPairProducts(zero, rows13, weights(kSmallOdd1, kSmallOdd3));
  const auto odd1 = addPairProducts(zero, rows13, weights(kSmallOdd3, -kSmallOdd1));
  rows01 = hn::ReorderDemote2To(d, hn::ShiftRight<kShift>(hn::Add(even0, odd0)),
                                hn::ShiftRight<kShift>(hn::Add(even1, odd1)));
  rows23 = hn::ReorderDemote2To(d, hn::ShiftRight<kShift>(hn::Sub(even1, odd1)),
                                hn::ShiftRight<kShift>(hn::Sub(even0, odd0)));
}

HWY_INLINE void transpose4(hn::Vec128<int16_t>& rows01, hn::Vec128<int16_t>& rows23) {
  constexpr hn::FixedTag<int16_t, 8> d;
  const auto even = hn::InterleaveLower(rows01, rows23), odd = hn::InterleaveUpper(d, rows01, rows23);
  rows01 = hn::InterleaveLower(even, odd);
  rows23 = hn::InterleaveUpper(d, even, odd);
}

void to4x4Samples(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  constexpr hn::FixedTag<int16_t, 8> d;
  constexpr hn::FixedTag<int16_t, 4> half;
  const auto rows = [&](int first) HWY_ATTR {
    return hn::Combine(d, dequantise(half, src + 8 * first + 8, table + 8 * first + 8),
                       dequantise(half, src + 8 * first, table + 8 * first));
  };
  auto rows01 = rows(0), rows23 = rows(2);
  transform4<kSmallFirstShift>(rows01, rows23);
  transpose4(rows01, rows23);
  transform4<kSmallSecondShift>(rows01, rows23);
  transpose4(rows01, rows23);
  const auto samples = hn::Xor(packToBytes(rows01, rows23), hn::Set(hn::FixedTag<int8_t, 16>(), -128));
  alignas(16) uint8_t bytes[16];
  hn::Store(hn::BitCast(hn::FixedTag<uint8_t, 16>(), samples), hn::FixedTag<uint8_t, 16>(), bytes);
  for (ptrdiff_t y = 0; y < 4; ++y) std::memcpy(dst + y * dstStep, bytes + 4 * y, 4);
}

#else

// Weights by row, sample of the first half and frequency.
constexpr auto kWeights = [] {
  std::array<std::array<std::array<int16_t, 8>, 4>, 8> weights{};
  for (int i = 0; i < 256; ++i) weights[i / 32][i / 8 % 4][i % 8] = dctRowWeight(i / 32, i % 8, i / 8 % 4);
  return weights;
}();

int16_t dequantise(const int16_t* src, const uint16_t* table) {
  return static_cast<int16_t>(loadUnaligned(src) * loadUnaligned(table));
}

template <int kSize>
void transformRow(int row, const int16_t (&coefficients)[kSize], int16_t* samples) {
  for (int x = 0; x < 4; ++x) {
    uint32_t even = static_cast<uint32_t>(kRowBias[row]), odd = 0;
    for (int u = 0; u < kSize; u += 2) {
      even += static_cast<uint32_t>(kWeights[row][x][u] * coefficients[u]);
      odd += static_cast<uint32_t>(kWeights[row][x][u + 1] * coefficients[u + 1]);
    }
    samples[x] = saturate(static_cast<int32_t>(even + odd) >> kRowShift);
    samples[7 - x] = saturate(static_cast<int32_t>(even - odd) >> kRowShift);
  }
}

// The inverse DCT of the lowest kSize x kSize coefficients, the others taken as 0.
template <int kSize>
void transform(const int16_t* src, const uint16_t* table, int16_t (&samples)[64]) {
  int16_t rows[kSize][8];
  for (int row = 0; row < kSize; ++row) {
    int16_t coefficients[kSize];
    for (int u = 0; u < kSize; ++u) coefficients[u] = dequantise(src + 8 * row + u, table + 8 * row + u);
    transformRow(row, coefficients, rows[row]);
  }
  for (int x = 0; x < 8; ++x) {
    int16_t column[kSize];
    for (int row = 0; row < kSize; ++row) column[row] = rows[row][x];
    const Halves halves = transformColumns(column);
    for (int i = 0; i < 4; ++i) {
      samples[8 * i + x] = static_cast<int16_t>(add(halves.even[i], halves.odd[i]) >> kColumnShift);
      samples[8 * (7 - i) + x] = static_cast<int16_t>(subtract(halves.even[i], halves.odd[i]) >> kColumnShift);
    }
  }
}

void block(const int16_t* src, int16_t* dst, const uint16_t* table) {
  int16_t samples[64];
  transform<8>(src, table, samples);
  std::memcpy(static_cast<void*>(dst), samples, sizeof samples);
}

uint8_t levelShifted(int sample) { return static_cast<uint8_t>(std::clamp(sample + 128, 0, 255)); }

template <int kSize>
void toSamples(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  int16_t samples[64];
  transform<kSize>(src, table, samples);
  for (ptrdiff_t y = 0; y < 8; ++y) {
    for (ptrdiff_t x = 0; x < 8; ++x) dst[y * dstStep + x] = levelShifted(samples[8 * y + x]);
  }
}

template <int kShift>
void transform4(int16_t* values, int stride) {
  int16_t* const v[4] = {values, values + stride, values + 2 * stride, values + 3 * stride};
  constexpr int rounding = 1 << (kShift - 1);
  const int even0 = kSmallEven * (*v[0] + *v[2]) + rounding, even1 = kSmallEven * (*v[0] - *v[2]) + rounding;
  const int odd0 = kSmallOdd1 * *v[1] + kSmallOdd3 * *v[3], odd1 = kSmallOdd3 * *v[1] - kSmallOdd1 * *v[3];
  *v[0] = saturate((even0 + odd0) >> kShift);
  *v[1] = saturate((even1 + odd1) >> kShift);
  *v[2] = saturate((even1 - odd1) >> kShift);
  *v[3] = saturate((even0 - odd0) >> kShift);
}

void to4x4Samples(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  int16_t values[16];
  for (int i = 0; i < 16; ++i) {
    const int position = 8 * (i / 4) + i % 4;
    values[i] = dequantise(src + position, table + position);
  }
  for (int x = 0; x < 4; ++x) transform4<kSmallFirstShift>(values + x, 4);
  for (int y = 0; y < 4; ++y) transform4<kSmallSecondShift>(values + 4 * y, 1);
  for (ptrdiff_t y = 0; y < 4; ++y) {
    for (ptrdiff_t x = 0; x < 4; ++x) dst[y * dstStep + x] = levelShifted(values[4 * y + x]);
  }
}

#endif

constexpr DctInverseKernels kernels = {&block, &toSamples<8>, &toSamples<4>, &toSamples<2>, &to4x4Samples};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DctInverseKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DctInverseKernels& dctInverseKernels() { return *perIsa; }

}  // namespace zorj
#endif
