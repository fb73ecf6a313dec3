// The rows of the 5/3 wavelet. Included after jpeg2k/wavelet-inl.h, once per target.
//
// A block is a vector of pairs. The one sample before the first block and the one behind the last are made by
// themselves, reflected or from a border, and stand in every lane of a vector. Where pairs are left over, the last
// block overlaps the one before: results never lie where samples are read.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

template <class Steps>
class RowTransform53 {
 public:
  using Sample = typename Steps::Sample;

  // Transforms a line whose positions `first` to `last` can be read at x.
  void forward(const Sample* x, ptrdiff_t first, ptrdiff_t last, Line line, Sample* low, Sample* high) {
    const auto at = [=](ptrdiff_t c) { return loadUnaligned(x + reflect(c, first, last)); };
    const auto detail = [=](ptrdiff_t k) { return Steps::predict(kSingle, at(2 * k), at(2 * k + 2), at(2 * k + 1)); };
    const ptrdiff_t pairs = line.endHigh();
    Sample before = detail(-1);
    if (line.parity != 0) storeUnaligned(high - 1, before);
    ptrdiff_t k = 0;
#if ZORJ_SIMD
    if (pairs >= kLanes) {
      const Tag d;
      V previous = Steps::in(d, constant(d, before)), even, odd;
      loadPairs(d, x, even, odd);
      even = Steps::in(d, even);
      const auto put = [&](ptrdiff_t to, V next) HWY_ATTR {
        const V detailed = Steps::predict(d, even, laneAfter(d, even, next), odd);
        const V current = Steps::in(d, detailed);
        store(d, detailed, high + to);
        store(d, Steps::update(d, even, laneBefore(d, previous, current), current), low + to);
        previous = current;
      };
      for (; k + 2 * kLanes <= pairs; k += kLanes) {
        V nextEven, nextOdd;
        loadPairs(d, x + 2 * (k + kLanes), nextEven, nextOdd);
        nextEven = Steps::in(d, nextEven);
        put(k, nextEven);
        even = nextEven;
        odd = nextOdd;
      }
      k += kLanes;
      put(k - kLanes, Steps::in(d, constant(d, at(2 * k))));
      if (k < pairs) {
        k = pairs - kLanes;
        previous = Steps::in(d, constant(d, loadUnaligned(high + k - 1)));
        loadPairs(d, x + 2 * k, even, odd);
        even = Steps::in(d, even);
        put(k, Steps::in(d, constant(d, at(2 * pairs))));
      }
      k = pairs;
      before = loadUnaligned(high + k - 1);
    }
#endif
    for (; k < line.lows(); ++k) {
      const Sample after = detail(k);
      storeUnaligned(low + k, Steps::update(kSingle, at(2 * k), before, after));
      if (k < pairs) storeUnaligned(high + k, after);
      before = after;
    }
  }

  // The inverse, from subbands that can be read at positions `first` to `last`.
  void inverse(const Sample* low, const Sample* high, ptrdiff_t first, ptrdiff_t last, Line line, Sample* x) {
    const auto at = [=](ptrdiff_t c) {
      c = reflect(c, first, last);
      return loadUnaligned((c & 1) == 0 ? low + (c >> 1) : high + (c >> 1));
    };
    const auto even = [=](ptrdiff_t k) { return Steps::undoUpdate(kSingle, at(2 * k), at(2 * k - 1), at(2 * k + 1)); };
    const ptrdiff_t pairs = line.endHigh();
    if (line.parity != 0) storeUnaligned(x - 1, Steps::undoPredict(kSingle, at(-1), even(-1), even(0)));
    ptrdiff_t k = 0;
#if ZORJ_SIMD
    if (pairs >= kLanes) {
      const Tag d;
      V detail, here;
      const auto take = [&](ptrdiff_t from, V previous) HWY_ATTR {
        detail = Steps::in(d, load(d, high + from));
        here = Steps::undoUpdate(d, load(d, low + from), laneBefore(d, previous, detail), detail);
      };
      const auto put = [&](ptrdiff_t to, V details, V evens, V next) HWY_ATTR {
        storePairs(d, Steps::out(d, evens), Steps::undoPredict(d, details, evens, laneAfter(d, evens, next)),
                   x + 2 * to);
      };
      take(0, Steps::in(d, constant(d, at(-1))));
      for (; k + 2 * kLanes <= pairs; k += kLanes) {
        const V details = detail, evens = here;
        take(k + kLanes, details);
        put(k, details, evens, here);
      }
      k += kLanes;
      put(k - kLanes, detail, here, Steps::in(d, constant(d, even(k))));
      if (k < pairs) {
        k = pairs - kLanes;
        take(k, Steps::in(d, constant(d, at(2 * k - 1))));
        put(k, detail, here, Steps::in(d, constant(d, even(pairs))));
      }
      k = pairs;
    }
#endif
    for (; k < line.lows(); ++k) {
      const Sample here = even(k);
      storeUnaligned(x + 2 * k, here);
      if (k < pairs) storeUnaligned(x + 2 * k + 1, Steps::undoPredict(kSingle, at(2 * k + 1), here, even(k + 1)));
    }
  }

 private:
  static constexpr Single<Sample> kSingle = {};
#if ZORJ_SIMD
  using Tag = hn::ScalableTag<Sample>;
  using V = hn::Vec<Tag>;
  static constexpr ptrdiff_t kLanes = HWY_LANES(Sample);
#endif
};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
