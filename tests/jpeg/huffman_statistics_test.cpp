#include "support/arguments.h"
#include "support/huffman_encoder_calls.h"
#include "support/progressive_data.h"

namespace zorj::test {
namespace {

using reference::Band;
using Counters = std::array<uint32_t, 256>;

int32_t* asSigned(Counters& counters) { return reinterpret_cast<int32_t*>(counters.data()); }

// What a series of calls counted and left behind.
struct Outcome {
  Counters dc{}, ac{};
  Trace trace;
  bool operator==(const Outcome&) const = default;
};

// Makes the same calls of the subject at every level and of the model.
template <class Subject, class Model>
void expectCountsEqualModel(const std::string& what, const Subject& subject, const Model& model) {
  Outcome expected;
  model(expected);
  forEachIsa([&](Isa isa) {
    Outcome actual;
    subject(actual);
    expectEqualTraces(what + " at " + isaName(isa), actual.trace, expected.trace);
    EXPECT_TRUE(actual == expected) << what << " at " << isaName(isa) << ": counters differ";
  });
}

TEST(HuffmanStatistics, SequentialBlocksEqualModel) {
  Random random(1);
  for (int round = 0; round < 100; ++round) {
    std::vector<Block> blocks(30);
    for (Block& block : blocks) block = anyBlock(random);
    blocks[3][reference::naturalIndex(16)] = -32768;
    expectCountsEqualModel(
        "round " + std::to_string(round),
        [&](Outcome& outcome) {
          int16_t lastDc = 0;
          for (const Block& block : blocks) {
            outcome.trace.push_back(zoriGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), asSigned(outcome.dc),
                                                                            asSigned(outcome.ac), &lastDc));
            outcome.trace.push_back(lastDc);
          }
        },
        [&](Outcome& outcome) {
          int16_t lastDc = 0;
          for (const Block& block : blocks) {
            outcome.trace.push_back(reference::countBlock(outcome.dc, outcome.ac, block.data(), lastDc));
            outcome.trace.push_back(lastDc);
          }
        });
  }
}

TEST(HuffmanStatistics, ScansEqualModel) {
  Random random(2);
  for (int round = 0; round < 300; ++round) {
    const bool refine = round % 2 != 0;
    const Band band = anyBand(random);
    // Long enough for runs that are written because of their correction bits.
    const std::vector<Block> blocks = anyScanBlocks(random, 100, band);
    expectCountsEqualModel(
        "round " + std::to_string(round),
        [&](Outcome& outcome) {
          int16_t lastDc = 0;
          HuffmanEncodeState state = freshState();
          const auto countAc = refine ? zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1
                                      : zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1;
          for (const Block& block : blocks) {
            outcome.trace.push_back(zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(block.data(), asSigned(outcome.dc),
                                                                                    &lastDc, band.shift));
            outcome.trace.push_back(
                countAc(block.data(), asSigned(outcome.ac), band.first, band.last, band.shift, &state, 0));
            outcome.trace.insert(outcome.trace.end(), {lastDc, state.eobRun, state.correctionCount});
          }
          outcome.trace.push_back(countAc(nullptr, asSigned(outcome.ac), 0, 0, 0, &state, 1));
          note(outcome.trace, StatusOk, 0, state);
        },
        [&](Outcome& outcome) {
          int16_t lastDc = 0;
          reference::EobRun run;
          reference::SymbolSink dc(outcome.dc), ac(outcome.ac);
          for (const Block& block : blocks) {
            outcome.trace.push_back(reference::codeDcFirst(dc, block.data(), band.shift, lastDc));
            outcome.trace.push_back(refine ? reference::codeAcRefine(ac, block.data(), band, run)
                                           : reference::codeAcFirst(ac, block.data(), band, run));
            outcome.trace.insert(outcome.trace.end(),
                                 {lastDc, run.blocks, static_cast<int64_t>(run.corrections.size())});
          }
          outcome.trace.push_back(reference::putRun(ac, run));
          note(outcome.trace, StatusOk, reference::HuffmanWriter(nullptr, 0), {});
        });
  }
}

