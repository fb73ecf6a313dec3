#include "jpeg/huffman_encode_kernels.h"

#include <bit>
#include <cstring>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/big_endian.h"
#include "jpeg/bit_writer.h"
#include "jpeg/zigzag.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/huffman_encode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#include "jpeg/bit_buffer-inl.h"
#include "jpeg/zigzag_masks-inl.h"
//
#include "jpeg/zigzag_coefficients-inl.h"

// With a code of 16 bits and the extra bits of this category, two symbols fit into the accumulator beside 7 bits.
constexpr uint32_t kLargestCategory = 12;

// Appends a code and the extra bits that follow it.
HWY_INLINE void putCode(BitBuffer& buffer, TableEntry entry, uint32_t bits, uint32_t category) {
  buffer.put(uint64_t{entry.value} << category | bits, entry.length + category);
}
HWY_INLINE void putValue(BitBuffer& buffer, TableEntry entry, int32_t value, uint32_t category) {
  putCode(buffer, entry, extraBits(value) & ((1u << category) - 1), category);
}

// The AC coefficients of a block.
class AcEncoder {
 public:
  AcEncoder(BitBuffer& buffer, const int16_t* block, const HuffmanEncodeSpec& spec)
      : buffer_(buffer), coefficients_(block), codes_(spec.codes), left_(coefficients_.nonZero() & ~uint64_t{1}) {}

  // False if a code is missing or a value is too large.
  HWY_INLINE bool encode() {
    while (left_ != 0) {
      if (!putNext()) return false;
      if (left_ != 0 && !putNext()) return false;
      buffer_.store();
    }
    if (next_ == kBlockSize) return true;
    return putWithoutExtraBits(codes_[kEndOfBlock]);
  }

 private:
  HWY_INLINE bool putNext() {
    const uint32_t position = static_cast<uint32_t>(std::countr_zero(left_));
    left_ &= left_ - 1;
    uint32_t run = position - next_;
    next_ = position + 1;
    if (run > 15) [[unlikely]] {
      buffer_.store();
      if (!putZeroRuns(run / 16)) return false;
      run %= 16;
    }
    const auto [category, bits] = coefficients_.at(position);
    if (category > kLargestCategory) [[unlikely]]
      return false;
    const TableEntry entry = codes_[run << 4 | category];
    putCode(buffer_, entry, bits, category);
    return entry.length != 0;
  }
  HWY_INLINE bool putZeroRuns(uint32_t count) {
    for (; count > 0; --count) {
      if (!putWithoutExtraBits(codes_[kZeroRun16])) return false;
    }
    return true;
  }
  HWY_INLINE bool putWithoutExtraBits(TableEntry entry) {
    if (entry.length == 0) return false;
    buffer_.put(entry.value, entry.length);
    buffer_.store();
    return true;
  }

  BitBuffer& buffer_;
  const ZigzagCoefficients<PointTransform::kNone> coefficients_;
  const TableEntry* codes_;
  uint64_t left_;      // zig-zag positions to do
  uint32_t next_ = 1;  // the zig-zag position after the last coefficient
};

HWY_INLINE bool collectBlock(BitBuffer& buffer, const int16_t* block, int32_t dcDifference,
                             const HuffmanEncodeSpec& dcSpec, const HuffmanEncodeSpec& acSpec) {
  const uint32_t category = magnitudeCategory(dcDifference);
  const TableEntry entry = dcSpec.codes[category];
  if (entry.length == 0) return false;
  putValue(buffer, entry, dcDifference, category);
  buffer.store();
  return AcEncoder(buffer, block, acSpec).encode();
}

bool encodeBlock(const int16_t* block, int32_t dcDifference, const HuffmanEncodeSpec& dcSpec,
                 const HuffmanEncodeSpec& acSpec, Destination dst, HuffmanEncodeState& state) {
  BitBufferMemory memory;
  BitBuffer buffer(memory, pendingBits(state), state.bitCount);
  return collectBlock(buffer, block, dcDifference, dcSpec, acSpec) && commit(buffer, dst, state);
}

bool encodeDirectBlock(const int16_t* block, int32_t dcDifference, const HuffmanEncodeSpec& dcSpec,
                       const HuffmanEncodeSpec& acSpec, uint8_t* dst, int32_t& bitPosition) {
  uint8_t* begun = dst + (bitPosition >> 3);
  const uint32_t count = static_cast<uint32_t>(bitPosition) & 7;
  const uint64_t pending = count == 0 ? 0 : uint64_t{*begun} >> (8 - count) << (64 - count);
  BitBufferMemory memory;
  BitBuffer buffer(memory, pending, count);
  if (!collectBlock(buffer, block, dcDifference, dcSpec, acSpec)) return false;
  uint8_t* end = copyStuffed(begun, buffer.bytes(), buffer.size());
  if (buffer.pendingCount() != 0) *end = static_cast<uint8_t>(buffer.pending() >> 56);
  bitPosition = static_cast<int32_t>(static_cast<uint32_t>(end - dst) << 3 | buffer.pendingCount());
  return true;
}

int64_t encodeDifferences(const int16_t* const rows[], int64_t count, int32_t components,
                          const HuffmanEncodeSpec* const specs[], Destination dst, HuffmanEncodeState& state) {
  constexpr int64_t kChunk = 64;  // values whose bits the buffer can hold
  int64_t done = 0;
  int32_t component = 0;
  ptrdiff_t sample = 0;
  while (done < count) {
    BitBufferMemory memory;
    BitBuffer buffer(memory, pendingBits(state), state.bitCount);
    const int64_t end = HWY_MIN(done + kChunk, count);
    for (int64_t i = done; i < end; ++i) {
      const int32_t value = loadUnaligned(rows[component] + sample);
      const uint32_t category = magnitudeCategory(value);
      const TableEntry entry = specs[component]->codes[category];
      if (entry.length == 0) return done;
      putValue(buffer, entry, value, category & 15);
      buffer.store();
      if (++component == components) {
        component = 0;
        ++sample;
      }
    }
    if (!commit(buffer, dst, state)) return done;
    done = end;
  }
  return done;
}

constexpr HuffmanEncodeKernels kernels = {&encodeBlock, &encodeDirectBlock, &encodeDifferences};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const HuffmanEncodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const HuffmanEncodeKernels& huffmanEncodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
