// The coefficients of a block as the coders of blocks take them: which ones are not zero, and the category and extra
// bits of these. Included by kernel files after zigzag_masks-inl.h, once per target, inside the target's namespace.

// Of AC coefficients in sequential coding, with a value to spare (T.81 F.1.2.2.1).
inline constexpr uint32_t kLargestSequentialCategory = 14;

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
// All the bits that a magnitude has.
HWY_INLINE __m512i significantBits(__m512i magnitude) {
  __m512i ones = magnitude;
  ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 1));
  ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 2));
  ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 4));
  return _mm512_or_si512(ones, _mm512_srli_epi16(ones, 8));
}

template <PointTransform kTransform>
class ZigzagCoefficients {
 public:
  HWY_INLINE explicit ZigzagCoefficients(const int16_t* block, int32_t shift = 0) {
    alignas(64) static constexpr std::array<uint16_t, kBlockSize> kOrder = [] {
      std::array<uint16_t, kBlockSize> order{};
      for (size_t k = 0; k < kBlockSize; ++k) order[k] = kNaturalOrder[k];
      return order;
    }();
    const __m512i low = _mm512_loadu_si512(block), high = _mm512_loadu_si512(block + 32);
    nonZero_ = 0;
    for (size_t k = 0; k < kBlockSize; k += 32) {
      const __m512i values = _mm512_permutex2var_epi16(low, _mm512_load_si512(&kOrder[k]), high);
      __m512i magnitude = _mm512_abs_epi16(values);
      if constexpr (kTransform == PointTransform::kShift) {
        magnitude = _mm512_srl_epi16(magnitude, _mm_cvtsi32_si128(shift));
      }
      nonZero_ |= uint64_t{_mm512_test_epi16_mask(magnitude, magnitude)} << k;
      const __m512i ones = significantBits(magnitude);
      _mm512_store_si512(&categories_[k], _mm512_popcnt_epi16(ones));
      const __m512i complement = _mm512_xor_si512(magnitude, _mm512_srai_epi16(values, 15));
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
template <PointTransform kTransform>
class ZigzagCoefficients {
 public:
  HWY_INLINE explicit ZigzagCoefficients(const int16_t* block, int32_t shift = 0)
      : block_(block), shift_(shift), nonZero_(nonZeroMask<kTransform>(block, shift)) {}

  // Bit k: whether the coefficient at zig-zag position k is not zero.
  uint64_t nonZero() const { return nonZero_; }
  struct Magnitude {
    uint32_t category;
    uint32_t bits;
  };
  HWY_INLINE Magnitude at(size_t k) const {
    const int32_t value = transformed(loadUnaligned(block_ + kNaturalOrder[k]));
    const uint32_t category = magnitudeCategory(value);
    return {category, extraBits(value) & ((1u << category) - 1)};
  }

 private:
  HWY_INLINE int32_t transformed(int32_t value) const {
    if constexpr (kTransform == PointTransform::kNone) return value;
    const int32_t sign = value >> 31;
    return (((value ^ sign) - sign) >> shift_ ^ sign) - sign;
  }

  const int16_t* block_;
  int32_t shift_;
  uint64_t nonZero_;
};
#endif

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
// The symbols of a block's AC coefficients, a run of zeros and a category each. As their number cannot be predicted,
// they come in groups, the last of which is filled up with symbols that no block has.
class ZigzagSymbols {
 public:
  static constexpr uint32_t kGroup = 8;

  HWY_INLINE explicit ZigzagSymbols(const int16_t* block) {
    const __m512i natural =
        _mm512_inserti64x4(_mm512_castsi256_si512(categoriesOf(block)), categoriesOf(block + kBlockSize / 2), 1);
    const __m512i categories = _mm512_permutexvar_epi8(_mm512_load_si512(kZigzagBytes<false>.data()), natural);
    const __mmask64 nonZero = _mm512_test_epi8_mask(categories, categories) & ~uint64_t{1};
    count_ = static_cast<uint32_t>(std::popcount(nonZero));
    endsEarly_ = nonZero >> 63 == 0;

    alignas(64) static constexpr std::array<uint8_t, kBlockSize> kPositions = [] {
      std::array<uint8_t, kBlockSize> positions{};
      for (size_t k = 0; k < kBlockSize; ++k) positions[k] = static_cast<uint8_t>(k);
      return positions;
    }();
    const __m512i all = _mm512_load_si512(kPositions.data()), ones = _mm512_set1_epi8(1);
    const __mmask64 filled = (uint64_t{1} << count_) - 1;
    const __m512i places = _mm512_maskz_compress_epi8(nonZero, all);
    const __m512i placesBefore = _mm512_maskz_permutexvar_epi8(~uint64_t{1}, _mm512_sub_epi8(all, ones), places);
    const __m512i runs = _mm512_sub_epi8(_mm512_sub_epi8(places, placesBefore), ones);
    isUsual_ = (_mm512_mask_cmpgt_epu8_mask(filled, runs, _mm512_set1_epi8(15)) |
                _mm512_mask_cmpgt_epu8_mask(nonZero, categories, _mm512_set1_epi8(kLargestSequentialCategory))) == 0;
    const __m512i symbols =
        _mm512_or_si512(_mm512_slli_epi16(runs, 4), _mm512_maskz_compress_epi8(nonZero, categories));
    const __m512i none = _mm512_or_si512(_mm512_slli_epi16(all, 4), _mm512_set1_epi8(kLargestSequentialCategory + 1));
    _mm512_store_si512(symbols_, _mm512_mask_mov_epi8(none, filled, symbols));
  }

  // Whether this is all there is to say: no run above 15, no category above kLargestSequentialCategory.
  bool isUsual() const { return isUsual_; }
  uint32_t count() const { return count_; }
  uint32_t operator[](uint32_t i) const { return symbols_[i]; }
  bool endsEarly() const { return endsEarly_; }

 private:
  static HWY_INLINE __m256i categoriesOf(const int16_t* rows) {
    const __m512i magnitudes = _mm512_abs_epi16(_mm512_loadu_si512(rows));
    return _mm512_cvtepi16_epi8(_mm512_popcnt_epi16(significantBits(magnitudes)));
  }

  alignas(64) uint8_t symbols_[kBlockSize];
  uint32_t count_;
  bool endsEarly_;
  bool isUsual_;
};
#endif
