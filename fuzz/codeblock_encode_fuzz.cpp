// The code-block encoder beside the model, stored in pieces, and what it wrote decoded again.
#include "jpeg2k/codeblock_cases.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {

void fuzz(Input& input) {
  chooseLevel(input);
  test::BlockCase block;
  block.size = {input.between(1, 40), input.between(1, 18)};
  block.subband = input.byte() % 5;
  block.magnitudeBits = input.coin() ? 31 : input.between(-1, 33);
  block.termination = input.byte() % 4;
  block.flags = input.byte() & 0x3Fu;
  const int32_t piece = input.between(1, 300), shift = input.between(0, 31);
  const auto count = static_cast<size_t>(block.size.width) * static_cast<size_t>(block.size.height);
  block.samples.resize(count);
  input.fill(block.samples.data(), count);
  for (int32_t& sample : block.samples) {
    sample = static_cast<int32_t>((static_cast<uint32_t>(sample) & 0x7FFFFFFF) >> shift |
                                  (static_cast<uint32_t>(sample) & 0x80000000));
  }
  const Exact<int32_t> source(std::span<const int32_t>(block.samples), input.coin());
  test::Encoder encoder(block.size);
  const test::EncodedBlock actual = encoder.encode(block, source.data(), block.size.width * 4, piece);
  const test::EncodedBlock expected = reference::encodeBlock(block.samples, block.size, block.subband,
                                                             block.magnitudeBits, block.termination, block.flags);
  EXPECT_EQ(actual.planes, expected.planes);
  EXPECT_EQ(actual.passes, expected.passes);
  EXPECT_EQ(actual.codeword, expected.codeword);
  EXPECT_EQ(actual.segmentLengths, expected.segmentLengths);
  EXPECT_EQ(actual.rates, expected.rates);
  EXPECT_EQ(actual.distortions, expected.distortions);
  if (block.magnitudeBits != 31) return;

  const uint32_t flags = (block.flags & test::kSharedOptions) | (block.termination == 2 ? CbCheckTermination : 0);
  const reference::DecodedBlock decoded = test::decode(test::codedBlock(block, actual), flags);
  EXPECT_EQ(decoded.status, StatusOk);
  // Zeros have no sign.
  test::Samples original = block.samples;
  for (int32_t& sample : original) sample = sample == INT32_MIN ? 0 : sample;
  EXPECT_EQ(decoded.samples, original);
}

}  // namespace zorj::fuzz
