// Truncated and damaged JPEG 2000 files: decoded as far as they go, with a report, and never a crash.
#include <gtest/gtest.h>

#include "common/error.h"
#include "interop/jpeg2k_compare.h"
#include "interop/jpeg2k_files.h"

namespace interop {
namespace {

std::vector<uint8_t> firstBytes(const std::vector<uint8_t>& file, size_t length) {
  return {file.begin(), file.begin() + static_cast<ptrdiff_t>(length)};
}

// Cut anywhere, the picture is complete from the headers on and never much worse than with less data.
TEST(Jpeg2kDamage, TruncatedAnywhereDecodesAsFarAsItGoes) {
  const DeepImage source = deepPicture({61, 47}, 3, 8);
  for (const bool irreversible : {false, true}) {
    for (const OPJ_PROG_ORDER order : {OPJ_LRCP, OPJ_RPCL}) {
      opj_cparameters_t parameters = openjpeg::defaults();
      parameters.irreversible = irreversible;
      parameters.prog_order = order;
      parameters.cblockw_init = parameters.cblockh_init = 16;
      parameters.tcp_numlayers = 4;
      for (int layer = 0; layer < 4; ++layer) parameters.tcp_rates[layer] = static_cast<float>(12 - 4 * layer);
      const std::vector<uint8_t> file = openjpeg::encode(source, parameters);
      bool refused = true;
      double best = 0;
      for (size_t length = 0; length + 2 < file.size(); length += 1 + length / 40) {
        DeepImage image;
        try {
          EXPECT_FALSE(jpeg2k::decode(firstBytes(file, length), {}, image).complete()) << length;
          refused = false;
        } catch (const examples::Error&) {
          EXPECT_TRUE(refused) << "a longer part is refused: " << length;
          continue;
        }
        ASSERT_EQ(image.samples.size(), source.samples.size());
        const double now = psnr(image, source);
        EXPECT_GE(now, best - 1) << length;
        best = std::max(best, now);
      }
      EXPECT_FALSE(refused);
      EXPECT_GT(best, 30);
    }
  }
}

TEST(Jpeg2kDamage, MissingTilesAreGrey) {
  opj_cparameters_t parameters = openjpeg::defaults();
  parameters.tile_size_on = OPJ_TRUE;
  parameters.cp_tdx = parameters.cp_tdy = 32;
  const DeepImage source = deepPicture({64, 64}, 3, 8);
  const std::vector<uint8_t> file = openjpeg::encode(source, parameters, true);
  // Until the third tile-part begins.
  size_t at = 0;
  for (int found = 0; found < 3; ++at) found += file[at] == 0xff && file[at + 1] == 0x90 ? 1 : 0;
  DeepImage image;
  EXPECT_NE(jpeg2k::decode(firstBytes(file, at - 1), {}, image).problem.find("2 of 4 tiles"), std::string::npos);
  for (int32_t y = 0; y < 64; ++y) {
    for (int32_t x = 0; x < 64; ++x) ASSERT_EQ(image.at(x, y)[0], y < 32 ? source.at(x, y)[0] : 128);
  }
}

// And threads find the same damage as one alone.
TEST(Jpeg2kDamage, RandomBytesNeverCrash) {
  Random random(11);
  std::vector<RandomFile> files;
  while (files.size() < 60) {
    RandomFile file(random);
    if (!file.bytes.empty()) files.push_back(std::move(file));
  }
  DeepImage image, same;
  int decodedFiles = 0;
  for (int round = 0; round < 1500; ++round) {
    std::vector<uint8_t> file = files[static_cast<size_t>(round) % files.size()].bytes;
    // Anywhere, or in the headers.
    const int64_t last = static_cast<int64_t>(random.oneIn(2) ? file.size() : std::min<size_t>(file.size(), 200)) - 1;
    for (int64_t i = random.between(1, 6); i > 0; --i) {
      file[static_cast<size_t>(random.between(2, last))] =
          random.oneIn(4) ? uint8_t{0xff} : static_cast<uint8_t>(random.next());
    }
    jpeg2k::DecodeOptions options;
    options.reduce = round % 5 == 0 ? 1 : 0;
    options.layers = round % 7 == 0 ? 1 : 0;
    try {
      const jpeg2k::DecodeReport report = jpeg2k::decode(file, options, image);
      ++decodedFiles;
      options.threads = 3;
      EXPECT_EQ(jpeg2k::decode(file, options, same).problem, report.problem);
      ASSERT_EQ(same.samples, image.samples) << round;
    } catch (const examples::Error&) {
    }
  }
  EXPECT_GT(decodedFiles, 250);
}

TEST(Jpeg2kDamage, RefusesImagesFarLargerThanTheirFile) {
  std::vector<uint8_t> file = openjpeg::encode(
      deepPicture({16, 16}, 3, 8),
      [] {
        opj_cparameters_t parameters = openjpeg::defaults();
        parameters.numresolution = 3;
        return parameters;
      }(),
      true);
  // Xsiz, Ysiz, then XTsiz, YTsiz behind the offsets.
  for (const size_t at : {8u, 12u, 24u, 28u}) {
    file[at] = 0x00;
    file[at + 1] = 0x7f;
  }
  DeepImage image;
  EXPECT_THROW(jpeg2k::decode(file, {}, image), examples::Error);
  EXPECT_EQ(image.samples.size(), 0u);
}

}  // namespace
}  // namespace interop