TEST(HuffmanStatistics, ValuesEqualModel) {
  Counters actual{}, expected{};
  for (int value = -32768; value <= 32767; ++value) {
    const auto difference = static_cast<int16_t>(value);
    EXPECT_EQ(zoriGetHuffmanStatisticsOne_JPEG_16s_C1(&difference, asSigned(actual)), StatusOk);
    ++expected[static_cast<size_t>(reference::category(value))];
  }
  EXPECT_EQ(actual, expected);
}

// Runs that no series of blocks leads to: the symbol that takes 32767 blocks off, and the run that is still too long.
TEST(HuffmanStatistics, RunsInDamagedStates) {
  HuffmanEncodeState state = freshState();
  Counters counters{};
  state.eobRun = 32767 + 5;
  EXPECT_EQ(zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(nullptr, asSigned(counters), 1, 63, 0, &state, 1),
            StatusOk);
  EXPECT_EQ(counters[0xE0], 1u);
  EXPECT_EQ(counters[0x20], 1u);
  state.eobRun = 70000;
  EXPECT_EQ(zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(nullptr, asSigned(counters), 1, 63, 0, &state, 1),
            StatusHuffmanDataError);
  EXPECT_EQ(state.eobRun, 0u);
}

TEST(HuffmanStatistics, ArgumentOrder) {
  const int16_t source[64] = {1, 1};
  Counters dc{}, ac{};
  int16_t lastDc = 0;
  HuffmanEncodeState state = {};
  const auto written = [&] { return dc != Counters{} || ac != Counters{} || lastDc != 0 || state.eobRun != 0; };
  constexpr StatusCode kNull = StatusNullPointer, kArgument = StatusBadArgument;

  expectArgumentOrder(
      "zoriGetHuffmanStatistics8x8_JPEG_16s_C1", std::vector<StatusCode>(4, kNull),
      [&](const Faults& f) {
        return zoriGetHuffmanStatistics8x8_JPEG_16s_C1(f.pointer(0, source), f.pointer(1, asSigned(dc)),
                                                       f.pointer(2, asSigned(ac)), f.pointer(3, &lastDc));
      },
      written);
  expectArgumentOrder(
      "zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1", {kNull, kNull, kNull, kArgument},
      [&](const Faults& f) {
        return zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(f.pointer(0, source), f.pointer(1, asSigned(dc)),
                                                               f.pointer(2, &lastDc), f.value(3, 0, 14));
      },
      written);
  for (const auto count :
       {zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1, zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1}) {
    for (const Band bad : {Band{0, 63, 0}, Band{1, 64, 0}, Band{6, 5, 0}, Band{1, 63, 14}}) {
      expectArgumentOrder(
          "AC statistics", {kNull, kNull, kNull, kArgument},
          [&](const Faults& f) {
            return count(f.pointer(2, source), f.pointer(0, asSigned(ac)), f.value(3, 1, bad.first),
                         f.value(3, 63, bad.last), f.value(3, 0, bad.shift), f.pointer(1, &state), 0);
          },
          written);
    }
    expectArgumentOrder(
        "AC statistics, flush", {kNull, kNull},
        [&](const Faults& f) { return count(nullptr, f.pointer(0, asSigned(ac)), 0, 0, 0, f.pointer(1, &state), 1); },
        written);
  }
  expectArgumentOrder(
      "zoriGetHuffmanStatisticsOne_JPEG_16s_C1", {kNull, kNull},
      [&](const Faults& f) {
        return zoriGetHuffmanStatisticsOne_JPEG_16s_C1(f.pointer(0, source), f.pointer(1, asSigned(dc)));
      },
      written);
}

}  // namespace
}  // namespace zorj::test
