// Reads an entropy-coded segment step by step: the careful path of every decoder.
#pragma once

#include "jpeg/big_endian.h"
#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"

namespace zorj {

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

class BitReader {
 public:
  BitReader(SourceBytes& source, HuffmanDecodeState& state) : source_(source), state_(state) {}

  // Fills the buffer up to 25 bits or more. Does no more than it can: what is missing for `needed` bits is reported
  // where nothing was left to read, but not where a marker was met just now.
  StatusCode refill(int32_t needed) {
    if (source_.marker != 0) return needed > state_.bitCount ? StatusHuffmanDataError : StatusOk;
    if (refillAtOnce()) return StatusOk;
    while (state_.bitCount < 25) {
      if (atEnd()) return needed > state_.bitCount ? StatusBufferEnd : StatusOk;
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
      state_.bitBuffer = state_.bitBuffer << 8 | byte;
      state_.reserved = 0;
      state_.bitCount += 8;
    }
    return StatusOk;
  }

  // Sees to it that `count` bits are held.
  StatusCode require(int32_t count) {
    if (state_.bitCount >= count) return StatusOk;
    if (const StatusCode status = refill(count)) return status;
    return state_.bitCount < count ? StatusHuffmanDataError : StatusOk;
  }

  int32_t held() const { return state_.bitCount; }
  // Consumes `count` bits that are held, at most 32.
  uint32_t take(int32_t count) {
    state_.bitCount -= count;
    return state_.bitBuffer >> state_.bitCount & static_cast<uint32_t>((uint64_t{1} << count) - 1);
  }

  StatusCode decodeSymbol(const HuffmanDecodeSpec& spec, uint32_t& symbol) {
    midCode_ = false;
    if (state_.bitCount < kFastBits) {
      if (const StatusCode status = refill(0)) return status;
      if (state_.bitCount < kFastBits) return searchCode(spec, 1, symbol);
    }
    const TableEntry entry = spec.fastLookup[state_.bitBuffer >> (state_.bitCount - kFastBits) & 0xFF];
    if (entry.length == 0) return searchCode(spec, kFastBits + 1, symbol);
    state_.bitCount -= entry.length;
    symbol = entry.value;
    return StatusOk;
  }

  // After a symbol that could not be decoded: whether not a bit of it was there.
  bool endedBeforeSymbol() const { return state_.bitCount == 0 && !midCode_; }

  // Decodes the value of category `size`, 1 to 16, that follows a symbol.
  StatusCode decodeExtraBits(uint32_t size, int32_t& value) {
    if (const StatusCode status = require(static_cast<int32_t>(size))) return status;
    value = extendSign(take(static_cast<int32_t>(size)), size);
    return StatusOk;
  }

 private:
  bool atEnd() const { return source_.position >= source_.length; }

  // Fills a buffer of fewer than 25 bits from the next four bytes. False if one of them is unusual or they are not
  // there.
  bool refillAtOnce() {
    if (source_.length - source_.position < 4 || state_.bitCount >= 25) return false;
    const uint32_t word = loadBigEndian32(source_.bytes + source_.position);
    if (hasByteFF(word)) return false;
    const int32_t bytes = (32 - state_.bitCount) / 8;
    state_.bitBuffer = static_cast<uint32_t>(uint64_t{state_.bitBuffer} << 8 * bytes | word >> (32 - 8 * bytes));
    state_.reserved = 0;
    state_.bitCount += 8 * bytes;
    source_.position += bytes;
    return true;
  }

  uint8_t nextByte() { return source_.bytes[source_.position++]; }

  // Decodes a code of `length` bits or more, bit by bit. A code that is none has consumed 17 bits.
  StatusCode searchCode(const HuffmanDecodeSpec& spec, int length, uint32_t& symbol) {
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

  SourceBytes& source_;
  HuffmanDecodeState& state_;
  bool midCode_ = false;  // a part of a code has been consumed
};

}  // namespace zorj
