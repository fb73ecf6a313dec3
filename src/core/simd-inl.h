// What the kernels share beyond Highway. Included by every kernel file after <hwy/highway.h>, once per target.

// The AVX-512 level is Highway's AVX3 and the byte permutes, compressions and bit counts of Ice Lake and Zen 4
// (core/isa.cpp asks for all of them). Highway resets the string each time it is included.
#if HWY_TARGET == HWY_AVX3
#undef HWY_TARGET_STR
#define HWY_TARGET_STR \
  HWY_TARGET_STR_AVX3 ",avx512cd,avx512vbmi,avx512vbmi2,avx512vnni,avx512bitalg,avx512vpopcntdq,popcnt,lzcnt"
#elif HWY_TARGET == HWY_AVX2
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX2 ",popcnt,lzcnt"
#endif

// Vector code is compiled where this is 1; the plain formula that ends every kernel is all of the portable level.
#undef ZORJ_SIMD
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
#define ZORJ_SIMD 0
#else
#define ZORJ_SIMD 1
#endif

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
#if ZORJ_SIMD
namespace hn = hwy::HWY_NAMESPACE;

// addPairProducts: sum + a[2i] b[2i] + a[2i + 1] b[2i + 1], wrapping.
// addNeighbours: in every 16-byte block the sums of two neighbouring lanes of `low`, then those of `high`.
// packSigned, packUnsigned: in every 16-byte block the lanes of `low`, then those of `high`, narrowed with saturation.
HWY_INLINE hn::Vec128<int32_t> addPairProducts(hn::Vec128<int32_t> sum, hn::Vec128<int16_t> a, hn::Vec128<int16_t> b) {
#if HWY_TARGET <= HWY_AVX3
  return hn::Vec128<int32_t>{_mm_dpwssd_epi32(sum.raw, a.raw, b.raw)};
#else
  return hn::Add(sum, hn::Vec128<int32_t>{_mm_madd_epi16(a.raw, b.raw)});
#endif
}
HWY_INLINE hn::Vec128<int32_t> addNeighbours(hn::Vec128<int32_t> low, hn::Vec128<int32_t> high) {
  return hn::Vec128<int32_t>{_mm_hadd_epi32(low.raw, high.raw)};
}
HWY_INLINE hn::Vec128<int8_t> packSigned(hn::Vec128<int16_t> low, hn::Vec128<int16_t> high) {
  return hn::Vec128<int8_t>{_mm_packs_epi16(low.raw, high.raw)};
}
HWY_INLINE hn::Vec128<uint8_t> packUnsigned(hn::Vec128<int16_t> low, hn::Vec128<int16_t> high) {
  return hn::Vec128<uint8_t>{_mm_packus_epi16(low.raw, high.raw)};
}
#if HWY_TARGET <= HWY_AVX2
HWY_INLINE hn::Vec256<int32_t> addPairProducts(hn::Vec256<int32_t> sum, hn::Vec256<int16_t> a, hn::Vec256<int16_t> b) {
#if HWY_TARGET <= HWY_AVX3
  return hn::Vec256<int32_t>{_mm256_dpwssd_epi32(sum.raw, a.raw, b.raw)};
#else
  return hn::Add(sum, hn::Vec256<int32_t>{_mm256_madd_epi16(a.raw, b.raw)});
#endif
}
HWY_INLINE hn::Vec256<int32_t> addNeighbours(hn::Vec256<int32_t> low, hn::Vec256<int32_t> high) {
  return hn::Vec256<int32_t>{_mm256_hadd_epi32(low.raw, high.raw)};
}
HWY_INLINE hn::Vec256<int8_t> packSigned(hn::Vec256<int16_t> low, hn::Vec256<int16_t> high) {
  return hn::Vec256<int8_t>{_mm256_packs_epi16(low.raw, high.raw)};
}
HWY_INLINE hn::Vec256<uint8_t> packUnsigned(hn::Vec256<int16_t> low, hn::Vec256<int16_t> high) {
  return hn::Vec256<uint8_t>{_mm256_packus_epi16(low.raw, high.raw)};
}
#endif
#if HWY_TARGET <= HWY_AVX3
HWY_INLINE hn::Vec512<int32_t> addPairProducts(hn::Vec512<int32_t> sum, hn::Vec512<int16_t> a, hn::Vec512<int16_t> b) {
  return hn::Vec512<int32_t>{_mm512_dpwssd_epi32(sum.raw, a.raw, b.raw)};
}
HWY_INLINE hn::Vec512<int32_t> addNeighbours(hn::Vec512<int32_t> low, hn::Vec512<int32_t> high) {
  const __m512 a = _mm512_castsi512_ps(low.raw), b = _mm512_castsi512_ps(high.raw);
  return hn::Add(hn::Vec512<int32_t>{_mm512_castps_si512(_mm512_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)))},
                 hn::Vec512<int32_t>{_mm512_castps_si512(_mm512_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)))});
}
HWY_INLINE hn::Vec512<int8_t> packSigned(hn::Vec512<int16_t> low, hn::Vec512<int16_t> high) {
  return hn::Vec512<int8_t>{_mm512_packs_epi16(low.raw, high.raw)};
}
HWY_INLINE hn::Vec512<uint8_t> packUnsigned(hn::Vec512<int16_t> low, hn::Vec512<int16_t> high) {
  return hn::Vec512<uint8_t>{_mm512_packus_epi16(low.raw, high.raw)};
}
#endif

#endif
}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
