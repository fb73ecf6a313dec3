#include "jpeg2k/wavelet53_kernels.h"

#include <algorithm>
#include <cstring>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg2k/wavelet53_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg2k/lanes-inl.h"
#include "jpeg2k/wavelet-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// The means of two neighbours in sums that wrap at the width of a sample.
template <class T>
struct WrappingMeans {
  using Sample = T;

  // (a + b) >> 1
  template <class D, class V>
  static HWY_INLINE V half(D d, V a, V b) {
    return shiftRight<1>(d, add(a, b));
  }
  // (a + b + 2) >> 2
  template <class D, class V>
  static HWY_INLINE V quarter(D d, V a, V b) {
    return shiftRight<2>(d, add(add(a, b), constant(d, T{2})));
  }
};

// The means of two 16-bit neighbours in sums of more bits.
struct ExactMeans {
  using Sample = int16_t;

  static int16_t half(Single<int16_t>, int16_t a, int16_t b) { return static_cast<int16_t>((a + b) >> 1); }
  static int16_t quarter(Single<int16_t>, int16_t a, int16_t b) { return static_cast<int16_t>((a + b + 2) >> 2); }
#if ZORJ_SIMD
  template <class D, class V>
  static HWY_INLINE V half(D, V a, V b) {
    return hn::Add(hn::And(a, b), hn::ShiftRight<1>(hn::Xor(a, b)));
  }
  // The half of the half, rounded up.
  template <class D, class V>
  static HWY_INLINE V quarter(D d, V a, V b) {
    const auto mean = half(d, a, b);
    return hn::Sub(mean, hn::ShiftRight<1>(mean));
  }
#endif
};

// ---- Steps on rows of samples. All samples are read before results are written.

template <class Means, class T = typename Means::Sample>
void predict(T* high, const T* odd, const T* even, const T* next, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    store(d, subtract(load(d, odd + i), Means::half(d, load(d, even + i), load(d, next + i))), high + i);
  });
}

template <class Means, class T = typename Means::Sample>
void update(T* low, const T* even, const T* previous, const T* high, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    store(d, add(load(d, even + i), Means::quarter(d, load(d, previous + i), load(d, high + i))), low + i);
  });
}

template <class Means, class T = typename Means::Sample>
void undoUpdate(T* even, const T* low, const T* previous, const T* high, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    store(d, subtract(load(d, low + i), Means::quarter(d, load(d, previous + i), load(d, high + i))), even + i);
  });
}

template <class Means, class T = typename Means::Sample>
void undoPredict(T* odd, const T* high, const T* even, const T* next, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    store(d, add(load(d, high + i), Means::half(d, load(d, even + i), load(d, next + i))), odd + i);
  });
}

template <class Means, class T = typename Means::Sample>
void forwardStep(const T* x0, const T* x1, const T* x2, T* low, const T* previousHigh, T* high, size_t width) {
  forEachLane<T>(width, [=](auto d, size_t i) HWY_ATTR {
    const auto even = load(d, x0 + i), previous = load(d, previousHigh + i);
    const auto detail = subtract(load(d, x1 + i), Means::half(d, even, load(d, x2 + i)));
    store(d, detail, high + i);
    store(d, add(even, Means::quarter(d, previous, detail)), low + i);
  });
}

template <class Means, class T = typename Means::Sample>
void inverseStep(const T* low, const T* previousHigh, const T* high, const T* previousEven, T* odd, T* even,
                 size_t width) {
  forEachLane<T>(width, [=](auto d, size_t i) HWY_ATTR {
    const auto detail = load(d, previousHigh + i), before = load(d, previousEven + i);
    const auto x = subtract(load(d, low + i), Means::quarter(d, detail, load(d, high + i)));
    store(d, x, even + i);
    store(d, add(detail, Means::half(d, before, x)), odd + i);
  });
}

// ---- The wavelet

template <class Means>
struct Wavelet53 {
  using Sample = typename Means::Sample;
  using Working = Sample;
  static constexpr ptrdiff_t kReach = 1;

  static constexpr ptrdiff_t kLag = 1;

  // Takes the next even and odd samples in, and gives the low and high ones of the block before.
  template <class D>
  struct Analysis {
    using V = Block<D, Sample>;
    V even, odd, high;

    HWY_INLINE explicit Analysis(D d) : even(constant(d, Sample{0})), odd(even), high(even) {}
    HWY_INLINE void advance(D d, V& nextEven, V& nextOdd) {
      const V newHigh = subtract(odd, Means::half(d, even, laneAfter(d, even, nextEven)));
      const V low = add(even, Means::quarter(d, laneBefore(d, high, newHigh), newHigh));
      even = nextEven;
      odd = nextOdd;
      high = newHigh;
      nextEven = low;
      nextOdd = newHigh;
    }
  };

  template <class D>
  struct Synthesis {
    using V = Block<D, Sample>;
    V even, high;

    HWY_INLINE explicit Synthesis(D d) : even(constant(d, Sample{0})), high(even) {}
    HWY_INLINE void advance(D d, V& low, V& nextHigh) {
      const V nextEven = subtract(low, Means::quarter(d, laneBefore(d, high, nextHigh), nextHigh));
      const V odd = add(high, Means::half(d, even, laneAfter(d, even, nextEven)));
      low = even;
      even = nextEven;
      high = nextHigh;
      nextHigh = odd;
    }
  };

