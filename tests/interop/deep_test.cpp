// 12-bit and lossless files.
#include "common/image_file.h"
#include "interop/compare.h"
#include "interop/pictures.h"

namespace interop {
namespace {

using examples::DeepImage;

double worstDifference(const DeepImage& a, const DeepImage& b) {
  int32_t worst = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) worst = std::max(worst, std::abs(a.samples[i] - b.samples[i]));
  return worst;
}

TEST(Lossless, ReturnsEverySampleOfEveryKind) {
  for (const int32_t precision : {2, 3, 8, 11, 12, 15, 16}) {
    for (int32_t predictor = 1; predictor <= 7; ++predictor) {
      for (const int32_t channels : {1, 3, 4}) {
        SCOPED_TRACE(testing::Message() << precision << " bits, predictor " << predictor << ", channels " << channels);
        DeepImage image = deepPicture(37 + precision, 21, channels, precision);
        jpeg::EncodeOptions options;
        options.predictor = predictor;
        options.pointTransform = predictor % 3 == 0 ? precision / 2 : 0;
        options.restartInterval = channels == 3 ? 4 * image.width : 0;
        std::vector<uint8_t> file;
        jpeg::encode(image, options, file);
        DeepImage decoded;
        EXPECT_EQ(jpeg::decode(file, {}, decoded).problem, "");
        ASSERT_EQ(decoded.precision, precision);
        for (uint16_t& sample : image.samples) {
          sample = static_cast<uint16_t>(sample >> options.pointTransform << options.pointTransform);
        }
        // Inks are stored inverted: there the dropped bits come back as ones.
        const int32_t dropped = channels == 4 ? (1 << options.pointTransform) - 1 : 0;
        EXPECT_LE(worstDifference(image, decoded), dropped);
        if (dropped == 0) {
          EXPECT_EQ(decoded.samples, image.samples);
        }
      }
    }
  }
}

TEST(Lossless, DecodesDamagedFilesAsFarAsTheyGo) {
  const DeepImage image = deepPicture(60, 40, 3, 16);
  jpeg::EncodeOptions options;
  options.predictor = 4;
  options.restartInterval = 10 * image.width;
  std::vector<uint8_t> file;
  jpeg::encode(image, options, file);
  for (size_t length = 200; length < file.size() - 2; length += 501) {
    DeepImage decoded;
    EXPECT_FALSE(jpeg::decode(std::span(file).first(length), {}, decoded).complete()) << length;
  }
  std::vector<uint8_t> damaged = file;
  const auto second = damaged.begin() + ptrdiff_t(file.size() / 3);  // of four segments
  damaged.erase(second, second + 40);
  DeepImage decoded;
  EXPECT_FALSE(jpeg::decode(damaged, {}, decoded).complete());
  const auto rowsEqual = [&](int32_t y) {
    return std::equal(image.at(0, y), image.at(0, y) + 3 * image.width, decoded.at(0, y));
  };
  for (const int32_t y : {0, 9, 30, 39}) EXPECT_TRUE(rowsEqual(y)) << y;
}

TEST(Lossless, RefusesWhatTheFormatCannotHold) {
  const DeepImage image = deepPicture(30, 20, 1, 8);
  std::vector<uint8_t> file;
  for (const auto& [predictor, pointTransform, restart] :
       {std::tuple(8, 0, 0), std::tuple(1, 8, 0), std::tuple(1, -1, 0), std::tuple(1, 0, 31)}) {
    jpeg::EncodeOptions options;
    options.predictor = predictor;
    options.pointTransform = pointTransform;
    options.restartInterval = restart;
    EXPECT_THROW(jpeg::encode(image, options, file), std::runtime_error);
  }
}

// At the best quality the step sizes are 1: all that is lost is rounding.
TEST(TwelveBits, ReturnPicturesAsGoodAsTheirSteps) {
  for (const int32_t channels : {1, 3, 4}) {
    for (const int restart : {0, 3}) {
      for (const jpeg::Sampling sampling : {jpeg::Sampling::s444, jpeg::Sampling::s420}) {
        const DeepImage image = deepPicture(83, 61, channels, 12);
        jpeg::EncodeOptions options{100, sampling, restart};
        options.precision = 12;
        std::vector<uint8_t> file;
        jpeg::encode(image, options, file);
        DeepImage decoded;
        EXPECT_EQ(jpeg::decode(file, {}, decoded).problem, "");
        ASSERT_EQ(decoded.precision, 12);
        if (sampling == jpeg::Sampling::s444) {
          EXPECT_LE(worstDifference(image, decoded), channels == 1 ? 2 : 4);
        }
        jpeg::DecodeOptions half;
        half.scale = 2;
        EXPECT_EQ(jpeg::decode(file, half, decoded).problem, "");
        EXPECT_EQ(std::pair(decoded.width, decoded.height), std::pair(42, 31));
      }
    }
  }
}

}  // namespace
}  // namespace interop
