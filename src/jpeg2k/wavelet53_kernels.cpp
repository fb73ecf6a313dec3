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
#include "jpeg2k/wavelet53_rows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// The lifting steps. Even samples, and details where others depend on them, are taken as `in` makes them, which lets
// the steps on vectors be shorter; `out` undoes it.

// Sums wrap at the width of a sample.
template <class T>
struct WrappingSteps {
  using Sample = T;

  template <class D, class V>
  static HWY_INLINE V in(D, V x) {
    return x;
  }
  template <class D, class V>
  static HWY_INLINE V out(D, V x) {
    return x;
  }
  template <class D, class V>
  static HWY_INLINE V predict(D d, V even, V next, V odd) {
    return subtract(odd, half(d, even, next));
  }
  template <class D, class V>
  static HWY_INLINE V update(D d, V even, V previous, V high) {
    return add(even, quarter(d, previous, high));
  }
  template <class D, class V>
  static HWY_INLINE V undoUpdate(D d, V low, V previous, V high) {
    return subtract(low, quarter(d, previous, high));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredict(D d, V high, V even, V next) {
    return add(high, half(d, even, next));
  }

 private:
  template <class D, class V>
  static HWY_INLINE V half(D d, V a, V b) {
    return shiftRight<1>(d, add(a, b));
  }
  template <class D, class V>
  static HWY_INLINE V quarter(D d, V a, V b) {
    return shiftRight<2>(d, add(add(a, b), constant(d, T{2})));
  }
};

// 16-bit samples in sums of more bits.
struct ExactSteps {
  using Sample = int16_t;
  using One = Single<int16_t>;

  static int16_t in(One, int16_t x) { return x; }
  static int16_t out(One, int16_t x) { return x; }
  static int16_t predict(One, int16_t even, int16_t next, int16_t odd) {
    return static_cast<int16_t>(odd - ((even + next) >> 1));
  }
  static int16_t update(One, int16_t even, int16_t previous, int16_t high) {
    return static_cast<int16_t>(even + ((previous + high + 2) >> 2));
  }
  static int16_t undoUpdate(One, int16_t low, int16_t previous, int16_t high) {
    return static_cast<int16_t>(low - ((previous + high + 2) >> 2));
  }
  static int16_t undoPredict(One, int16_t high, int16_t even, int16_t next) {
    return static_cast<int16_t>(high + ((even + next) >> 1));
  }

#if ZORJ_SIMD
  // With x' = 32767 - x in 0 to 65535, whose means round up: mean(x', y') = 32767 - ((x + y) >> 1), and the mean of
  // that and 0 is 16384 - ((x + y + 2) >> 2).
  template <class D, class V>
  static HWY_INLINE V in(D d, V x) {
    return hn::Xor(x, hn::Set(d, 0x7FFF));
  }
  template <class D, class V>
  static HWY_INLINE V out(D d, V x) {
    return in(d, x);
  }
  template <class D, class V>
  static HWY_INLINE V predict(D d, V even, V next, V odd) {
    return hn::Sub(mean(d, even, next), in(d, odd));
  }
  template <class D, class V>
  static HWY_INLINE V update(D d, V even, V previous, V high) {
    return hn::Sub(hn::Set(d, kSum), hn::Add(even, mean(d, mean(d, previous, high), hn::Zero(d))));
  }
  template <class D, class V>
  static HWY_INLINE V undoUpdate(D d, V low, V previous, V high) {
    return hn::Sub(hn::Set(d, kSum), hn::Add(low, mean(d, mean(d, previous, high), hn::Zero(d))));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredict(D d, V high, V even, V next) {
    return hn::Sub(hn::Set(d, -2), hn::Add(high, mean(d, even, next)));
  }

 private:
  static constexpr int16_t kSum = static_cast<int16_t>(32767 + 16384);

  template <class D, class V>
  static HWY_INLINE V mean(D d, V a, V b) {
    const hn::RebindToUnsigned<D> du;
    return hn::BitCast(d, hn::AverageRound(hn::BitCast(du, a), hn::BitCast(du, b)));
  }
#endif
};

// ---- Steps on rows of samples. All samples are read before results are written.

template <class Steps, class T = typename Steps::Sample>
void predict(T* high, const T* odd, const T* even, const T* next, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto e = Steps::in(d, load(d, even + i)), n = Steps::in(d, load(d, next + i));
    store(d, Steps::predict(d, e, n, load(d, odd + i)), high + i);
  });
}

