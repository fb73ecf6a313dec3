// The coefficients of a block as a refinement scan codes them. Included by kernel files after
// zigzag_masks-inl.h, once per target, inside the target's namespace.

// Of magnitudes after the point transform; zig-zag position k is bit 63 - k, so that correction bits gathered from
// several positions come out in the order in which they are written.
struct RefinementMasks {
  uint64_t nonZero;
  uint64_t one;       // not zero for the first time
  uint64_t odd;       // the correction bits of the others
  uint64_t positive;  // not less than 0
};

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
HWY_INLINE RefinementMasks refinementMasks(const int16_t* block, int32_t shift) {
  alignas(64) static constexpr std::array<uint16_t, kBlockSize> kReversedOrder = [] {
    std::array<uint16_t, kBlockSize> order{};
    for (size_t k = 0; k < kBlockSize; ++k) order[k] = kNaturalOrder[kBlockSize - 1 - k];
    return order;
  }();
  const __m512i low = _mm512_loadu_si512(block), high = _mm512_loadu_si512(block + 32), one = _mm512_set1_epi16(1);
  RefinementMasks masks = {};
  for (size_t k = 0; k < kBlockSize; k += 32) {
    const __m512i values = _mm512_permutex2var_epi16(low, _mm512_load_si512(&kReversedOrder[k]), high);
    const __m512i magnitudes = _mm512_srl_epi16(_mm512_abs_epi16(values), _mm_cvtsi32_si128(shift));
    masks.nonZero |= uint64_t{_mm512_test_epi16_mask(magnitudes, magnitudes)} << k;
    masks.one |= uint64_t{_mm512_cmpeq_epi16_mask(magnitudes, one)} << k;
    masks.odd |= uint64_t{_mm512_test_epi16_mask(magnitudes, one)} << k;
    masks.positive |= uint64_t{_mm512_cmpge_epi16_mask(values, _mm512_setzero_si512())} << k;
  }
  return masks;
}
#elif ZORJ_SIMD
HWY_INLINE RefinementMasks refinementMasks(const int16_t* block, int32_t shift) {
  const __m128i zero = _mm_setzero_si128(), one = _mm_set1_epi16(1), count = _mm_cvtsi32_si128(shift);
  // A byte per coefficient: bit 7 less than 0, bit 6 odd, bit 5 greater than 1.
  const auto properties = [=](size_t i) HWY_ATTR {
    const auto* row = reinterpret_cast<const __m128i*>(block + 16 * i);
    const __m128i values0 = _mm_loadu_si128(row), values1 = _mm_loadu_si128(row + 1);
    const __m128i magnitudes0 = _mm_srl_epi16(_mm_abs_epi16(values0), count);
    const __m128i magnitudes1 = _mm_srl_epi16(_mm_abs_epi16(values1), count);
    const __m128i half = _mm_packus_epi16(_mm_srli_epi16(magnitudes0, 1), _mm_srli_epi16(magnitudes1, 1));
    const __m128i odd = _mm_packus_epi16(_mm_and_si128(magnitudes0, one), _mm_and_si128(magnitudes1, one));
    const __m128i large = _mm_andnot_si128(_mm_cmpeq_epi8(half, zero), _mm_set1_epi8(0x20));
    const __m128i negative = _mm_and_si128(_mm_packs_epi16(values0, values1), _mm_set1_epi8(-0x80));
    return _mm_or_si128(_mm_or_si128(large, negative), _mm_slli_epi16(odd, 6));
  };
  BlockBytes bytes = orderBytes(kZigzagShuffles<true>, {{properties(0), properties(1), properties(2), properties(3)}});
  const auto shiftLeft = [&bytes](int by) HWY_ATTR {
    for (__m128i& some : bytes.at) some = _mm_slli_epi16(some, by);
  };
  RefinementMasks masks;
  masks.positive = ~topBits(bytes);
  shiftLeft(1);
  masks.odd = topBits(bytes);
  shiftLeft(1);
  const uint64_t large = topBits(bytes);
  masks.nonZero = masks.odd | large;
  masks.one = masks.odd & ~large;
  return masks;
}
#else
HWY_INLINE RefinementMasks refinementMasks(const int16_t* block, int32_t shift) {
  RefinementMasks masks = {};
  for (size_t k = 0; k < kBlockSize; ++k) {
    const int32_t value = loadUnaligned(block + kNaturalOrder[k]);
    const int32_t magnitude = (value < 0 ? -value : value) >> shift;
    const uint64_t place = uint64_t{1} << (kBlockSize - 1 - k);
    masks.nonZero |= magnitude != 0 ? place : 0;
    masks.one |= magnitude == 1 ? place : 0;
    masks.odd |= (magnitude & 1) != 0 ? place : 0;
    masks.positive |= value >= 0 ? place : 0;
  }
  return masks;
}
#endif
