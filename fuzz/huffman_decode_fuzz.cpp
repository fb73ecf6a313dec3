// The sequential decoders on any bytes, beside the model.
#include "support/coder_checks.h"
#include "support/huffman_decoder_calls.h"
#include "support/huffman_input.h"

namespace zorj::fuzz {
namespace {

using test::DecoderCalls;
using test::DecoderTable;

void blocks(Input& input) {
  const DecoderTable dc(anyLists(input, 17)), ac(anyLists(input, 256));
  const DecoderCalls calls = test::blockCalls(50, dc, ac);
  expectSameReads(input.rest(), calls.subject, calls.model);
}

// There is no length: the stream ends with a marker.
void directBlocks(Input& input) {
  const DecoderTable dc(anyLists(input, 17)), ac(anyLists(input, 256));
  const int32_t prefetched = input.between(0, 32);
  const auto prefetchedBits = static_cast<uint32_t>(input.word()) << 16 | static_cast<uint16_t>(input.word());
  const int32_t skipped = input.between(0, 20);
  Bytes stream(input.rest().begin(), input.rest().end());
  if (stream.size() < 4) return;
  stream.insert(stream.end(), {0x00, 0xFF, 0xD9});
  const DecoderCalls calls = test::directCalls(20, skipped, prefetchedBits, prefetched, dc, ac);
  expectSameReads(stream, calls.subject, calls.model);
}

// Long rows with one table for all components, or shorter ones with four.
void rows(Input& input, bool oneTable) {
  const int32_t components = input.between(1, 6);
  const auto samples = static_cast<size_t>(input.between(1, 90)) * (oneTable ? 8 : 1);
  std::vector<DecoderTable> tables;
  for (int i = 0; i < (oneTable ? 1 : 4); ++i) tables.emplace_back(anyLists(input, 17));
  if (input.empty()) return;
  const DecoderCalls calls = test::rowCalls(6, samples, components, tables);
  expectSameReads(input.rest(), calls.subject, calls.model);
}

void values(Input& input) {
  const DecoderTable table(anyLists(input, 17));
  if (input.empty()) return;
  const DecoderCalls calls = test::valueCalls(200, table);
  expectSameReads(input.rest(), calls.subject, calls.model);
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  const uint8_t kind = input.byte();
  switch (kind % 4) {
    case 0:
      return blocks(input);
    case 1:
      return directBlocks(input);
    case 2:
      return rows(input, kind >= 128);
    default:
      return values(input);
  }
}

}  // namespace zorj::fuzz
