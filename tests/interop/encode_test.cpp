// What zorjpeg writes, libjpeg-turbo reads.
#include "interop/compare.h"
#include "interop/pictures.h"

namespace interop {
namespace {

// The peer finds the coefficients that were coded, without a warning, and both decode them alike.
void expectPeerReads(const Image& image, const jpeg::EncodeOptions& options) {
  std::vector<uint8_t> file;
  jpeg::encode(image, options, file);
  jpeg::CoefficientImage coded = jpeg::transform(image, options);
  expectSameCoefficients(coded, peerCoefficients(file));
  expectSamePlanes(coded, file);
  expectSameDecodes(file, options.convertColors && image.channels > 1);
}

TEST(Encode, PeerReadsEverySizeAndSampling) {
  int quality = 1;
  int restart = 0;
  for (const Size size : oddSizes()) {
    for (const jpeg::Sampling sampling : {jpeg::Sampling::s444, jpeg::Sampling::s422, jpeg::Sampling::s420}) {
      for (const int32_t channels : {1, 3, 4}) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", sampling "
                                        << static_cast<int>(sampling) << ", channels " << channels << ", quality "
                                        << quality << ", restart " << restart);
        const Image image = picture(size.width, size.height, channels);
        expectPeerReads(image, {quality, sampling, restart});
        expectPeerReads(image, {quality, sampling, restart, false});
        quality = quality % 100 + 17 - (quality > 83 ? 16 : 0);
        restart = (restart + 1) % 4;
      }
    }
  }
}

TEST(Encode, SamplesChromaAsAsked) {
  const std::pair<jpeg::Sampling, std::pair<int, int>> blocks[] = {
      {jpeg::Sampling::s444, {5, 5}}, {jpeg::Sampling::s422, {3, 5}}, {jpeg::Sampling::s420, {3, 3}}};
  for (const auto& [sampling, chroma] : blocks) {
    std::vector<uint8_t> file;
    jpeg::encode(picture(33, 33, 3), {75, sampling, 0}, file);
    const std::vector<PeerComponent> components = peerCoefficients(file);
    EXPECT_EQ(std::pair(components[0].blocksWide, components[0].blocksHigh), std::pair(5, 5));
    EXPECT_EQ(std::pair(components[1].blocksWide, components[1].blocksHigh), chroma);
    EXPECT_EQ(std::pair(components[2].blocksWide, components[2].blocksHigh), chroma);
  }
}

// What lies beyond the edges repeats the last column and row, so it costs next to nothing.
TEST(Encode, RepeatsTheLastPixels) {
  for (const int channels : {1, 3}) {
    Image image = picture(9, 9, channels);
    for (int i = 0; i < 9; ++i) {
      std::fill_n(image.at(8, i), channels, uint8_t{200});
      std::fill_n(image.at(i, 8), channels, uint8_t{200});
    }
    jpeg::CoefficientImage coded = jpeg::transform(image, {100, jpeg::Sampling::s444, 0});
    for (const auto& [x, y] : {std::pair(1, 0), std::pair(0, 1), std::pair(1, 1)}) {
      const int16_t* const block = coded.mcus.blocks(0, 0, 0).at(x, y).values;
      EXPECT_EQ(std::count(block + 1, block + 64, 0), 63) << "block " << x << ", " << y;
    }
  }
}

// A row of MCUs goes through the encoder in several pieces, and restart numbers come round after eight.
TEST(Encode, PeerReadsWideImages) {
  expectPeerReads(picture(1031, 37, 3), {90, jpeg::Sampling::s444, 0});
  expectPeerReads(picture(1031, 37, 3), {50, jpeg::Sampling::s420, 7});
  expectPeerReads(picture(1031, 37, 1), {100, jpeg::Sampling::s444, 1});
}

TEST(Encode, PeerReadsExtremeSamples) {
  Random random(3);
  Image image(64, 64, 3);
  for (int round = 0; round < 5; ++round) {
    zorj::test::fillSamples(image.samples.data(), image.samples.size(), random, round);
    for (const int quality : {1, 50, 100}) {
      std::vector<uint8_t> file;
      const jpeg::EncodeOptions options{quality, jpeg::Sampling::s444, 0};
      jpeg::encode(image, options, file);
      jpeg::CoefficientImage coded = jpeg::transform(image, options);
      expectSameCoefficients(coded, peerCoefficients(file));
    }
  }
}

// As good a picture as the peer makes with the same step sizes.
TEST(Encode, QualityEqualsThePeers) {
  for (const int32_t channels : {1, 3, 4}) {
    const Image image = picture(256, 192, channels);
    for (const int quality : {30, 75, 95}) {
      for (const auto& [sampling, factors] :
           {std::pair(jpeg::Sampling::s444, Factors{1, 1}), std::pair(jpeg::Sampling::s422, Factors{2, 1}),
            std::pair(jpeg::Sampling::s420, Factors{2, 2})}) {
        std::vector<uint8_t> ours;
        jpeg::encode(image, {quality, sampling, 0}, ours);
        PeerSettings settings;
        settings.quality = quality;
        settings.factors = {factors, {1, 1}, {1, 1}, factors};
        const auto gain = [&](std::span<const uint8_t> file) {
          return psnr(image, peerDecode(file, jpeg::Upsampling::triangle));
        };
        EXPECT_GT(gain(ours), gain(peerEncode(image, settings)) - 0.2)
            << channels << " channels, quality " << quality << ", sampling " << factors.horizontal << factors.vertical;
      }
    }
  }
}

TEST(Encode, RefusesWhatTheFormatCannotHold) {
  std::vector<uint8_t> file;
  const Image image = picture(8, 8, 3);
  EXPECT_THROW(jpeg::encode(image, {0, jpeg::Sampling::s444, 0}, file), std::runtime_error);
  EXPECT_THROW(jpeg::encode(image, {101, jpeg::Sampling::s444, 0}, file), std::runtime_error);
  EXPECT_THROW(jpeg::encode(image, {75, jpeg::Sampling::s444, 65536}, file), std::runtime_error);
  EXPECT_THROW(jpeg::encode(Image(65536, 1, 1), {75, jpeg::Sampling::s444, 0}, file), std::runtime_error);
  EXPECT_THROW(jpeg::encode(Image(), {75, jpeg::Sampling::s444, 0}, file), std::runtime_error);
  EXPECT_THROW(jpeg::encode(Image(8, 8, 2), {75, jpeg::Sampling::s444, 0}, file), std::runtime_error);
}

}  // namespace
}  // namespace interop
