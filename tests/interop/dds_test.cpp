// zordds: textures of every format and size against Pillow's reader, mip chains, damaged files, the program.
#include <algorithm>

#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "dds/codec.h"
#include "interop/pictures.h"
#include "interop/program_test.h"

namespace interop {
namespace {

namespace dds = examples::dds;
using dds::Format;

using Bytes = std::vector<uint8_t>;

class Dds : public ProgramTest {
 protected:
  Dds() : ProgramTest(ZORDDS_PROGRAM) {}

  // The file as Pillow, of the system's Python, decodes it.
  Bytes decodedByPillow(const Bytes& file) const {
    write("x.dds", file);
    EXPECT_EQ(shell("/usr/bin/python3 " ZORJ_PILLOW_SCRIPT " x.dds x.rgba 2>err"), 0) << message();
    return examples::readFile(path("x.rgba"));
  }
};

// With opacity in the last of 2 or 4 channels.
Image texturePicture(int32_t width, int32_t height, int32_t channels) {
  Image image = picture(width, height, channels);
  image.hasOpacity = channels % 2 == 0;
  return image;
}

// RGBA of an image of 3 or 4 channels.
Bytes rgbaOf(const Image& image) {
  Bytes rgba;
  for (auto at = image.samples.begin(); at != image.samples.end(); at += image.channels) {
    rgba.insert(rgba.end(), at, at + image.channels);
    if (image.channels == 3) rgba.push_back(255);
  }
  return rgba;
}

int largestDifference(const Bytes& a, const Bytes& b) {
  EXPECT_EQ(a.size(), b.size());
  int largest = 0;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

Bytes randomBlocks(size_t bytes) {
  Random random(11);
  Bytes blocks(bytes);
  for (uint8_t& byte : blocks) byte = static_cast<uint8_t>(random.next());
  return blocks;
}

Bytes fileOf(const dds::Texture& texture, const Bytes& blocks) {
  Bytes file = dds::makeHeaders(texture);
  file.insert(file.end(), blocks.begin(), blocks.end());
  return file;
}

TEST_F(Dds, PillowDecodesBc7AsWeDo) {
  dds::Texture texture;
  texture.format = Format::bc7;
  texture.width = texture.height = 1024;
  Bytes blocks = randomBlocks(texture.level(0).bytes);
  for (size_t i = 0; i < blocks.size(); i += 16) {
    const unsigned mode = i / 16 % 8;
    blocks[i] = static_cast<uint8_t>((blocks[i] | 1u) << mode);
  }
  const Bytes file = fileOf(texture, blocks);
  EXPECT_TRUE(rgbaOf(dds::decode(file)) == decodedByPillow(file));
}

// Pillow repeats the colours' high bits in the low ones.
TEST_F(Dds, PillowDecodesDxtAlike) {
  for (const Format format : {Format::dxt1, Format::dxt3, Format::dxt5}) {
    for (const auto& [width, height] : oddSizes()) {
      const Bytes file = dds::encode(texturePicture(width, height, format == Format::dxt1 ? 3 : 4), format, width > 20);
      const Bytes ours = rgbaOf(dds::decode(file)), theirs = decodedByPillow(file);
      EXPECT_LE(largestDifference(ours, theirs), 8) << dds::nameOf(format) << " of " << width << " x " << height;
    }
  }
}

TEST_F(Dds, DecodesWhatItEncodes) {
  for (const Format format : {Format::dxt1, Format::dxt3, Format::dxt5, Format::ycocgDxt5}) {
    for (const int channels : {1, 2, 3, 4}) {
      const bool opaque = channels % 2 != 0 || format == Format::dxt1 || format == Format::ycocgDxt5;
      const Image image = texturePicture(70, 50, channels);
      const Bytes file = dds::encode(image, format, true);
      const dds::Texture texture = dds::parse(file);
      EXPECT_EQ(texture.format, format);
      EXPECT_EQ(texture.levels, 7);
      for (int level = 0; level < texture.levels; ++level) {
        const Image decoded = dds::decode(file, level);
        EXPECT_EQ(decoded.width, std::max(1, 70 >> level));
        EXPECT_EQ(decoded.height, std::max(1, 50 >> level));
        EXPECT_EQ(decoded.channels, opaque ? 3 : 4);
      }
      Image expected(70, 50, opaque ? 3 : 4);
      for (int i = 0; i < 70 * 50; ++i) {
        const uint8_t* const from = image.at(i % 70, i / 70);
        uint8_t* const to = expected.at(i % 70, i / 70);
        for (int c = 0; c < 3; ++c) to[c] = from[channels < 3 ? 0 : c];
        if (!opaque) to[3] = from[channels - 1];
      }
      EXPECT_GT(psnr(dds::decode(file), expected), 20) << dds::nameOf(format) << ", " << channels << " channels";
    }
  }
}

TEST_F(Dds, RefusesDamagedFiles) {
  const Bytes good = dds::encode(texturePicture(33, 20, 4), Format::dxt5, true);
  for (size_t length = 0; length < good.size(); length += length < 150 ? 1 : 97) {
    const Bytes cut(good.begin(), good.begin() + static_cast<ptrdiff_t>(length));
    EXPECT_THROW(dds::decode(cut), examples::Error) << length << " bytes";
  }
  Random random(12);
  for (int round = 0; round < 3000; ++round) {
    Bytes damaged = good;
    for (int i = 0; i < 3; ++i) damaged[random.next() % 148] = static_cast<uint8_t>(random.next());
    try {
      const Image image = dds::decode(damaged, static_cast<int32_t>(random.between(-1, 8)));
      EXPECT_LE(image.samples.size(), 8 * damaged.size());
    } catch (const examples::Error& error) {
      EXPECT_STRNE(error.what(), "");
    }
  }
}

TEST_F(Dds, TheProgramEncodesDecodesAndDescribes) {
  examples::writeImage(path("in.png"), texturePicture(70, 50, 4));
  for (const char* format : {"dxt1", "dxt3", "dxt5", "ycocg-dxt5"}) {
    ASSERT_EQ(run(std::string("encode in.png a.dds --mipmaps --format ") + format), 0) << message();
    ASSERT_EQ(run("decode a.dds b.png --level 1"), 0) << message();
    EXPECT_EQ(examples::readImage(path("b.png")).width, 35);
    ASSERT_EQ(run("info a.dds"), 0) << message();
    EXPECT_NE(text("out").find("level 6: 1 x 1 pixels"), std::string::npos) << text("out");
  }
  expectFailure("encode in.png", 2, "output");
  expectFailure("encode in.png a.dds --format bc7", 2, "bc7");
  expectFailure("decode in.png b.png", 1, "in.png");
  expectFailure("decode a.dds c.png --level 7", 1, "level 7");
  expectFailure("decode a.dds b.jpg", 1, ".png");
  expectFailure("info missing.dds", 1, "missing.dds");
}

}  // namespace
}  // namespace interop
