// The 16-bit arithmetic of the DCT's column passes, on a vector of columns or, at the portable level, on one column.
// Included by the DCT's kernel files after core/simd-inl.h, once per target.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

#if ZORJ_SIMD
namespace hn = hwy::HWY_NAMESPACE;

using Columns = hn::Vec<hn::FixedTag<int16_t, 8>>;

HWY_INLINE Columns constant(int16_t value) { return hn::Set(hn::FixedTag<int16_t, 8>(), value); }
HWY_INLINE Columns add(Columns a, Columns b) { return hn::SaturatedAdd(a, b); }
HWY_INLINE Columns subtract(Columns a, Columns b) { return hn::SaturatedSub(a, b); }
HWY_INLINE Columns multiplyHigh(Columns a, DctFactor factor) {
  return hn::MulHigh(a, hn::Load(hn::FixedTag<int16_t, 8>(), kDctTables.factors[factor]));
}
template <int kBits>
HWY_INLINE Columns shiftLeft(Columns a) {
  return hn::ShiftLeft<kBits>(a);
}
HWY_INLINE Columns setLowestBit(Columns a) { return hn::Or(a, constant(1)); }

// As many rows of the block as a vector holds, up to kRows.
template <int kRows>
using RowsTag = hn::CappedTag<int16_t, 8 * kRows>;
template <int kRows>
inline constexpr int kRowsPerVector = static_cast<int>(hn::MaxLanes(RowsTag<kRows>())) / 8;

// TableLookupBytes with the same 16 byte numbers in every row.
template <class V>
HWY_INLINE V permuteRows(V rows, const uint8_t (&bytes)[16]) {
  using D = hn::DFromV<V>;
  return hn::TableLookupBytes(rows, hn::BitCast(D(), hn::LoadDup128(hn::Repartition<uint8_t, D>(), bytes)));
}

HWY_INLINE void join(const Columns* rows, hn::Vec128<int16_t>& joined) { joined = rows[0]; }
HWY_INLINE void split(hn::Vec128<int16_t> joined, Columns* rows) { rows[0] = joined; }
HWY_INLINE hn::Vec128<int8_t> packToBytes(hn::Vec128<int16_t> a, hn::Vec128<int16_t> b) {
  return hn::Vec128<int8_t>{_mm_packs_epi16(a.raw, b.raw)};
}
#if HWY_TARGET <= HWY_AVX2
HWY_INLINE void join(const Columns* rows, hn::Vec256<int16_t>& joined) {
  joined = hn::Combine(hn::FixedTag<int16_t, 16>(), rows[1], rows[0]);
}
HWY_INLINE void split(hn::Vec256<int16_t> joined, Columns* rows) {
  rows[0] = hn::LowerHalf(joined);
  rows[1] = hn::UpperHalf(hn::FixedTag<int16_t, 8>(), joined);
}
HWY_INLINE hn::Vec256<int8_t> packToBytes(hn::Vec256<int16_t> a, hn::Vec256<int16_t> b) {
  return hn::Vec256<int8_t>{_mm256_packs_epi16(a.raw, b.raw)};
}
#endif
#if HWY_TARGET <= HWY_AVX3
HWY_INLINE void join(const Columns* rows, hn::Vec512<int16_t>& joined) {
  hn::Vec256<int16_t> lower, upper;
  join(rows, lower);
  join(rows + 2, upper);
  joined = hn::Combine(hn::FixedTag<int16_t, 32>(), upper, lower);
}
HWY_INLINE void split(hn::Vec512<int16_t> joined, Columns* rows) {
  split(hn::LowerHalf(joined), rows);
  split(hn::UpperHalf(hn::FixedTag<int16_t, 16>(), joined), rows + 2);
}
HWY_INLINE hn::Vec512<int8_t> packToBytes(hn::Vec512<int16_t> a, hn::Vec512<int16_t> b) {
  return hn::Vec512<int8_t>{_mm512_packs_epi16(a.raw, b.raw)};
}
#endif

#else

using Columns = int16_t;

inline int16_t constant(int16_t value) { return value; }

inline int16_t saturate(int value) { return static_cast<int16_t>(std::clamp(value, -32768, 32767)); }
inline int16_t add(int16_t a, int16_t b) { return saturate(a + b); }
inline int16_t subtract(int16_t a, int16_t b) { return saturate(a - b); }
inline int16_t multiplyHigh(int16_t a, DctFactor factor) {
  return static_cast<int16_t>((a * kDctFactors[factor]) >> 16);
}
template <int kBits>
int16_t shiftLeft(int16_t a) {
  return static_cast<int16_t>(static_cast<unsigned>(a) << kBits);
}
inline int16_t setLowestBit(int16_t a) { return static_cast<int16_t>(a | 1); }

#endif

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
