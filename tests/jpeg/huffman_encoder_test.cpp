#include "support/arguments.h"
#include "support/huffman_encoder_calls.h"

namespace zorj::test {
namespace {

using Table = EncoderTable;

EncoderCalls blockCalls(const std::vector<Block>& blocks, const Table& dc, const Table& ac) {
  return statefulCalls(
      blocks.size(),
      [&](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t& lastDc, HuffmanEncodeState* state) {
        const bool flush = i == blocks.size();
        return zoriEncodeHuffman8x8_JPEG_16s1u_C1(flush ? nullptr : blocks[i].data(), dst, length, position, &lastDc,
                                                  &dc.spec, &ac.spec, state, flush);
      },
      [&](size_t i, ModelEncoder& encoder) {
        if (i == blocks.size()) return encoder.writer.flush();
        return reference::encodeBlock(encoder.writer, blocks[i].data(), encoder.lastDc, dc.model, ac.model);
      });
}

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
    const auto subject = [&](uint8_t* dst, int32_t) {
      Trace trace;
      int32_t bitPosition = start;
      int16_t lastDc = 7;
      for (const Block& block : blocks) {
        trace.push_back(
            zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst, &bitPosition, &lastDc, &dc.spec, &ac.spec));
        trace.insert(trace.end(), {bitPosition, lastDc});
      }
      return trace;
    };
    const auto model = [&](uint8_t* dst, int32_t length) {
      Trace trace;
      reference::HuffmanWriter writer(dst, length);
      writer.position = start / 8;
      for (int i = 0; i < start % 8; ++i) writer.pending.push_back((dst[start / 8] >> (7 - i) & 1) != 0);
      int16_t lastDc = 7;
      reference::HuffmanEncoder lenientDc = dc.model, lenientAc = ac.model;
      lenientDc.ignoreMissingCodes = lenientAc.ignoreMissingCodes = true;
      for (const Block& block : blocks) {
        reference::encodeBlock(writer, block.data(), lastDc, lenientDc, lenientAc);
        const int pending = static_cast<int>(writer.pending.size());
        trace.insert(trace.end(), {StatusOk, 8 * writer.position + pending, lastDc});
        if (pending > 0) dst[writer.position] = static_cast<uint8_t>(writer.accumulator() >> 16);
      }
      return trace;
    };
    std::vector<uint8_t> bytes(6000, 0xA5);
    const Trace trace = model(bytes.data(), 6000);
    const int32_t exact = static_cast<int32_t>((trace[trace.size() - 2] + 7) / 8);
    expectWritesEqualModel("direct, round " + std::to_string(round), {exact, 6000}, subject, model);
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
    const int16_t* rowPointers[4] = {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data()};
    // Components may share a table, too.
    const auto tableOf = [&](size_t c) -> Table& { return tables[round % 2 == 0 ? 0 : c]; };
    const HuffmanEncodeSpec* specs[4] = {&tableOf(0).spec, &tableOf(1).spec, &tableOf(2).spec, &tableOf(3).spec};
    const int32_t used = std::min(components, 4);
    const auto lengths = [round](const EncoderCalls& calls) {
      return round % 8 == 0 ? lengthsToTry(calls) : std::vector<int32_t>{9000, 70, 24, 9};
    };

    const EncoderCalls rowCalls = statefulCalls(
        3,
        [&](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t&, HuffmanEncodeState* state) {
          return zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(i == 3 ? nullptr : rowPointers, samples, components, dst, length,
                                                      position, specs, state, i == 3);
        },
        [&](size_t call, ModelEncoder& encoder) {
          if (call == 3) return encoder.writer.flush();
          for (int32_t i = 0; i < samples * used; ++i) {
            const auto c = static_cast<size_t>(i % used);
            const StatusCode status =
                tableOf(c).model.putDifference(encoder.writer, rows[c][static_cast<size_t>(i / used)]);
            if (status != StatusOk) return status;
          }
          return StatusOk;
        });
    expectWritesEqualModel("rows, round " + std::to_string(round), lengths(rowCalls), rowCalls.subject, rowCalls.model);

    const auto count = static_cast<size_t>(samples);
    const EncoderCalls valueCalls = statefulCalls(
        count,
        [&](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t&, HuffmanEncodeState* state) {
          return zoriEncodeHuffmanOne_JPEG_16s1u_C1(i == count ? nullptr : &rows[0][i], dst, length, position, specs[0],
                                                    state, i == count);
        },
        [&](size_t i, ModelEncoder& encoder) {
          return i == count ? encoder.writer.flush() : tables[0].model.putDifference(encoder.writer, rows[0][i]);
        });
    expectWritesEqualModel("values, round " + std::to_string(round), lengths(valueCalls), valueCalls.subject,
                           valueCalls.model);
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
