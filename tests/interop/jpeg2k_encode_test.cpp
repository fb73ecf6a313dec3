// What zorj2k writes, OpenJPEG reads.
#include <cmath>
#include <numeric>

#include "interop/jpeg2k_compare.h"
#include "jpeg2k/rate_allocation.h"

namespace interop {
namespace {

using jpeg2k::EncodeOptions;
using jpeg2k::Progression;

constexpr Progression kProgressions[] = {Progression::lrcp, Progression::rlcp, Progression::rpcl, Progression::pcrl,
                                         Progression::cprl};

void expectExact(const DeepImage& image, const EncodeOptions& options) {
  const std::vector<uint8_t> file = encoded(image, options);
  expectSamples(image, openjpeg::decode(file));
  expectSamples(image, decoded(file));
}

// Both decoders undo the transforms in floats of their own order: samples may be rounded to neighbours. The peer rounds
// the factors of green to 0.344 and 0.714, which matters for samples of many bits.
void expectAlike(const DeepImage& image, const EncodeOptions& options) {
  const std::vector<uint8_t> file = encoded(image, options);
  const double factorError = 0.00013 + 0.00014;
  const auto tolerance = 1 + static_cast<int32_t>(factorError * (1 << (image.precision - 1)));
  expectSamples(asImage(decoded(file)), openjpeg::decode(file), tolerance);
}

TEST(Jpeg2kEncode, PeerReadsEverySizeChannelCountAndPrecision) {
  int32_t turn = 0;
  for (const Size size : oddSizes()) {
    for (const int32_t channels : {1, 2, 3, 4}) {
      for (const int32_t precision : {8, 11, 12, 16}) {
        EncodeOptions options;
        options.levels = turn % 7;
        options.codestreamOnly = turn % 2 == 0;
        ++turn;
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", channels " << channels
                                        << ", precision " << precision << ", levels " << options.levels);
        expectExact(deepPicture(size, channels, precision), options);
        options.psnr = 45;
        expectAlike(deepPicture(size, channels, precision), options);
      }
    }
  }
  EncodeOptions options;
  options.levels = 32;
  expectExact(deepPicture({37, 21}, 3, 8), options);
  options.ratio = 4;
  expectAlike(deepPicture({37, 21}, 3, 8), options);
}

// With several layers, codewords are cut at passes that end no segment, too.
TEST(Jpeg2kEncode, PeerReadsEveryMode) {
  const std::pair<int32_t, int32_t> blocks[] = {{64, 64}, {4, 4}, {32, 128}, {1024, 4}, {8, 16}, {4, 1024}};
  for (uint32_t style = 0; style < 64; ++style) {
    EncodeOptions options;
    options.style = style;
    options.levels = 3;
    options.layers = 1 + static_cast<int32_t>(style) % 5;
    std::tie(options.block.width, options.block.height) = blocks[style % std::size(blocks)];
    SCOPED_TRACE(testing::Message() << "style " << style);
    const DeepImage image = deepPicture({133, 90}, 3, style % 3 == 0 ? 12 : 8, style);
    expectExact(image, options);
    options.ratio = 5;
    expectAlike(image, options);
  }
}

TEST(Jpeg2kEncode, PeerReadsEveryOrderOfPackets) {
  for (const Progression progression : kProgressions) {
    for (const int32_t tile : {0, 61, 128}) {
      for (const int32_t precinct : {0, 32, 128}) {
        EncodeOptions options;
        options.progression = progression;
        options.tile = {tile, tile == 0 ? 0 : tile + 9};
        options.precinct = {precinct, precinct};
        options.block = {16, 16};
        options.layers = 3;
        options.levels = 4;
        options.sop = precinct != 0;
        options.eph = tile != 0;
        SCOPED_TRACE(testing::Message() << "progression " << static_cast<int>(progression) << ", tile " << tile
                                        << ", precinct " << precinct);
        const DeepImage image = deepPicture({301, 170}, 3, 8);
        expectExact(image, options);
        options.ratio = 8;
        expectAlike(image, options);
      }
    }
  }
}

// Nothing but the smallest and the largest sample, in patterns of some period or at random.
DeepImage extremePicture(int32_t precision, int32_t round) {
  Random random(5);
  DeepImage image(96, 80, 3);
  image.precision = precision;
  const auto period = static_cast<size_t>(round) + 1;
  for (size_t i = 0; i < image.samples.size(); ++i) {
    const bool high = round == 0 ? random.between(0, 1) != 0 : (i / 3 / period + i / 288 / period + i % 3) % 2 != 0;
    image.samples[i] = high ? static_cast<uint16_t>(image.largest()) : uint16_t{0};
  }
  return image;
}

// Colours whose differences have the signs of the 5/3 wavelet's low-pass filter around every eighth sample, where the
// subband LL needs one more plane than its nominal range has.
DeepImage widestPicture(int32_t precision) {
  DeepImage image(96, 80, 3);
  image.precision = precision;
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x) {
      const auto nearCentre = [](int32_t at) { return at % 8 >= 3 && at % 8 <= 5; };
      for (int32_t c = 0; c < 3; ++c) {
        const bool high = (nearCentre(x) == nearCentre(y)) == (c != 1);
        image.at(x, y)[c] = high ? static_cast<uint16_t>(image.largest()) : uint16_t{0};
      }
    }
  }
  return image;
}

