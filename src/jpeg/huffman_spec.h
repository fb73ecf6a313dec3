// The prepared Huffman tables. Callers own their memory and see only their sizes.
#pragma once

#include <cstdint>

#include "zorj/jpeg_huffman.h"

namespace zorj {

inline constexpr int kMaxCodeLength = 16;
inline constexpr int kFastBits = 8;
inline constexpr uint16_t kNoCode = 0xFFFF;  // as a largest code: no code has this length

// A table entry: a code and its length, or a symbol and the length of its code. All zero: there is none.
constexpr uint32_t tableEntry(uint32_t length, uint32_t value) { return length << 16 | value; }
constexpr uint32_t entryLength(uint32_t entry) { return entry >> 16; }
constexpr uint32_t entryValue(uint32_t entry) { return entry & 0xFFFF; }

}  // namespace zorj

struct HuffmanEncodeSpec {
  uint32_t codes[256];  // by symbol: the code, right-aligned, and its length
};

struct HuffmanDecodeSpec {
  uint16_t symbols[256];  // in order of increasing code
  uint32_t
      fastLookup[256];   // by the next 8 bits: the symbol and the length of the code of up to 8 bits they begin with
  uint16_t minCode[18];  // by length: the smallest code
  uint16_t maxCode[18];  // by length: the largest code, or kNoCode
  uint16_t symbolIndex[18];  // by length: where the smallest code's symbol lies in `symbols`
};

static_assert(sizeof(HuffmanEncodeSpec) == 1024 && sizeof(HuffmanDecodeSpec) == 1644);
