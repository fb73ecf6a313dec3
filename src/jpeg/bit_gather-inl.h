// Gathers bits from the places a mask names and scatters them there: the coefficients of a block that a scan meets.
// Included by kernel files, once per target, inside the target's namespace.

// The bits of `word` that `mask` selects, side by side at the low end.
HWY_INLINE uint64_t gatherBits(uint64_t word, uint64_t mask) {
#if HWY_TARGET <= HWY_AVX2 && HWY_ARCH_X86_64
  return _pext_u64(word, mask);
#elif HWY_TARGET <= HWY_AVX2
  const auto lowMask = static_cast<uint32_t>(mask), highMask = static_cast<uint32_t>(mask >> 32);
  const uint64_t high = _pext_u32(static_cast<uint32_t>(word >> 32), highMask);
  return high << _mm_popcnt_u32(lowMask) | _pext_u32(static_cast<uint32_t>(word), lowMask);
#else
  uint64_t gathered = 0;
  for (uint32_t i = 0; mask != 0; ++i, mask &= mask - 1) {
    gathered |= (word >> std::countr_zero(mask) & 1) << i;
  }
  return gathered;
#endif
}

// The low bits of `word` at the places that `mask` selects.
HWY_INLINE uint64_t scatterBits(uint64_t word, uint64_t mask) {
#if HWY_TARGET <= HWY_AVX2 && HWY_ARCH_X86_64
  return _pdep_u64(word, mask);
#elif HWY_TARGET <= HWY_AVX2
  const auto lowMask = static_cast<uint32_t>(mask), highMask = static_cast<uint32_t>(mask >> 32);
  const uint64_t high = _pdep_u32(static_cast<uint32_t>(word >> _mm_popcnt_u32(lowMask)), highMask);
  return high << 32 | _pdep_u32(static_cast<uint32_t>(word), lowMask);
#else
  uint64_t scattered = 0;
  for (; mask != 0 && word != 0; word >>= 1, mask &= mask - 1) scattered |= (word & 1) * (mask & (~mask + 1));
  return scattered;
#endif
}

// The place of the bit of `mask` that has `count` others above it; 0 if there is none.
HWY_INLINE uint64_t bitAfter(uint64_t mask, uint32_t count) {
#if HWY_TARGET <= HWY_AVX2
  const auto bits = static_cast<uint32_t>(std::popcount(mask));
  return count >= bits ? 0 : scatterBits(uint64_t{1} << (bits - 1 - count), mask);
#else
  for (; count > 0 && mask != 0; --count) mask &= ~(uint64_t{1} << 63 >> std::countl_zero(mask));
  return mask == 0 ? 0 : uint64_t{1} << 63 >> std::countl_zero(mask);
#endif
}

// All bits above the one that is set in `place`.
HWY_INLINE uint64_t bitsAbove(uint64_t place) { return ~(place | (place - 1)); }
