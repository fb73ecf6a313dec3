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
// Brings the bytes of a block into zig-zag order.
HWY_INLINE void orderBytes(const ZigzagShuffles& shuffles, __m128i (&bytes)[4]) {
  __m128i ordered[4];
  for (size_t to = 0; to < 4; ++to) {
    ordered[to] = _mm_setzero_si128();
    for (size_t from = 0; from < 4; ++from) {
      const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(shuffles.at[to][from]));
      ordered[to] = _mm_or_si128(ordered[to], _mm_shuffle_epi8(bytes[from], shuffle));
    }
  }
  for (size_t i = 0; i < 4; ++i) bytes[i] = ordered[i];
}

// The most significant bit of each byte.
HWY_INLINE uint64_t topBits(const __m128i (&bytes)[4]) {
  uint64_t bits = 0;
  for (size_t i = 0; i < 4; ++i) {
    bits |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(bytes[i]))) << (16 * i);
  }
  return bits;
}
#endif

// Which coefficients are not zero: bit k for zig-zag position k, reversed bit 63 - k.
template <PointTransform kTransform, bool kReversed = false>
HWY_INLINE uint64_t nonZeroMask(const int16_t* block, int32_t shift) {
#if ZORJ_SIMD
  const __m128i count = _mm_cvtsi32_si128(shift);
  const auto zeros = [count](const int16_t* row) HWY_ATTR {
    const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row));
    const __m128i transformed =
        kTransform == PointTransform::kNone ? values : _mm_srl_epi16(_mm_abs_epi16(values), count);
    return _mm_cmpeq_epi16(transformed, _mm_setzero_si128());
  };
  __m128i flags[4];
  for (size_t i = 0; i < 4; ++i) flags[i] = _mm_packs_epi16(zeros(block + 16 * i), zeros(block + 16 * i + 8));
  orderBytes(kZigzagShuffles<kReversed>, flags);
  return ~topBits(flags);
#else
  uint64_t mask = 0;
  for (size_t k = 0; k < kBlockSize; ++k) {
    const int32_t value = loadUnaligned(block + kNaturalOrder[k]);
    mask |= uint64_t{(value < 0 ? -value : value) >> shift != 0} << (kReversed ? kBlockSize - 1 - k : k);
  }
  return mask;
#endif
}
