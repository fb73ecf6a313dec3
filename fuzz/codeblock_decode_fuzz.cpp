// The code-block decoders on any bytes, cut into segments anyhow, beside the model.
#include "jpeg2k/codeblock_cases.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

// All but the promise that the memory is clear.
constexpr uint32_t kOptions =
    test::kSharedOptions | CbTruncateOnError | CbKeepDestination | CbKeepMidpoint | CbCheckTermination;

test::Coded codedBlock(Input& input) {
  test::Coded coded;
  coded.size = {input.between(1, 40), input.between(1, 18)};
  coded.subband = input.byte() % 5;
  coded.planes = input.between(0, 31);
  coded.passes = input.between(-1, 100);
  std::vector<int> lengths(static_cast<size_t>(input.between(0, 40)));
  for (int& length : lengths) length = input.byte() - 1;
  int left = static_cast<int>(input.rest().size());
  for (int& length : lengths) {
    length = std::min(length, left);
    left -= std::max(length, 0);
  }
  coded.segmentLengths = lengths;
  coded.codeword.assign(input.rest().begin(), input.rest().end());
  return coded;
}

void decodeAtOnce(Input& input, uint32_t flags) {
  const int32_t before = input.word();
  const test::Coded coded = codedBlock(input);
  const test::Samples samples(static_cast<size_t>(coded.size.width) * static_cast<size_t>(coded.size.height), before);
  const auto actual = test::decode(coded, flags, samples);
  const auto expected = reference::decodeBlock(coded.codeword, coded.size, coded.subband, coded.planes, coded.passes,
                                               coded.segmentLengths, flags, samples);
  EXPECT_EQ(actual.status, expected.status);
  EXPECT_EQ(actual.errorPlane, expected.errorPlane);
  EXPECT_EQ(actual.samples, expected.samples);
}

void decodeInSteps(Input& input, uint32_t flags) {
  flags &= test::kSharedOptions | CbCheckTermination;
  const test::Coded coded = codedBlock(input);
  int32_t bytes = 0;
  EXPECT_EQ(zoriDecodeCBProgrGetStateSize_JPEG2K(coded.size, &bytes), StatusOk);
  const Exact<uint8_t> memory(static_cast<size_t>(bytes), true);
  auto* const state = reinterpret_cast<J2kDecodeState*>(memory.data());
  EXPECT_EQ(zoriDecodeCBProgrInit_JPEG2K(state), StatusOk);
  const auto count = static_cast<size_t>(coded.size.width) * static_cast<size_t>(coded.size.height);
  const Exact<int32_t> samples(count, true);
  EXPECT_EQ(zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(samples.data(), coded.size.width * 4, coded.size, state,
                                                   coded.subband, coded.planes, flags),
            StatusOk);
  reference::ProgressiveDecoder model(coded.size, coded.subband, coded.planes, flags, test::Samples(count));
  model.passes = coded.passes;
  EXPECT_EQ(zoriDecodeCBProgrSetPassCounter_JPEG2K(coded.passes, state), StatusOk);
  size_t at = 0;
  for (const int length : coded.segmentLengths) {
    const Exact<uint8_t> segment(std::span(coded.codeword).subspan(at, static_cast<size_t>(std::max(length, 0))));
    EXPECT_EQ(zoriDecodeCBProgrStep_JPEG2K(segment.data(), length, state), model.step(segment.data(), length));
    int32_t passes = 0, plane = 0;
    EXPECT_EQ(zoriDecodeCBProgrGetPassCounter_JPEG2K(state, &passes), StatusOk);
    EXPECT_EQ(zoriDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state, &plane), StatusOk);
    EXPECT_EQ(passes, model.passes);
    EXPECT_EQ(plane, model.plane);
    at += segment.size();
  }
  EXPECT_EQ(samples.values(), model.samples());
}

// Numbers of planes and passes that no block has: the model knows none of these.
void decodeWithAnyNumbers(Input& input, uint32_t flags) {
  const int32_t planes = input.word(), passes = input.word();
  test::Coded coded = codedBlock(input);
  coded.planes = planes;
  coded.passes = passes;
  sameAtPortableLevel([&] { return test::decode(coded, flags).samples; });
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  const uint8_t kind = input.byte() % 5;
  const uint32_t choices = static_cast<uint32_t>(input.byte()) | static_cast<uint32_t>(input.byte() % 32) << 16;
  if (kind == 4) return decodeWithAnyNumbers(input, choices & kOptions);
  kind % 2 == 0 ? decodeAtOnce(input, choices & kOptions) : decodeInSteps(input, choices & kOptions);
}

}  // namespace zorj::fuzz
