// The fast paths of the Huffman decoders. They leave behind exactly what the careful path does (bit_reader.h).
#pragma once

#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"

namespace zorj {

// How many differences a fast path decoded, and where the reader goes on.
struct Differences {
  int64_t count;
  const uint8_t* next;
};

struct HuffmanDecodeKernels {
  // Decodes a baseline block without a fault, but for its DC difference, which is not added to the last DC value yet.
  // Returns where the reader goes on. Otherwise, or near a marker or the end of the source, it declines: null, with
  // only the block changed.
  const uint8_t* (*block)(const uint8_t* next, const uint8_t* end, HuffmanDecodeState& state, int16_t* block,
                          const HuffmanDecodeSpec& dcSpec, const HuffmanDecodeSpec& acSpec);
  // Decodes differences of the lossless process, components in turn, `count` at the most.
  Differences (*differences)(const uint8_t* next, const uint8_t* end, HuffmanDecodeState& state, int16_t* const rows[],
                             int64_t count, int32_t components, const HuffmanDecodeSpec* const specs[]);
};

const HuffmanDecodeKernels& huffmanDecodeKernels();

// Whether the fast paths can start: no marker is pending and a few bytes are left.
inline bool canDecodeFast(int32_t length, int32_t position, int32_t marker) {
  constexpr int32_t kLeastBytes = 8;
  return marker == 0 && position >= 0 && length - kLeastBytes >= position;
}

}  // namespace zorj
