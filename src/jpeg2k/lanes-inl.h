// Arithmetic that reads the same for one sample and for a vector of them: a kernel is one function of a tag, which a
// loop calls with the tag of a vector and then, for what is left of the row, with that of a single sample. Included
// once per target, after core/simd-inl.h.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The tag of a single sample that is S in the arithmetic.
template <class S>
struct Single {};

// ---- Single samples

inline int16_t saturate(int32_t x) { return static_cast<int16_t>(x < -32768 ? -32768 : x > 32767 ? 32767 : x); }

template <class S, class T>
S load(Single<S>, const T* from) {
  return static_cast<S>(loadUnaligned(from));
}
// Samples of fewer bits than the arithmetic are saturated.
template <class S, class T>
void store(Single<S>, S x, T* to) {
  if constexpr (sizeof(T) < sizeof(S)) {
    storeUnaligned(to, saturate(x));
  } else {
    storeUnaligned(to, x);
  }
}
template <class S>
S constant(Single<S>, S x) {
  return x;
}
inline float add(float a, float b) { return a + b; }
inline float subtract(float a, float b) { return a - b; }
inline float multiply(float a, float b) { return a * b; }
inline int32_t add(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int32_t subtract(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
inline int16_t add(int16_t a, int16_t b) { return static_cast<int16_t>(a + b); }
inline int16_t subtract(int16_t a, int16_t b) { return static_cast<int16_t>(a - b); }
template <int bits, class S>
S shiftRight(Single<S>, S x) {
  return static_cast<S>(x >> bits);
}

// ---- Vectors

#if ZORJ_SIMD
template <class D, class T>
HWY_INLINE hn::Vec<D> load(D d, const T* from) {
  if constexpr (sizeof(T) < sizeof(hn::TFromD<D>)) {
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, D>(), from));
  } else {
    return hn::LoadU(d, from);
  }
}
template <class D, class T>
HWY_INLINE void store(D d, hn::Vec<D> x, T* to) {
  if constexpr (sizeof(T) < sizeof(hn::TFromD<D>)) {
    const hn::Rebind<T, D> narrow;
    hn::StoreU(hn::DemoteTo(narrow, x), narrow, to);
  } else {
    hn::StoreU(x, d, to);
  }
}
template <class D>
HWY_INLINE hn::Vec<D> constant(D d, hn::TFromD<D> x) {
  return hn::Set(d, x);
}
template <class V>
HWY_INLINE V add(V a, V b) {
  return hn::Add(a, b);
}
template <class V>
HWY_INLINE V subtract(V a, V b) {
  return hn::Sub(a, b);
}
template <class V>
HWY_INLINE V multiply(V a, V b) {
  return hn::Mul(a, b);
}
template <int bits, class D>
HWY_INLINE hn::Vec<D> shiftRight(D, hn::Vec<D> x) {
  return hn::ShiftRight<bits>(x);
}
#endif

// ---- Neighbours in a row that is gone through by blocks a, b: the lanes of a one place on, and those of b one back

template <class S>
S laneAfter(Single<S>, S, S b) {
  return b;
}
template <class S>
S laneBefore(Single<S>, S a, S) {
  return a;
}
#if ZORJ_SIMD
// The 16 bytes on either side of the border, with what lies between them in the vector.
template <class D, class V>
HWY_INLINE V partsAfter(D d, V a, V b) {
#if HWY_TARGET == HWY_AVX3
  return hn::BitCast(d, hn::Vec<hn::Repartition<uint64_t, D>>{
                            _mm512_alignr_epi64(hn::BitCast(hn::Repartition<uint64_t, D>(), b).raw,
                                                hn::BitCast(hn::Repartition<uint64_t, D>(), a).raw, 2)});
#elif HWY_TARGET == HWY_AVX2
  return hn::ConcatLowerUpper(d, b, a);
#else
  (void)d, (void)a;
  return b;
#endif
}
template <class D, class V>
HWY_INLINE V partsBefore(D d, V a, V b) {
#if HWY_TARGET == HWY_AVX3
  return hn::BitCast(d, hn::Vec<hn::Repartition<uint64_t, D>>{
                            _mm512_alignr_epi64(hn::BitCast(hn::Repartition<uint64_t, D>(), b).raw,
                                                hn::BitCast(hn::Repartition<uint64_t, D>(), a).raw, 6)});
#elif HWY_TARGET == HWY_AVX2
  return hn::ConcatLowerUpper(d, b, a);
#else
  (void)d, (void)b;
  return a;
#endif
}
template <class D, class V>
HWY_INLINE V laneAfter(D d, V a, V b) {
  return hn::CombineShiftRightBytes<sizeof(hn::TFromD<D>)>(d, partsAfter(d, a, b), a);
}
template <class D, class V>
HWY_INLINE V laneBefore(D d, V a, V b) {
  return hn::CombineShiftRightBytes<16 - sizeof(hn::TFromD<D>)>(d, b, partsBefore(d, a, b));
}
#endif