template <class Steps, class T = typename Steps::Sample>
void update(T* low, const T* even, const T* previous, const T* high, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto e = Steps::in(d, load(d, even + i));
    const auto p = Steps::in(d, load(d, previous + i)), h = Steps::in(d, load(d, high + i));
    store(d, Steps::update(d, e, p, h), low + i);
  });
}

template <class Steps, class T = typename Steps::Sample>
void undoUpdate(T* even, const T* low, const T* previous, const T* high, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto p = Steps::in(d, load(d, previous + i)), h = Steps::in(d, load(d, high + i));
    store(d, Steps::out(d, Steps::undoUpdate(d, load(d, low + i), p, h)), even + i);
  });
}

template <class Steps, class T = typename Steps::Sample>
void undoPredict(T* odd, const T* high, const T* even, const T* next, size_t count) {
  forEachLane<T>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto h = Steps::in(d, load(d, high + i));
    const auto e = Steps::in(d, load(d, even + i)), n = Steps::in(d, load(d, next + i));
    store(d, Steps::undoPredict(d, h, e, n), odd + i);
  });
}

template <class Steps, class T = typename Steps::Sample>
void forwardStep(const T* x0, const T* x1, const T* x2, T* low, const T* previousHigh, T* high, size_t width) {
  forEachLane<T>(width, [=](auto d, size_t i) HWY_ATTR {
    const auto even = Steps::in(d, load(d, x0 + i)), next = Steps::in(d, load(d, x2 + i));
    const auto previous = Steps::in(d, load(d, previousHigh + i));
    const auto detail = Steps::predict(d, even, next, load(d, x1 + i));
    store(d, detail, high + i);
    store(d, Steps::update(d, even, previous, Steps::in(d, detail)), low + i);
  });
}

// Two steps at once.
template <class Steps, class T = typename Steps::Sample>
void forwardSteps(const T* x0, const T* x1, const T* x2, const T* x3, const T* x4, T* low, T* nextLow,
                  const T* previousHigh, T* high, T* nextHigh, size_t width) {
  forEachLane<T>(width, [=](auto d, size_t i) HWY_ATTR {
    const auto even = Steps::in(d, load(d, x0 + i)), next = Steps::in(d, load(d, x2 + i)),
               afterNext = Steps::in(d, load(d, x4 + i));
    const auto previous = Steps::in(d, load(d, previousHigh + i));
    const auto detail = Steps::predict(d, even, next, load(d, x1 + i));
    const auto nextDetail = Steps::predict(d, next, afterNext, load(d, x3 + i));
    const auto current = Steps::in(d, detail);
    store(d, detail, high + i);
    store(d, Steps::update(d, even, previous, current), low + i);
    store(d, nextDetail, nextHigh + i);
    store(d, Steps::update(d, next, current, Steps::in(d, nextDetail)), nextLow + i);
  });
}

template <class Steps, class T = typename Steps::Sample>
void inverseStep(const T* low, const T* previousHigh, const T* high, const T* previousEven, T* odd, T* even,
                 size_t width) {
  forEachLane<T>(width, [=](auto d, size_t i) HWY_ATTR {
    const auto detail = Steps::in(d, load(d, previousHigh + i)), before = Steps::in(d, load(d, previousEven + i));
    const auto x = Steps::undoUpdate(d, load(d, low + i), detail, Steps::in(d, load(d, high + i)));
    store(d, Steps::out(d, x), even + i);
    store(d, Steps::undoPredict(d, detail, before, x), odd + i);
  });
}

