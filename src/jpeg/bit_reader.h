// Reads an entropy-coded segment step by step: the careful path of every decoder.
#pragma once

#include "jpeg/big_endian.h"
#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"

namespace zorj {

// As a length: only a marker tells where the source ends.
inline constexpr int32_t kNoLength = INT32_MAX;

// Where a decoder reads, and where it notes the marker that ends the segment.
struct SourceBytes {
  const uint8_t* bytes;
  int32_t length;
  int32_t position;
  int32_t marker;  // second byte of the marker met, 0 before that
};

// The value of category `size` that the extra bits stand for (T.81 F.2.2.1).
constexpr int32_t extendSign(uint32_t bits, uint32_t size) {
  const uint32_t negative = size < 16 && (bits >> (size - 1) & 1) == 0;
  return static_cast<int32_t>(bits) - static_cast<int32_t>(negative * ((1u << size) - 1));
}

// Keeps all it changes to itself, which the compiler can hold in registers: what is rare works on a copy, out of line.
class BitReader {
 public:
  BitReader(const SourceBytes& source, const HuffmanDecodeState& state)
      : source_(source), bitBuffer_(state.bitBuffer), reserved_(state.reserved), bitCount_(state.bitCount) {
    if (source_.position < 0) source_.length = source_.position;  // there is nothing to read
  }

  // Leaves behind how far the reading went.
  void finish(int32_t& position, int32_t& marker, HuffmanDecodeState& state) const {
    position = source_.position;
    marker = source_.marker;
    state.bitBuffer = bitBuffer_;
    state.reserved = reserved_;
    state.bitCount = bitCount_;
  }

  // Bits that are held.
  int32_t held() const { return bitCount_; }

  // Sees to it that `count` bits are held.
  [[gnu::always_inline]] StatusCode require(int32_t count) {
    if (bitCount_ >= count) return StatusOk;
    if (const StatusCode status = refill(count)) return status;
    return bitCount_ < count ? StatusHuffmanDataError : StatusOk;
  }

  // Consumes `count` bits that are held, at most 32.
  [[gnu::always_inline]] uint32_t take(int32_t count) {
    bitCount_ -= count;
    return static_cast<uint32_t>(uint64_t{bitBuffer_} >> bitCount_ & ((uint64_t{1} << count) - 1));
  }

  [[gnu::always_inline]] StatusCode decodeSymbol(const HuffmanDecodeSpec& spec, uint32_t& symbol) {
    midCode_ = false;
    if (bitCount_ < kFastBits) {
      if (const StatusCode status = refill(0)) return status;
      if (bitCount_ < kFastBits) [[unlikely]]
        return searchCode(spec, 1, symbol);
    }
    const TableEntry entry = spec.fastLookup[bitBuffer_ >> (bitCount_ - kFastBits) & 0xFF];
    if (entry.length == 0) [[unlikely]]
      return searchCode(spec, kFastBits + 1, symbol);
    bitCount_ -= entry.length;
    symbol = entry.value;
    return StatusOk;
  }

  // After a symbol that could not be decoded: whether not a bit of it was there.
  bool endedBeforeSymbol() const { return bitCount_ == 0 && !midCode_; }

  // Decodes the value of category `size`, 1 to 16, that follows a symbol.
  [[gnu::always_inline]] StatusCode decodeExtraBits(uint32_t size, int32_t& value) {
    if (const StatusCode status = require(static_cast<int32_t>(size))) return status;
    value = extendSign(take(static_cast<int32_t>(size)), size);
    return StatusOk;
  }

 private:
  bool atEnd() const { return source_.position >= source_.length; }
  uint8_t nextByte() { return source_.bytes[source_.position++]; }

  // Fills the buffer up to 25 bits or more. Does no more than it can: what is missing for `needed` bits is reported
  // where nothing was left to read, but not where a marker was met just now.
  [[gnu::always_inline]] StatusCode refill(int32_t needed) {
    if (refillAtOnce()) [[likely]]
      return StatusOk;
    BitReader copy = *this;
    const StatusCode status = copy.refillByBytes(needed);
    *this = copy;
    return status;
  }

  // False if one of the next four bytes is unusual or missing, or nothing is to be read.
  [[gnu::always_inline]] bool refillAtOnce() {
    if (source_.marker != 0 || source_.length - source_.position < 4 || bitCount_ >= 25) return false;
    const uint8_t* const next = source_.bytes + source_.position;
    // Two bytes are there in any case, and the two behind them unless a marker begins in these.
    if (source_.length == kNoLength && (next[0] == 0xFF || next[1] == 0xFF)) return false;
    const uint32_t word = loadBigEndian32(next);
    if (hasByteFF(word)) return false;
    const int32_t bytes = (32 - bitCount_) / 8;
    bitBuffer_ = static_cast<uint32_t>(uint64_t{bitBuffer_} << 8 * bytes | word >> (32 - 8 * bytes));
    reserved_ = 0;
    bitCount_ += 8 * bytes;
    source_.position += bytes;
    return true;
  }

  [[gnu::noinline]] StatusCode refillByBytes(int32_t needed) {
    if (source_.marker != 0) return needed > bitCount_ ? StatusHuffmanDataError : StatusOk;
    while (bitCount_ < 25) {
      if (atEnd()) return needed > bitCount_ ? StatusBufferEnd : StatusOk;
      const uint8_t byte = nextByte();
      if (byte == 0xFF) {
        uint8_t following = 0xFF;
        while (following == 0xFF) {
          if (atEnd()) return StatusBufferEnd;
          following = nextByte();
        }
        if (following != 0) {
          source_.marker = following;
          return StatusOk;
        }
      }
      bitBuffer_ = bitBuffer_ << 8 | byte;
      reserved_ = 0;
      bitCount_ += 8;
    }
    return StatusOk;
  }

  // Decodes a code of `length` bits or more, bit by bit. A code that is none has consumed 17 bits.
  [[gnu::always_inline]] StatusCode searchCode(const HuffmanDecodeSpec& spec, int length, uint32_t& symbol) {
    BitReader copy = *this;
    uint32_t found = symbol;
    const StatusCode status = copy.searchByBits(spec, length, found);
    *this = copy;
    symbol = found;
    return status;
  }
  [[gnu::noinline]] StatusCode searchByBits(const HuffmanDecodeSpec& spec, int length, uint32_t& symbol) {
    if (const StatusCode status = require(length)) return status;
    uint32_t code = take(length);
    midCode_ = true;
    while (code > spec.maxCode[length] || spec.maxCode[length] == kNoCode) {
      if (const StatusCode status = require(1)) return status;
      code = code << 1 | take(1);
      if (++length > kMaxCodeLength) return StatusHuffmanDataError;
    }
    // In a list with more codes than fit, the index may leave the list.
    symbol = spec.symbols[(spec.symbolIndex[length] + code - spec.minCode[length]) & 0xFF];
    return StatusOk;
  }

  SourceBytes source_;
  uint32_t bitBuffer_;
  uint32_t reserved_;
  int32_t bitCount_;
  bool midCode_ = false;  // a part of a code has been consumed
};

}  // namespace zorj