// The type of a block.
template <class D, class S>
using Block = decltype(constant(D(), S{}));

// ---- Loops

// Calls kernel(tag, i) so that all of 0 to count - 1 are done, each once.
template <class S, class Kernel>
HWY_INLINE void forEachLane(size_t count, const Kernel& kernel) {
  size_t i = 0;
#if ZORJ_SIMD
  const hn::ScalableTag<S> d;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) kernel(d, i);
  // What is left takes half a vector, or two of 16 bytes.
  if constexpr (HWY_MAX_BYTES > 16) {
    const hn::CappedTag<S, 16 / sizeof(S)> d16;
    for (; i + 16 / sizeof(S) <= count; i += 16 / sizeof(S)) kernel(d16, i);
  }
#endif
  for (; i < count; ++i) kernel(Single<S>(), i);
}

// ---- Pairs of samples that lie in turns

template <class S, class T>
void loadPairs(Single<S> d, const T* from, S& even, S& odd) {
  even = load(d, from);
  odd = load(d, from + 1);
}
template <class S, class T>
void storePairs(Single<S> d, S even, S odd, T* to) {
  store(d, even, to);
  store(d, odd, to + 1);
}
#if ZORJ_SIMD
#if HWY_TARGET == HWY_AVX2
// The even and odd samples of each 16 bytes of a and b, those of a first.
template <class D, class V>
HWY_INLINE void splitParts(D d, V a, V b, V& even, V& odd) {
  if constexpr (sizeof(hn::TFromD<D>) == 2) {
    const hn::Repartition<uint64_t, D> d64;
    const hn::Repartition<uint8_t, D> d8;
    alignas(16) static constexpr uint8_t kOrder[16] = {0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15};
    const auto order = hn::LoadDup128(d8, kOrder);
    const auto first = hn::BitCast(d64, hn::TableLookupBytes(hn::BitCast(d8, a), order));
    const auto second = hn::BitCast(d64, hn::TableLookupBytes(hn::BitCast(d8, b), order));
    even = hn::BitCast(d, hn::InterleaveLower(d64, first, second));
    odd = hn::BitCast(d, hn::InterleaveUpper(d64, first, second));
  } else {
    const hn::RebindToFloat<D> df;
    const auto first = hn::BitCast(df, a).raw, second = hn::BitCast(df, b).raw;
    even = hn::BitCast(d, hn::Vec<decltype(df)>{_mm256_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0))});
    odd = hn::BitCast(d, hn::Vec<decltype(df)>{_mm256_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1))});
  }
}
#endif

template <class D, class V, class T>
HWY_INLINE void loadPairs(D d, const T* from, V& even, V& odd) {
  if constexpr (sizeof(T) < sizeof(hn::TFromD<D>)) {
    const auto pairs = hn::BitCast(d, hn::LoadU(hn::Repartition<T, D>(), from));
    even = hn::ShiftRight<16>(hn::ShiftLeft<16>(pairs));
    odd = hn::ShiftRight<16>(pairs);
  } else {
#if HWY_TARGET == HWY_AVX2
    // Loading halves spares the permutation of the results.
    const hn::Half<D> half;
    constexpr size_t kHalf = 16 / sizeof(T);
    splitParts(d, hn::Combine(d, hn::LoadU(half, from + 2 * kHalf), hn::LoadU(half, from)),
               hn::Combine(d, hn::LoadU(half, from + 3 * kHalf), hn::LoadU(half, from + kHalf)), even, odd);
#else
    hn::LoadInterleaved2(d, from, even, odd);
#endif
  }
}
template <class D, class V, class T>
HWY_INLINE void storePairs(D d, V even, V odd, T* to) {
  if constexpr (sizeof(T) < sizeof(hn::TFromD<D>)) {
    const hn::Repartition<T, D> narrow;
    const auto low = hn::Set(d, -32768), high = hn::Set(d, 32767);
    const auto evens = hn::And(hn::Min(hn::Max(even, low), high), hn::Set(d, 0xFFFF));
    const auto odds = hn::ShiftLeft<16>(hn::Min(hn::Max(odd, low), high));
    hn::StoreU(hn::BitCast(narrow, hn::Or(evens, odds)), narrow, to);
  } else {
    hn::StoreInterleaved2(even, odd, d, to);
  }
}
#endif

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
