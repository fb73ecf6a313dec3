// The decoders of progressive scans on any bytes and any blocks, beside the model.
#include "support/coder_checks.h"
#include "support/huffman_input.h"
#include "support/progressive_decoder_calls.h"

namespace zorj::fuzz {

void fuzz(Input& input) {
  chooseLevel(input);
  const auto kind = static_cast<test::ScanKind>(input.byte() % 4);
  const int first = input.between(1, 63), last = input.between(first, 63), shift = input.between(0, 13);
  const test::DecoderTable table(anyLists(input, 256));
  Input before(input.take(input.byte()));
  std::vector<Block> blocks = blocksOfInput(before, 8);
  blocks.emplace_back();
  if (input.empty()) return;
  const test::DecoderCalls calls = test::scanCalls(kind, blocks, 60, {first, last, shift}, table);
  expectSameReads(input.rest(), calls.subject, calls.model);
}

}  // namespace zorj::fuzz
