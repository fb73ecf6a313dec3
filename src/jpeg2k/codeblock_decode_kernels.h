// The coding passes of the decoder (T.800 Annex D.3).
#pragma once

#include "jpeg2k/codeblock_contexts.h"
#include "jpeg2k/mq_decoder.h"
#include "jpeg2k/raw_bits.h"
#include "jpeg2k/stripe_map.h"

namespace zorj {

// A block that is being decoded.
struct DecodedBlock {
  uint8_t* samples;  // words with sign and magnitude, at any address
  int32_t step;      // bytes
  int32_t plane;     // the bit plane to decode
  StripeMap map;
  const ZeroCodingTable& zeroCoding;
  MqContexts& contexts;
};

// Each decodes one pass. It starts where the decoder stands and leaves it behind the last decision. The element of
// index 1 is for vertically causal contexts.
struct CodeBlockDecodeKernels {
  using MqPass = void (*)(DecodedBlock& block, MqDecoder& decoder);
  using RawPass = void (*)(DecodedBlock& block, RawDecoder& decoder);
  MqPass significance[2];
  MqPass refinement[2];
  MqPass cleanup[2];
  RawPass rawSignificance[2];
  RawPass rawRefinement;
};

const CodeBlockDecodeKernels& codeBlockDecodeKernels();

}  // namespace zorj
