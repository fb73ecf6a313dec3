#include "support/arguments.h"
#include "support/huffman_encoder_calls.h"

namespace zorj::test {
namespace {

using Table = EncoderTable;

TEST(HuffmanEncoder, BlocksEqualModel) {
  Random random(1);
  for (int round = 0; round < 60; ++round) {
    const bool typical = round % 3 == 0;
    const Table dc(typical ? typicalDcLists() : randomLists(random, firstSymbols(17)));
    const Table ac(typical ? typicalAcLists() : randomLists(random, firstSymbols(256)));
    std::vector<Block> blocks(static_cast<size_t>(random.between(1, 12)));
    for (Block& block : blocks) block = typical && round % 2 ? photographicBlock(random, 6) : anyBlock(random);
    const EncoderCalls calls = blockCalls(blocks, dc, ac);
    const auto lengths = round < 12 ? lengthsToTry(calls) : std::vector<int32_t>{9000, 300, 24, 7};
    expectWritesEqualModel("blocks, round " + std::to_string(round), lengths, calls.subject, calls.model);
  }
}

// Symbols that lack a code end the block; those of a single missing one at each place where it may occur.
TEST(HuffmanEncoder, MissingCodesEqualModel) {
  Random random(2);
  for (int missing = 0; missing < 256; ++missing) {
    std::vector<uint8_t> symbols = firstSymbols(256);
    symbols.erase(symbols.begin() + missing);
    const Table dc(randomLists(
        random, missing < 17 ? std::vector<uint8_t>(symbols.begin(), symbols.begin() + 16) : firstSymbols(17)));
    const Table ac(randomLists(random, symbols));
    std::vector<Block> blocks(10);
    for (Block& block : blocks) block = anyBlock(random);
    blocks[1] = {};
    blocks[1][static_cast<size_t>(reference::naturalIndex(16))] = -32768;  // symbol 256
    if (missing % 2) std::swap(blocks[1], blocks[9]);
    const EncoderCalls calls = blockCalls(blocks, dc, ac);
    expectWritesEqualModel("without symbol " + std::to_string(missing), {9000}, calls.subject, calls.model);
  }
}

TEST(HuffmanEncoder, DirectBlocksEqualModel) {
  Random random(3);
  for (int round = 0; round < 100; ++round) {
    const bool complete = round % 2 == 0;  // else: some symbols have no code
    const Table dc(randomLists(random, firstSymbols(complete ? 17 : 9)));
    const Table ac(complete ? randomLists(random, firstSymbols(256)) : typicalAcLists());
    std::vector<Block> blocks(static_cast<size_t>(random.between(1, 12)));
    for (Block& block : blocks) block = anyBlock(random);
    const int32_t start = static_cast<int32_t>(random.between(0, 40));
    const EncoderCalls calls = directCalls(blocks, start, dc, ac);
    std::vector<uint8_t> bytes(6000, 0xA5);
    const Trace trace = calls.model(bytes.data(), 6000);
    const int32_t exact = static_cast<int32_t>((trace[trace.size() - 2] + 7) / 8);
    expectWritesEqualModel("direct, round " + std::to_string(round), {exact, 6000}, calls.subject, calls.model);
  }
}

TEST(HuffmanEncoder, LosslessRowsAndValuesEqualModel) {
  Random random(4);
  for (int round = 0; round < 40; ++round) {
    const int32_t components = static_cast<int32_t>(random.between(1, 7));  // four of them are used
    const int32_t samples = static_cast<int32_t>(random.between(1, round % 5 == 0 ? 400 : 40));
    std::vector<Table> tables;
    std::vector<std::vector<int16_t>> rows;
    for (int c = 0; c < 4; ++c) {
      // Some lack codes for large differences.
      tables.emplace_back(randomLists(random, firstSymbols(round % 4 == 3 ? 14 : 17)));
      rows.emplace_back(static_cast<size_t>(samples));
      fillSamples(rows.back().data(), rows.back().size(), random, round % 3 == 0 ? 2 : round + c);
    }
    if (round % 2 == 0) tables.erase(tables.begin() + 1, tables.end());
    const auto lengths = [round](const EncoderCalls& calls) {
      return round % 8 == 0 ? lengthsToTry(calls) : std::vector<int32_t>{9000, 70, 24, 9};
    };

    const EncoderCalls rowSeries = rowCalls(3, rows, components, tables);
    expectWritesEqualModel("rows, round " + std::to_string(round), lengths(rowSeries), rowSeries.subject,
                           rowSeries.model);

    const EncoderCalls values = valueCalls(rows[0], tables[0]);
    expectWritesEqualModel("values, round " + std::to_string(round), lengths(values), values.subject, values.model);
  }
}

TEST(HuffmanEncoder, ArgumentOrder) {
  const HuffmanEncodeSpec spec = {};
  const int16_t source[64] = {};
  const int16_t* const rows[2] = {source, source};
  const HuffmanEncodeSpec* const specs[2] = {&spec, &spec};
  uint8_t bytes[600] = {};
  int32_t position = 0;
  int16_t lastDc = 0;
  HuffmanEncodeState state = {};
  const auto written = [&] { return bytes[0] != 0 || position != 0 || lastDc != 0 || state.bitCount != 0; };
  constexpr StatusCode kNull = StatusNullPointer, kSize = StatusBadSize;

  expectArgumentOrder(
      "zoriEncodeHuffman8x8_JPEG_16s1u_C1", {kNull, kSize, kNull, kNull, kNull, kNull, kNull, kNull},
      [&](const Faults& f) {
        return zoriEncodeHuffman8x8_JPEG_16s1u_C1(f.pointer(4, source), f.pointer(0, bytes), f.value(1, 600, 0),
                                                  f.pointer(2, &position), f.pointer(5, &lastDc), f.pointer(6, &spec),
                                                  f.pointer(7, &spec), f.pointer(3, &state), 0);
      },
      written);
  expectArgumentOrder(
      "zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1", std::vector<StatusCode>(6, kNull),
      [&](const Faults& f) {
        return zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(f.pointer(0, source), f.pointer(1, bytes),
                                                         f.pointer(2, &position), f.pointer(3, &lastDc),
                                                         f.pointer(4, &spec), f.pointer(5, &spec));
      },
      written);
  expectArgumentOrder(
      "zoriEncodeHuffmanOne_JPEG_16s1u_C1", {kNull, kSize, kNull, kNull, kNull, kNull},
      [&](const Faults& f) {
        return zoriEncodeHuffmanOne_JPEG_16s1u_C1(f.pointer(4, source), f.pointer(0, bytes), f.value(1, 600, -1),
                                                  f.pointer(2, &position), f.pointer(5, &spec), f.pointer(3, &state),
                                                  0);
      },
      written);
  expectArgumentOrder(
      "zoriEncodeHuffmanRow_JPEG_16s1u_P4C1", {kNull, kSize, kNull, kNull, kNull, kSize, kSize, kNull, kNull, kNull},
      [&](const Faults& f) {
        const int16_t* const someRows[2] = {source, f.pointer(8, source)};
        const HuffmanEncodeSpec* const someSpecs[2] = {&spec, f.pointer(9, &spec)};
        return zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(f.pointer(4, &someRows[0]), f.value(5, 64, 0), f.value(6, 2, 0),
                                                    f.pointer(0, bytes), f.value(1, 600, 0), f.pointer(2, &position),
                                                    f.pointer(7, &someSpecs[0]), f.pointer(3, &state), 0);
      },
      written);
  EXPECT_EQ(zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(rows, 64, 2, bytes, 600, &position, specs, &state, 0),
            StatusBadHuffmanTable);
}

}  // namespace
}  // namespace zorj::test
