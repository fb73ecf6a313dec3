// The coefficients of a block as the coders of blocks take them: which ones are not zero, and the category and extra
// bits of these. Included by kernel files, once per target, inside the target's namespace.

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
class ZigzagCoefficients {
 public:
  HWY_INLINE explicit ZigzagCoefficients(const int16_t* block) {
    alignas(64) static constexpr std::array<uint16_t, kBlockSize> kOrder = [] {
      std::array<uint16_t, kBlockSize> order{};
      for (size_t k = 0; k < kBlockSize; ++k) order[k] = kNaturalOrder[k];
      return order;
    }();
    const __m512i low = _mm512_loadu_si512(block), high = _mm512_loadu_si512(block + 32);
    nonZero_ = 0;
    for (size_t k = 0; k < kBlockSize; k += 32) {
      const __m512i values = _mm512_permutex2var_epi16(low, _mm512_load_si512(&kOrder[k]), high);
      nonZero_ |= uint64_t{_mm512_test_epi16_mask(values, values)} << k;
      // All the bits that the magnitude has.
      __m512i ones = _mm512_abs_epi16(values);
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 1));
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 2));
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 4));
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 8));
      _mm512_store_si512(&categories_[k], _mm512_popcnt_epi16(ones));
      const __m512i complement = _mm512_add_epi16(values, _mm512_srai_epi16(values, 15));
      _mm512_store_si512(&bits_[k], _mm512_and_si512(complement, ones));
    }
  }

  // Bit k: whether the coefficient at zig-zag position k is not zero.
  uint64_t nonZero() const { return nonZero_; }
  struct Magnitude {
    uint32_t category;
    uint32_t bits;
  };
  Magnitude at(size_t k) const { return {categories_[k], bits_[k]}; }

 private:
  alignas(64) uint16_t categories_[kBlockSize];
  alignas(64) uint16_t bits_[kBlockSize];
  uint64_t nonZero_;
};
#else
#if ZORJ_SIMD
// The byte shuffles that bring flags into zig-zag order: of output vector `to`, the bytes that come from input vector
// `from`; 0x80 gives zero.
struct ZigzagShuffles {
  alignas(16) uint8_t at[4][4][16];
};
constexpr ZigzagShuffles kZigzagShuffles = [] {
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

HWY_INLINE uint64_t nonZeroMask(const int16_t* block) {
#if ZORJ_SIMD
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

class ZigzagCoefficients {
 public:
  HWY_INLINE explicit ZigzagCoefficients(const int16_t* block) : block_(block), nonZero_(nonZeroMask(block)) {}

  // Bit k: whether the coefficient at zig-zag position k is not zero.
  uint64_t nonZero() const { return nonZero_; }
  struct Magnitude {
    uint32_t category;
    uint32_t bits;
  };
  HWY_INLINE Magnitude at(size_t k) const {
    const int32_t value = loadUnaligned(block_ + kNaturalOrder[k]);
    const uint32_t category = magnitudeCategory(value);
    return {category, extraBits(value) & ((1u << category) - 1)};
  }

 private:
  const int16_t* block_;
  uint64_t nonZero_;
};
#endif
