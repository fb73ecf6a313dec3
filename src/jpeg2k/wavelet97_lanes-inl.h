// The arithmetic of the 9/7 wavelet's steps on a sample and its two neighbours a and b. Included after
// jpeg2k/lanes-inl.h, once per target.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// Every product and sum is rounded to single precision.
struct FloatSteps {
  using Working = float;

  template <class D, class V>
  static HWY_INLINE V predict(D d, V x, V a, V b) {
    return add(multiply(add(a, b), constant(d, kAlpha)), x);
  }
  template <class D, class V>
  static HWY_INLINE V update(D d, V x, V a, V b) {
    return add(multiply(add(a, b), constant(d, kBeta)), x);
  }
  template <class D, class V>
  static HWY_INLINE V predictAgain(D d, V x, V a, V b) {
    return add(multiply(add(a, b), constant(d, kGamma)), x);
  }
  template <class D, class V>
  static HWY_INLINE V low(D d, V x, V a, V b) {
    return multiply(add(multiply(add(a, b), constant(d, kDelta)), x), constant(d, kInverseK));
  }
  template <class D, class V>
  static HWY_INLINE V high(D d, V x) {
    return multiply(x, constant(d, kK));
  }

  template <class D, class V>
  static HWY_INLINE V undoLow(D d, V s, V a, V b) {
    const V k = constant(d, kInverseK);
    return subtract(multiply(s, constant(d, kK)), multiply(constant(d, kDelta), add(multiply(a, k), multiply(b, k))));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredictAgain(D d, V high, V a, V b) {
    return subtract(multiply(high, constant(d, kInverseK)), multiply(constant(d, kGamma), add(a, b)));
  }
  template <class D, class V>
  static HWY_INLINE V undoUpdate(D d, V x, V a, V b) {
    return subtract(x, multiply(constant(d, kBeta), add(a, b)));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredict(D d, V x, V a, V b) {
    return subtract(x, multiply(constant(d, kAlpha), add(a, b)));
  }

 private:
  static constexpr float kAlpha = -1.586134315f, kBeta = -0.0529801175f, kGamma = 0.8829110861f, kDelta = 0.4435068667f;
  static constexpr float kK = 1.230174065f, kInverseK = 0.8128930926f;
};

// ---- Sums of 64-bit products

template <int32_t factor>
int64_t product(Single<int32_t>, int32_t x) {
  return int64_t{x} * factor;
}
inline int32_t roundOff(Single<int32_t>, int64_t sum) { return static_cast<int32_t>((sum + 32768) >> 16); }

#if ZORJ_SIMD
// sum = 2^16 whole + rest, in 32 bits each. A factor is split into a multiple of 2^16 and one of 16 bits, whose product
// with the high half of x is whole and that with the low half rest.
template <class V>
struct Products {
  V whole, rest;

  HWY_INLINE Products operator+(const Products& other) const {
    return {hn::Add(whole, other.whole), hn::Add(rest, other.rest)};
  }
};

template <int32_t factor, class D, class V = hn::Vec<D>>
HWY_INLINE Products<V> product(D d, V x) {
  constexpr int16_t kRest = static_cast<int16_t>(factor);
  constexpr int kWhole = (factor - kRest) / 65536;
  static_assert(kWhole >= -2 && kWhole <= 1);
  const hn::Repartition<int16_t, D> d16;
  auto multiple = hn::Zero(d), ignored = multiple;
  if constexpr (kWhole == 1) multiple = x;
  if constexpr (kWhole == -1) multiple = hn::Neg(x);
  if constexpr (kWhole == -2) multiple = hn::Sub(multiple, hn::Add(x, x));
  const auto ofHigh = hn::BitCast(d16, hn::Set(d, static_cast<int32_t>(uint32_t{static_cast<uint16_t>(kRest)} << 16)));
  return {hn::ReorderWidenMulAccumulate(d, hn::BitCast(d16, x), ofHigh, multiple, ignored),
          hn::Mul(hn::And(x, hn::Set(d, 0xFFFF)), hn::Set(d, int32_t{kRest}))};
}

// The sums here have rests that fit 32 bits: the signs of their factors differ.
template <class D, class V>
HWY_INLINE V roundOff(D d, Products<V> sum) {
  return hn::Add(sum.whole, hn::ShiftRight<16>(hn::Add(sum.rest, hn::Set(d, 32768))));
}
#endif

// 32 bits, constants in units of 2^-16.
struct FixedSteps {
  using Working = int32_t;

  template <class D, class V>
  static HWY_INLINE V predict(D d, V x, V a, V b) {
    return add(x, roundOff(d, product<kAlpha>(d, add(a, b))));
  }
  template <class D, class V>
  static HWY_INLINE V update(D d, V x, V a, V b) {
    return add(x, roundOff(d, product<kBeta>(d, add(a, b))));
  }
  template <class D, class V>
  static HWY_INLINE V predictAgain(D d, V x, V a, V b) {
    return add(x, roundOff(d, product<kGamma>(d, add(a, b))));
  }
  template <class D, class V>
  static HWY_INLINE V low(D d, V x, V a, V b) {
    return roundOff(d, product<kInverseK>(d, x) + product<kDeltaByK>(d, add(a, b)));
  }
  template <class D, class V>
  static HWY_INLINE V high(D d, V x) {
    return roundOff(d, product<kK>(d, x));
  }

  template <class D, class V>
  static HWY_INLINE V undoLow(D d, V s, V a, V b) {
    return roundOff(d, product<kK>(d, s) + product<-kDeltaByK>(d, add(a, b)));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredictAgain(D d, V high, V a, V b) {
    return roundOff(d, product<kInverseK>(d, high) + product<-kGamma>(d, add(a, b)));
  }
  // What the forward step added, half-way cases included, is taken away again.
  template <class D, class V>
  static HWY_INLINE V undoUpdate(D d, V x, V a, V b) {
    return subtract(x, roundOff(d, product<kBeta>(d, add(a, b))));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredict(D d, V x, V a, V b) {
    return subtract(x, roundOff(d, product<kAlpha>(d, add(a, b))));
  }

 private:
  static constexpr int32_t kAlpha = -103949, kBeta = -3472, kGamma = 57862;
  static constexpr int32_t kK = 80621, kInverseK = 53274, kDeltaByK = 23627;
};

// ---- Saturating 16-bit arithmetic

inline int16_t addSaturated(int16_t a, int16_t b) { return saturate(a + b); }
inline int16_t subtractSaturated(int16_t a, int16_t b) { return saturate(a - b); }
// (x factor + 2^14) >> 15
inline int16_t scale(Single<int16_t>, int16_t x, int16_t factor) {
  return static_cast<int16_t>((x * factor + 16384) >> 15);
}
// a + bTimes b + c, saturated once.
template <int bTimes>
int16_t sumOfThree(Single<int16_t>, int16_t a, int16_t b, int16_t c) {
  return saturate(a + bTimes * b + c);
}

#if ZORJ_SIMD
template <class V>
HWY_INLINE V addSaturated(V a, V b) {
  return hn::SaturatedAdd(a, b);
}
template <class V>
HWY_INLINE V subtractSaturated(V a, V b) {
  return hn::SaturatedSub(a, b);
}
template <class D>
HWY_INLINE hn::Vec<D> scale(D d, hn::Vec<D> x, int16_t factor) {
  return hn::MulFixedPoint15(x, hn::Set(d, factor));
}
template <int bTimes, class D, class V>
HWY_INLINE V sumOfThree(D d, V a, V b, V c) {
  const hn::Repartition<int32_t, D> d32;
  const auto weights = hn::BitCast(d, hn::Set(d32, static_cast<int32_t>(1 | static_cast<uint32_t>(bTimes) << 16)));
  const auto zero = hn::Zero(d), one = hn::BitCast(d, hn::Set(d32, 1));
  auto ignored = hn::Zero(d32);
  const auto addPairs = [&](auto pairs, auto last) HWY_ATTR {
    const auto sum = hn::ReorderWidenMulAccumulate(d32, last, one, hn::Zero(d32), ignored);
    return hn::ReorderWidenMulAccumulate(d32, pairs, weights, sum, ignored);
  };
  return hn::ReorderDemote2To(d, addPairs(hn::InterleaveLower(d, a, b), hn::InterleaveLower(d, c, zero)),
                              addPairs(hn::InterleaveUpper(d, a, b), hn::InterleaveUpper(d, c, zero)));
}
#endif

// 16 bits, constants in units of 2^-15. Alpha and K are out of their range and split: alpha = -2 + 13562 / 2^15,
// K = 1 + 7542 / 2^15, and 2 * 20155 / 2^15 where the product is a result.
struct SaturatingSteps {
  using Working = int16_t;

  template <class D, class V>
  static HWY_INLINE V predict(D d, V x, V a, V b) {
    const V sum = addSaturated(a, b);
    return sumOfThree<-2>(d, x, sum, scale(d, sum, kAlphaAnd2));
  }
  template <class D, class V>
  static HWY_INLINE V update(D d, V x, V a, V b) {
    return addSaturated(x, scale(d, addSaturated(a, b), kBeta));
  }
  template <class D, class V>
  static HWY_INLINE V predictAgain(D d, V x, V a, V b) {
    return addSaturated(x, scale(d, addSaturated(a, b), kGamma));
  }
  template <class D, class V>
  static HWY_INLINE V low(D d, V x, V a, V b) {
    return scale(d, addSaturated(x, scale(d, addSaturated(a, b), kDelta)), kInverseK);
  }
  template <class D, class V>
  static HWY_INLINE V high(D d, V x) {
    return scale(d, addSaturated(x, x), kHalfK);
  }

  template <class D, class V>
  static HWY_INLINE V undoLow(D d, V s, V a, V b) {
    return sumOfThree<-1>(d, s, scale(d, addSaturated(a, b), kDeltaByK), scale(d, s, kKLess1));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredictAgain(D d, V high, V a, V b) {
    return subtractSaturated(scale(d, high, kInverseK), scale(d, addSaturated(a, b), kGamma));
  }
  template <class D, class V>
  static HWY_INLINE V undoUpdate(D d, V x, V a, V b) {
    return subtractSaturated(x, scale(d, addSaturated(a, b), kBeta));
  }
  template <class D, class V>
  static HWY_INLINE V undoPredict(D d, V x, V a, V b) {
    const V sum = addSaturated(a, b);
    return sumOfThree<2>(d, x, sum, subtractSaturated(constant(d, int16_t{0}), scale(d, sum, kAlphaAnd2)));
  }

 private:
  static constexpr int16_t kAlphaAnd2 = 13562, kBeta = -1736, kGamma = 28931, kDelta = 14533;
  static constexpr int16_t kKLess1 = 7542, kHalfK = 20155, kInverseK = 26637, kDeltaByK = 11814;
};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
