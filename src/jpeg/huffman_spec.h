// The prepared Huffman tables. Callers own their memory and see only their sizes.
#pragma once

#include <cstdint>

#include "zorj/jpeg_huffman.h"

namespace zorj {

inline constexpr int kMaxCodeLength = 16;
inline constexpr int kFastBits = 8;
inline constexpr uint16_t kNoCode = 0xFFFF;  // as a largest code: no code has this length

// Symbols of AC coefficients that have a meaning of their own; the others are (run of zeros << 4) + category.
inline constexpr uint32_t kEndOfBlock = 0x00;
inline constexpr uint32_t kZeroRun16 = 0xF0;

// As one little-endian word: (length << 16) | value.
struct TableEntry {
  uint16_t value;   // a code, right-aligned, or a symbol
  uint16_t length;  // of the code in bits; 0: there is none
};

}  // namespace zorj

struct HuffmanEncodeSpec {
  zorj::TableEntry codes[256];  // by symbol
};

struct HuffmanDecodeSpec {
  uint16_t symbols[256];             // in order of increasing code
  zorj::TableEntry fastLookup[256];  // by the next 8 bits: the symbol whose code, of up to 8 bits, they begin with
  uint16_t minCode[18];              // by length: the smallest code
  uint16_t maxCode[18];              // by length: the largest code, or kNoCode
  uint16_t symbolIndex[18];          // by length: where the smallest code's symbol lies in `symbols`
};

static_assert(sizeof(HuffmanEncodeSpec) == 1024 && sizeof(HuffmanDecodeSpec) == 1644);
