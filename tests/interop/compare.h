// zorjpeg's view of a file against the peer's.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "interop/peer.h"

namespace interop {

inline void expectSameCoefficients(jpeg::CoefficientImage& ours, const std::vector<PeerComponent>& theirs) {
  ASSERT_EQ(ours.frame.components.size(), theirs.size());
  for (size_t c = 0; c < theirs.size(); ++c) {
    const PeerComponent& their = theirs[c];
    ASSERT_EQ(ours.frame.blocksWide(ours.frame.components[c]), their.blocksWide);
    ASSERT_EQ(ours.frame.blocksHigh(ours.frame.components[c]), their.blocksHigh);
    EXPECT_TRUE(std::equal(their.stepSizes.begin(), their.stepSizes.end(), ours.quantTables[c].begin()));
    const jpeg::Blocks blocks = ours.mcus.blocks(c, 0, 0);
    const int16_t* expected = their.coefficients.data();
    for (int32_t y = 0; y < their.blocksHigh; ++y) {
      for (int32_t x = 0; x < their.blocksWide; ++x, expected += 64) {
        ASSERT_TRUE(std::equal(expected, expected + 64, blocks.at(x, y).values))
            << "component " << c << ", block " << x << ", " << y;
      }
    }
  }
}

// Where planes differ by one, R, G and B differ by at most 1 + 1.402, 1 + 0.344 + 0.714 and 1 + 1.772 before rounding.
inline constexpr int kPlaneTolerance = 1;
inline constexpr int kColorTolerance = 3;

// Compares the samples before up-sampling and colour conversion.
inline void expectSamePlanes(jpeg::CoefficientImage& ours, std::span<const uint8_t> file) {
  const std::vector<jpeg::ComponentSamples> planes = jpeg::inverseTransform(ours);
  const std::vector<jpeg::ComponentSamples> theirs = peerPlanes(file);
  int largest = 0;
  for (size_t c = 0; c < theirs.size(); ++c) {
    EXPECT_EQ(planes[c].width, theirs[c].width);
    EXPECT_EQ(planes[c].height, theirs[c].height);
    for (size_t i = 0; i < theirs[c].samples.size(); ++i) {
      largest = std::max(largest, std::abs(planes[c].samples[i] - theirs[c].samples[i]));
    }
  }
  EXPECT_LE(largest, kPlaneTolerance);
}

inline void expectSamePixels(const Image& ours, const Image& theirs, int tolerance) {
  ASSERT_EQ(ours.width, theirs.width);
  ASSERT_EQ(ours.height, theirs.height);
  ASSERT_EQ(ours.channels, theirs.channels);
  int largest = 0;
  for (size_t i = 0; i < ours.samples.size(); ++i) {
    largest = std::max(largest, std::abs(ours.samples[i] - theirs.samples[i]));
  }
  EXPECT_LE(largest, tolerance);
}

// Both ways of up-sampling. Without colour conversion the pixels are the up-sampled planes.
inline void expectSameDecodes(std::span<const uint8_t> file, bool convertsColors) {
  for (const jpeg::Upsampling upsampling : {jpeg::Upsampling::triangle, jpeg::Upsampling::box}) {
    SCOPED_TRACE(upsampling == jpeg::Upsampling::triangle ? "triangle" : "box");
    Image decoded;
    EXPECT_EQ(jpeg::decode(file, {upsampling}, decoded).problem, "");
    expectSamePixels(decoded, peerDecode(file, upsampling), convertsColors ? kColorTolerance : kPlaneTolerance);
  }
}

}  // namespace interop
