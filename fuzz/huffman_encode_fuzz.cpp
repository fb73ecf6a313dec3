// The sequential encoders beside the model, with room and without, and what they wrote decoded again.
#include "support/encoder_checks.h"
#include "support/huffman_input.h"

namespace zorj::fuzz {
namespace {

using test::EncoderCalls;
using test::EncoderTable;

// A value of the category 16 or more cannot be decoded as it was.
bool isReversible(const std::vector<Block>& blocks) {
  int before = 0;
  for (const Block& block : blocks) {
    if (reference::category(block[0] - before) > 15) return false;
    if (std::find(block.begin() + 1, block.end(), -32768) != block.end()) return false;
    before = block[0];
  }
  return true;
}

void blocks(Input& input) {
  const EncoderTable dc(anyLists(input, 17)), ac(anyLists(input, 256));
  const int32_t lacking = input.between(0, 40);
  const std::vector<Block> source = blocksOfInput(input, 60);
  const Written written = expectSameWithAndWithoutRoom(test::blockCalls(source, dc, ac), lacking);
  if (!written.complete || !isReversible(source)) return;
  const HuffmanDecodeSpec dcSpec = decodeSpec(dc.lists), acSpec = decodeSpec(ac.lists);
  HuffmanDecodeState state;
  zoriDecodeHuffmanStateInit_JPEG_8u(&state);
  const Exact<uint8_t> bytes(std::span<const uint8_t>(written.bytes));
  int32_t position = 0, marker = 0;
  int16_t lastDc = 0;
  for (const Block& block : source) {
    Block decoded;
    EXPECT_EQ(zoriDecodeHuffman8x8_JPEG_1u16s_C1(bytes.data(), bytes.length(), &position, decoded.data(), &lastDc,
                                                 &marker, &dcSpec, &acSpec, &state),
              StatusOk);
    EXPECT_EQ(decoded, block);
  }
  EXPECT_EQ(position, bytes.length());
}

void directBlocks(Input& input) {
  const EncoderTable dc(anyLists(input, 17)), ac(anyLists(input, 256));
  const int32_t start = input.between(0, 40);
  const std::vector<Block> source = blocksOfInput(input, 60);
  if (source.empty()) return;
  const EncoderCalls calls = test::directCalls(source, start, dc, ac);
  Bytes scratch(kAmple, 0xA5);
  const Trace trace = calls.model(scratch.data(), kAmple);
  expectSameWrites(static_cast<int32_t>((trace[trace.size() - 2] + 7) / 8), calls.subject, calls.model);
}

void rows(Input& input, size_t tableCount) {
  const int32_t components = input.between(1, 6);
  std::vector<EncoderTable> tables;
  for (size_t i = 0; i < tableCount; ++i) tables.emplace_back(anyLists(input, 17));
  const int32_t lacking = input.between(0, 40);
  const auto samples = std::min<size_t>(input.rest().size() / 8, 200);
  if (samples == 0) return;
  std::vector<std::vector<int16_t>> source(4, std::vector<int16_t>(samples));
  for (auto& row : source) std::memcpy(row.data(), input.take(2 * samples).data(), 2 * samples);
  const Written written = expectSameWithAndWithoutRoom(test::rowCalls(2, source, components, tables), lacking);
  if (!written.complete) return;
  HuffmanDecodeSpec specs[4];
  const HuffmanDecodeSpec* specPointers[4];
  std::vector<std::vector<int16_t>> decoded(4, std::vector<int16_t>(samples));
  int16_t* rowPointers[4];
  for (size_t c = 0; c < 4; ++c) {
    specs[c] = decodeSpec(tables[c % tableCount].lists);
    specPointers[c] = &specs[c % tableCount];
    rowPointers[c] = decoded[c].data();
  }
  const Exact<uint8_t> bytes(std::span<const uint8_t>(written.bytes));
  HuffmanDecodeState state;
  zoriDecodeHuffmanStateInit_JPEG_8u(&state);
  int32_t position = 0, marker = 0;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(
        zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(bytes.data(), bytes.length(), &position, rowPointers,
                                             static_cast<int32_t>(samples), components, &marker, specPointers, &state),
        StatusOk);
    for (size_t c = 0; c < std::min<size_t>(static_cast<size_t>(components), 4); ++c) EXPECT_EQ(decoded[c], source[c]);
  }
  EXPECT_EQ(position, bytes.length());
}

void values(Input& input) {
  const EncoderTable table(anyLists(input, 17));
  const int32_t lacking = input.between(0, 40);
  std::vector<int16_t> source(std::min<size_t>(input.rest().size() / 2, 300));
  input.fill(source.data(), source.size());
  expectSameWithAndWithoutRoom(test::valueCalls(source, table), lacking);
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
      return rows(input, kind < 128 ? 4 : 1);
    default:
      return values(input);
  }
}

}  // namespace zorj::fuzz
