// The coefficients of a block as the coders of blocks take them: which ones are not zero, and the category and extra
// bits of these. Included by kernel files after zigzag_masks-inl.h, once per target, inside the target's namespace.

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
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
      // All the bits that the magnitude has.
      __m512i ones = magnitude;
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 1));
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 2));
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 4));
      ones = _mm512_or_si512(ones, _mm512_srli_epi16(ones, 8));
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
