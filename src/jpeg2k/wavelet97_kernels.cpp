#include "jpeg2k/wavelet97_kernels.h"

#include <algorithm>
#include <cstring>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg2k/wavelet97_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg2k/lanes-inl.h"
#include "jpeg2k/wavelet-inl.h"
#include "jpeg2k/wavelet97_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// ---- Steps of columns. T is the type of samples, S that of the rows in between. All samples are read before results
// are written.

template <class Steps, class T, class S = typename Steps::Working>
HWY_INLINE void forwardStep(const T* x0, const T* x1, const T* x2, const S* a, S* b, const S* c, S* d, S* e, T* low,
                            T* high, size_t width) {
  forEachLane<S>(width, [=](auto tag, size_t i) HWY_ATTR {
    const auto even = load(tag, x0 + i), lastLow = load(tag, a + i), lastHigh = load(tag, c + i);
    const auto previous = load(tag, d + i);
    const auto detail = Steps::predict(tag, load(tag, x1 + i), even, load(tag, x2 + i));
    const auto mean = Steps::update(tag, even, previous, detail);
    const auto finalDetail = Steps::predictAgain(tag, previous, lastLow, mean);
    store(tag, detail, e + i);
    store(tag, mean, b + i);
    store(tag, finalDetail, d + i);
    store(tag, Steps::low(tag, lastLow, lastHigh, finalDetail), low + i);
    store(tag, Steps::high(tag, lastHigh), high + i);
  });
}

// `a` also takes the even samples in full precision, where they are not T's.
template <class Steps, class T, class S = typename Steps::Working>
HWY_INLINE void inverseStep(const T* low, const T* previousHigh, const T* high, S* a, S* b, const S* c, S* d,
                            const S* e, T* even, T* odd, size_t width) {
  forEachLane<S>(width, [=](auto tag, size_t i) HWY_ATTR {
    const auto detail = load(tag, previousHigh + i), lastMean = load(tag, a + i), lastDetail = load(tag, c + i);
    const auto lastEven = load(tag, e + i);
    const auto mean = Steps::undoLow(tag, load(tag, low + i), detail, load(tag, high + i));
    const auto firstDetail = Steps::undoPredictAgain(tag, detail, lastMean, mean);
    const auto x = Steps::undoUpdate(tag, lastMean, lastDetail, firstDetail);
    store(tag, mean, b + i);
    store(tag, firstDetail, d + i);
    store(tag, x, a + i);
    store(tag, x, even + i);
    store(tag, Steps::undoPredict(tag, lastDetail, lastEven, x), odd + i);
  });
}

template <class Steps, class T = typename Steps::Working>
void forwardStepInPlace(const T* x0, const T* x1, const T* x2, T* a, T* b, T* c, T* d, T* e, size_t width) {
  forwardStep<Steps>(x0, x1, x2, a, b, c, d, e, a, c, width);
}

template <class Steps, class T = typename Steps::Working>
void inverseStepInPlace(const T* low, const T* previousHigh, const T* high, T* a, T* b, T* c, T* d, const T* e,
                        size_t width) {
  inverseStep<Steps>(low, previousHigh, high, a, b, c, d, e, a, c, width);
}

// ---- The wavelet

struct Range {
  ptrdiff_t begin, end;
  bool has(ptrdiff_t k) const { return k >= begin && k < end; }
  // k - 1 and k as far as they are in the range; the one there is stands in for the other.
  ptrdiff_t before(ptrdiff_t k) const { return has(k - 1) ? k - 1 : k; }
  ptrdiff_t after(ptrdiff_t k) const { return has(k) ? k : k - 1; }
};

// Rows between samples and subbands, of which a few successive ones are in use.
template <class S, size_t kRows, size_t kWidth>
class RowRing {
 public:
  S* operator[](ptrdiff_t k) { return rows_[static_cast<size_t>(k + 4) % kRows]; }

