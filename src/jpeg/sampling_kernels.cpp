#include "jpeg/sampling_kernels.h"

#include <hwy/cache_control.h>

#include <algorithm>

#include "core/isa.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/sampling_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#if ZORJ_SIMD
using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::ScalableTag<uint16_t>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;

// Word i = byte 2i times `even` + byte 2i + 1 times `odd`, for weights and sums below 2^7 and 2^15.
template <int even, int odd>
HWY_INLINE WordVector weighPairs(ByteVector pairs) {
  const auto weights = hn::Set(Words(), static_cast<uint16_t>(even | odd << 8));
#if HWY_TARGET == HWY_AVX3
  return WordVector{_mm512_maddubs_epi16(pairs.raw, weights.raw)};
#elif HWY_TARGET == HWY_AVX2
  return WordVector{_mm256_maddubs_epi16(pairs.raw, weights.raw)};
#else
  return WordVector{_mm_maddubs_epi16(pairs.raw, weights.raw)};
#endif
}

// Stores what InterleaveLower and InterleaveUpper made, which work on 16-byte blocks, in the order of the samples.
HWY_INLINE void storeInterleaved(ByteVector lower, ByteVector upper, uint8_t* dst) {
  const Bytes d;
#if HWY_TARGET == HWY_AVX3
  const __m512i first = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
  const __m512i second = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
  hn::StoreU(ByteVector{_mm512_permutex2var_epi64(lower.raw, first, upper.raw)}, d, dst);
  hn::StoreU(ByteVector{_mm512_permutex2var_epi64(lower.raw, second, upper.raw)}, d, dst + hn::Lanes(d));
#elif HWY_TARGET == HWY_AVX2
  hn::StoreU(hn::ConcatLowerLower(d, upper, lower), d, dst);
  hn::StoreU(hn::ConcatUpperUpper(d, upper, lower), d, dst + hn::Lanes(d));
#else
  hn::StoreU(lower, d, dst);
  hn::StoreU(upper, d, dst + hn::Lanes(d));
#endif
}

// Fetches two vectors from `distance` bytes ahead, wherever that is.
HWY_INLINE void fetch(const uint8_t* samples, ptrdiff_t distance) {
  constexpr size_t kCacheLine = 64;
  const uintptr_t ahead = reinterpret_cast<uintptr_t>(samples) + static_cast<uintptr_t>(distance);
  for (size_t i = 0; i < 2 * hn::Lanes(Bytes()); i += kCacheLine) {
    hwy::Prefetch(reinterpret_cast<const uint8_t*>(ahead + i));
  }
}
#endif

template <int evenBias, int oddBias, class... Source>
void box(uint8_t* dst, size_t dstWidth, size_t srcWidth, [[maybe_unused]] ptrdiff_t nextRows, const Source*... rows) {
  constexpr int kShift = sizeof...(rows);
  constexpr int kBias[2] = {evenBias, oddBias};
  size_t x = 0;
#if ZORJ_SIMD
  const Bytes d8;
  const Words d16;
  const size_t lanes = hn::Lanes(d8);
  // An even number of boxes, so that the last vector, which overlaps the one before, meets the biases in phase.
  const size_t count = std::min(dstWidth, srcWidth / 2) & ~size_t{1};
  const auto bias = hn::BitCast(d16, hn::Set(hn::Repartition<uint32_t, Words>(), evenBias | oddBias << 16));
  const auto average = [&](size_t at) HWY_ATTR {
    return hn::ShiftRight<kShift>((weighPairs<1, 1>(hn::LoadU(d8, rows + at)) + ... + bias));
  };
  if (count >= lanes) {
    for (; x < count; x += lanes) {
      const size_t at = std::min(x, count - lanes);
      // Processors lose track of two rows that jump in turns: the next ones are fetched here.
      if constexpr (sizeof...(rows) > 1) (fetch(rows + 2 * at, nextRows), ...);
      const auto lower = average(2 * at), upper = average(2 * at + lanes);
      hn::StoreU(hn::ConcatEven(d8, hn::BitCast(d8, upper), hn::BitCast(d8, lower)), d8, dst + at);
    }
    x = count;
  }
#endif
  for (; x < dstWidth; ++x) {
    const size_t left = std::min(2 * x, srcWidth - 1), right = std::min(2 * x + 1, srcWidth - 1);
    dst[x] = static_cast<uint8_t>(((rows[left] + rows[right]) + ... + kBias[x % 2]) >> kShift);
  }
}

// The horizontal triangle over one source row.
struct OneRow {
  const uint8_t* src;

  int even(size_t i, size_t previous) const { return (3 * src[i] + src[previous] + 1) >> 2; }
  int odd(size_t i, size_t next) const { return (3 * src[i] + src[next] + 2) >> 2; }

#if ZORJ_SIMD
  // With up(a, b) = (a + b + 1) >> 1 and down(a, b) = (a + b) >> 1, the first being an instruction and the second its
  // complement on complements: (3a + b + 1) >> 2 = down(a, up(a, b)) and (3a + b + 2) >> 2 = up(a, down(a, b)).
  HWY_INLINE void widen(size_t i, uint8_t* dst) const {
    const Bytes d;
    const auto current = hn::LoadU(d, src + i);
    const auto inverse = hn::Not(current);
    const auto previous = hn::AverageRound(current, hn::LoadU(d, src + i - 1));
    const auto next = hn::Not(hn::AverageRound(inverse, hn::Not(hn::LoadU(d, src + i + 1))));
    const auto evens = hn::Not(hn::AverageRound(inverse, hn::Not(previous)));
    const auto odds = hn::AverageRound(current, next);
    storeInterleaved(hn::InterleaveLower(d, evens, odds), hn::InterleaveUpper(d, evens, odds), dst);
  }
#endif
};

