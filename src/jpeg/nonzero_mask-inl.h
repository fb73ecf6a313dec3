// Which coefficients of a block are not zero. Included by kernel files, once per target, inside the target's namespace.

#if ZORJ_SIMD && HWY_TARGET != HWY_AVX3
// The byte shuffles that bring flags into zig-zag order: of output vector `to`, the bytes that come from input vector
// `from`; 0x80 gives zero.
struct ZigzagShuffles {
  alignas(16) uint8_t at[4][4][16];
};
inline constexpr ZigzagShuffles kZigzagShuffles = [] {
  ZigzagShuffles shuffles{};
  for (size_t k = 0; k < kBlockSize; ++k) {
    for (size_t from = 0; from < 4; ++from) {
      const size_t index = kNaturalOrder[k];
      shuffles.at[k / 16][from][k % 16] = static_cast<uint8_t>(index / 16 == from ? index % 16 : 0x80);
    }
  }
  return shuffles;
}();
#endif

// Bit k: whether the coefficient at zig-zag position k is not zero.
HWY_INLINE uint64_t nonZeroMask(const int16_t* block) {
#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
  alignas(64) static constexpr std::array<uint8_t, 80> kOrder = kNaturalOrder;
  const __m512i low = _mm512_loadu_si512(block), high = _mm512_loadu_si512(block + 32);
  const uint64_t natural = uint64_t{_mm512_test_epi16_mask(low, low)} | uint64_t{_mm512_test_epi16_mask(high, high)}
                                                                            << 32;
  const __m512i flags = _mm512_movm_epi8(natural);
  return _mm512_movepi8_mask(_mm512_permutexvar_epi8(_mm512_load_si512(kOrder.data()), flags));
#elif ZORJ_SIMD
  const __m128i zero = _mm_setzero_si128();
  __m128i flags[4];
  for (size_t i = 0; i < 4; ++i) {
    const auto* row = reinterpret_cast<const __m128i*>(block + 16 * i);
    flags[i] =
        _mm_packs_epi16(_mm_cmpeq_epi16(_mm_loadu_si128(row), zero), _mm_cmpeq_epi16(_mm_loadu_si128(row + 1), zero));
  }
  uint64_t zeros = 0;
  for (size_t to = 0; to < 4; ++to) {
    __m128i ordered = zero;
    for (size_t from = 0; from < 4; ++from) {
      const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(kZigzagShuffles.at[to][from]));
      ordered = _mm_or_si128(ordered, _mm_shuffle_epi8(flags[from], shuffle));
    }
    zeros |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(ordered))) << (16 * to);
  }
  return ~zeros;
#else
  uint64_t mask = 0;
  for (size_t k = 0; k < kBlockSize; ++k) {
    mask |= uint64_t{loadUnaligned(block + kNaturalOrder[k]) != 0} << k;
  }
  return mask;
#endif
}