 private:
  S rows_[kRows][kWidth];
};

template <class Steps, class T>
struct Wavelet97 {
  using Sample = T;
  using Working = typename Steps::Working;
  using Rows = RowTransform<Wavelet97>;
  static constexpr ptrdiff_t kReach = 2;

  // Results come five blocks late although two would do: so each of the four steps takes what the others have made of
  // the block before, none waits for another, and processors overlap them.
  static constexpr ptrdiff_t kLag = 5;

  // Takes the next even and odd samples in, and gives the low and high ones of five blocks before.
  template <class D>
  struct Analysis {
    using V = Block<D, Working>;
    // The last blocks of each kind, from the latest.
    V even[2], odd, detail[3], mean[3], high[2];

    HWY_INLINE explicit Analysis(D d) {
      even[0] = even[1] = odd = detail[0] = detail[1] = detail[2] = constant(d, Working{0});
      mean[0] = mean[1] = mean[2] = high[0] = high[1] = odd;
    }
    HWY_INLINE void advance(D d, V& nextEven, V& nextOdd) {
      const V low = Steps::low(d, mean[2], laneBefore(d, high[1], high[0]), high[0]);
      const V scaled = Steps::high(d, high[0]);
      high[1] = high[0];
      high[0] = Steps::predictAgain(d, detail[2], mean[1], laneAfter(d, mean[1], mean[0]));
      mean[2] = mean[1];
      mean[1] = mean[0];
      mean[0] = Steps::update(d, even[1], laneBefore(d, detail[1], detail[0]), detail[0]);
      detail[2] = detail[1];
      detail[1] = detail[0];
      detail[0] = Steps::predict(d, odd, even[0], laneAfter(d, even[0], nextEven));
      even[1] = even[0];
      even[0] = nextEven;
      odd = nextOdd;
      nextEven = low;
      nextOdd = scaled;
    }
  };

  template <class D>
  struct Synthesis {
    using V = Block<D, Working>;
    V high[2], mean[3], detail[3], even[2];

    HWY_INLINE explicit Synthesis(D d) {
      high[0] = high[1] = mean[0] = mean[1] = mean[2] = constant(d, Working{0});
      detail[0] = detail[1] = detail[2] = even[0] = even[1] = high[0];
    }
    HWY_INLINE void advance(D d, V& low, V& nextHigh) {
      const V odd = Steps::undoPredict(d, detail[2], even[1], laneAfter(d, even[1], even[0]));
      const V ready = even[1];
      even[1] = even[0];
      even[0] = Steps::undoUpdate(d, mean[2], laneBefore(d, detail[1], detail[0]), detail[0]);
      detail[2] = detail[1];
      detail[1] = detail[0];
      detail[0] = Steps::undoPredictAgain(d, high[1], mean[1], laneAfter(d, mean[1], mean[0]));
      mean[2] = mean[1];
      mean[1] = mean[0];
      mean[0] = Steps::undoLow(d, low, laneBefore(d, high[0], nextHigh), nextHigh);
      high[1] = high[0];
      high[0] = nextHigh;
      low = ready;
      nextHigh = odd;
    }
  };

  static void forwardColumns(const ForwardColumns<T>& columns) {
    for (size_t at = 0; at < columns.width; at += kStrip)
      forwardStrip(columns, at, std::min(kStrip, columns.width - at));
  }
  static void inverseColumns(const InverseColumns<T>& columns) {
    for (size_t at = 0; at < columns.width; at += kStrip)
      inverseStrip(columns, at, std::min(kStrip, columns.width - at));
  }

 private:
  // Columns whose few rows in use stay in the first-level cache.
  static constexpr size_t kStrip = 512;

  // results[i] = step(x[i], a[i], b[i]) for rows of any types.
  template <class R, class X, class N, class Step>
  static void stepRow(R* results, const X* x, const N* a, const N* b, size_t width, const Step& step) {
    forEachLane<Working>(width, [=](auto d, size_t i) HWY_ATTR {
      store(d, step(d, load(d, x + i), load(d, a + i), load(d, b + i)), results + i);
    });
  }

