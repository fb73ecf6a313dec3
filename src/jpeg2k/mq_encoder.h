// The MQ encoder (T.800 Annex C.2).
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "jpeg2k/mq_states.h"

namespace zorj {

// How the MQ coder ends a segment: the numbers are those of the caller's termination mode.
enum class Termination : uint8_t { kFlush = 0, kShortest = 1, kPredictable = 2 };

// The byte written last stays open to a carry. Before the first one that is the byte in front of the segment, which is
// taken for zero, receives no carry, and is put back in the end.
class MqEncoder {
 public:
  void start(uint8_t* segment) {
    first_ = segment;
    last_ = segment - 1;
    before_ = *last_;
    *last_ = 0;
    interval_ = 0x80000000u;
    code_ = 0;
    bitsToByte_ = 12;
  }

  // Codes one decision and returns what becomes of its context. Without branches but for the writing of bytes: half of
  // the decisions would be mispredicted.
  [[gnu::always_inline]] MqContext encode(MqContext before, uint32_t decision) {
    const uint32_t isLps = uint32_t{0} - (before.mps() ^ decision);
    const uint32_t renormalised = selectIfNegative(isLps, before.wordAfterLps(), before.wordAfterMps());
    const uint32_t qe = before.qe(), part = qe << 16;
    const uint32_t upper = interval_ - part;
    const uint32_t usual = selectIfNegative(isLps, part, upper), exchanged = selectIfNegative(isLps, upper, part);
    // The less probable symbol has the lower part of the interval, unless that is the larger one.
    const uint32_t interval = selectIfBelow(upper, part, exchanged, usual);
    code_ += selectIfBelow(upper, part, qe & isLps, qe & ~isLps);
    const int32_t shift = __builtin_clz(interval);
    interval_ = interval << shift;
    before.word = selectIfNegative(interval, before.word, renormalised);
    if (shift >= bitsToByte_) [[unlikely]] {
      shiftCodeAcrossBytes(shift);
    } else {
      code_ <<= shift;
      bitsToByte_ -= shift;
    }
    return before;
  }

  // How many bytes behind the segment's start a decoder needs at the most for all decisions so far.
  ptrdiff_t bytesNeeded() const {
    if (last_ < first_) return bitsToByte_ >= 4 ? 3 : 4;
    return last_ - first_ + 4 + (bitsToByte_ < (*last_ >= 0xFE ? 5 : 4));
  }

  // Ends the segment and returns its end. It never ends with a byte 0xFF, which decoders assume behind the end.
  uint8_t* terminate(Termination termination) {
    if (termination == Termination::kPredictable) {
      writeRegister();
    } else if (termination == Termination::kShortest) {
      writeShortest();
    } else {
      flush();
    }
    uint8_t* const end = last_ < first_ || *last_ == 0xFF ? last_ : last_ + 1;
    first_[-1] = before_;
    return last_ < first_ ? first_ : end;
  }

 private:
  // BYTEOUT
  void writeByte() {
    constexpr uint32_t kCarry = 1u << 27;
    if (*last_ != 0xFF && (code_ & kCarry)) {
      ++*last_;
      code_ &= kCarry - 1;
    }
    const int32_t bits = *last_ == 0xFF ? 7 : 8;  // room for a carry into the byte that follows 0xFF
    *++last_ = static_cast<uint8_t>(code_ >> (27 - bits));
    code_ &= (1u << (27 - bits)) - 1;
    bitsToByte_ = bits;
  }

  void shiftOutByte() {
    code_ <<= bitsToByte_;
    writeByte();
  }

  void shiftCodeAcrossBytes(int32_t shift) {
    while (shift >= bitsToByte_) {
      shift -= bitsToByte_;
      shiftOutByte();
    }
    code_ <<= shift;
    bitsToByte_ -= shift;
  }

  // FLUSH
  void flush() {
    const uint32_t end = code_ + (interval_ >> 16);
    code_ |= 0xFFFF;
    if (code_ >= end) code_ -= 0x8000;
    shiftOutByte();
    shiftOutByte();
  }

  // T.800 D.4.2
  void writeRegister() {
    for (int32_t bits = 12 - bitsToByte_; bits > 0; bits -= bitsToByte_) shiftOutByte();
  }

  // Of the numbers of which every continuation lies in the interval, that with the fewest bits.
  void writeShortest() {
    int32_t zeros = 15;
    const auto rounded = [this, &zeros] { return (code_ + (1u << zeros) - 1) & (~0u << zeros); };
    while (rounded() + (1u << zeros) > code_ + (interval_ >> 16)) --zeros;
    code_ = rounded();
    for (int32_t bits = 27 - bitsToByte_ - zeros; bits > 0; bits -= bitsToByte_) shiftOutByte();
  }

  uint32_t interval_ = 0;  // in the upper half
  uint32_t code_ = 0;
  int32_t bitsToByte_ = 0;
  uint8_t* last_ = nullptr;
  uint8_t* first_ = nullptr;
  uint8_t before_ = 0;
};

}  // namespace zorj
