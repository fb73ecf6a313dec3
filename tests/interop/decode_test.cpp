// What libjpeg-turbo writes, zorjpeg reads.
#include <cmath>

#include "common/error.h"
#include "interop/compare.h"
#include "interop/pictures.h"
#include "reference/dct.h"
#include "reference/sampling.h"

namespace interop {
namespace {

void expectReadsPeer(const Image& image, const PeerSettings& settings) {
  const std::vector<uint8_t> file = peerEncode(image, settings);
  jpeg::CoefficientImage coefficients;
  EXPECT_EQ(jpeg::decodeCoefficients(file, coefficients).problem, "");
  expectSameCoefficients(coefficients, peerCoefficients(file));
  expectSamePlanes(coefficients, file);
  expectSameDecodes(file, settings.convertColors && image.channels > 1);
}

// A component of an image without colour conversion is within 1 of the exact inverse of its lowest coefficients.
void expectScaledComponent(const Image& image, int32_t channel, const PeerComponent& component, int32_t blockSize) {
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x) {
      const int32_t block = y / blockSize * component.blocksWide + x / blockSize;
      const int16_t* const coefficients = component.coefficients.data() + size_t{64} * static_cast<size_t>(block);
      zorj::reference::ExactBlock dequantised;
      for (size_t i = 0; i < 64; ++i) dequantised[i] = coefficients[i] * component.stepSizes[i];
      const int32_t column = x % blockSize, row = y % blockSize;
      const double exact = blockSize == 1
                               ? dequantised[0] / 8
                               : zorj::reference::exactInverse(dequantised, blockSize).data()[8 * row + column];
      ASSERT_LE(std::abs(image.at(x, y)[channel] - std::clamp(exact + 128, 0.0, 255.0)), 1)
          << "channel " << channel << " at " << x << ", " << y;
    }
  }
}

// Pixel (x, y) of a component that is interpolated by these ratios; narrow ones are repeated sideways.
uint8_t upsampled(const zorj::reference::ExtendedPlane& samples, Factors ratio, int32_t x, int32_t y) {
  const bool up = y % 2 == 0;
  const int32_t near = y / ratio.vertical, far = up ? near - 1 : near + 1;
  if (ratio.horizontal == 2 && samples.width <= 2) return static_cast<uint8_t>(samples.at(x / 2, near));
  if (ratio.horizontal == 2 && ratio.vertical == 2) return zorj::reference::triangleH2V2(samples, x, near, far);
  if (ratio.horizontal == 2) return zorj::reference::triangleH2V1(samples, x, y);
  if (ratio.vertical == 1) return static_cast<uint8_t>(samples.at(x, y));
  return static_cast<uint8_t>((3 * samples.at(x, near) + samples.at(x, far) + (up ? 1 : 2)) / 4);
}

// The means of squares of pixels.
Image averaged(const Image& image, int32_t scale) {
  Image result(image.width / scale, image.height / scale, image.channels);
  for (int32_t y = 0; y < result.height; ++y) {
    for (int32_t x = 0; x < result.width; ++x) {
      for (int32_t c = 0; c < image.channels; ++c) {
        int32_t sum = 0;
        for (int32_t i = 0; i < scale * scale; ++i) sum += image.at(x * scale + i % scale, y * scale + i / scale)[c];
        result.at(x, y)[c] = static_cast<uint8_t>(sum / (scale * scale));
      }
    }
  }
  return result;
}

Image smoothPicture(int32_t width, int32_t height) {
  Image image(width, height, 3);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      for (int32_t c = 0; c < 3; ++c) {
        image.at(x, y)[c] = static_cast<uint8_t>(128 + 60 * std::sin(0.01 * x * (c + 1)) + 40 * std::cos(0.02 * y));
      }
    }
  }
  return image;
}

TEST(Decode, ReadsEverySizeAndSampling) {
  const std::vector<std::vector<Factors>> samplings = {
      {{1, 1}, {1, 1}, {1, 1}}, {{2, 1}, {1, 1}, {1, 1}}, {{2, 2}, {1, 1}, {1, 1}}, {{1, 2}, {1, 1}, {1, 1}},
      {{4, 1}, {1, 1}, {1, 1}}, {{4, 2}, {1, 1}, {1, 1}}, {{2, 2}, {2, 1}, {1, 2}}, {{1, 4}, {1, 1}, {1, 2}},
      {{1, 1}, {2, 2}, {1, 1}}, {{3, 1}, {1, 1}, {1, 1}}};
  PeerSettings settings;
  int count = 0;
  for (const Size size : oddSizes()) {
    for (const std::vector<Factors>& factors : samplings) {
      settings.factors = factors;
      settings.quality = 1 + count * 37 % 100;
      settings.restartInterval = count % 4;
      settings.optimise = count % 5 == 0;
      settings.convertColors = count % 3 == 0;
      ++count;
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", sampling " << factors[0].horizontal
                                      << " x " << factors[0].vertical << ", quality " << settings.quality
                                      << ", restart " << settings.restartInterval);
      expectReadsPeer(picture(size.width, size.height, 3), settings);
    }
    settings.factors = {{1, 1}};
    expectReadsPeer(picture(size.width, size.height, 1), settings);
    settings.factors = {{2, 2}};  // means nothing for a lone component
    expectReadsPeer(picture(size.width, size.height, 1), settings);
  }
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

