// Blocks to code, and calls that code them.
#pragma once

#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ranges>
#include <string>
#include <vector>

#include "reference/codeblock.h"
#include "support/guarded_memory.h"
#include "support/isa_levels.h"
#include "support/random.h"

namespace zorj::test {

using reference::EncodedBlock;
using Samples = std::vector<int32_t>;

// The options that encoder and decoder share.
inline constexpr uint32_t kSharedOptions = 0x1F;

struct BlockCase {
  RoiSize size;
  Samples samples;
  int32_t subband;
  int32_t magnitudeBits;
  int32_t termination;
  uint32_t flags;

  size_t sampleCount() const { return samples.size(); }
  std::string name() const {
    return std::to_string(size.width) + "x" + std::to_string(size.height) + ", sub-band " + std::to_string(subband) +
           ", " + std::to_string(magnitudeBits) + " magnitude bits, termination " + std::to_string(termination) +
           ", flags " + std::to_string(flags);
  }
};

// Mixed magnitudes, a few large ones among zeros, ones that fall from the corner as in a picture's block, or all of one
// size; with both signs, of zeros too.
inline Samples randomSamples(RoiSize size, Random& random) {
  Samples samples(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
  const auto bits = static_cast<int>(random.between(1, random.oneIn(3) ? 31 : 9));
  const auto kind = random.between(0, 3);
  for (size_t i = 0; i < samples.size(); ++i) {
    auto magnitude = static_cast<uint32_t>(random.next()) & ((1u << (bits - 1) << 1) - 1) & 0x7FFFFFFF;
    if (kind == 0) magnitude >>= random.between(0, bits - 1);
    if (kind == 1 && !random.oneIn(12)) magnitude = 0;
    if (kind == 2) magnitude >>= std::min<size_t>(i * static_cast<size_t>(bits) / samples.size(), 31);
    samples[i] = static_cast<int32_t>(magnitude | static_cast<uint32_t>(random.oneIn(2)) << 31);
  }
  return samples;
}

// A block of the largest magnitudes in a random choice of all else.
inline BlockCase randomCase(RoiSize size, Random& random) {
  return {size,
          randomSamples(size, random),
          static_cast<int32_t>(random.between(-1, 5)),
          random.oneIn(3) ? static_cast<int32_t>(random.between(-1, 33)) : 31,
          static_cast<int32_t>(random.between(0, 3)),
          static_cast<uint32_t>(random.between(0, 63))};
}

// Mostly small, so that stripes and columns of every kind meet; sometimes wider than several words of map.
inline RoiSize randomSize(Random& random) {
  const auto side = [&random] { return static_cast<int32_t>(random.between(1, random.oneIn(5) ? 70 : 19)); };
  const int32_t width = side();
  return {width, side()};
}

class Encoder {
 public:
  explicit Encoder(RoiSize size) { EXPECT_EQ(zoriEncodeInitAlloc_JPEG2K(&state_, size), StatusOk); }
  ~Encoder() { zoriEncodeFree_JPEG2K(state_); }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  J2kEncodeState* state() const { return state_; }

  // The block's rows stand `step` bytes apart; the codeword is taken in pieces of the given length.
  EncodedBlock encode(const BlockCase& block, const int32_t* source, int32_t step, int32_t piece) {
    EncodedBlock result;
    int32_t segments;
    EXPECT_EQ(zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(source, step, block.size, state_, block.subband,
                                                     block.magnitudeBits, block.termination, 77, block.flags,
                                                     &result.planes, &result.passes, &segments),
              StatusOk);
    for (int32_t unfinished = 1; unfinished;) {
      std::vector<uint8_t> bytes(static_cast<size_t>(piece));
      int32_t length = piece;
      EXPECT_EQ(zoriEncodeStoreBits_JPEG2K_1u(bytes.data(), &length, state_, &unfinished), StatusOk);
      EXPECT_TRUE(length == piece || !unfinished);
      result.codeword.insert(result.codeword.end(), bytes.begin(), bytes.begin() + length);
    }
    for (int32_t pass = 0; pass < result.passes; ++pass) {
      result.distortions.emplace_back();
      EXPECT_EQ(zoriEncodeGetDist_JPEG2K(state_, pass, &result.distortions.back()), StatusOk);
      result.rates.emplace_back();
      EXPECT_EQ(zoriEncodeGetRate_JPEG2K(state_, pass, &result.rates.back()), StatusOk);
    }
    for (int32_t segment = 0; segment < segments; ++segment) {
      result.segmentLengths.emplace_back();
      EXPECT_EQ(zoriEncodeGetTermPassLen_JPEG2K(state_, segment, &result.segmentLengths.back()), StatusOk);
    }
    return result;
  }
  EncodedBlock encode(const BlockCase& block) {
    return encode(block, block.samples.data(), block.size.width * 4, 1 << 16);
  }

 private:
  J2kEncodeState* state_ = nullptr;
};

inline constexpr RoiSize kLargest = {70, 70};

inline Samples decode(const EncodedBlock& coded, const BlockCase& block, int passes, const std::vector<uint8_t>& bytes,
                      const std::vector<int>& lengths, StatusCode expected, uint32_t flags) {
  int32_t stateBytes;
  EXPECT_EQ(zoriDecodeGetBufSize_JPEG2K(block.size, &stateBytes), StatusOk);
  std::vector<uint8_t> state(static_cast<size_t>(stateBytes));
  Samples samples(block.sampleCount());
  std::vector<int> noneMissing = lengths;
  noneMissing.push_back(0);
  const uint8_t nothing = 0;
  EXPECT_EQ(zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(bytes.empty() ? &nothing : bytes.data(), samples.data(),
                                                 block.size.width * 4, block.size, block.subband, coded.planes, passes,
                                                 noneMissing.data(), static_cast<int32_t>(lengths.size()), flags,
                                                 nullptr, state.data()),
            expected)
      << block.name();
  return samples;
}

}  // namespace zorj::test
