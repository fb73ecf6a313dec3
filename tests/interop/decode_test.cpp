// What libjpeg-turbo writes, zorjpeg reads.
#include "interop/compare.h"
#include "interop/pictures.h"

namespace interop {
namespace {

// Returns whether the pixels could be compared too.
bool expectReadsPeer(const Image& image, const PeerSettings& settings) {
  const std::vector<uint8_t> file = peerEncode(image, settings);
  jpeg::CoefficientImage coefficients;
  EXPECT_EQ(jpeg::decodeCoefficients(file, coefficients).problem, "");
  expectSameCoefficients(coefficients, peerCoefficients(file));
  const bool sameColors = expectSamePlanes(coefficients, file);
  Image decoded;
  EXPECT_EQ(jpeg::decode(file, decoded).problem, "");
  if (sameColors) expectSamePixels(decoded, peerDecode(file), settings.rgbCoded ? kPlaneTolerance : kColorTolerance);
  return sameColors;
}

TEST(Decode, ReadsEverySizeAndSampling) {
  const std::vector<std::vector<Factors>> samplings = {
      {{1, 1}, {1, 1}, {1, 1}}, {{2, 1}, {1, 1}, {1, 1}}, {{2, 2}, {1, 1}, {1, 1}}, {{1, 2}, {1, 1}, {1, 1}},
      {{4, 1}, {1, 1}, {1, 1}}, {{4, 2}, {1, 1}, {1, 1}}, {{2, 2}, {2, 1}, {1, 2}}, {{1, 4}, {1, 1}, {1, 2}},
      {{1, 1}, {2, 2}, {1, 1}}, {{3, 1}, {1, 1}, {1, 1}}};
  PeerSettings settings;
  int count = 0;
  int pixelsCompared = 0;
  for (const Size size : oddSizes()) {
    for (const std::vector<Factors>& factors : samplings) {
      settings.factors = factors;
      settings.quality = 1 + count * 37 % 100;
      settings.restartInterval = count % 4;
      settings.optimise = count % 3 == 0;
      ++count;
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", sampling " << factors[0].horizontal
                                      << " x " << factors[0].vertical << ", quality " << settings.quality
                                      << ", restart " << settings.restartInterval);
      if (expectReadsPeer(picture(size.width, size.height, 3), settings)) ++pixelsCompared;
    }
    settings.factors = {{1, 1}};
    expectReadsPeer(picture(size.width, size.height, 1), settings);
    settings.factors = {{2, 2}};  // means nothing for a lone component
    expectReadsPeer(picture(size.width, size.height, 1), settings);
  }
  EXPECT_GT(pixelsCompared, count * 3 / 4);
}

TEST(Decode, ReadsEveryQuality) {
  const Image image = picture(40, 24, 3);
  PeerSettings settings;
  settings.factors[0] = {2, 2};
  for (settings.quality = 1; settings.quality <= 100; ++settings.quality) {
    settings.optimise = settings.quality % 2 == 0;
    expectReadsPeer(image, settings);
  }
}

TEST(Decode, ReadsSeparateScans) {
  PeerSettings settings;
  settings.factors = {{2, 2}, {1, 1}, {1, 1}};
  for (const Size size : oddSizes()) {
    for (const auto& scans : {std::vector<std::vector<int>>{{0}, {1}, {2}}, {{2}, {0}, {1}}, {{0}, {1, 2}}}) {
      settings.scans = scans;
      settings.optimise = !settings.optimise;
      settings.restartInterval = (settings.restartInterval + 1) % 3;
      expectReadsPeer(picture(size.width, size.height, 3), settings);
    }
  }
}

TEST(Decode, ReadsWideQuantTablesAndRgb) {
  const Image image = picture(65, 35, 3);
  PeerSettings wide;
  wide.quality = 1;
  wide.wideQuantTables = true;
  expectReadsPeer(image, wide);
  PeerSettings rgb;
  rgb.rgbCoded = true;
  expectReadsPeer(image, rgb);
  for (const Factors factors : {Factors{2, 1}, Factors{2, 2}}) {
    rgb.factors[0] = factors;
    expectReadsPeer(image, rgb);
  }
}

// A row of MCUs goes through the decoder in several pieces, and restart numbers come round after eight.
TEST(Decode, ReadsWideImages) {
  PeerSettings settings;
  for (const int restart : {0, 5}) {
    settings.restartInterval = restart;
    settings.factors[0] = {1, 1};
    expectReadsPeer(picture(1031, 37, 3), settings);
    settings.factors[0] = {2, 2};
    expectReadsPeer(picture(1031, 37, 3), settings);
    expectReadsPeer(picture(1031, 37, 1), settings);
  }
}

// Comments, application data and fill bytes change nothing.
TEST(Decode, SkipsWhatIsNotTheImage) {
  PeerSettings settings;
  settings.restartInterval = 2;
  const std::vector<uint8_t> file = peerEncode(picture(50, 30, 3), settings);
  std::vector<uint8_t> padded;
  bool inScan = false;
  for (size_t i = 0; i < file.size(); ++i) {
    const bool atMarker = i > 0 && file[i] == 0xff && i + 1 < file.size() && file[i + 1] != 0;
    if (atMarker && (inScan || i == 2)) padded.insert(padded.end(), {0xff, 0xff});
    if (atMarker && file[i + 1] == 0xda) {
      padded.insert(padded.end(), {0xff, 0xfe, 0, 5, 0xff, 0xd9, 0x41, 0xff, 0xed, 0, 2});
      inScan = true;
    }
    padded.push_back(file[i]);
  }
  padded.insert(padded.end(), {1, 2, 3});
  Image plain;
  Image image;
  EXPECT_TRUE(jpeg::decode(file, plain).complete());
  EXPECT_EQ(jpeg::decode(padded, image).problem, "");
  EXPECT_EQ(image.samples, plain.samples);
}

}  // namespace
}  // namespace interop
