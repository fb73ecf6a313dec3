// Which coefficients of a block have some property, in zig-zag order. Included by kernel files, once per target, inside
// the target's namespace.

// Whether magnitudes are divided by a power of two first, as the scans of the progressive process do (T.81 G.1.2.2).
enum class PointTransform { kNone, kShift };

#if ZORJ_SIMD
// The byte shuffles that bring flags into zig-zag order: of output vector `to`, the bytes that come from input vector
// `from`; 0x80 gives zero.
struct ZigzagShuffles {
  alignas(16) uint8_t at[4][4][16];
};
template <bool kReversed>
constexpr ZigzagShuffles kZigzagShuffles = [] {
  ZigzagShuffles shuffles{};
  for (size_t k = 0; k < kBlockSize; ++k) {
    for (size_t from = 0; from < 4; ++from) {
      const size_t index = kNaturalOrder[kReversed ? kBlockSize - 1 - k : k];
      shuffles.at[k / 16][from][k % 16] = static_cast<uint8_t>(index / 16 == from ? index % 16 : 0x80);
    }
  }
  return shuffles;
}();
#endif

#if ZORJ_SIMD
// A byte for each coefficient. Written out where GCC 12 would leave loops.
struct BlockBytes {
  __m128i at[4];
};

// Brings the bytes of a block into zig-zag order.
HWY_INLINE BlockBytes orderBytes(const ZigzagShuffles& shuffles, const BlockBytes& bytes) {
  const auto shuffled = [&](size_t to, size_t from) HWY_ATTR {
    return _mm_shuffle_epi8(bytes.at[from], _mm_load_si128(reinterpret_cast<const __m128i*>(shuffles.at[to][from])));
  };
  const auto ordered = [&](size_t to) HWY_ATTR {
    return _mm_or_si128(_mm_or_si128(shuffled(to, 0), shuffled(to, 1)), _mm_or_si128(shuffled(to, 2), shuffled(to, 3)));
  };
  return {{ordered(0), ordered(1), ordered(2), ordered(3)}};
}

// The most significant bit of each byte.
HWY_INLINE uint64_t topBits(const BlockBytes& bytes) {
  const auto bits = [&](size_t i) HWY_ATTR {
    return uint64_t{static_cast<uint32_t>(_mm_movemask_epi8(bytes.at[i]))} << (16 * i);
  };
  return (bits(0) | bits(1)) | (bits(2) | bits(3));
}
#endif

#if HWY_TARGET <= HWY_AVX3
// Which byte each byte of a block's flags comes from in zig-zag order.
template <bool kReversed>
alignas(64) constexpr std::array<uint8_t, kBlockSize> kZigzagBytes = [] {
  std::array<uint8_t, kBlockSize> bytes{};
  for (size_t k = 0; k < kBlockSize; ++k) bytes[k] = kNaturalOrder[kReversed ? kBlockSize - 1 - k : k];
  return bytes;
}();
#endif

// Which coefficients are not zero: bit k for zig-zag position k, reversed bit 63 - k.
template <PointTransform kTransform, bool kReversed = false>
HWY_INLINE uint64_t nonZeroMask(const int16_t* block, int32_t shift) {
#if HWY_TARGET <= HWY_AVX3
  const auto isNonZero = [shift](const int16_t* rows) HWY_ATTR {
    const __m512i values = _mm512_loadu_si512(rows);
    const __m512i transformed = kTransform == PointTransform::kNone
                                    ? values
                                    : _mm512_srl_epi16(_mm512_abs_epi16(values), _mm_cvtsi32_si128(shift));
    return uint64_t{_mm512_test_epi16_mask(transformed, transformed)};
  };
  const __m512i flags = _mm512_movm_epi8(isNonZero(block) | isNonZero(block + kBlockSize / 2) << 32);
  const __m512i order = _mm512_load_si512(kZigzagBytes<kReversed>.data());
  return _mm512_movepi8_mask(_mm512_permutexvar_epi8(order, flags));
#elif ZORJ_SIMD
  const __m128i count = _mm_cvtsi32_si128(shift);
  const auto zeros = [count](const int16_t* row) HWY_ATTR {
    const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row));
    const __m128i transformed =
        kTransform == PointTransform::kNone ? values : _mm_srl_epi16(_mm_abs_epi16(values), count);
    return _mm_cmpeq_epi16(transformed, _mm_setzero_si128());
  };
  const auto flags = [&](size_t i)
                         HWY_ATTR { return _mm_packs_epi16(zeros(block + 16 * i), zeros(block + 16 * i + 8)); };
  return ~topBits(orderBytes(kZigzagShuffles<kReversed>, {{flags(0), flags(1), flags(2), flags(3)}}));
#else
  uint64_t mask = 0;
  for (size_t k = 0; k < kBlockSize; ++k) {
    const int32_t value = loadUnaligned(block + kNaturalOrder[k]);
    mask |= uint64_t{(value < 0 ? -value : value) >> shift != 0} << (kReversed ? kBlockSize - 1 - k : k);
  }
  return mask;
#endif
}
