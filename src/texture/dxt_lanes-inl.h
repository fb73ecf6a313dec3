// A DXT block in each 16-byte lane of a vector. Included by the DXT kernel files after core/simd-inl.h, once per
// target.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

#if ZORJ_SIMD
namespace hn = hwy::HWY_NAMESPACE;

template <class V>
using BytesOf = hn::Repartition<uint8_t, hn::DFromV<V>>;
template <class V>
using WordsOf = hn::Repartition<uint16_t, hn::DFromV<V>>;
template <class V>
using DwordsOf = hn::Repartition<uint32_t, hn::DFromV<V>>;

template <class V>
HWY_INLINE auto asBytes(V v) {
  return hn::BitCast(BytesOf<V>(), v);
}
template <class V>
HWY_INLINE auto asWords(V v) {
  return hn::BitCast(WordsOf<V>(), v);
}
template <class V>
HWY_INLINE auto asDwords(V v) {
  return hn::BitCast(DwordsOf<V>(), v);
}

// The same 16 bytes in every lane.
template <class D, class T>
HWY_INLINE hn::Vec<D> everyLane(D d, const T* values) {
  return hn::LoadDup128(d, values);
}

// Lane by lane: the words of `low`, then those of `high`, as bytes; words are below 256.
template <class W>
HWY_INLINE auto packWords(W low, W high) {
  const hn::RebindToSigned<hn::DFromV<W>> d;
  return packUnsigned(hn::BitCast(d, low), hn::BitCast(d, high));
}
// Word i = byte 2i of a times byte 2i of b + byte 2i + 1 of a times byte 2i + 1 of b; b is signed.
HWY_INLINE hn::Vec128<uint16_t> addByteProducts(hn::Vec128<uint8_t> a, hn::Vec128<uint8_t> b) {
  return hn::Vec128<uint16_t>{_mm_maddubs_epi16(a.raw, b.raw)};
}
// The same of words and their double words.
HWY_INLINE hn::Vec128<uint32_t> addWordProducts(hn::Vec128<uint16_t> a, hn::Vec128<uint16_t> b) {
  return hn::Vec128<uint32_t>{_mm_madd_epi16(a.raw, b.raw)};
}
#if HWY_TARGET <= HWY_AVX2
HWY_INLINE hn::Vec256<uint16_t> addByteProducts(hn::Vec256<uint8_t> a, hn::Vec256<uint8_t> b) {
  return hn::Vec256<uint16_t>{_mm256_maddubs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec256<uint32_t> addWordProducts(hn::Vec256<uint16_t> a, hn::Vec256<uint16_t> b) {
  return hn::Vec256<uint32_t>{_mm256_madd_epi16(a.raw, b.raw)};
}
#endif
#if HWY_TARGET <= HWY_AVX3
HWY_INLINE hn::Vec512<uint16_t> addByteProducts(hn::Vec512<uint8_t> a, hn::Vec512<uint8_t> b) {
  return hn::Vec512<uint16_t>{_mm512_maddubs_epi16(a.raw, b.raw)};
}
HWY_INLINE hn::Vec512<uint32_t> addWordProducts(hn::Vec512<uint16_t> a, hn::Vec512<uint16_t> b) {
  return hn::Vec512<uint32_t>{_mm512_madd_epi16(a.raw, b.raw)};
}
#endif

// What the other half of each lane holds.
template <class V>
HWY_INLINE V exchangeHalves(V v) {
  const hn::Repartition<uint64_t, hn::DFromV<V>> d64;
  return hn::BitCast(hn::DFromV<V>(), hn::Shuffle01(hn::BitCast(d64, v)));
}

// Of the RGBA words of colours c0 and c1: those of (2 c0 + c1) / 3 and (c0 + 2 c1) / 3, truncated.
template <class V>
HWY_INLINE V colourThirds(V ends) {
  const hn::DFromV<V> d16;
  constexpr uint16_t kThird = 21846;  // of 65536, rounded up: exact for sums below 32768
  const V sum = hn::Add(hn::Add(ends, ends), exchangeHalves(ends));
  return hn::MulHigh(sum, hn::Set(d16, kThird));
}

#endif

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