  static void forwardStrip(const ForwardColumns<T>& columns, size_t at, size_t width) {
    const Line line = columns.line;
    const bool bordered = columns.bordered;
    const ptrdiff_t lows = line.lows();
    const Range stored = {line.firstHigh(), line.endHigh()}, s2 = {0, lows};
    // What has to be known of d1, s1 and d2.
    const Range d1 = bordered ? Range{-2, lows + 1} : stored, s1 = bordered ? Range{-1, lows + 1} : s2;
    const Range d2 = bordered ? Range{-1, lows} : stored;
    RowRing<Working, 2, kStrip> means;
    RowRing<Working, 3, kStrip> details;
    const auto x = [&](ptrdiff_t c) {
      return columns.x.row(bordered ? c : reflect(c, line.first(), line.last())) + at;
    };
    const auto low = [&](ptrdiff_t k) { return columns.low.row(k) + at; };
    const auto high = [&](ptrdiff_t k) { return columns.high.row(k) + at; };

    for (ptrdiff_t k = d1.begin; k <= std::max(lows, stored.end + 1); ++k) {
      if (d1.has(k - 1) && d1.has(k) && s1.has(k - 1) && s1.has(k) && s2.has(k - 1) && d2.has(k - 1) && d2.has(k - 2) &&
          stored.has(k - 2)) {
        forwardStep<Steps>(x(2 * k), x(2 * k + 1), x(2 * k + 2), means[k - 1], means[k], details[k - 2], details[k - 1],
                           details[k], low(k - 1), high(k - 2), width);
        continue;
      }
      if (d1.has(k)) {
        stepRow(details[k], x(2 * k + 1), x(2 * k), x(2 * k + 2), width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::predict(d, v, a, b); });
      }
      if (s1.has(k)) {
        stepRow(means[k], x(2 * k), details[d1.before(k)], details[d1.after(k)], width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::update(d, v, a, b); });
      }
      if (d2.has(k - 1)) {
        stepRow(details[k - 1], details[k - 1], means[s1.before(k)], means[s1.after(k)], width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::predictAgain(d, v, a, b); });
      }
      if (s2.has(k - 1)) {
        stepRow(low(k - 1), means[k - 1], details[d2.before(k - 1)], details[d2.after(k - 1)], width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::low(d, v, a, b); });
      }
      if (stored.has(k - 2)) {
        stepRow(high(k - 2), details[k - 2], details[k - 2], details[k - 2], width,
                [](auto d, auto v, auto, auto) HWY_ATTR { return Steps::high(d, v); });
      }
    }
  }

  static void inverseStrip(const InverseColumns<T>& columns, size_t at, size_t width) {
    const Line line = columns.line;
    const bool bordered = columns.bordered;
    const ptrdiff_t begin = line.firstHigh(), end = line.endHigh();
    const Range stored = {0, line.lows()}, odds = {begin, end};
    // What can be read of the high subband, and what has to be known of s1, d1 and the even samples.
    const Range highs = bordered ? Range{begin - 2, end + 2} : odds;
    const Range s1 = bordered ? Range{begin - 1, end + 2} : stored, d1 = bordered ? Range{begin - 1, end + 1} : odds;
    const Range evens = bordered ? Range{begin, end + 1} : stored;
    // Even samples replace the means they come from.
    RowRing<Working, 3, kStrip> means;
    RowRing<Working, 2, kStrip> details;
    const auto low = [&](ptrdiff_t k) { return columns.low.row(k) + at; };
    const auto high = [&](ptrdiff_t k) { return columns.high.row(k) + at; };
    const auto even = [&](ptrdiff_t k) { return columns.x.row(2 * k) + at; };
    const auto odd = [&](ptrdiff_t k) { return columns.x.row(2 * k + 1) + at; };

    for (ptrdiff_t k = s1.begin; k <= end + 1; ++k) {
      if (highs.has(k - 1) && highs.has(k) && s1.has(k - 1) && s1.has(k) && d1.has(k - 1) && d1.has(k - 2) &&
          stored.has(k - 1) && evens.has(k - 2) && odds.has(k - 2)) {
        inverseStep<Steps>(low(k), high(k - 1), high(k), means[k - 1], means[k], details[k - 2], details[k - 1],
                           means[k - 2], even(k - 1), odd(k - 2), width);
        continue;
      }
      if (s1.has(k)) {
        stepRow(means[k], low(k), high(highs.before(k)), high(highs.after(k)), width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::undoLow(d, v, a, b); });
      }
      if (d1.has(k - 1)) {
        stepRow(details[k - 1], high(k - 1), means[s1.before(k)], means[s1.after(k)], width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::undoPredictAgain(d, v, a, b); });
      }
      if (evens.has(k - 1)) {
        stepRow(means[k - 1], means[k - 1], details[d1.before(k - 1)], details[d1.after(k - 1)], width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::undoUpdate(d, v, a, b); });
        if (stored.has(k - 1)) {
          stepRow(even(k - 1), means[k - 1], means[k - 1], means[k - 1], width,
                  [](auto, auto v, auto, auto) HWY_ATTR { return v; });
        }
      }
      if (odds.has(k - 2)) {
        stepRow(odd(k - 2), details[k - 2], means[evens.before(k - 1)], means[evens.after(k - 1)], width,
                [](auto d, auto v, auto a, auto b) HWY_ATTR { return Steps::undoPredict(d, v, a, b); });
      }
    }
  }
};

