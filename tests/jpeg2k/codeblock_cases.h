// Blocks to code, and calls that code them.
#pragma once

#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
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

// What the one-shot decoder is called with.
struct Coded {
  std::vector<uint8_t> codeword;
  std::vector<int> segmentLengths;
  RoiSize size;
  int32_t subband;
  int planes;
  int passes;
};
inline Coded codedBlock(const BlockCase& block, const EncodedBlock& encoded) {
  return {encoded.codeword, encoded.segmentLengths, block.size, block.subband, encoded.planes, encoded.passes};
}

// Decodes with every byte that the decoder may touch next to an inaccessible page, at odd addresses. `before` is what
// the destination holds.
inline reference::DecodedBlock decode(const Coded& coded, uint32_t flags, const Samples& before) {
  const auto width = static_cast<size_t>(coded.size.width), height = static_cast<size_t>(coded.size.height);
  const size_t step = width * 4 + 5;
  int32_t stateBytes, errorPlane = -77;
  EXPECT_EQ(zoriDecodeGetBufSize_JPEG2K(coded.size, &stateBytes), StatusOk);
  const GuardedMemory state(static_cast<size_t>(stateBytes), Placement::kAtEnd);
  std::memset(state.data(), 0xA5, state.size());
  const GuardedMemory source(std::max(coded.codeword.size(), size_t{1}), Placement::kAtEnd);
  std::ranges::copy(coded.codeword, source.data());
  const GuardedMemory rows(step * height - 5, Placement::kAtEnd);
  std::memset(rows.data(), 0x5A, rows.size());
  for (size_t y = 0; y < height; ++y) std::memcpy(rows.data() + y * step, before.data() + y * width, width * 4);
  std::vector<int> lengths = coded.segmentLengths;
  lengths.push_back(0);

  reference::DecodedBlock result;
  result.status = zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(
      source.data(), reinterpret_cast<int32_t*>(rows.data()), static_cast<int32_t>(step), coded.size, coded.subband,
      coded.planes, coded.passes, lengths.data(), static_cast<int32_t>(coded.segmentLengths.size()), flags, &errorPlane,
      state.data());
  if (errorPlane != -77) result.errorPlane = errorPlane;
  result.samples.resize(width * height);
  for (size_t y = 0; y < height; ++y) {
    std::memcpy(result.samples.data() + y * width, rows.data() + y * step, width * 4);
    if (y == 0) continue;
    EXPECT_TRUE(std::all_of(rows.data() + y * step - 5, rows.data() + y * step, [](int byte) { return byte == 0x5A; }));
  }
  return result;
}
inline reference::DecodedBlock decode(const Coded& coded, uint32_t flags) {
  return decode(coded, flags, Samples(static_cast<size_t>(coded.size.width) * static_cast<size_t>(coded.size.height)));
}

}  // namespace zorj::test
