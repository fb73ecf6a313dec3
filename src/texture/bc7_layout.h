// How a vector of 16-bit words takes a BC7 block apart: every step is the same in all modes, and what differs is
// loaded.
#pragma once

#include <cstdint>

#include "texture/bc7_tables.h"

namespace zorj {

inline constexpr uint8_t kNoByte = 0x80;  // gives a zero byte in a byte shuffle

// A field of a little-endian number, in a word: the two bytes it lies in, and the power of two whose product has the
// field's highest bit at the top of the word (or where the field belongs).
struct Bc7Fields {
  alignas(32) uint8_t bytes[32];
  alignas(32) uint16_t shift[16];
};

// One of the two streams of indices, its words in the order of Bc7Layout's pixels.
struct Bc7Indices {
  Bc7Fields fields;
  alignas(16) uint8_t weights[16];  // by the index at the top of 4 bits, whatever the bits below it
  uint64_t firstAnchor;             // the bits from the highest one of pixel 0's index on
  uint8_t byte;                     // where the stream begins: 8 bytes from here on, moved down by `shift` bits
  uint8_t shift;
};

// A mode, and a value of its index selection. Word 4 s + c of endpoints is channel c of subset s. Pixels are in the
// order of bc7PixelOfWord.
struct Bc7Layout {
  Bc7Fields ends[2];                 // to the top of the word
  Bc7Fields lowBits[2];              // to the bit below
  alignas(32) uint16_t endMask[16];  // the bits of the word that these fill
  alignas(32) uint16_t lowBitMask[16];
  alignas(
      32) uint16_t repeat[16];    // the factor whose product's upper half is the word moved down by its number of bits
  alignas(32) uint16_t base[16];  // what is added to 64 times the first endpoint: rounding, and opaque alpha
  Bc7Indices colour, alpha;
  uint8_t partitionShift, partitionMask;
  uint8_t firstPartition;  // in kBc7Partitions
  uint8_t colourIndexBits;
};

// Word 8 h + 2 k + q of indices is the pixel in row 2 (k / 2) + h and column 2 (k % 2) + q: vector k of pixels, whose
// lane h has two pixels of a row, then packs with its neighbour into rows.
constexpr int bc7PixelOfWord(int word) {
  const int h = word / 8, k = word / 2 % 4, q = word % 2;
  return 4 * (2 * (k / 2) + h) + 2 * (k % 2) + q;
}

struct Bc7Partition {
  // For each half of pixel q in lane h, at 4 h + 2 q: the double word of its subset's endpoints in vector k of pixels,
  // in bits 4 k and up.
  alignas(16) uint16_t ends[8];
  uint8_t anchors[2];  // of subsets 1 and 2, the smaller number first; kNoAnchor where there is none
};
inline constexpr uint8_t kNoAnchor = 16;

struct Bc7FirstByte {
  uint8_t layout;
  uint8_t rotation;
};

inline constexpr int kBc7LayoutCount = kBc7Modes + 2;  // mode 4 with the index selection set, and no mode

struct Bc7Tables {
  Bc7Layout layouts[kBc7LayoutCount];
  // One subset; 64 partitions into two; 64 into three.
  Bc7Partition partitions[1 + 64 + 64];
  Bc7FirstByte firstBytes[256];
  // By index bits and anchor: the bits from the highest one of the anchor's index on.
  uint64_t anchors[5][kNoAnchor + 1];
  // Byte shuffles of RGBA pixels, by rotation.
  alignas(16) uint8_t rotations[4][16];
  // Byte shuffles to the weights of two pixels' channels in vector k, from words with the weight of colour in the low
  // byte and that of alpha in the high one.
  alignas(16) uint8_t spreadWeights[4][16];
};

// Stands in a file of its own: where GCC 12 sees values, it rebuilds them from immediates.
extern const Bc7Tables kBc7Tables;

}  // namespace zorj