  static void forwardColumns(const ForwardColumns<Sample>& columns) {
    for (size_t at = 0; at < columns.width; at += kStrip)
      forwardStrip(columns, at, std::min(kStrip, columns.width - at));
  }
  static void inverseColumns(const InverseColumns<Sample>& columns) {
    for (size_t at = 0; at < columns.width; at += kStrip)
      inverseStrip(columns, at, std::min(kStrip, columns.width - at));
  }

 private:
  // Columns whose few rows in use stay in the first-level cache.
  static constexpr size_t kStrip = 4096 / sizeof(Sample);

  static void forwardStrip(const ForwardColumns<Sample>& columns, size_t at, size_t width) {
    const Line line = columns.line;
    Sample unstored[kStrip];
    const auto isStored = [=](ptrdiff_t k) { return k >= line.firstHigh() && k < line.endHigh(); };
    const auto exists = [=](ptrdiff_t k) { return columns.bordered || isStored(k); };
    const auto x = [&](ptrdiff_t c) {
      return columns.x.row(columns.bordered ? c : reflect(c, line.first(), line.last())) + at;
    };
    const auto low = [&](ptrdiff_t k) { return columns.low.row(k) + at; };
    const auto high = [&](ptrdiff_t k) { return isStored(k) ? columns.high.row(k) + at : unstored; };

    for (ptrdiff_t k = -1; k < line.lows(); ++k) {
      if (k >= 0 && exists(k) && exists(k - 1)) {
        forwardStep<Means>(x(2 * k), x(2 * k + 1), x(2 * k + 2), low(k), high(k - 1), high(k), width);
        continue;
      }
      if (exists(k)) predict<Means>(high(k), x(2 * k + 1), x(2 * k), x(2 * k + 2), width);
      if (k >= 0) update<Means>(low(k), x(2 * k), high(exists(k - 1) ? k - 1 : k), high(exists(k) ? k : k - 1), width);
    }
  }

  static void inverseStrip(const InverseColumns<Sample>& columns, size_t at, size_t width) {
    const Line line = columns.line;
    Sample unstored[kStrip];
    const auto isEven = [=](ptrdiff_t k) { return k >= 0 && k < line.lows(); };
    const auto isOdd = [=](ptrdiff_t k) { return k >= line.firstHigh() && k < line.endHigh(); };
    const auto hasEven = [=](ptrdiff_t k) { return columns.bordered || isEven(k); };
    const auto hasHigh = [=](ptrdiff_t k) { return columns.bordered || isOdd(k); };
    const auto low = [&](ptrdiff_t k) { return columns.low.row(k) + at; };
    const auto high = [&](ptrdiff_t k) { return columns.high.row(k) + at; };
    const auto even = [&](ptrdiff_t k) { return isEven(k) ? columns.x.row(2 * k) + at : unstored; };
    const auto odd = [&](ptrdiff_t k) { return columns.x.row(2 * k + 1) + at; };

    for (ptrdiff_t k = line.firstHigh(); k <= line.endHigh(); ++k) {
      // The odd samples of number k - 1 are between the even ones before and these.
      const bool odds = isOdd(k - 1);
      if (odds && hasEven(k - 1) && hasEven(k) && hasHigh(k)) {
        inverseStep<Means>(low(k), high(k - 1), high(k), even(k - 1), odd(k - 1), even(k), width);
        continue;
      }
      if (hasEven(k)) {
        undoUpdate<Means>(even(k), low(k), high(hasHigh(k - 1) ? k - 1 : k), high(hasHigh(k) ? k : k - 1), width);
      }
      if (odds) {
        undoPredict<Means>(odd(k - 1), high(k - 1), even(hasEven(k - 1) ? k - 1 : k), even(hasEven(k) ? k : k - 1),
                           width);
      }
    }
  }
};

template <class W, class T = typename W::Sample>
constexpr Wavelet53Kernels<T> kernelsOf() {
  using Step = WrappingMeans<T>;
  return {{&forwardRows<W>, &inverseRows<W>, &forwardBorderedColumns<W>, &inverseBorderedColumns<W>, &forwardInPlace<W>,
           &inverseInPlace<W>, &forwardApart<W>, &inverseApart<W>},
          &forwardStep<Step>,
          &inverseStep<Step>};
}

constexpr Wavelet53Kernels<int16_t> kernels16 = kernelsOf<Wavelet53<ExactMeans>>();
constexpr Wavelet53Kernels<int32_t> kernels32 = kernelsOf<Wavelet53<WrappingMeans<int32_t>>>();

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const Wavelet53Kernels<int16_t>> perIsa16{ZORJ_PER_ISA(kernels16)};
static constexpr PerIsa<const Wavelet53Kernels<int32_t>> perIsa32{ZORJ_PER_ISA(kernels32)};

template <>
const Wavelet53Kernels<int16_t>& wavelet53Kernels<int16_t>() {
  return *perIsa16;
}
template <>
const Wavelet53Kernels<int32_t>& wavelet53Kernels<int32_t>() {
  return *perIsa32;
}

}  // namespace zorj
#endif