TEST(Jpeg2kEncode, PeerReadsExtremeSamples) {
  for (const int32_t precision : {8, 10, 16}) {
    for (int round = 0; round < 6; ++round) {
      SCOPED_TRACE(testing::Message() << "precision " << precision << ", round " << round);
      const DeepImage image = extremePicture(precision, round);
      EncodeOptions options;
      expectExact(image, options);
      options.convertColors = false;
      expectExact(image, options);
      options.ratio = 3;
      expectAlike(image, options);
    }
    EncodeOptions options;
    options.levels = 1;
    expectExact(widestPicture(precision), options);
  }
}

TEST(Jpeg2kEncode, LayersImproveUpToTheWholePicture) {
  const DeepImage image = deepPicture({256, 200}, 3, 8);
  for (const double ratio : {0.0, 8.0}) {
    EncodeOptions options;
    options.layers = 6;
    options.ratio = ratio;
    const std::vector<uint8_t> file = encoded(image, options);
    double last = 0;
    for (uint32_t layers = 1; layers <= 6; ++layers) {
      const double quality = psnr(image, asImage(openjpeg::decode(file, {0, layers})));
      EXPECT_GT(quality, last + 1) << layers << " layers, ratio " << ratio;
      last = quality;
    }
    if (ratio == 0) expectSamples(image, openjpeg::decode(file));
  }
}

TEST(Jpeg2kEncode, HitsSizesFromBelow) {
  for (const Size size : {Size{160, 120}, Size{500, 380}}) {
    const DeepImage image = deepPicture(size, 3, 8);
    for (const double ratio : {3.0, 10.0, 40.0}) {
      for (const int32_t layers : {1, 7}) {
        for (const int32_t tile : {0, 100}) {
          EncodeOptions options;
          options.ratio = ratio;
          options.layers = layers;
          options.tile = {tile, tile};
          const double target = static_cast<double>(image.samples.size()) / ratio;
          const auto bytes = static_cast<double>(encoded(image, options).size());
          EXPECT_LE(bytes, target) << size.width << " ratio " << ratio << " layers " << layers << " tile " << tile;
          // The last pass that has found no room can be one of a large block.
          EXPECT_GT(bytes, target * 0.98 - 200)
              << size.width << " ratio " << ratio << " layers " << layers << " tile " << tile;
        }
      }
    }
  }
}

TEST(Jpeg2kEncode, ReachesQualities) {
  for (const int32_t channels : {1, 3}) {
    for (const int32_t precision : {8, 12}) {
      const DeepImage image = deepPicture({400, 300}, channels, precision);
      for (const double quality : {28.0, 35.0, 42.0}) {
        EncodeOptions options;
        options.psnr = quality;
        const double reached = psnr(image, asImage(openjpeg::decode(encoded(image, options))));
        EXPECT_GE(reached, quality) << channels << " channels of " << precision << " bits";
        EXPECT_LE(reached, quality + 0.1) << channels << " channels of " << precision << " bits";
      }
    }
  }
}

TEST(Jpeg2kEncode, QualityEqualsThePeersAtTheSameSize) {
  const DeepImage image = deepPicture({640, 400}, 3, 8);
  for (const float ratio : {5.0f, 10.0f, 30.0f}) {
    EncodeOptions options;
    options.ratio = ratio;
    opj_cparameters_t parameters = openjpeg::defaults();
    parameters.irreversible = 1;
    parameters.tcp_mct = 1;
    parameters.tcp_rates[0] = ratio;
    const double ours = psnr(image, asImage(openjpeg::decode(encoded(image, options))));
    const double theirs = psnr(image, asImage(openjpeg::decode(openjpeg::encode(image, parameters))));
    EXPECT_GT(ours, theirs - 0.1) << "ratio " << ratio;
  }
}

TEST(Jpeg2kEncode, ThreadsDoNotChangeTheFile) {
  const DeepImage image = deepPicture({700, 530}, 3, 8);
  for (const double ratio : {0.0, 10.0}) {
    for (const int32_t tile : {0, 200}) {
      EncodeOptions options;
      options.ratio = ratio;
      options.tile = {tile, tile};
      options.layers = 2;
      const std::vector<uint8_t> alone = encoded(image, options);
      options.threads = 3;
      EXPECT_EQ(encoded(image, options), alone) << "ratio " << ratio << ", tile " << tile;
    }
  }
}

