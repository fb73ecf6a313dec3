#include "jpeg/dct_forward_kernels.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/dct_constants.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/dct_forward_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/dct_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// The column pass: x[0..7] from top to bottom become the frequencies 0..7, each scaled by a factor that the row pass
// takes away. Lowest bits are set where that centres the error of the truncating products around them.
HWY_INLINE void transformColumns(Columns (&x)[8]) {
  const Columns e = add(x[0], x[7]), g = add(x[3], x[4]);
  const Columns a = shiftLeft<3>(add(x[1], x[6])), c = shiftLeft<3>(add(x[2], x[5]));
  const Columns f = shiftLeft<3>(subtract(x[0], x[7])), h = shiftLeft<3>(subtract(x[3], x[4]));
  const Columns b = shiftLeft<4>(subtract(x[1], x[6])), d = shiftLeft<4>(subtract(x[2], x[5]));

  const Columns outerSum = shiftLeft<3>(add(e, g)), outerDifference = shiftLeft<3>(subtract(e, g));
  const Columns innerSum = add(a, c), innerDifference = subtract(a, c);
  x[0] = add(outerSum, innerSum);
  x[4] = subtract(outerSum, innerSum);
  x[2] = setLowestBit(add(multiplyHigh(innerDifference, kTan2), outerDifference));
  x[6] = setLowestBit(subtract(multiplyHigh(outerDifference, kTan2), innerDifference));

  const Columns p = setLowestBit(multiplyHigh(add(b, d), kCos4)), m = multiplyHigh(subtract(b, d), kCos4);
  const Columns u = add(h, m), v = subtract(h, m), s = add(f, p), t = subtract(f, p);
  x[1] = setLowestBit(add(multiplyHigh(u, kTan1), s));
  x[7] = subtract(multiplyHigh(s, kTan1), u);
  x[3] = subtract(t, add(multiplyHigh(v, kTan3Less1), v));
  x[5] = add(add(multiplyHigh(t, kTan3Less1), t), v);
}

constexpr int32_t kRowRounding = 1 << 19;
constexpr int kRowShift = 20;

#if ZORJ_SIMD

using Rows = RowsTag<8>;

// Weights of the pairs of s[x] = y[x] + y[7 - x] and d[x] = y[x] - y[7 - x] in a row s01 d01 s23 d23, by the vector
// they serve (frequencies 0..3 or 4..7), by half (the row as it is, or with its halves exchanged) and by row.
struct alignas(64) PairWeights {
  int16_t at[2][2][8][8];
};
constexpr PairWeights kPairWeights = [] {
  PairWeights weights{};
  for (int i = 0; i < 2 * 2 * 8 * 8; ++i) {
    const int frequencies = i / 128, exchanged = i / 64 % 2, row = i / 8 % 8, lane = i / 2 % 4;
    const int x = 2 * ((lane / 2) ^ exchanged) + i % 2;
    weights.at[frequencies][exchanged][row][i % 8] = dctRowWeight(row, 4 * frequencies + lane, x);
  }
  return weights;
}();

HWY_INLINE hn::Vec<Rows> transformRows(hn::Vec<Rows> y, int firstRow) {
  constexpr Rows d;
  constexpr hn::RepartitionToWide<Rows> d32;
  alignas(16) static constexpr uint8_t kReversed[16] = {14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1};
  const auto reversed =
      hn::TableLookupBytes(y, hn::BitCast(d, hn::LoadDup128(hn::Repartition<uint8_t, Rows>(), kReversed)));
  const auto pairs = hn::InterleaveLower(d32, hn::BitCast(d32, hn::SaturatedAdd(y, reversed)),
                                         hn::BitCast(d32, hn::SaturatedSub(y, reversed)));
  const auto exchanged = hn::BitCast(d, hn::Shuffle1032(pairs));
  const auto sums = [&](int frequencies) HWY_ATTR {
    const auto& weights = kPairWeights.at[frequencies];
    const auto sum =
        addPairProducts(hn::Set(d32, kRowRounding), hn::BitCast(d, pairs), hn::Load(d, weights[0][firstRow]));
    return hn::ShiftRight<kRowShift>(addPairProducts(sum, exchanged, hn::Load(d, weights[1][firstRow])));
  };
  return hn::ReorderDemote2To(d, sums(0), sums(1));
}