// The triangle in both directions over the source row near the output row and the one far from it.
struct TwoRows {
  const uint8_t* near;
  const uint8_t* far;

  int column(size_t i) const { return 3 * near[i] + far[i]; }
  int even(size_t i, size_t previous) const { return (3 * column(i) + column(previous) + 8) >> 4; }
  int odd(size_t i, size_t next) const { return (3 * column(i) + column(next) + 7) >> 4; }

#if ZORJ_SIMD
  // Two outputs a word from (near, far) pairs of three neighbours.
  static HWY_INLINE ByteVector outputs(ByteVector previous, ByteVector current, ByteVector next) {
    const Words d;
    // The rounding average adds the 1 that the even outputs' bias of 8 is above the odd ones'.
    const auto centre = hn::Add(weighPairs<9, 3>(current), hn::Set(d, 7));
    const auto even = hn::ShiftRight<3>(hn::AverageRound(centre, weighPairs<3, 1>(previous)));
    const auto odd = hn::ShiftLeft<4>(hn::Add(centre, weighPairs<3, 1>(next)));
    return hn::OddEven(hn::BitCast(Bytes(), odd), hn::BitCast(Bytes(), even));
  }
  HWY_INLINE void widen(size_t i, uint8_t* dst) const {
    const Bytes d;
    const auto nearPrevious = hn::LoadU(d, near + i - 1), farPrevious = hn::LoadU(d, far + i - 1);
    const auto nearCurrent = hn::LoadU(d, near + i), farCurrent = hn::LoadU(d, far + i);
    const auto nearNext = hn::LoadU(d, near + i + 1), farNext = hn::LoadU(d, far + i + 1);
    storeInterleaved(
        outputs(hn::InterleaveLower(d, nearPrevious, farPrevious), hn::InterleaveLower(d, nearCurrent, farCurrent),
                hn::InterleaveLower(d, nearNext, farNext)),
        outputs(hn::InterleaveUpper(d, nearPrevious, farPrevious), hn::InterleaveUpper(d, nearCurrent, farCurrent),
                hn::InterleaveUpper(d, nearNext, farNext)),
        dst);
  }
#endif
};

// The outputs of source samples first to end - 1, all of which have both neighbours, from dst on.
template <class Rows>
void triangleInside(const Rows& rows, size_t first, size_t end, uint8_t* dst) {
  size_t i = first;
#if ZORJ_SIMD
  const size_t lanes = hn::Lanes(Bytes());
  if (end - first >= lanes) {
    for (; i < end; i += lanes) {
      const size_t at = std::min(i, end - lanes);
      rows.widen(at, dst + 2 * (at - first));
    }
    return;
  }
#endif
  for (; i < end; ++i) {
    *dst++ = static_cast<uint8_t>(rows.even(i, i - 1));
    *dst++ = static_cast<uint8_t>(rows.odd(i, i + 1));
  }
}

// Outputs x to end - 1, near the ends of the source row, where a missing neighbour is the last sample there is.
template <class Rows>
void triangleAtEnds(const Rows& rows, size_t x, size_t end, size_t srcWidth, uint8_t* dst) {
  for (; x < end; ++x) {
    const size_t i = std::min(x / 2, srcWidth - 1);
    const int output = x % 2 == 0 ? rows.even(i, std::min(std::max<size_t>(x / 2, 1), srcWidth) - 1)
                                  : rows.odd(i, std::min(x / 2 + 1, srcWidth - 1));
    dst[x] = static_cast<uint8_t>(output);
  }
}

template <class Rows>
void triangle(const Rows& rows, uint8_t* dst, size_t dstWidth, size_t srcWidth) {
  const size_t inside = std::max<size_t>(1, std::min(srcWidth - 1, dstWidth / 2));
  triangleAtEnds(rows, 0, std::min<size_t>(2, dstWidth), srcWidth, dst);
  if (inside > 1) triangleInside(rows, 1, inside, dst + 2);
  triangleAtEnds(rows, 2 * inside, dstWidth, srcWidth, dst);
}

void triangleH2V1(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* src) {
  triangle(OneRow{src}, dst, dstWidth, srcWidth);
}

void borderedTriangleH2V1(uint8_t* dst, size_t dstWidth, const uint8_t* src) {
  // Counted from the sample before the row, so that no index is negative.
  const OneRow bordered{src - 1};
  triangleInside(bordered, 1, dstWidth / 2 + 1, dst);
  if (dstWidth % 2 != 0) dst[dstWidth - 1] = static_cast<uint8_t>(bordered.even(dstWidth / 2 + 1, dstWidth / 2));
}

void triangleH2V2(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* near, const uint8_t* far) {
  triangle(TwoRows{near, far}, dst, dstWidth, srcWidth);
}

constexpr SamplingKernels kernels = {
    &box<1, 1, uint8_t>, &box<3, 3, uint8_t, uint8_t>, &box<0, 1, uint8_t>, &box<1, 2, uint8_t, uint8_t>,
    &triangleH2V1,       &borderedTriangleH2V1,        &triangleH2V2};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const SamplingKernels> perIsa{ZORJ_PER_ISA(kernels)};

const SamplingKernels& samplingKernels() { return *perIsa; }

}  // namespace zorj
#endif
