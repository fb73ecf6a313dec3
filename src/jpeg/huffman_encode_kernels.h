// The fast paths of the Huffman encoders. They write the same bytes as the careful path (bit_writer.h) and leave the
// same state behind.
#pragma once

#include "jpeg/bit_writer.h"
#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"

namespace zorj {

struct HuffmanEncodeKernels {
  // Encodes a baseline block whose DC value differs by `dcDifference` from the last. Where a symbol has no code, a
  // category is beyond 12 or room might lack it declines: false, with nothing written.
  bool (*block)(const int16_t* block, int32_t dcDifference, const HuffmanEncodeSpec& dcSpec,
                const HuffmanEncodeSpec& acSpec, const Destination& dst, HuffmanEncodeState& state);
  // The same at a bit position, where there is room.
  bool (*directBlock)(const int16_t* block, int32_t dcDifference, const HuffmanEncodeSpec& dcSpec,
                      const HuffmanEncodeSpec& acSpec, uint8_t* dst, int32_t& bitPosition);
  // Encodes differences of the lossless process, components in turn, `count` at the most. Returns how many it did.
  int64_t (*differences)(const int16_t* const rows[], int64_t count, int32_t components,
                         const HuffmanEncodeSpec* const specs[], const Destination& dst, HuffmanEncodeState& state);
};

const HuffmanEncodeKernels& huffmanEncodeKernels();

}  // namespace zorj
