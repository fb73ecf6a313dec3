// The bits of passes that bypass the MQ coder (T.800 Annex D.6): most significant first, and only seven of them in a
// byte that follows 0xFF.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zorj {

class RawDecoder {
 public:
  // Starts a segment. Bytes behind its end read as 0xFF.
  void start(const uint8_t* data, int32_t length) {
    next_ = data;
    left_ = std::max(length, 0);
    current_ = 0;
    bitsLeft_ = 0;
  }

  uint32_t bit() {
    if (bitsLeft_ == 0) {
      bitsLeft_ = current_ == 0xFF ? 7 : 8;
      current_ = left_ > 0 ? *next_++ : 0xFF;
      left_ -= left_ > 0;
    }
    return current_ >> --bitsLeft_ & 1u;
  }

  // Whether the rest of the last byte is what an encoder fills it with: 0, 1, 0, 1...
  bool endsPadded() const { return (current_ & ((1u << bitsLeft_) - 1)) == 0x55u >> (8 - bitsLeft_); }

 private:
  const uint8_t* next_ = nullptr;
  int32_t left_ = 0;
  uint32_t current_ = 0;
  int32_t bitsLeft_ = 0;
};

class RawEncoder {
 public:
  void start(uint8_t* segment) {
    next_ = segment;
    pending_ = 0;
    bitsInByte_ = bitsFree_ = 8;
  }

  void encode(uint32_t bit) {
    if (bitsFree_ == 0) writeByte();
    pending_ |= bit << --bitsFree_;
  }

  // The end of the bytes that a decoder needs for all bits so far; 0xFF it has of itself.
  uint8_t* end() const { return next_ + (isPartial() || (bitsFree_ == 0 && pending_ != 0xFF)); }

  // Ends the segment and returns its end.
  uint8_t* terminate() {
    if (isPartial()) pending_ |= 0x55u >> (8 - bitsFree_);
    *next_ = static_cast<uint8_t>(pending_);
    return end();
  }

 private:
  bool isPartial() const { return bitsFree_ > 0 && bitsFree_ < bitsInByte_; }
  void writeByte() {
    *next_++ = static_cast<uint8_t>(pending_);
    bitsInByte_ = bitsFree_ = pending_ == 0xFF ? 7 : 8;
    pending_ = 0;
  }

  uint8_t* next_ = nullptr;
  uint32_t pending_ = 0;
  int32_t bitsFree_ = 0;
  int32_t bitsInByte_ = 0;
};

}  // namespace zorj
