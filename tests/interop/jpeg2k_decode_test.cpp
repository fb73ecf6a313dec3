// zorj2k decodes what OpenJPEG's encoder writes, as OpenJPEG's decoder does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "common/error.h"
#include "interop/jpeg2k_files.h"

namespace interop {
namespace {

namespace jpeg2k = examples::jpeg2k;
using jpeg2k::ComponentSamples;

void expectSame(const std::vector<ComponentSamples>& ours, const std::vector<ComponentSamples>& theirs, int tolerance) {
  ASSERT_EQ(ours.size(), theirs.size());
  for (size_t c = 0; c < ours.size(); ++c) {
    ASSERT_EQ(ours[c].width, theirs[c].width) << c;
    ASSERT_EQ(ours[c].height, theirs[c].height) << c;
    ASSERT_EQ(ours[c].precision, theirs[c].precision);
    ASSERT_EQ(ours[c].isSigned, theirs[c].isSigned);
    int largest = 0;
    for (size_t i = 0; i < ours[c].samples.size(); ++i) {
      largest = std::max(largest, std::abs(ours[c].samples[i] - theirs[c].samples[i]));
    }
    EXPECT_LE(largest, tolerance) << "component " << c;
  }
}

// Floats are rounded differently on the way: by no more than a few of their steps.
int toleranceOf(const opj_cparameters_t& parameters, const std::vector<ComponentSamples>& components) {
  if (!parameters.irreversible) return 0;
  int32_t precision = 0;
  for (const ComponentSamples& component : components) precision = std::max(precision, component.precision);
  return precision <= 12 ? 1 : 1 << (precision - 12);
}

// Decodes with one thread and with more; returns the components.
std::vector<ComponentSamples> decodeWhole(const std::vector<uint8_t>& file, jpeg2k::DecodeOptions options) {
  std::vector<ComponentSamples> ours, same;
  EXPECT_EQ(jpeg2k::decodeComponents(file, options, ours).problem, "");
  options.threads = 3;
  EXPECT_EQ(jpeg2k::decodeComponents(file, options, same).problem, "");
  for (size_t c = 0; c < ours.size(); ++c) EXPECT_EQ(ours[c].samples, same[c].samples) << "threads";
  return ours;
}

void expectSameDecode(const std::vector<uint8_t>& file, const opj_cparameters_t& parameters, int32_t reduce = 0,
                      int32_t layers = 0) {
  jpeg2k::DecodeOptions options;
  options.reduce = reduce;
  options.layers = layers;
  openjpeg::DecodeSettings settings;
  settings.reduce = static_cast<uint32_t>(reduce);
  settings.layers = static_cast<uint32_t>(layers);
  const std::vector<ComponentSamples> theirs = openjpeg::decode(file, settings);
  expectSame(decodeWhole(file, options), theirs, toleranceOf(parameters, theirs));
}

void expectSource(const std::vector<uint8_t>& file, const PeerImage& source) {
  std::vector<ComponentSamples> ours;
  EXPECT_EQ(jpeg2k::decodeComponents(file, {}, ours).problem, "");
  for (size_t c = 0; c < ours.size(); ++c) {
    const PeerImage::Component& component = source.components[c];
    const int32_t raised = component.isSigned ? 1 << (component.precision - 1) : 0;
    ASSERT_EQ(ours[c].samples.size(), component.samples.size());
    for (size_t i = 0; i < ours[c].samples.size(); ++i) {
      ASSERT_EQ(ours[c].samples[i], component.samples[i] + raised) << "component " << c << ", sample " << i;
    }
  }
}

int32_t ceilDivide(int32_t value, int32_t by) { return (value + by - 1) / by; }

int32_t finest(const PeerImage& image, uint32_t PeerImage::Component::*distance) {
  uint32_t least = UINT32_MAX;
  for (const PeerImage::Component& component : image.components) least = std::min(least, component.*distance);
  return static_cast<int32_t>(least);
}

TEST(Jpeg2kDecode, EveryCodeBlockStyle) {
  Random random(1);
  for (int style = 0; style <= kLargestStyle; ++style) {
    for (const bool irreversible : {false, true}) {
      for (const int layers : {1, 3}) {
        SCOPED_TRACE(testing::Message() << "style " << style << ", irreversible " << irreversible << ", layers "
                                        << layers);
        opj_cparameters_t parameters = openjpeg::defaults();
        parameters.mode = style;
        parameters.irreversible = irreversible;
        parameters.cblockw_init = layers == 1 ? 32 : 16;
        parameters.cblockh_init = 64;
        parameters.tcp_numlayers = layers;
        for (int layer = 0; layer < layers; ++layer)
          parameters.tcp_rates[layer] = static_cast<float>(4 * (layers - 1 - layer));
        const PeerImage source = painting(93, 71, 1, layers == 1 ? 12 : 8, random);
        const std::vector<uint8_t> file = openjpeg::encode(source, parameters);
        expectSameDecode(file, parameters);
        if (layers > 1) expectSameDecode(file, parameters, 0, 2);
        if (!irreversible) expectSource(file, source);
      }
    }
  }
}

TEST(Jpeg2kDecode, RandomSettings) {
  Random random(2);
  int files = 0;
  for (int round = 0; round < 200; ++round) {
    const RandomFile file(random);
    if (file.bytes.empty()) continue;
    ++files;
    SCOPED_TRACE(testing::Message() << "round " << round << ": " << describe(file));
    expectSameDecode(file.bytes, file.parameters);
    if (file.isLossless) expectSource(file.bytes, file.image);
    if (file.parameters.tcp_numlayers > 1) expectSameDecode(file.bytes, file.parameters, 0, 1);
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(files, 150);
}

// A part of the picture is that part of the whole, at any size.
TEST(Jpeg2kDecode, RegionsTilesAndReducedSizes) {
  Random random(3);
  int files = 0;
  for (int round = 0; round < 150; ++round) {
    const RandomFile file(random);
    if (file.bytes.empty()) continue;
    SCOPED_TRACE(testing::Message() << "round " << round << ": " << describe(file));
    ++files;
    jpeg2k::DecodeOptions options;
    options.reduce = static_cast<int32_t>(random.between(0, file.parameters.numresolution - 1));
    expectSameDecode(file.bytes, file.parameters, options.reduce);
    examples::DeepImage whole, part;
    ASSERT_TRUE(jpeg2k::decode(file.bytes, options, whole).complete());
    const jpeg2k::Description size = jpeg2k::describe(file.bytes);
    options.region.x = static_cast<int32_t>(random.between(0, size.width - 1));
    options.region.y = static_cast<int32_t>(random.between(0, size.height - 1));
    options.region.width = static_cast<int32_t>(random.between(1, size.width));
    options.region.height = static_cast<int32_t>(random.between(1, size.height));
    const int32_t dx = finest(file.image, &PeerImage::Component::dx),
                  dy = finest(file.image, &PeerImage::Component::dy);
    const int32_t left = ceilDivide(static_cast<int32_t>(file.image.x0), dx);
    const int32_t top = ceilDivide(static_cast<int32_t>(file.image.y0), dy);
    const auto scaled = [&](int32_t position) { return ceilDivide(position, 1 << options.reduce); };
    const int32_t x = scaled(left + options.region.x) - scaled(left), y = scaled(top + options.region.y) - scaled(top);
    try {
      ASSERT_TRUE(jpeg2k::decode(file.bytes, options, part).complete());
    } catch (const examples::Error&) {
      EXPECT_GT(options.reduce, 0) << "no pixel is left";
      continue;
    }
    ASSERT_LE(x + part.width, whole.width);
    ASSERT_LE(y + part.height, whole.height);
    for (int32_t row = 0; row < part.height; ++row) {
      ASSERT_TRUE(std::equal(part.at(0, row), part.at(0, row) + part.width * part.channels, whole.at(x, y + row)))
          << "row " << row << " of " << part.width << " x " << part.height << " at " << x << ", " << y;
    }
  }
  EXPECT_GT(files, 100);
}

TEST(Jpeg2kDecode, OneTile) {
  Random random(4);
  opj_cparameters_t parameters = openjpeg::defaults();
  parameters.tile_size_on = OPJ_TRUE;
  parameters.cp_tdx = 30;
  parameters.cp_tdy = 20;
  parameters.numresolution = 4;
  const std::vector<uint8_t> file = openjpeg::encode(painting(80, 50, 3, 8, random), parameters);
  examples::Image whole, tile;
  ASSERT_TRUE(jpeg2k::decode(file, {}, whole).complete());
  for (int32_t number = 0; number < 9; ++number) {
    jpeg2k::DecodeOptions options;
    options.tile = number;
    ASSERT_TRUE(jpeg2k::decode(file, options, tile).complete());
    ASSERT_EQ(tile.width, number % 3 == 2 ? 20 : 30);
    ASSERT_EQ(tile.height, number / 3 == 2 ? 10 : 20);
    for (int32_t row = 0; row < tile.height; ++row) {
      ASSERT_TRUE(std::equal(tile.at(0, row), tile.at(0, row) + tile.width * 3,
                             whole.at(number % 3 * 30, number / 3 * 20 + row)));
    }
  }
}

}  // namespace
}  // namespace interop