TEST(Decode, ReadsWideQuantTables) {
  const Image image = picture(65, 35, 3);
  PeerSettings wide;
  wide.quality = 1;
  wide.wideQuantTables = true;
  expectReadsPeer(image, wide);
}

TEST(Decode, ReadsCmykAndYcck) {
  PeerSettings settings;
  for (const Size size : oddSizes()) {
    const Image image = picture(size.width, size.height, 4);
    for (const Factors factors : {Factors{1, 1}, Factors{2, 1}, Factors{2, 2}, Factors{1, 2}}) {
      settings.factors = {factors, {1, 1}, {1, 1}, factors};
      settings.convertColors = true;
      expectReadsPeer(image, settings);
      settings.convertColors = false;
      expectReadsPeer(image, settings);
    }
    settings.factors = {{1, 1}, {1, 1}, {1, 1}, {1, 1}};
    settings.adobeMarker = false;  // then it is CMYK, and not inverted
    expectReadsPeer(image, settings);
    settings.adobeMarker = true;
  }
}

// The up-sampled planes, from the samples that zorjpeg decodes itself: exactly, across all rows of MCUs.
TEST(Decode, InterpolatesExactly) {
  PeerSettings settings;
  settings.convertColors = false;
  for (const Size size : oddSizes()) {
    for (const Factors factors : {Factors{2, 1}, Factors{1, 2}, Factors{2, 2}}) {
      settings.factors[0] = factors;
      const std::vector<uint8_t> file = peerEncode(picture(size.width, size.height, 3), settings);
      jpeg::CoefficientImage coefficients;
      ASSERT_EQ(jpeg::decodeCoefficients(file, coefficients).problem, "");
      const std::vector<jpeg::ComponentSamples> planes = jpeg::inverseTransform(coefficients);
      Image image;
      ASSERT_EQ(jpeg::decode(file, {}, image).problem, "");
      for (int32_t i = 0; i < image.width * image.height * 3; ++i) {
        const int32_t c = i % 3, x = i / 3 % image.width, y = i / 3 / image.width;
        const jpeg::ComponentSamples& plane = planes[static_cast<size_t>(c)];
        const Factors ratio = c == 0 ? Factors{1, 1} : factors;
        const zorj::reference::ExtendedPlane samples = {plane.samples.data(), plane.width,
                                                        (size.width + ratio.horizontal - 1) / ratio.horizontal,
                                                        (size.height + ratio.vertical - 1) / ratio.vertical};
        ASSERT_EQ(image.at(x, y)[c], upsampled(samples, ratio, x, y))
            << size.width << " x " << size.height << ", sampling " << factors.horizontal << " x " << factors.vertical
            << ", component " << c << " at " << x << ", " << y;
      }
    }
  }
}

// The peer has none of these: samples are repeated as their share of the image's width and height says.
TEST(Decode, RepeatsSamplesOfOddRatios) {
  PeerSettings settings;
  settings.convertColors = false;
  settings.factors = {{4, 1}, {1, 1}, {1, 1}};
  std::vector<uint8_t> file = peerEncode(picture(4 * 8 * 3, 21, 3), settings);
  const uint8_t sof[] = {0xff, 0xc0, 0, 17, 8};
  const auto header = std::search(file.begin(), file.end(), std::begin(sof), std::end(sof));
  ASSERT_NE(header, file.end());
  header[8] = 3 * 8 * 3 - 5;  // width; as many blocks in as many MCUs, but other components'
  header[11] = 0x31;
  header[14] = 0x21;
  jpeg::CoefficientImage coefficients;
  ASSERT_EQ(jpeg::decodeCoefficients(file, coefficients).problem, "");
  const std::vector<jpeg::ComponentSamples> planes = jpeg::inverseTransform(coefficients);
  Image image;
  ASSERT_EQ(jpeg::decode(file, {}, image).problem, "");
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x) {
      for (int32_t c = 0; c < 3; ++c) {
        const jpeg::ComponentSamples& plane = planes[static_cast<size_t>(c)];
        ASSERT_EQ(image.at(x, y)[c], plane.samples[static_cast<size_t>(y * plane.width + x * (3 - c) / 3)])
            << x << ", " << y << ", component " << c;
      }
    }
  }
}