// The fixed-point wavelets have no functions on columns with borders, and the float one none on tiles.
template <class Steps, class T, class ColumnSteps>
constexpr Wavelet97Kernels<T> fixedKernels() {
  using W = Wavelet97<Steps, T>;
  return {{&forwardRows<W>, &inverseRows<W>, nullptr, nullptr, &forwardInPlace<W>, &inverseInPlace<W>, &forwardApart<W>,
           &inverseApart<W>},
          &forwardStepInPlace<ColumnSteps>,
          &inverseStepInPlace<ColumnSteps>};
}

using FloatWavelet = Wavelet97<FloatSteps, float>;

constexpr Wavelet97Kernels<int16_t> kernels16 = fixedKernels<FixedSteps, int16_t, SaturatingSteps>();
constexpr Wavelet97Kernels<int32_t> kernels32 = fixedKernels<FixedSteps, int32_t, FixedSteps>();
constexpr Wavelet97Kernels<float> kernelsFloat = {
    {&forwardRows<FloatWavelet>, &inverseRows<FloatWavelet>, &forwardBorderedColumns<FloatWavelet>,
     &inverseBorderedColumns<FloatWavelet>, nullptr, nullptr, nullptr, nullptr},
    &forwardStepInPlace<FloatSteps>,
    &inverseStepInPlace<FloatSteps>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const Wavelet97Kernels<int16_t>> perIsa16{ZORJ_PER_ISA(kernels16)};
static constexpr PerIsa<const Wavelet97Kernels<int32_t>> perIsa32{ZORJ_PER_ISA(kernels32)};
static constexpr PerIsa<const Wavelet97Kernels<float>> perIsaFloat{ZORJ_PER_ISA(kernelsFloat)};

template <>
const Wavelet97Kernels<int16_t>& wavelet97Kernels<int16_t>() {
  return *perIsa16;
}
template <>
const Wavelet97Kernels<int32_t>& wavelet97Kernels<int32_t>() {
  return *perIsa32;
}
template <>
const Wavelet97Kernels<float>& wavelet97Kernels<float>() {
  return *perIsaFloat;
}

}  // namespace zorj
#endif
