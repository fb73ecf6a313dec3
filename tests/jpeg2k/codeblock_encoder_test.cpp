#include <zorcore.h>

#include "jpeg2k/codeblock_cases.h"
#include "support/arguments.h"

namespace zorj::test {
namespace {

void expectEqual(const EncodedBlock& actual, const EncodedBlock& expected, const std::string& what) {
  EXPECT_EQ(actual.planes, expected.planes) << what;
  EXPECT_EQ(actual.passes, expected.passes) << what;
  EXPECT_EQ(actual.codeword, expected.codeword) << what;
  EXPECT_EQ(actual.segmentLengths, expected.segmentLengths) << what;
  EXPECT_EQ(actual.rates, expected.rates) << what;
  EXPECT_EQ(actual.distortions, expected.distortions) << what;
}

// Encodes a block whose last row ends at an inaccessible page, at an odd address, with bytes between the rows, and
// stores it in pieces.
void expectEqualsModel(Encoder& encoder, const BlockCase& block, int32_t piece) {
  const EncodedBlock expected = reference::encodeBlock(block.samples, block.size, block.subband, block.magnitudeBits,
                                                       block.termination, block.flags);
  const size_t rowBytes = static_cast<size_t>(block.size.width) * 4, step = rowBytes + 3;
  const GuardedMemory memory(step * static_cast<size_t>(block.size.height) - 3, Placement::kAtEnd);
  for (size_t y = 0; y < static_cast<size_t>(block.size.height); ++y) {
    std::memcpy(memory.data() + y * step, block.samples.data() + y * static_cast<size_t>(block.size.width), rowBytes);
  }
  forEachIsa([&](Isa isa) {
    expectEqual(
        encoder.encode(block, reinterpret_cast<const int32_t*>(memory.data()), static_cast<int32_t>(step), piece),
        expected, block.name() + " at " + isaName(isa));
  });
}

TEST(CodeBlockEncoder, EqualsModelWithAllOptions) {
  Random random(1);
  Encoder encoder(kLargest);
  for (uint32_t flags = 0; flags < 64; ++flags) {
    for (int32_t termination = 0; termination < 3; ++termination) {
      for (int32_t subband = 0; subband < 4; ++subband) {
        BlockCase block = randomCase(randomSize(random), random);
        block.flags = flags;
        block.termination = termination;
        block.subband = subband;
        expectEqualsModel(encoder, block, static_cast<int32_t>(random.between(1, 40)));
        ASSERT_FALSE(HasFailure());
      }
    }
  }
}

TEST(CodeBlockEncoder, EqualsModelWithUnusualArguments) {
  Random random(2);
  Encoder encoder(kLargest);
  for (int i = 0; i < 200; ++i) {
    BlockCase block = randomCase(randomSize(random), random);
    block.flags |= static_cast<uint32_t>(random.next()) << 6;
    block.magnitudeBits = static_cast<int32_t>(random.between(-1, 40));
    expectEqualsModel(encoder, block, 1);
    ASSERT_FALSE(HasFailure());
  }
  for (const int32_t magnitudeBits : {INT32_MIN, INT32_MAX}) {
    BlockCase block = randomCase({9, 9}, random);
    block.magnitudeBits = magnitudeBits;
    expectEqualsModel(encoder, block, 100);
  }
}

TEST(CodeBlockEncoder, EqualsModelOnLargeBlocks) {
  Random random(3);
  for (const RoiSize size : {RoiSize{64, 64}, RoiSize{1024, 4}, RoiSize{4, 1024}, RoiSize{300, 130}}) {
    Encoder encoder(size);
    for (int i = 0; i < 2; ++i) expectEqualsModel(encoder, randomCase(size, random), 1 << 16);
  }
}

// The codes of all samples at once fill the room for decisions and codeword best.
TEST(CodeBlockEncoder, HasRoomForEveryDecision) {
  Random random(4);
  for (const RoiSize size : {RoiSize{1, 1}, RoiSize{1, 4}, RoiSize{16, 4}, RoiSize{5, 9}}) {
    Encoder encoder(size);
    BlockCase block = randomCase(size, random);
    block.magnitudeBits = 31;
    block.flags = CbTermAll | CbResetContexts | CbSegmentationSymbol;
    for (int32_t& sample : block.samples) {
      sample = static_cast<int32_t>(static_cast<uint32_t>(random.next()) | 0x40000000);
    }
    expectEqualsModel(encoder, block, 1 << 16);
  }
}

TEST(CodeBlockEncoder, BlockOfZerosHasNoPasses) {
  Encoder encoder({8, 8});
  BlockCase block{{8, 8}, Samples(64, INT32_MIN), SubbandLL, 31, 0, 0};
  expectEqualsModel(encoder, block, 5);
  EXPECT_EQ(encoder.encode(block).segmentLengths, std::vector<int>{0});
  block.flags = CbTermAll;
  expectEqualsModel(encoder, block, 5);
  int32_t length;
  EXPECT_EQ(zoriEncodeGetTermPassLen_JPEG2K(encoder.state(), 0, &length), StatusBadPassNumber);
}

TEST(CodeBlockEncoder, NumbersOfPassesAndSegmentsAreChecked) {
  Encoder encoder({8, 8});
  Random random(5);
  BlockCase block = randomCase({8, 8}, random);
  block.magnitudeBits = 31;
  const EncodedBlock coded = encoder.encode(block);
  double distortion;
  int32_t number;
  for (const int32_t bad : {-1, INT32_MIN, coded.passes, INT32_MAX}) {
    EXPECT_EQ(zoriEncodeGetDist_JPEG2K(encoder.state(), bad, &distortion), StatusBadPassNumber);
    EXPECT_EQ(zoriEncodeGetRate_JPEG2K(encoder.state(), bad, &number), StatusBadPassNumber);
  }
  for (const int32_t bad : {-1, INT32_MIN, static_cast<int32_t>(coded.segmentLengths.size()), INT32_MAX}) {
    EXPECT_EQ(zoriEncodeGetTermPassLen_JPEG2K(encoder.state(), bad, &number), StatusBadPassNumber);
  }
}

// The block up to a pass: its segments as a whole, or the last of them cut at the pass's rate.
struct Cut {
  Coded whole;
  Coded cut;
};
Cut cutAt(const EncodedBlock& encoded, const BlockCase& block, int pass) {
  Coded whole = codedBlock(block, encoded);
  whole.passes = pass + 1;
  size_t segments = 1;
  for (int i = 0; i < pass; ++i) {
    const bool endsHere = reference::isRawPass(i, block.flags) != reference::isRawPass(i + 1, block.flags);
    if (endsHere || (block.flags & CbTermAll)) ++segments;
  }
  whole.segmentLengths.resize(segments);
  Coded cut = whole;
  int left = encoded.rates[static_cast<size_t>(pass)];
  cut.codeword.resize(static_cast<size_t>(left));
  for (int& length : cut.segmentLengths) left -= length = std::min(length, left);
  return {whole, cut};
}

TEST(CodeBlockEncoder, CodewordsCutAtAnyRateDecodeAsIfWhole) {
  Random random(6);
  Encoder encoder(kLargest);
  for (int passes = 0; passes < 15000;) {
    const BlockCase block = randomCase(randomSize(random), random);
    const EncodedBlock encoded = encoder.encode(block);
    const uint32_t flags = (block.flags & kSharedOptions) | CbKeepMidpoint;
    EXPECT_TRUE(std::ranges::is_sorted(encoded.rates));
    for (int pass = 0; pass < encoded.passes; ++pass, ++passes) {
      const Cut at = cutAt(encoded, block, pass);
      const std::string what = block.name() + ", pass " + std::to_string(pass);
      ASSERT_TRUE(at.cut.codeword.empty() || at.cut.codeword.back() != 0xFF) << what;
      const auto whole = decode(at.whole, flags), cut = decode(at.cut, flags);
      ASSERT_EQ(whole.status, StatusOk) << what;
      ASSERT_EQ(cut.samples, whole.samples) << what;
      // Of a raw segment the padding may have been cut off, which the end of a refinement pass tells.
      if (!reference::isRawPass(pass, block.flags)) {
        ASSERT_EQ(cut.status, StatusOk) << what;
      }
    }
  }
}

// What the decoder gives back: the coded planes, and half a step of the lowest.
TEST(CodeBlockEncoder, BlocksRoundTrip) {
  Random random(7);
  Encoder encoder(kLargest);
  for (int i = 0; i < 600; ++i) {
    const BlockCase block = randomCase(randomSize(random), random);
    const Coded coded = codedBlock(block, encoder.encode(block));
    const uint32_t flags =
        (block.flags & kSharedOptions) | CbKeepMidpoint | (block.termination == 2 ? CbCheckTermination : 0);
    const int lowest = 31 - std::clamp(block.magnitudeBits, 0, 31);
    Samples expected;
    for (const int32_t sample : block.samples) {
      const uint32_t step = 1u << lowest, word = static_cast<uint32_t>(sample);
      const uint32_t magnitude = coded.passes == 0 ? 0 : (word & 0x7FFFFFFF) / step * step;
      expected.push_back(static_cast<int32_t>(magnitude == 0 ? 0 : (word & 0x80000000) | magnitude | step / 2));
    }
    const auto decoded = decode(coded, flags);
    ASSERT_EQ(decoded.status, StatusOk) << block.name();
    ASSERT_EQ(decoded.samples, expected) << block.name();
  }
}

TEST(CodeBlockEncoder, ArgumentsAreCheckedInOrder) {
  constexpr int32_t kCanary = 0x5A5A5A5A;
  Encoder encoder({8, 8});
  J2kEncodeState* const state = encoder.state();
  alignas(64) uint8_t noState[1024] = {};
  int32_t samples[64] = {}, planes = kCanary, passes = kCanary, segments = kCanary, number = kCanary;
  samples[5] = 3;
  double distortion = kCanary;
  uint8_t byte = 0x5A;
  const auto stateOr = [&](const Faults& faults) {
    return faults[0] ? nullptr : faults[1] ? reinterpret_cast<J2kEncodeState*>(noState) : state;
  };
  const auto written = [&] {
    return planes != kCanary || passes != kCanary || segments != kCanary || number != kCanary ||
           distortion != kCanary || byte != 0x5A;
  };
  J2kEncodeState* allocated = state;
  expectArgumentOrder(
      "InitAlloc", {StatusNullPointer, StatusBadSize, StatusBadSize},
      [&](const Faults& f) {
        return zoriEncodeInitAlloc_JPEG2K(f.pointer(0, &allocated), {f.value(2, 8, 0), f.value(1, 8, -3)});
      },
      [&] { return allocated != state; });
  EXPECT_EQ(zoriEncodeFree_JPEG2K(nullptr), StatusNullPointer);
  expectArgumentOrder(
      "LoadCodeBlock",
      {StatusNullPointer, StatusBadContext, StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadSize,
       StatusBadSize, StatusNullPointer, StatusBadStep},
      [&](const Faults& f) {
        return zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(
            f.pointer(7, samples), f.value(8, 32, 0), {f.value(5, 8, 0), f.value(6, 8, -1)}, stateOr(f), 0, 31, 0, 0, 0,
            f.pointer(2, &planes), f.pointer(3, &passes), f.pointer(4, &segments));
      },
      written);
  encoder.encode({{8, 8}, Samples(samples, samples + 64), SubbandLL, 31, 0, 0});
  int32_t length = 1, unfinished = kCanary;
  expectArgumentOrder(
      "StoreBits",
      {StatusNullPointer, StatusBadContext, StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadSize},
      [&](const Faults& f) {
        length = f.value(5, 1, 0);
        return zoriEncodeStoreBits_JPEG2K_1u(f.pointer(2, &byte), f.pointer(3, &length), stateOr(f),
                                             f.pointer(4, &unfinished));
      },
      [&] { return written() || unfinished != kCanary; });
  const std::vector<StatusCode> query = {StatusNullPointer, StatusBadContext, StatusNullPointer, StatusBadPassNumber};
  expectArgumentOrder(
      "GetDist", query,
      [&](const Faults& f) {
        return zoriEncodeGetDist_JPEG2K(stateOr(f), f.value(3, 0, -1), f.pointer(2, &distortion));
      },
      written);
  expectArgumentOrder(
      "GetRate", query,
      [&](const Faults& f) { return zoriEncodeGetRate_JPEG2K(stateOr(f), f.value(3, 0, -1), f.pointer(2, &number)); },
      written);
  expectArgumentOrder(
      "GetTermPassLen", query,
      [&](const Faults& f) {
        return zoriEncodeGetTermPassLen_JPEG2K(stateOr(f), f.value(3, 0, -1), f.pointer(2, &number));
      },
      written);
}

TEST(CodeBlockEncoder, AllocationFailsCleanly) {
  auto* state = reinterpret_cast<J2kEncodeState*>(1);
  for (const RoiSize size :
       {RoiSize{INT32_MAX, INT32_MAX}, RoiSize{INT32_MAX, 1}, RoiSize{1, INT32_MAX}, RoiSize{65536, 65536}}) {
    EXPECT_EQ(zoriEncodeInitAlloc_JPEG2K(&state, size), StatusNoMemory);
    EXPECT_EQ(state, nullptr);
  }
  const ZorAllocator none = {[](size_t, size_t, void*) -> void* { return nullptr; }, [](void*, void*) {}, nullptr};
  auto* decoder = reinterpret_cast<J2kDecodeState*>(1);
  zorSetAllocator(&none);
  state = reinterpret_cast<J2kEncodeState*>(1);
  EXPECT_EQ(zoriEncodeInitAlloc_JPEG2K(&state, {64, 64}), StatusNoMemory);
  EXPECT_EQ(zoriDecodeCBProgrInitAlloc_JPEG2K(&decoder, {64, 64}), StatusNoMemory);
  zorSetAllocator(nullptr);
  EXPECT_EQ(state, nullptr);
  EXPECT_EQ(decoder, nullptr);
}

TEST(CodeBlockEncoder, FreeDoesNotLookAtTheMark) {
  J2kEncodeState* state;
  ASSERT_EQ(zoriEncodeInitAlloc_JPEG2K(&state, {4, 4}), StatusOk);
  std::memset(static_cast<void*>(state), 0, 4);
  double distortion;
  EXPECT_EQ(zoriEncodeGetDist_JPEG2K(state, 0, &distortion), StatusBadContext);
  EXPECT_EQ(zoriEncodeFree_JPEG2K(state), StatusOk);
}

}  // namespace
}  // namespace zorj::test
