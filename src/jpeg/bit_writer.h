// Writes an entropy-coded segment step by step: the careful path of every encoder.
#pragma once

#include <bit>
#include <utility>

#include "core/unaligned.h"
#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"

namespace zorj {

// Category of a value of at most 17 bits: the number of significant bits of its magnitude. Without a branch, as signs
// cannot be predicted; the 1 below the magnitude spares the case of 0.
constexpr uint32_t magnitudeCategory(int32_t value) {
  const uint32_t sign = static_cast<uint32_t>(value >> 31);
  const uint32_t magnitude = (static_cast<uint32_t>(value) ^ sign) - sign;
  return 31 - static_cast<uint32_t>(std::countl_zero(magnitude << 1 | 1));
}

// The extra bits of a value are the low bits, as many as its category has, of this (T.81 F.1.2.1.1).
constexpr uint32_t extraBits(int32_t value) { return static_cast<uint32_t>(value + (value >> 31)); }

// Makes the block's DC value, after the point transform, the last, and returns by how much it differs from the one
// before.
inline int32_t advanceDc(const int16_t* block, int32_t shift, int16_t& lastDc) {
  const auto dc = static_cast<int16_t>(loadUnaligned(block) >> shift);
  return dc - std::exchange(lastDc, dc);
}

// Where an encoder writes.
struct Destination {
  uint8_t* bytes;
  int32_t length;
  int32_t& position;

  // Bytes left; none before the destination.
  int32_t room() const { return position < 0 ? 0 : length - position; }
};

// Appends to a destination of limited length.
class BitWriter {
 public:
  BitWriter(Destination dst, HuffmanEncodeState& state) : dst_(dst), state_(state) {}

  // Appends the low `count` bits of `value`, 0 to 16. No bits at all is how a symbol without a code shows. A
  // destination that fills up keeps the bytes written; the pending bits stay as they were.
  StatusCode put(uint32_t value, uint32_t count) {
    if (count == 0) return StatusBadHuffmanTable;
    uint32_t total = state_.bitCount + count;
    uint32_t accumulator = state_.accumulator | (value & ((1u << count) - 1)) << (24 - total);
    for (; total >= 8; total -= 8) {
      if (!putByte(static_cast<uint8_t>(accumulator >> 16))) return StatusBufferEnd;
      accumulator <<= 8;
    }
    state_.accumulator = accumulator;
    state_.reserved = 0;
    state_.bitCount = total;
    return StatusOk;
  }

  StatusCode putCode(TableEntry entry) { return put(entry.value, entry.length); }

  // Fills the last byte with ones and starts afresh.
  StatusCode flush() {
    const StatusCode status = put(0x7F, 7);
    clearState(state_);
    return status;
  }

 private:
  // Writes a byte, and the zero that tells a data byte 0xFF from a marker.
  bool putByte(uint8_t byte) {
    if (atEnd()) return false;
    dst_.bytes[dst_.position++] = byte;
    if (byte != 0xFF) return true;
    if (atEnd()) return false;
    dst_.bytes[dst_.position++] = 0;
    return true;
  }

  bool atEnd() const { return dst_.room() < 1; }

  Destination dst_;
  HuffmanEncodeState& state_;
};

// Appends at a bit position to a destination that has room. Symbols without a code leave no trace.
class DirectBitWriter {
 public:
  DirectBitWriter(uint8_t* dst, int32_t bitPosition)
      : byte_(dst + (bitPosition >> 3)), pendingCount_(static_cast<uint32_t>(bitPosition) & 7), dst_(dst) {
    if (pendingCount_ != 0) pending_ = *byte_ >> (8 - pendingCount_);
  }

  StatusCode put(uint32_t value, uint32_t count) {
    pending_ = pending_ << count | (value & ((1u << count) - 1));
    pendingCount_ += count;
    while (pendingCount_ >= 8) {
      pendingCount_ -= 8;
      const uint8_t byte = static_cast<uint8_t>(pending_ >> pendingCount_);
      *byte_++ = byte;
      if (byte == 0xFF) *byte_++ = 0;
    }
    return StatusOk;
  }

  StatusCode putCode(TableEntry entry) { return put(entry.value, entry.length); }

  // Writes the begun byte and returns the bit position.
  int32_t finish() {
    if (pendingCount_ != 0) *byte_ = static_cast<uint8_t>(pending_ << (8 - pendingCount_));
    return static_cast<int32_t>(static_cast<uint32_t>(byte_ - dst_) << 3 | pendingCount_);
  }

 private:
  uint8_t* byte_;
  uint32_t pending_ = 0;  // the low pendingCount_ bits
  uint32_t pendingCount_;
  const uint8_t* dst_;
};

}  // namespace zorj