// F T / 32768 for |F| <= 2048, which is all that transformRows returns.
HWY_INLINE hn::Vec<Rows> quantise(hn::Vec<Rows> f, hn::Vec<Rows> t) {
  constexpr Rows d;
  // The product with T as a signed number rounds ties up, and lacks 2F where T has its highest bit.
  const auto nearest = hn::MulFixedPoint15(f, t);
  const auto missing = hn::IfThenElseZero(hn::MaskFromVec(hn::BroadcastSignBit(t)), hn::Add(f, f));
  // A tie was rounded to an odd number if the bit above the half is clear.
  const auto oddTie = hn::VecFromMask(d, hn::Eq(hn::Mul(f, t), hn::Set(d, 0x4000)));
  return hn::Add(hn::Add(nearest, oddTie), missing);
}

HWY_INLINE void transform(Columns (&x)[8], int16_t* dst, const uint16_t* table) {
  transformColumns(x);
  constexpr Rows d;
  HWY_UNROLL(8)
  for (int row = 0; row < 8; row += kRowsPerVector<8>) {
    hn::Vec<Rows> y;
    join(x + row, y);
    const auto t = hn::BitCast(d, hn::LoadU(hn::RebindToUnsigned<Rows>(), table + 8 * row));
    hn::StoreU(quantise(transformRows(y, row), t), d, dst + 8 * row);
  }
}

void block(const int16_t* src, int16_t* dst, const uint16_t* table) {
  constexpr hn::FixedTag<int16_t, 8> d;
  Columns x[8] = {hn::LoadU(d, src),      hn::LoadU(d, src + 8),  hn::LoadU(d, src + 16), hn::LoadU(d, src + 24),
                  hn::LoadU(d, src + 32), hn::LoadU(d, src + 40), hn::LoadU(d, src + 48), hn::LoadU(d, src + 56)};
  transform(x, dst, table);
}

void levelShifted(const uint8_t* src, int32_t srcStep, int16_t* dst, const uint16_t* table) {
  constexpr hn::FixedTag<int16_t, 8> d;
  const auto row = [&](ptrdiff_t y) HWY_ATTR {
    return hn::Sub(hn::PromoteTo(d, hn::LoadU(hn::FixedTag<uint8_t, 8>(), src + y * srcStep)), constant(128));
  };
  Columns x[8] = {row(0), row(1), row(2), row(3), row(4), row(5), row(6), row(7)};
  transform(x, dst, table);
}

#else

// Weights by row, frequency and sample of the folded row.
constexpr auto kWeights = [] {
  std::array<std::array<std::array<int16_t, 4>, 8>, 8> weights{};
  for (int i = 0; i < 256; ++i) weights[i / 32][i / 4 % 8][i % 4] = dctRowWeight(i / 32, i / 4 % 8, i % 4);
  return weights;
}();

int16_t quantise(int f, uint16_t t) {
  const int product = f * t;
  return static_cast<int16_t>((product + 0x3FFF + (product >> 15 & 1)) >> 15);
}

void transform(int16_t (&block)[64], int16_t* dst, const uint16_t* table) {
  for (int column = 0; column < 8; ++column) {
    int16_t x[8];
    for (int y = 0; y < 8; ++y) x[y] = block[8 * y + column];
    transformColumns(x);
    for (int y = 0; y < 8; ++y) block[8 * y + column] = x[y];
  }
  for (size_t row = 0; row < 8; ++row) {
    const int16_t* y = block + 8 * row;
    int16_t folded[2][4];
    for (int x = 0; x < 4; ++x) {
      folded[0][x] = add(y[x], y[7 - x]);
      folded[1][x] = subtract(y[x], y[7 - x]);
    }
    for (size_t u = 0; u < 8; ++u) {
      uint32_t sum = kRowRounding;
      for (size_t x = 0; x < 4; ++x) sum += static_cast<uint32_t>(kWeights[row][u][x] * folded[u % 2][x]);
      const int f = static_cast<int32_t>(sum) >> kRowShift;
      storeUnaligned(dst + 8 * row + u, quantise(f, loadUnaligned(table + 8 * row + u)));
    }
  }
}

void block(const int16_t* src, int16_t* dst, const uint16_t* table) {
  int16_t samples[64];
  std::memcpy(samples, static_cast<const void*>(src), sizeof samples);
  transform(samples, dst, table);
}

void levelShifted(const uint8_t* src, int32_t srcStep, int16_t* dst, const uint16_t* table) {
  int16_t samples[64];
  for (ptrdiff_t y = 0; y < 8; ++y) {
    for (ptrdiff_t x = 0; x < 8; ++x) samples[8 * y + x] = static_cast<int16_t>(src[y * srcStep + x] - 128);
  }
  transform(samples, dst, table);
}

#endif

constexpr DctForwardKernels kernels = {&block, &levelShifted};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DctForwardKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DctForwardKernels& dctForwardKernels() { return *perIsa; }

}  // namespace zorj
#endif
