// The MQ decoder (T.800 Annex C.3).
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "jpeg2k/mq_states.h"

namespace zorj {

// The code register holds the complement of the standard's, which turns the two halves of the interval round: a more
// probable symbol leaves it alone. Both registers stand at the upper end of a machine word, so that several bytes can
// be read at once; the standard's register of 32 bits is the upper end of ours.
//
// A pass works on a copy of its own, which the compiler keeps in registers.
class MqDecoder {
 public:
  // Starts a segment. Bytes behind its end read as 0xFF.
  void start(const uint8_t* data, int32_t length) {
    data_ = data;
    length_ = static_cast<uint32_t>(std::max(length, 0));
    position_ = 0;
    markerMet_ = false;
    code_ = Register{byteAt(0) ^ 0xFF} << (kBits - 16);
    readBytes();
    code_ <<= 7;
    bitsLeft_ -= 7;
    interval_ = Register{0x8000} << (kBits - 16);
  }

  // Decodes one decision. Without branches but for the reading of bytes: half of the decisions would be mispredicted.
  [[gnu::always_inline]] uint32_t decode(MqContext& context) {
    const MqContext before = context;
    const Register qe = Register{before.qe()} << (kBits - 16);
    const Register upper = interval_ - qe;
    // The halves of the interval change roles where the other one is larger.
    const Register afterMps = before.wordAfterMps(), afterLps = before.wordAfterLps();
    const Register ifUpper = selectIfBelow(upper, qe, afterLps, afterMps);
    const Register ifLower = selectIfBelow(upper, qe, afterMps, afterLps);
    const Register renormalised = selectIfBelow(code_, upper, ifUpper, ifLower);
    const Register interval = selectIfBelow(code_, upper, upper, qe);
    const uint32_t ifUpperDecision = before.mps() ^ uint32_t { upper < qe };
    const uint32_t decision = ifUpperDecision ^ uint32_t { code_ >= upper };
    code_ = selectIfBelow(code_, upper, code_, code_ - upper);
    const int32_t shift = __builtin_clzll(interval) - (64 - kBits);
    interval_ = interval << shift;
    context.word = static_cast<uint32_t>(selectIfNegative(interval, Register{before.word}, renormalised));
    if (bitsLeft_ < shift) [[unlikely]] {
      *this = shiftedAcrossBytes(*this, shift);
    } else {
      code_ <<= shift;
      bitsLeft_ -= shift;
    }
    return decision;
  }

  // Whether the registers are as a predictable termination (T.800 D.4.2) leaves them at the end of a segment.
  bool endsPredictably() const {
    const int32_t counter = bitsLeft_ & 7;
    const uint32_t current = position_ - static_cast<uint32_t>(bitsLeft_ >> 3);  // bytes read ahead do not count
    if (!markerMet_ && (byteAt(current) < 0xFF || counter != 0)) return false;
    if (counter == 1) return true;
    if (!markerMet_ && byteAt(current + 1) < kFirstMarker) return false;
    const uint32_t end = 0x8000u >> ((counter == 0 ? 8 : counter) - 1);
    return upperBits(interval_) - end <= upperBits(code_);
  }

 private:
  using Register = size_t;
  static constexpr int kBits = 8 * static_cast<int>(sizeof(Register));
  static constexpr uint32_t kBytesAtOnce = sizeof(Register) - 2;  // as many as fit below the 16 bits compared
  static constexpr uint32_t kFirstMarker = 0x90;                  // after a byte 0xFF

  static uint32_t upperBits(Register value) { return static_cast<uint32_t>(value >> (kBits - 16)); }

  uint32_t byteAt(uint32_t position) const { return position < length_ ? data_[position] : 0xFFu; }

  // Reads on; all bits read so far must be used up.
  void readBytes() {
    if (markerMet_) {
      bitsLeft_ = 8 * int32_t{kBytesAtOnce};  // of zeros, for ever
    } else if (!readSeveralBytes()) {
      readByte();
    }
  }

  bool readSeveralBytes() {
    if (length_ - position_ <= sizeof(Register) || position_ >= length_) return false;
    Register bytes;
    std::memcpy(&bytes, data_ + position_ + 1, sizeof bytes);
    static_assert(std::endian::native == std::endian::little);
    const Register complement = ~(sizeof bytes == 8 ? __builtin_bswap64(bytes) : __builtin_bswap32(bytes));
    const Register ones = ~Register{0} / 0xFF;
    const bool hasFF = ((complement - ones) & ~complement & (ones << 7)) != 0;
    if (hasFF || data_[position_] == 0xFF) return false;
    code_ += complement >> 16;
    bitsLeft_ = 8 * int32_t{kBytesAtOnce};
    position_ += kBytesAtOnce;
    return true;
  }

  void readByte() {
    const bool stuffed = byteAt(position_) == 0xFF;
    const uint32_t next = byteAt(position_ + 1);
    bitsLeft_ = 8;
    if (stuffed && next >= kFirstMarker) {
      markerMet_ = true;
      return;
    }
    ++position_;
    if (stuffed) {
      code_ += (Register{0xFE00} - 512 * next) << (kBits - 32);  // may wrap: a carry of the encoder
      bitsLeft_ = 7;
    } else {
      code_ += Register{0xFF00 - 256 * next} << (kBits - 32);
    }
  }

  // By value: where the address of a decoder were taken its registers would not be held in registers.
  [[gnu::noinline]] static MqDecoder shiftedAcrossBytes(MqDecoder decoder, int32_t shift) {
    while (decoder.bitsLeft_ < shift) {
      decoder.code_ <<= decoder.bitsLeft_;
      shift -= decoder.bitsLeft_;
      decoder.readBytes();
    }
    decoder.code_ <<= shift;
    decoder.bitsLeft_ -= shift;
    return decoder;
  }

  Register interval_ = 0;
  Register code_ = 0;
  const uint8_t* data_ = nullptr;
  uint32_t length_ = 0;
  uint32_t position_ = 0;  // of the byte read last
  int32_t bitsLeft_ = 0;   // bits read that are not in the 16 compared yet
  bool markerMet_ = false;
};

}  // namespace zorj
