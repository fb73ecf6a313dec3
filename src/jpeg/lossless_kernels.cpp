#include "jpeg/lossless_kernels.h"

#include <algorithm>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/lossless_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Arithmetic on samples, of one or of a vector, so that every formula stands once. Shifts of negative numbers are
// arithmetic, that is, they round down.
constexpr int plus(int a, int b) { return a + b; }
constexpr int minus(int a, int b) { return a - b; }
constexpr int halfSum(int a, int b) { return (a + b) >> 1; }
constexpr int halfDifference(int a, int b) { return (a - b) >> 1; }

#if ZORJ_SIMD
using Words = hn::ScalableTag<int16_t>;
using Vector = hn::Vec<Words>;

HWY_INLINE Vector plus(Vector a, Vector b) { return hn::Add(a, b); }
HWY_INLINE Vector minus(Vector a, Vector b) { return hn::Sub(a, b); }
// The instruction averages unsigned numbers and rounds up; on their mirror images it rounds down.
HWY_INLINE Vector halfSum(Vector a, Vector b) {
  const hn::RebindToUnsigned<Words> d;
  const auto mirror = hn::Set(d, 0x7FFF);
  const auto average = hn::AverageRound(hn::Xor(hn::BitCast(d, a), mirror), hn::Xor(hn::BitCast(d, b), mirror));
  return hn::BitCast(Words(), hn::Xor(average, mirror));
}
// As -1 - floor((b - a - 1) / 2).
HWY_INLINE Vector halfDifference(Vector a, Vector b) { return hn::Not(halfSum(hn::Not(a), b)); }
#endif

// The predictors that take the sample to the left, a, with b above it and c above a. Each tells how a row of samples
// is rebuilt: as base(b) plus the running sum of rise(difference, b, c), or, where it takes half of a, as
// floor(a / 2 + twice(difference, b, c) / 2).
struct Left {
  template <class V>
  static HWY_INLINE V predict(V a, V, V) {
    return a;
  }
  template <class V>
  static HWY_INLINE V rise(V difference, V, V) {
    return difference;
  }
  static constexpr bool kBaseAbove = false;
};
struct Plane {
  template <class V>
  static HWY_INLINE V predict(V a, V b, V c) {
    return plus(a, minus(b, c));
  }
  // x[i] - b is x[i - 1] - c plus the difference.
  template <class V>
  static HWY_INLINE V rise(V difference, V, V) {
    return difference;
  }
  static constexpr bool kBaseAbove = true;
};
struct LeftAndHalf {
  template <class V>
  static HWY_INLINE V predict(V a, V b, V c) {
    return plus(a, halfDifference(b, c));
  }
  template <class V>
  static HWY_INLINE V rise(V difference, V b, V c) {
    return plus(difference, halfDifference(b, c));
  }
  static constexpr bool kBaseAbove = false;
};
struct AboveAndHalf {
  template <class V>
  static HWY_INLINE V predict(V a, V b, V c) {
    return plus(b, halfDifference(a, c));
  }
  static int twice(int difference, int b, int c) { return 2 * (difference + b) - c; }
};
struct Average {
  template <class V>
  static HWY_INLINE V predict(V a, V b, V) {
    return halfSum(a, b);
  }
  static int twice(int difference, int b, int) { return 2 * difference + b; }
};

#if ZORJ_SIMD
bool overlap(const int16_t* a, const int16_t* b, size_t width) {
  const auto first = reinterpret_cast<uintptr_t>(a), second = reinterpret_cast<uintptr_t>(b);
  return (first < second ? second - first : first - second) < width * sizeof *a;
}

// Calls column(i) for the columns from 1 on in whole vectors and returns the first column left. The first two vectors
// and the last two may overlap, so the output must be apart from the inputs; the others start at multiples of their
// size, which is where stores to an aligned row cost least.
template <class Column>
HWY_INLINE size_t forEachVector(size_t width, const Column& column) {
  const size_t lanes = hn::Lanes(Words());
  if (width < 1 + lanes) return 1;
  column(1);
  size_t i = lanes;
  for (; i + 2 * lanes <= width; i += 2 * lanes) {
    column(i);
    column(i + lanes);
  }
  if (i + lanes <= width) column(i);
  column(width - lanes);
  return width;
}
#endif

template <class Predictor>
void differences(const int16_t* input, const int16_t* above, int16_t first, int16_t* output, size_t width) {
  storeUnaligned(output, static_cast<int16_t>(loadUnaligned(input) - first));
  size_t i = 1;
#if ZORJ_SIMD
  const Words d;
  i = forEachVector(width, [&](size_t at) HWY_ATTR {
    const auto prediction =
        Predictor::predict(hn::LoadU(d, input + at - 1), hn::LoadU(d, above + at), hn::LoadU(d, above + at - 1));
    hn::StoreU(hn::Sub(hn::LoadU(d, input + at), prediction), d, output + at);
  });
#endif
  for (; i < width; ++i) {
    const int prediction = Predictor::predict(int{loadUnaligned(input + i - 1)}, int{loadUnaligned(above + i)},
                                              int{loadUnaligned(above + i - 1)});
    storeUnaligned(output + i, static_cast<int16_t>(loadUnaligned(input + i) - prediction));
  }
}

// The predictors above and above left, `back` columns back, subtracted (sign -1) or added: an output may overlap its
// inputs here, and then column follows column.
template <int sign, size_t back>
void combineAbove(const int16_t* input, const int16_t* above, int16_t first, int16_t* output, size_t width) {
  storeUnaligned(output, static_cast<int16_t>(loadUnaligned(input) + sign * first));
  size_t i = 1;
#if ZORJ_SIMD
  if (!overlap(output, input, width) && !overlap(output, above, width)) {
    const Words d;
    i = forEachVector(width, [&](size_t at) HWY_ATTR {
      const auto value = hn::LoadU(d, input + at), term = hn::LoadU(d, above + at - back);
      hn::StoreU(sign > 0 ? hn::Add(value, term) : hn::Sub(value, term), d, output + at);
    });
  }
#endif
  for (; i < width; ++i) {
    const int term = loadUnaligned(above + i - back);
    storeUnaligned(output + i, static_cast<int16_t>(loadUnaligned(input + i) + sign * term));
  }
}

