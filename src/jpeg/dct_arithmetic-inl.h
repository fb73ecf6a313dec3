// What the two DCT kernel files share: the 16-bit arithmetic of the column passes, for one value and for a vector of
// them, and the split of wide vectors into rows. Included once per target.
#if defined(ZORJ_DCT_ARITHMETIC_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZORJ_DCT_ARITHMETIC_INL_H
#undef ZORJ_DCT_ARITHMETIC_INL_H
#else
#define ZORJ_DCT_ARITHMETIC_INL_H
#endif

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

inline int16_t saturate16(int32_t value) {
  return static_cast<int16_t>(
      std::clamp<int32_t>(value, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max()));
}

inline int16_t add(int16_t a, int16_t b) { return saturate16(a + b); }
inline int16_t sub(int16_t a, int16_t b) { return saturate16(a - b); }
inline int16_t mulHigh(int16_t a, int16_t k) { return static_cast<int16_t>(a * k >> 16); }
inline int16_t setLowestBit(int16_t a) { return static_cast<int16_t>(a | 1); }
template <int kBits>
inline int16_t shiftLeft(int16_t a) {
  return static_cast<int16_t>(a * (1 << kBits));
}
template <int kBits>
inline int16_t shiftRight(int16_t a) {
  return static_cast<int16_t>(a >> kBits);
}

#if ZORJ_SIMD

namespace hn = hwy::HWY_NAMESPACE;

using RowTag = hn::FixedTag<int16_t, 8>;  // a row of a block
using Row = hn::Vec<RowTag>;
using RowsTag = hn::CappedTag<int16_t, 32>;  // as many rows as a register holds
inline constexpr size_t kRowsPerVector = hn::MaxLanes(RowsTag()) / 8;

inline Row add(Row a, Row b) { return hn::SaturatedAdd(a, b); }
inline Row sub(Row a, Row b) { return hn::SaturatedSub(a, b); }
inline Row mulHigh(Row a, int16_t k) { return hn::MulHigh(a, hn::Set(RowTag(), k)); }
inline Row setLowestBit(Row a) { return hn::Or(a, hn::Set(RowTag(), 1)); }
template <int kBits>
inline Row shiftLeft(Row a) {
  return hn::ShiftLeft<kBits>(a);
}
template <int kBits>
inline Row shiftRight(Row a) {
  return hn::ShiftRight<kBits>(a);
}

template <class D>
HWY_INLINE hn::Vec<D> joinRows(D d, const Row* rows) {
  if constexpr (hn::MaxLanes(D()) == 8) {
    return rows[0];
  } else {
    const hn::Half<D> half;
    return hn::Combine(d, joinRows(half, rows + hn::MaxLanes(half) / 8), joinRows(half, rows));
  }
}

template <class D>
HWY_INLINE void splitRows(D d, hn::Vec<D> joined, Row* rows) {
  if constexpr (hn::MaxLanes(D()) == 8) {
    (void)d;
    rows[0] = joined;
  } else {
    const hn::Half<D> half;
    splitRows(half, hn::LowerHalf(half, joined), rows);
    splitRows(half, hn::UpperHalf(half, joined), rows + hn::MaxLanes(half) / 8);
  }
}

// Rearranges the eight lanes of every row: lane i becomes lane order[i].
template <class D>
HWY_INLINE hn::Vec<D> permuteRows(D d, hn::Vec<D> rows, const int8_t (&order)[8]) {
  alignas(16) uint8_t bytes[16];
  for (size_t i = 0; i < 8; ++i) {
    bytes[2 * i] = static_cast<uint8_t>(2 * order[i]);
    bytes[2 * i + 1] = static_cast<uint8_t>(2 * order[i] + 1);
  }
  const hn::Repartition<uint8_t, D> d8;
  return hn::BitCast(d, hn::TableLookupBytes(hn::BitCast(d8, rows), hn::LoadDup128(d8, bytes)));
}

// Products of pairs of neighbouring lanes, summed in 32 bits.
template <class V>
HWY_INLINE auto multiplyPairs(V a, V b) {
  const hn::Repartition<int32_t, hn::DFromV<V>> d32;
  auto unused = hn::Zero(d32);
  return hn::ReorderWidenMulAccumulate(d32, a, b, hn::Zero(d32), unused);
}

// Pair number kPair of every row, in all lanes.
template <int kPair, class V>
HWY_INLINE V broadcastPair(V rows) {
  const hn::DFromV<V> d;
  const hn::Repartition<int32_t, decltype(d)> d32;
  return hn::BitCast(d, hn::Broadcast<kPair>(hn::BitCast(d32, rows)));
}

#endif

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
