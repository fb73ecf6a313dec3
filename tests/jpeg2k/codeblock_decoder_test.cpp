#include "jpeg2k/codeblock_cases.h"
#include "support/arguments.h"
#include "support/coders.h"

namespace zorj::test {
namespace {

// All that only decoders know.
constexpr uint32_t kDecoderOptions = CbTruncateOnError | CbKeepDestination | CbKeepMidpoint | CbCheckTermination;

uint32_t randomDecoderOptions(Random& random) {
  return static_cast<uint32_t>(random.next()) & (random.oneIn(2) ? kDecoderOptions : uint32_t{CbKeepMidpoint});
}

void expectEqualsModel(const Coded& coded, uint32_t flags, const Samples& before, const std::string& what) {
  const auto expected = reference::decodeBlock(coded.codeword, coded.size, coded.subband, coded.planes, coded.passes,
                                               coded.segmentLengths, flags, before);
  forEachIsa([&](Isa isa) {
    const auto actual = decode(coded, flags, before);
    const std::string where = what + " decoded with " + std::to_string(flags) + " at " + isaName(isa);
    EXPECT_EQ(actual.status, expected.status) << where;
    EXPECT_EQ(actual.errorPlane, expected.errorPlane) << where;
    EXPECT_EQ(actual.samples, expected.samples) << where;
  });
}

// The model's encoder is the writer, so that the decoder is held to nothing of the library's own.
Coded modelCoded(const BlockCase& block) {
  return codedBlock(block, reference::encodeBlock(block.samples, block.size, block.subband, block.magnitudeBits,
                                                  block.termination, block.flags));
}

TEST(CodeBlockDecoder, EqualsModelWithAllOptions) {
  Random random(1);
  for (uint32_t flags = 0; flags <= kSharedOptions; ++flags) {
    for (int i = 0; i < 12; ++i) {
      BlockCase block = randomCase(randomSize(random), random);
      block.flags = flags;
      Coded coded = modelCoded(block);
      const Samples before = randomSamples(block.size, random);
      if (random.oneIn(3)) coded.passes = static_cast<int>(random.between(-1, coded.passes + 2));
      if (random.oneIn(3)) {
        coded.segmentLengths.resize(static_cast<size_t>(random.between(0, std::ssize(coded.segmentLengths))));
      }
      expectEqualsModel(coded, flags | randomDecoderOptions(random), before, block.name());
      ASSERT_FALSE(HasFailure());
    }
  }
}

// Damaged codewords: what the passes make of them, and which error each check finds where.
TEST(CodeBlockDecoder, EqualsModelOnCorruptData) {
  Random random(2);
  int errors = 0, survivors = 0;
  for (int i = 0; i < 1500; ++i) {
    BlockCase block = randomCase(randomSize(random), random);
    block.flags &= kSharedOptions;
    if (random.oneIn(2)) block.termination = 2;
    Coded coded = modelCoded(block);
    for (auto times = random.between(0, 3); times > 0 && !coded.codeword.empty(); --times) {
      coded.codeword = disturbed(coded.codeword, random);
    }
    if (coded.segmentLengths.size() > 1 && random.oneIn(2)) {
      int& length = coded.segmentLengths[static_cast<size_t>(random.between(0, std::ssize(coded.segmentLengths) - 1))];
      length = static_cast<int>(random.between(-1, length + 1));
    }
    int left = static_cast<int>(coded.codeword.size());
    for (int& length : coded.segmentLengths) {
      length = std::min(length, left);
      left -= std::max(length, 0);
    }
    const uint32_t flags = (random.oneIn(4) ? static_cast<uint32_t>(random.next()) & kSharedOptions : block.flags) |
                           (static_cast<uint32_t>(random.next()) & kDecoderOptions);
    expectEqualsModel(coded, flags, randomSamples(block.size, random), block.name());
    ASSERT_FALSE(HasFailure());
    ++(decode(coded, flags).status == StatusOk ? survivors : errors);
  }
  EXPECT_GT(errors, 100);
  EXPECT_GT(survivors, 100);
}

// The check of the termination, on segments that end in every way around a byte 0xFF.
TEST(CodeBlockDecoder, ChecksEveryEndAsTheModelDoes) {
  Random random(6);
  for (int i = 0; i < 150; ++i) {
    BlockCase block = randomCase({static_cast<int32_t>(random.between(1, 4)), 3}, random);
    block.flags = 0;
    block.termination = 2;
    Coded coded = modelCoded(block);
    // Behind the end a decoder assumes 0xFF itself. Seen earlier, it makes damage of most codewords.
    const size_t length = coded.codeword.size();
    coded.codeword.resize(length + 2);
    if (coded.passes > 0) coded.segmentLengths[0] += 2;
    for (size_t at = length; at + 3 > length && at < coded.codeword.size(); --at) {
      for (const uint8_t next : {0x00, 0x7F, 0x8F, 0x90, 0xFF}) {
        coded.codeword[at] = 0xFF;
        coded.codeword[at + 1] = next;
        expectEqualsModel(coded, CbCheckTermination, Samples(block.sampleCount()), block.name());
      }
    }
  }
}

TEST(CodeBlockDecoder, EqualsModelOnLargeBlocks) {
  Random random(3);
  for (const RoiSize size : {RoiSize{64, 64}, RoiSize{1024, 4}, RoiSize{4, 1024}, RoiSize{130, 67}}) {
    BlockCase block = randomCase(size, random);
    block.magnitudeBits = 31;
    expectEqualsModel(modelCoded(block), block.flags & kSharedOptions, Samples(block.sampleCount()), block.name());
  }
}

// Step by step, with numbers of passes that end in the middle of segments.
TEST(CodeBlockDecoder, StepsEqualModel) {
  Random random(4);
  J2kDecodeState* state;
  ASSERT_EQ(zoriDecodeCBProgrInitAlloc_JPEG2K(&state, kLargest), StatusOk);
  for (int i = 0; i < 600; ++i) {
    BlockCase block = randomCase(randomSize(random), random);
    block.flags &= kSharedOptions;
    Coded coded = modelCoded(block);
    if (random.oneIn(3) && !coded.codeword.empty()) {
      const size_t length = coded.codeword.size();
      coded.codeword = disturbed(coded.codeword, random);
      coded.codeword.resize(length);
    }
    const uint32_t flags = block.flags | (random.oneIn(4) ? CbCheckTermination : 0);
    Samples samples(block.sampleCount(), 1);
    ASSERT_EQ(zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(samples.data(), block.size.width * 4, block.size, state,
                                                     block.subband, coded.planes, flags),
              StatusOk);
    reference::ProgressiveDecoder model(block.size, block.subband, coded.planes, flags, Samples(block.sampleCount()));
    Trace expected, actual;
    const auto note = [&] {
      int32_t passes, plane;
      EXPECT_EQ(zoriDecodeCBProgrGetPassCounter_JPEG2K(state, &passes), StatusOk);
      EXPECT_EQ(zoriDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state, &plane), StatusOk);
      actual.insert(actual.end(), {passes, plane});
      expected.insert(expected.end(), {model.passes, model.plane});
    };
    note();
    coded.codeword.push_back(0);
    const uint8_t* segment = coded.codeword.data();
    for (const int length : coded.segmentLengths) {
      if (model.passes < 1) {
        model.passes = static_cast<int>(random.between(0, 12));
        EXPECT_EQ(zoriDecodeCBProgrSetPassCounter_JPEG2K(model.passes, state), StatusOk);
      }
      expected.push_back(model.step(segment, length));
      actual.push_back(zoriDecodeCBProgrStep_JPEG2K(segment, length, state));
      note();
      segment += length;
    }
    expectEqualTraces(block.name(), actual, expected);
    ASSERT_EQ(samples, model.samples()) << block.name();
  }
  EXPECT_EQ(zoriDecodeCBProgrFree_JPEG2K(state), StatusOk);
}

// A caller whose memory is zero already has the decoder leave it so until the block comes, and the next one needs it
// again.
TEST(CodeBlockDecoder, UsesClearMemoryAsItIs) {
  Random random(5);
  BlockCase block = randomCase({33, 21}, random);
  block.magnitudeBits = 31;
  const Coded coded = modelCoded(block);
  const uint32_t flags = (block.flags & kSharedOptions) | CbContextsClear | CbTruncateOnError;
  int32_t bytes;
  ASSERT_EQ(zoriDecodeCBProgrGetStateSize_JPEG2K(block.size, &bytes), StatusOk);
  std::vector<uint8_t> state(static_cast<size_t>(bytes));
  Samples samples(block.sampleCount());
  EXPECT_EQ(zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(coded.codeword.data(), samples.data(), 33 * 4, block.size,
                                                 block.subband, coded.planes, coded.passes, coded.segmentLengths.data(),
                                                 std::ssize(coded.segmentLengths), flags, nullptr, state.data()),
            StatusOk);
  EXPECT_EQ(samples, reference::decodeBlock(coded.codeword, block.size, block.subband, coded.planes, coded.passes,
                                            coded.segmentLengths, flags, samples)
                         .samples);
}

// Memory that is said to be zero and holds noise instead spoils the block, but nothing beside it.
TEST(CodeBlockDecoder, TakesNoiseForClearMemoryInsideTheBlock) {
  Random random(6);
  forEachIsa([&](Isa) {
    for (int round = 0; round < 200; ++round) {
      const RoiSize size = {static_cast<int32_t>(random.between(1, 20)), static_cast<int32_t>(random.between(1, 20))};
      int32_t bytes = 0;
      ASSERT_EQ(zoriDecodeCBProgrGetStateSize_JPEG2K(size, &bytes), StatusOk);
      const GuardedMemory memory(static_cast<size_t>(bytes), Placement::kAtEnd);
      const GuardedMemory samples(static_cast<size_t>(size.width * size.height) * 4,
                                  round % 2 == 0 ? Placement::kAtEnd : Placement::kAtStart);
      uint8_t segment[64];
      for (uint8_t& byte : segment) byte = static_cast<uint8_t>(random.next());
      fillSamples(memory.data(), memory.size(), random, 0);
      auto* const state = reinterpret_cast<J2kDecodeState*>(memory.data());
      ASSERT_EQ(zoriDecodeCBProgrInit_JPEG2K(state), StatusOk);
      const auto flags = CbContextsClear | (static_cast<uint32_t>(random.next()) & kSharedOptions);
      ASSERT_EQ(zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(reinterpret_cast<int32_t*>(samples.data()), 4 * size.width, size,
                                                       state, SubbandHL, 10, flags),
                StatusOk);
      ASSERT_EQ(zoriDecodeCBProgrSetPassCounter_JPEG2K(28, state), StatusOk);
      zoriDecodeCBProgrStep_JPEG2K(segment, sizeof segment, state);
    }
  });
}

TEST(CodeBlockDecoder, ErrorsLastUntilTheNextBlock) {
  alignas(64) uint8_t memory[4096];
  auto* const state = reinterpret_cast<J2kDecodeState*>(memory + 1);
  int32_t sample = 0;
  const uint8_t wrongSymbol[] = {0x00, 0x00, 0x00, 0x00};
  const auto step = [&] { return zoriDecodeCBProgrStep_JPEG2K(wrongSymbol, 4, state); };
  const auto attach = [&] {
    return zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(&sample, 4, {1, 1}, state, SubbandHH, 3, CbSegmentationSymbol);
  };
  ASSERT_EQ(zoriDecodeCBProgrInit_JPEG2K(state), StatusOk);
  EXPECT_EQ(step(), StatusNotAttached);
  EXPECT_EQ(attach(), StatusOk);
  EXPECT_EQ(step(), StatusOk) << "no passes remain";
  EXPECT_EQ(zoriDecodeCBProgrSetPassCounter_JPEG2K(1, state), StatusOk);
  EXPECT_EQ(step(), StatusCodeBlockError);
  EXPECT_EQ(zoriDecodeCBProgrSetPassCounter_JPEG2K(0, state), StatusOk);
  EXPECT_EQ(step(), StatusCodeBlockError);
  EXPECT_EQ(attach(), StatusOk);
  EXPECT_EQ(step(), StatusOk);
}

TEST(CodeBlockDecoder, TellsTheSizeOfItsState) {
  const auto size = [](int32_t width, int32_t height) {
    int32_t bytes = -1;
    const StatusCode status = zoriDecodeCBProgrGetStateSize_JPEG2K({width, height}, &bytes);
    int32_t sameBytes = -1;
    EXPECT_EQ(zoriDecodeGetBufSize_JPEG2K({width, height}, &sameBytes), status);
    EXPECT_EQ(sameBytes, bytes);
    return status == StatusOk ? bytes : status;
  };
  EXPECT_EQ(size(64, 64), 288 * 34 + 388);
  EXPECT_EQ(size(32, 32), 160 * 18 + 388);
  EXPECT_EQ(size(6, 5), 32 * 5 + 388);
  EXPECT_EQ(size(7, 1), 64 * 3 + 388);
  EXPECT_EQ(size(INT32_MAX, 1), StatusNoMemory);
  EXPECT_EQ(size(1, INT32_MAX), StatusNoMemory);
  auto* state = reinterpret_cast<J2kDecodeState*>(1);
  EXPECT_EQ(zoriDecodeCBProgrInitAlloc_JPEG2K(&state, {INT32_MAX, INT32_MAX}), StatusNoMemory);
  EXPECT_EQ(state, nullptr);
}

TEST(CodeBlockDecoder, ArgumentsOfStepsAreCheckedInOrder) {
  constexpr int32_t kCanary = 0x5A5A5A5A;
  alignas(64) uint8_t memory[4096] = {}, noState[4096] = {};
  auto* const state = reinterpret_cast<J2kDecodeState*>(memory);
  int32_t samples[64], number = kCanary;
  std::ranges::fill(samples, kCanary);
  ASSERT_EQ(zoriDecodeCBProgrInit_JPEG2K(state), StatusOk);
  EXPECT_EQ(zoriDecodeCBProgrInit_JPEG2K(nullptr), StatusNullPointer);
  const auto stateOr = [&](const Faults& faults) {
    return faults[0] ? nullptr : reinterpret_cast<J2kDecodeState*>(faults[1] ? noState : memory);
  };
  const auto written = [&] { return number != kCanary || std::ranges::count(samples, kCanary) != 64; };
  for (const auto size : {&zoriDecodeCBProgrGetStateSize_JPEG2K, &zoriDecodeGetBufSize_JPEG2K}) {
    expectArgumentOrder(
        "GetStateSize", {StatusBadSize, StatusBadSize, StatusNullPointer},
        [&](const Faults& f) {
          return size({f.value(0, 8, 0), f.value(1, 8, -1)}, f.pointer(2, &number));
        },
        written);
  }
  J2kDecodeState* allocated = state;
  expectArgumentOrder(
      "InitAlloc", {StatusNullPointer, StatusBadSize, StatusBadSize},
      [&](const Faults& f) {
        return zoriDecodeCBProgrInitAlloc_JPEG2K(f.pointer(0, &allocated), {f.value(2, 8, 0), f.value(1, 8, -3)});
      },
      [&] { return allocated != state; });
  expectArgumentOrder(
      "Free", {StatusNullPointer, StatusBadContext},
      [&](const Faults& f) { return zoriDecodeCBProgrFree_JPEG2K(stateOr(f)); }, written);
  expectArgumentOrder(
      "Attach", {StatusNullPointer, StatusBadContext, StatusNullPointer, StatusBadStep, StatusBadSize, StatusBadSize},
      [&](const Faults& f) {
        return zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(f.pointer(2, samples), f.value(3, 32, 0),
                                                      {f.value(4, 8, 0), f.value(5, 8, -1)}, stateOr(f), 0, 8, 0);
      },
      written);
  expectArgumentOrder(
      "SetPassCounter", {StatusNullPointer, StatusBadContext},
      [&](const Faults& f) { return zoriDecodeCBProgrSetPassCounter_JPEG2K(5, stateOr(f)); }, written);
  expectArgumentOrder(
      "GetPassCounter", {StatusNullPointer, StatusNullPointer, StatusBadContext},
      [&](const Faults& f) {
        auto* const marked = reinterpret_cast<J2kDecodeState*>(f[2] ? noState : memory);
        return zoriDecodeCBProgrGetPassCounter_JPEG2K(f.pointer(0, marked), f.pointer(1, &number));
      },
      written);
  expectArgumentOrder(
      "GetCurBitPlaneNum", {StatusNullPointer, StatusBadContext, StatusNullPointer},
      [&](const Faults& f) { return zoriDecodeCBProgrGetCurBitPlaneNum_JPEG2K(stateOr(f), f.pointer(2, &number)); },
      written);
}

TEST(CodeBlockDecoder, ArgumentsAreCheckedInOrder) {
  alignas(64) uint8_t memory[4096] = {};
  uint8_t byte = 0;
  int32_t samples[64], length = 1;
  std::ranges::fill(samples, 7);
  expectArgumentOrder(
      "DecodeCodeBlock",
      {StatusNullPointer, StatusNullPointer, StatusBadSize, StatusBadSize, StatusNullPointer, StatusNullPointer,
       StatusBadStep},
      [&](const Faults& f) {
        return zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(f.pointer(0, &byte), f.pointer(5, samples), f.value(6, 32, 0),
                                                    {f.value(2, 8, 0), f.value(3, 8, -1)}, 0, 8, 1,
                                                    f.pointer(4, &length), 1, 0, nullptr, f.pointer(1, memory));
      },
      [&] { return memory[0] != 0 || std::ranges::count(samples, 7) != 64; });
}

}  // namespace
}  // namespace zorj::test