TEST(Jpeg2kEncode, RefusesWhatTheFormatCannotHold) {
  const DeepImage image = deepPicture({20, 20}, 3, 8);
  const auto refuses = [&](const auto& change) {
    EncodeOptions options;
    change(options);
    std::vector<uint8_t> file;
    EXPECT_THROW(jpeg2k::encode(image, options, file), std::runtime_error);
  };
  refuses([](EncodeOptions& options) { options.levels = 33; });
  refuses([](EncodeOptions& options) { options.block = {64, 65}; });
  refuses([](EncodeOptions& options) { options.block = {128, 64}; });
  refuses([](EncodeOptions& options) { options.block = {2, 64}; });
  refuses([](EncodeOptions& options) { options.precinct = {48, 64}; });
  refuses([](EncodeOptions& options) { options.tile = {-1, 8}; });
  refuses([](EncodeOptions& options) { options.layers = 65536; });
  refuses([](EncodeOptions& options) { options.ratio = options.psnr = 30; });
  std::vector<uint8_t> file;
  EXPECT_THROW(jpeg2k::encode(DeepImage(), EncodeOptions(), file), std::runtime_error);
  EXPECT_THROW(jpeg2k::encode(DeepImage(8, 8, 5), EncodeOptions(), file), std::runtime_error);
  EncodeOptions options;
  options.tile = {1, 1};
  EXPECT_THROW(jpeg2k::encode(DeepImage(300, 300, 1), options, file), std::runtime_error);
}

// ---- Allocation

std::vector<jpeg2k::PassPoint> randomPasses(Random& random) {
  std::vector<jpeg2k::PassPoint> passes;
  jpeg2k::PassPoint point;
  const auto count = static_cast<int32_t>(random.between(0, 40));
  while (point.passes < count) {
    ++point.passes;
    point.bytes += static_cast<int32_t>(random.between(0, 3) * random.between(0, 40));
    point.gain += static_cast<double>(random.between(-20, 400)) / point.passes;
    passes.push_back(point);
  }
  return passes;
}

TEST(Jpeg2kAllocation, HullsHaveThePointsThatAreBestAtSomeSlope) {
  Random random(11);
  for (int round = 0; round < 500; ++round) {
    const std::vector<jpeg2k::PassPoint> passes = randomPasses(random);
    std::vector<jpeg2k::HullPoint> hull;
    jpeg2k::convexHull(passes, hull);
    for (size_t i = 1; i < hull.size(); ++i) {
      EXPECT_LT(hull[i].slope, hull[i - 1].slope);
      EXPECT_GT(hull[i].bytes, hull[i - 1].bytes);
    }
    for (const double slope : {0.01, 0.1, 0.5, 1.0, 2.0, 5.0, 20.0, 100.0}) {
      // Passes that take no bytes before any do are left to those behind them.
      double best = 0;
      for (const jpeg2k::PassPoint& pass : passes) {
        if (pass.bytes > 0) best = std::max(best, pass.gain - slope * pass.bytes);
      }
      const size_t points = jpeg2k::pointsAbove(hull, slope);
      const double found = points == 0 ? 0 : hull[points - 1].gain - slope * hull[points - 1].bytes;
      EXPECT_NEAR(found, best, 1e-9) << "slope " << slope;
    }
  }
}

TEST(Jpeg2kAllocation, SlopesAreAsLittleOffAsPassesAllow) {
  Random random(12);
  std::vector<std::vector<jpeg2k::HullPoint>> storage(60);
  std::vector<jpeg2k::Hull> hulls;
  for (std::vector<jpeg2k::HullPoint>& hull : storage) {
    jpeg2k::convexHull(randomPasses(random), hull);
    hulls.push_back(hull);
  }
  const jpeg2k::Yield all = jpeg2k::yieldAt(hulls, 0);
  for (const double part : {0.001, 0.1, 0.5, 0.9, 0.999}) {
    const auto bytes = static_cast<int64_t>(static_cast<double>(all.bytes) * part);
    const double forBytes = jpeg2k::slopeForBytes(hulls, bytes);
    EXPECT_LE(jpeg2k::yieldAt(hulls, forBytes).bytes, bytes);
    EXPECT_GT(jpeg2k::yieldAt(hulls, forBytes * 0.999).bytes, bytes);
    const double forGain = jpeg2k::slopeForGain(hulls, all.gain * part);
    EXPECT_GE(jpeg2k::yieldAt(hulls, forGain).gain, all.gain * part);
    EXPECT_LT(jpeg2k::yieldAt(hulls, forGain * 1.001).gain, all.gain * part);
  }
  EXPECT_EQ(jpeg2k::slopeForBytes(hulls, all.bytes), 0);
  EXPECT_EQ(jpeg2k::slopeForGain(hulls, all.gain * 1.01), 0);
}

}  // namespace
}  // namespace interop