#if ZORJ_SIMD
// In every lane the last lane of its 16-byte block.
HWY_INLINE Vector lastOfBlocks(Vector v) {
  return hn::TableLookupBytes(v, hn::BitCast(Words(), hn::Set(hn::RebindToUnsigned<Words>(), 0x0F0E)));
}

// Lane i is the sum of lanes 0 to i.
HWY_INLINE Vector runningSums(Vector v) {
  const Words d;
  v = hn::Add(v, hn::ShiftLeftLanes<1>(d, v));
  v = hn::Add(v, hn::ShiftLeftLanes<2>(d, v));
  v = hn::Add(v, hn::ShiftLeftLanes<4>(d, v));
#if HWY_TARGET == HWY_AVX3
  const Vector sums = lastOfBlocks(v);
  const __m512i one = _mm512_maskz_shuffle_i64x2(0xFC, sums.raw, sums.raw, 0x90);    // the block before
  const __m512i two = _mm512_maskz_shuffle_i64x2(0xF0, sums.raw, sums.raw, 0x40);    // two blocks before
  const __m512i three = _mm512_maskz_shuffle_i64x2(0xC0, sums.raw, sums.raw, 0x00);  // the first, for the last
  v = hn::Add(hn::Add(v, Vector{one}), hn::Add(Vector{two}, Vector{three}));
#elif HWY_TARGET == HWY_AVX2
  v = hn::Add(v, hn::ConcatLowerLower(d, lastOfBlocks(v), hn::Zero(d)));
#endif
  return v;
}

HWY_INLINE Vector broadcastLast(Vector v) {
#if HWY_TARGET == HWY_AVX3
  return Vector{_mm512_permutexvar_epi16(_mm512_set1_epi16(31), v.raw)};
#elif HWY_TARGET == HWY_AVX2
  v = lastOfBlocks(v);
  return hn::ConcatUpperUpper(Words(), v, v);
#else
  return lastOfBlocks(v);
#endif
}
#endif

template <class Predictor>
void samplesByRunningSums(const int16_t* input, const int16_t* above, int16_t first, int16_t* output, size_t width) {
  const auto base = [&](size_t i) { return Predictor::kBaseAbove ? int{loadUnaligned(above + i)} : 0; };
  auto sum = static_cast<uint32_t>(loadUnaligned(input) + first);
  storeUnaligned(output, static_cast<int16_t>(sum));
  sum -= static_cast<uint32_t>(base(0));
  size_t i = 1;
#if ZORJ_SIMD
  const Words d;
  const size_t lanes = hn::Lanes(d);
  auto sumBefore = hn::Set(d, static_cast<int16_t>(sum));
  for (; i + lanes <= width; i += lanes) {
    const auto sums =
        runningSums(Predictor::rise(hn::LoadU(d, input + i), hn::LoadU(d, above + i), hn::LoadU(d, above + i - 1)));
    const auto samples = hn::Add(sums, sumBefore);
    // One addition is all that a vector waits for.
    sumBefore = hn::Add(sumBefore, broadcastLast(sums));
    hn::StoreU(Predictor::kBaseAbove ? hn::Add(samples, hn::LoadU(d, above + i)) : samples, d, output + i);
  }
  sum = static_cast<uint32_t>(hn::GetLane(sumBefore));
#endif
  for (; i < width; ++i) {
    sum += static_cast<uint32_t>(Predictor::rise(int{loadUnaligned(input + i)}, int{loadUnaligned(above + i)},
                                                 int{loadUnaligned(above + i - 1)}));
    storeUnaligned(output + i, static_cast<int16_t>(sum + static_cast<uint32_t>(base(i))));
  }
}

// Keeps the sample in the upper half of 32 bits, which wrap as it does, and whatever its halving left over below: less
// than 1, so it never changes a rounded result. A sample then waits for one shift and one addition.
template <class Predictor>
void samplesByHalving(const int16_t* input, const int16_t* above, int16_t first, int16_t* output, size_t width) {
  auto sample = static_cast<uint32_t>(loadUnaligned(input) + first) << 16;
  storeUnaligned(output, static_cast<int16_t>(sample >> 16));
  for (size_t i = 1; i < width; ++i) {
    const int twice =
        Predictor::twice(loadUnaligned(input + i), loadUnaligned(above + i), loadUnaligned(above + i - 1));
    sample = static_cast<uint32_t>(static_cast<int32_t>(sample) >> 1) + (static_cast<uint32_t>(twice) << 15);
    storeUnaligned(output + i, static_cast<int16_t>(sample >> 16));
  }
}

constexpr LosslessKernels kernels = {
    {&differences<Left>, &combineAbove<-1, 0>, &combineAbove<-1, 1>, &differences<Plane>, &differences<LeftAndHalf>,
     &differences<AboveAndHalf>, &differences<Average>},
    {&samplesByRunningSums<Left>, &combineAbove<1, 0>, &combineAbove<1, 1>, &samplesByRunningSums<Plane>,
     &samplesByRunningSums<LeftAndHalf>, &samplesByHalving<AboveAndHalf>, &samplesByHalving<Average>}};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const LosslessKernels> perIsa{ZORJ_PER_ISA(kernels)};

const LosslessKernels& losslessKernels() { return *perIsa; }

}  // namespace zorj
#endif