// Every thread count gives the same, with one restart interval to a row of MCUs, intervals across rows, and none.
TEST(Decode, ThreadsChangeNothing) {
  PeerSettings settings;
  for (const Factors factors : {Factors{1, 1}, Factors{2, 2}, Factors{1, 2}}) {
    for (const int restart : {0, 1, 3, 4, 50}) {
      for (const auto& scans : {std::vector<std::vector<int>>{}, {{0}, {1, 2}}}) {
        settings.factors[0] = factors;
        settings.restartInterval = restart;
        settings.scans = scans;
        const std::vector<uint8_t> file = peerEncode(picture(8 * factors.horizontal * 4 - 3, 120, 3), settings);
        for (const int32_t scale : {1, 2}) {
          Image one, many;
          ASSERT_EQ(jpeg::decode(file, {jpeg::Upsampling::triangle, scale, 1}, one).problem, "");
          for (const int32_t threads : {2, 3, 7, 100}) {
            ASSERT_EQ(jpeg::decode(file, {jpeg::Upsampling::triangle, scale, threads}, many).problem, "");
            ASSERT_EQ(many.samples, one.samples) << "restart " << restart << ", threads " << threads;
          }
        }
      }
    }
  }
}

// Scaled images are made of the lowest coefficients. Components of half the samples give twice as large blocks, so that
// no sample is interpolated where all are halved in both directions.
TEST(Decode, ScalesByTheLowestCoefficients) {
  PeerSettings settings;
  settings.convertColors = false;
  settings.quality = 95;
  for (const Size size : oddSizes()) {
    for (const int halved : {0, 1}) {
      settings.factors[0] = halved ? Factors{2, 2} : Factors{1, 1};
      const std::vector<uint8_t> file = peerEncode(picture(size.width, size.height, 3), settings);
      const std::vector<PeerComponent> components = peerCoefficients(file);
      for (const int32_t scale : {2, 4, 8}) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << " / " << scale);
        Image image;
        ASSERT_EQ(jpeg::decode(file, {jpeg::Upsampling::triangle, scale}, image).problem, "");
        ASSERT_EQ(image.width, (size.width + scale - 1) / scale);
        ASSERT_EQ(image.height, (size.height + scale - 1) / scale);
        for (int32_t c = 0; c < 3; ++c) {
          expectScaledComponent(image, c, components[static_cast<size_t>(c)], 8 / scale * (c > 0 && halved ? 2 : 1));
        }
      }
    }
  }
}

// Where samples are interpolated in a scaled image, it still looks like the whole one.
TEST(Decode, ScaledImagesLookLikeTheWholeOne) {
  PeerSettings settings;
  settings.quality = 95;
  const Image source = smoothPicture(160, 96);
  for (const Factors factors : {Factors{2, 1}, Factors{1, 2}, Factors{4, 1}, Factors{2, 2}}) {
    settings.factors[0] = factors;
    const std::vector<uint8_t> file = peerEncode(source, settings);
    for (const int32_t scale : {2, 4, 8}) {
      for (const jpeg::Upsampling upsampling : {jpeg::Upsampling::triangle, jpeg::Upsampling::box}) {
        Image image;
        ASSERT_EQ(jpeg::decode(file, {upsampling, scale}, image).problem, "");
        EXPECT_GT(psnr(image, averaged(source, scale)), 30) << factors.horizontal << factors.vertical << scale;
      }
    }
  }
}

TEST(Decode, RefusesBadOptions) {
  const std::vector<uint8_t> file = peerEncode(picture(8, 8, 3), {});
  Image image;
  for (const int32_t scale : {0, -1, 3, 16}) {
    EXPECT_THROW(jpeg::decode(file, {jpeg::Upsampling::box, scale}, image), examples::Error);
  }
  EXPECT_THROW(jpeg::decode(file, {jpeg::Upsampling::box, 1, 0}, image), examples::Error);
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
  EXPECT_TRUE(jpeg::decode(file, {}, plain).complete());
  EXPECT_EQ(jpeg::decode(padded, {}, image).problem, "");
  EXPECT_EQ(image.samples, plain.samples);
}

}  // namespace
}  // namespace interop