template <class Steps, class T = typename Steps::Sample>
void inverseSteps(const T* low, const T* nextLow, const T* previousHigh, const T* high, const T* nextHigh,
                  const T* previousEven, T* odd, T* even, T* nextOdd, T* nextEven, size_t width) {
  forEachLane<T>(width, [=](auto d, size_t i) HWY_ATTR {
    const auto detail = Steps::in(d, load(d, previousHigh + i)), nextDetail = Steps::in(d, load(d, high + i));
    const auto before = Steps::in(d, load(d, previousEven + i));
    const auto x = Steps::undoUpdate(d, load(d, low + i), detail, nextDetail);
    const auto next = Steps::undoUpdate(d, load(d, nextLow + i), nextDetail, Steps::in(d, load(d, nextHigh + i)));
    store(d, Steps::out(d, x), even + i);
    store(d, Steps::undoPredict(d, detail, before, x), odd + i);
    store(d, Steps::out(d, next), nextEven + i);
    store(d, Steps::undoPredict(d, nextDetail, x, next), nextOdd + i);
  });
}

// ---- The wavelet

template <class Steps>
struct Wavelet53 {
  using Sample = typename Steps::Sample;
  using Working = Sample;
  using Rows = RowTransform53<Steps>;
  static constexpr ptrdiff_t kReach = 1;

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
      if (k >= 0 && exists(k - 1) && exists(k) && isStored(k) && exists(k + 1) && k + 1 < line.lows()) {
        forwardSteps<Steps>(x(2 * k), x(2 * k + 1), x(2 * k + 2), x(2 * k + 3), x(2 * k + 4), low(k), low(k + 1),
                            high(k - 1), high(k), high(k + 1), width);
        ++k;
        continue;
      }
      if (k >= 0 && exists(k) && exists(k - 1)) {
        forwardStep<Steps>(x(2 * k), x(2 * k + 1), x(2 * k + 2), low(k), high(k - 1), high(k), width);
        continue;
      }
      if (exists(k)) predict<Steps>(high(k), x(2 * k + 1), x(2 * k), x(2 * k + 2), width);
      if (k >= 0) update<Steps>(low(k), x(2 * k), high(exists(k - 1) ? k - 1 : k), high(exists(k) ? k : k - 1), width);
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
      if (odds && isOdd(k) && hasEven(k - 1) && hasEven(k) && hasEven(k + 1) && hasHigh(k + 1)) {
        inverseSteps<Steps>(low(k), low(k + 1), high(k - 1), high(k), high(k + 1), even(k - 1), odd(k - 1), even(k),
                            odd(k), even(k + 1), width);
        ++k;
        continue;
      }
      if (odds && hasEven(k - 1) && hasEven(k) && hasHigh(k)) {
        inverseStep<Steps>(low(k), high(k - 1), high(k), even(k - 1), odd(k - 1), even(k), width);
        continue;
      }
      if (hasEven(k)) {
        undoUpdate<Steps>(even(k), low(k), high(hasHigh(k - 1) ? k - 1 : k), high(hasHigh(k) ? k : k - 1), width);
      }
      if (odds) {
        undoPredict<Steps>(odd(k - 1), high(k - 1), even(hasEven(k - 1) ? k - 1 : k), even(hasEven(k) ? k : k - 1),
                           width);
      }
    }
  }
};

template <class W, class T = typename W::Sample>
constexpr Wavelet53Kernels<T> kernelsOf() {
  using Step = WrappingSteps<T>;
  return {{&forwardRows<W>, &inverseRows<W>, &forwardBorderedColumns<W>, &inverseBorderedColumns<W>, &forwardInPlace<W>,
           &inverseInPlace<W>, &forwardApart<W>, &inverseApart<W>},
          &forwardStep<Step>,
          &inverseStep<Step>};
}

constexpr Wavelet53Kernels<int16_t> kernels16 = kernelsOf<Wavelet53<ExactSteps>>();
constexpr Wavelet53Kernels<int32_t> kernels32 = kernelsOf<Wavelet53<WrappingSteps<int32_t>>>();

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
