// What the forward and the inverse kernels of MCUs share: the layout of blocks, and registers of which each 16-byte
// block holds eight pixels of a line of its own. Included after jpeg/color_lanes-inl.h, once per target.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// The pixels that share a chroma sample.
template <int32_t kHorizontal, int32_t kVertical>
struct Sampling {
  static constexpr int32_t horizontal = kHorizontal, vertical = kVertical, pixels = kHorizontal * kVertical;

  // Which sample of the luminance is that of a pixel.
  static constexpr int32_t lumaAt(int32_t column, int32_t line) {
    return 64 * (horizontal * (line / 8) + column / 8) + 8 * (line % 8) + column % 8;
  }
};
using Sampling444 = Sampling<1, 1>;
using Sampling422 = Sampling<2, 1>;
using Sampling411 = Sampling<2, 2>;

// Constants of weighted sums, in units that let them stand among the 16-bit weights.
inline constexpr int16_t kConstantUnit = 256;

#if ZORJ_SIMD

using ByteTag = Widest;
using LaneTag = WordTag<ByteTag>;
using Lanes = hn::Vec<LaneTag>;
using SumTag = PairTag<ByteTag>;

// Lines of the MCU, or rows of the chroma blocks, that a register spans.
inline constexpr int32_t kLines = static_cast<int32_t>(hn::MaxLanes(LaneTag()) / 8);

// Rows of eight samples of a block, every kStride-th of them.
template <int32_t kStride>
HWY_INLINE Lanes loadRows(const int16_t* from) {
  if constexpr (kStride == 1) return hn::LoadU(LaneTag(), from);
  return hn::BitCast(LaneTag(), loadBlocks(ByteTag(), reinterpret_cast<const uint8_t*>(from), 16 * kStride));
}

template <int32_t kStride>
HWY_INLINE void storeRows(Lanes rows, int16_t* to) {
  if constexpr (kStride == 1) {
    hn::StoreU(rows, LaneTag(), to);
  } else {
    storeBlocks(ByteTag(), hn::BitCast(ByteTag(), rows), reinterpret_cast<uint8_t*>(to), 16 * kStride);
  }
}

#endif

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
