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
                 const HuffmanEncodeSpec& acSpec, const Destination& dst, HuffmanEncodeState& state) {
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

// A difference as it is written; no bits if its code is missing.
struct CodedDifference {
  uint64_t bits;
  uint32_t count;

  HWY_INLINE CodedDifference(int32_t value, const HuffmanEncodeSpec& spec) : bits(0), count(0) {
    const uint32_t category = magnitudeCategory(value), extra = category & 15;  // the largest one has no extra bits
    const TableEntry entry = spec.codes[category];
    bits = uint64_t{entry.value} << extra | (extraBits(value) & ((1u << extra) - 1));
    count = entry.length == 0 ? 0 : entry.length + extra;
  }
};

// Puts two differences at a time, which saves every other step of the accumulator. False if a code is missing.
HWY_INLINE bool putDifferences(BitBuffer& buffer, const int16_t* values, size_t count, const HuffmanEncodeSpec& spec) {
  constexpr uint32_t kMostAtOnce = 56;
  size_t i = 0;
  for (; i + 2 <= count; i += 2) {
    const CodedDifference first(values[i], spec), second(values[i + 1], spec);
    if (first.count == 0 || second.count == 0) [[unlikely]]
      return false;
    if (first.count + second.count > kMostAtOnce) [[unlikely]] {
      buffer.put(first.bits, first.count);
      buffer.store();
      buffer.put(second.bits, second.count);
    } else {
      buffer.put(first.bits << second.count | second.bits, first.count + second.count);
    }
    buffer.store();
  }
  if (i == count) return true;
  const CodedDifference last(values[i], spec);
  if (last.count == 0) return false;
  buffer.put(last.bits, last.count);
  buffer.store();
  return true;
}

// Differences of `samples` samples from `first` on, components in turn.
HWY_INLINE void interleave(const int16_t* const rows[], ptrdiff_t first, ptrdiff_t samples, ptrdiff_t components,
                           int16_t* values) {
  ptrdiff_t begin = 0;
#if ZORJ_SIMD
  const hn::Full128<int16_t> d;
  constexpr ptrdiff_t kLanes = 8;
  if (components == 3) {
    for (; begin + kLanes <= samples; begin += kLanes) {
      const ptrdiff_t at = first + begin;
      hn::StoreInterleaved3(hn::LoadU(d, rows[0] + at), hn::LoadU(d, rows[1] + at), hn::LoadU(d, rows[2] + at), d,
                            values + 3 * begin);
    }
  }
#endif
  for (ptrdiff_t c = 0; c < components; ++c) {
    for (ptrdiff_t i = begin; i < samples; ++i) values[i * components + c] = loadUnaligned(rows[c] + first + i);
  }
}

int64_t encodeDifferences(const int16_t* const rows[], int64_t count, int32_t components,
                          const HuffmanEncodeSpec* const specs[], const Destination& dst, HuffmanEncodeState& state) {
  // Differences whose bits the buffer can hold: whole samples of one to four components.
  constexpr int64_t kChunk = 48;
  bool isOneTable = true;
  for (int32_t c = 1; c < components; ++c) isOneTable = isOneTable && specs[c] == specs[0];
  for (int64_t done = 0; done < count; done += kChunk) {
    BitBufferMemory memory;
    BitBuffer buffer(memory, pendingBits(state), state.bitCount);
    const auto now = static_cast<ptrdiff_t>(HWY_MIN(kChunk, count - done));
    int16_t values[kChunk] = {};
    interleave(rows, static_cast<ptrdiff_t>(done / components), now / components, components, values);
    if (isOneTable) {
      if (!putDifferences(buffer, values, static_cast<size_t>(now), *specs[0])) return done;
    } else {
      for (ptrdiff_t i = 0; i < now; ++i) {
        if (!putDifferences(buffer, values + i, 1, *specs[i % components])) return done;
      }
    }
    if (!commit(buffer, dst, state)) return done;
  }
  return count;
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
