#include "support/arguments.h"
#include "support/progressive_encoder_calls.h"

namespace zorj::test {
namespace {

using Table = EncoderTable;
using reference::Band;

TEST(ProgressiveEncoder, ScansEqualModel) {
  Random random(1);
  for (int round = 0; round < 240; ++round) {
    const auto kind = static_cast<ScanKind>(round % 4);
    const Band band = anyBand(random);
    const Table table(randomLists(random, firstSymbols(256)));
    const std::vector<Block> blocks = anyScanBlocks(random, static_cast<size_t>(random.between(1, 24)), band);
    const EncoderCalls calls = scanCalls(kind, blocks, band, table);
    const auto lengths = round < 32 ? lengthsToTry(calls) : std::vector<int32_t>{9000, 300, 24, 7};
    expectWritesEqualModel(scanName(kind, round), lengths, calls.subject, calls.model);
  }
}

// Symbols that lack a code end the block, or the flush; runs and categories of all lengths meet that.
TEST(ProgressiveEncoder, MissingCodesEqualModel) {
  Random random(2);
  for (int round = 0; round < 512; ++round) {
    const auto kind = round % 2 == 0 ? ScanKind::kAcFirst : ScanKind::kAcRefine;
    const Band band = anyBand(random);
    std::vector<uint8_t> symbols = firstSymbols(256);
    symbols.erase(symbols.begin() + round / 2);
    if (round % 3 == 0) symbols.erase(symbols.begin(), symbols.begin() + 2);
    const Table table(randomLists(random, symbols));
    const std::vector<Block> blocks = anyScanBlocks(random, 40, band);
    const EncoderCalls calls = scanCalls(kind, blocks, band, table);
    expectWritesEqualModel(scanName(kind, round), {9000}, calls.subject, calls.model);
  }
}

// Runs end by themselves at 32767 blocks and at 937 correction bits.
TEST(ProgressiveEncoder, LongRunsEqualModel) {
  Random random(3);
  const Table table(randomLists(random, firstSymbols(256)));
  std::vector<Block> blocks(32767 + 40);
  for (const ScanKind kind : {ScanKind::kAcFirst, ScanKind::kAcRefine}) {
    const EncoderCalls calls = scanCalls(kind, blocks, {1, 63, 0}, table);
    expectWritesEqualModel(scanName(kind, 0), {100, 2}, calls.subject, calls.model);
  }
  // 63 of 14 blocks and 55 of one are 937.
  for (const int corrections : {1, 54, 55, 56, 63}) {
    blocks.assign(60, Block{});
    for (size_t i = 0; i < blocks.size(); ++i) {
      for (int k = 64 - (i % 15 == 0 ? corrections : 63); k < 64; ++k) {
        blocks[i][static_cast<size_t>(reference::naturalIndex(k))] = static_cast<int16_t>(random.between(8, 31) - 40);
      }
    }
    blocks[40][8] = 4;  // newly not zero
    const EncoderCalls calls = scanCalls(ScanKind::kAcRefine, blocks, {1, 63, 2}, table);
    expectWritesEqualModel("corrections", lengthsToTry(calls), calls.subject, calls.model);
  }
}

// A full run that cannot be written is tried again before a block joins it, however often that fails.
TEST(ProgressiveEncoder, RefusedRunsDoNotGrow) {
  Random random(4);
  std::vector<Block> blocks(32767 + 40);
  std::vector<uint8_t> withoutRuns = firstSymbols(256);
  std::erase_if(withoutRuns, [](uint8_t symbol) { return symbol % 16 == 0 && symbol != 0xF0; });
  const Table whole(randomLists(random, firstSymbols(256))), lacking(randomLists(random, withoutRuns));
  for (const Table* const table : {&whole, &lacking}) {
    for (const ScanKind kind : {ScanKind::kAcFirst, ScanKind::kAcRefine}) {
      const EncoderCalls calls = scanCalls(kind, blocks, {1, 63, 0}, *table, AfterFailure::kGoOn);
      expectWritesEqualModel(scanName(kind, 0), {100, 1}, calls.subject, calls.model);
    }
    std::vector<Block> corrected(400);
    for (size_t i = 0; i < corrected.size(); i += 1 + i % 3) corrected[i].fill(2);
    const EncoderCalls calls = scanCalls(ScanKind::kAcRefine, corrected, {1, 63, 0}, *table, AfterFailure::kGoOn);
    expectWritesEqualModel("corrections", {4000, 200, 20, 1}, calls.subject, calls.model);
  }
}

TEST(ProgressiveEncoder, ArgumentOrder) {
  const HuffmanEncodeSpec spec = {};
  int16_t source[64] = {};
  source[1] = 1;
  uint8_t bytes[600] = {};
  int32_t position = 0;
  int16_t lastDc = 0;
  HuffmanEncodeState state = {};
  const auto written = [&] { return bytes[0] != 0 || position != 0 || lastDc != 0 || state.bitCount != 0; };
  constexpr StatusCode kNull = StatusNullPointer, kSize = StatusBadSize, kArgument = StatusBadArgument;

  for (const int32_t badAl : {-1, 14}) {
    expectArgumentOrder(
        "zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1", {kNull, kSize, kNull, kNull, kNull, kNull, kArgument, kNull},
        [&](const Faults& f) {
          return zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(
              f.pointer(4, source), f.pointer(0, bytes), f.value(1, 600, 0), f.pointer(2, &position),
              f.pointer(5, &lastDc), f.value(6, 0, badAl), f.pointer(7, &spec), f.pointer(3, &state), 0);
        },
        written);
    expectArgumentOrder(
        "zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1", {kNull, kSize, kNull, kNull, kNull, kArgument},
        [&](const Faults& f) {
          return zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(f.pointer(4, source), f.pointer(0, bytes),
                                                             f.value(1, 600, 0), f.pointer(2, &position),
                                                             f.value(5, 0, badAl), f.pointer(3, &state), 0);
        },
        written);
  }
  const auto checkAc = [&](const char* name, auto encode) {
    for (const Band bad : {Band{0, 63, 0}, Band{64, 64, 0}, Band{1, 64, 0}, Band{6, 5, 0}, Band{1, 63, -1},
                           Band{1, 63, 14}, Band{-1, -1, 0}}) {
      expectArgumentOrder(
          name, {kNull, kSize, kNull, kNull, kNull, kNull, kArgument},
          [&](const Faults& f) {
            return encode(f.pointer(5, &source[0]), f.pointer(0, &bytes[0]), f.value(1, 600, 0),
                          f.pointer(2, &position), f.value(6, 1, bad.first), f.value(6, 63, bad.last),
                          f.value(6, 0, bad.shift), f.pointer(3, &spec), f.pointer(4, &state), 0);
          },
          written);
    }
    // A flush needs destination, table and state.
    expectArgumentOrder(
        name, {kNull, kSize, kNull, kNull, kNull},
        [&](const Faults& f) {
          return encode(nullptr, f.pointer(0, &bytes[0]), f.value(1, 600, 0), f.pointer(2, &position), 0, 0, 0,
                        f.pointer(3, &spec), f.pointer(4, &state), 1);
        },
        written);
  };
  checkAc("zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1", zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1);
  checkAc("zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1", zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1);
}

}  // namespace
}  // namespace zorj::test
