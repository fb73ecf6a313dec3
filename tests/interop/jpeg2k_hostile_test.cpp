// Codestreams that claim what they do not have: small files are refused or decoded in time and memory of their size.
// What takes too long does not end within the time CTest gives.
#include <gtest/gtest.h>

#include <algorithm>

#include "common/error.h"
#include "interop/jpeg2k_compare.h"

namespace interop {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr int32_t kLargest = INT32_MAX;
constexpr uint8_t kEmptyPacket = 0, kPacketWithoutBlocks = 0x80;

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
Bytes be16(int32_t value) { return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}; }
Bytes be32(int32_t value) { return be16(value >> 16) + be16(value); }
Bytes segment(uint8_t code, const Bytes& content) {
  return Bytes{0xff, code} + be16(static_cast<int32_t>(content.size()) + 2) + content;
}

struct Extent {
  int32_t x0, y0, x1, y1;
};
// Components of 8 bits on tiles that start at the same corner of the grid as the first pixel, or at 0.
Bytes size(const Extent& image, int32_t tileWidth, int32_t tileHeight, bool tilesAtImage = false,
           int32_t components = 1) {
  Bytes content = be16(0) + be32(image.x1) + be32(image.y1) + be32(image.x0) + be32(image.y0) + be32(tileWidth) +
                  be32(tileHeight) + be32(tilesAtImage ? image.x0 : 0) + be32(tilesAtImage ? image.y0 : 0) +
                  be16(components);
  for (int32_t c = 0; c < components; ++c) content = content + Bytes{7, 1, 1};
  return segment(0x51, content);
}
// The 5/3 wavelet and blocks of 4 x 4; precincts of one sample at resolution 0 if `divided`.
Bytes coding(uint8_t levels, int32_t layers, bool divided = false) {
  const Bytes content = Bytes{divided, 0} + be16(layers) + Bytes{0, levels, 0, 0, 0, 1};
  return segment(0x52, divided ? content + Bytes{0} : content);
}
Bytes quantization(uint8_t levels) { return segment(0x5c, Bytes{0x40} + Bytes(3 * levels + 1u, 8 << 3)); }
Bytes order(int32_t layerEnd, uint8_t resolutionBegin, uint8_t resolutionEnd, uint8_t progression) {
  return Bytes{resolutionBegin, 0} + be16(layerEnd) + Bytes{resolutionEnd, 1, progression};
}
Bytes tilePart(int32_t tile, const Bytes& headers, const Bytes& data) {
  const auto length = static_cast<int32_t>(14 + headers.size() + data.size());
  return segment(0x90, be16(tile) + be32(length) + Bytes{0, 1}) + headers + Bytes{0xff, 0x93} + data;
}
Bytes codestream(const Bytes& headers, const Bytes& tileParts) {
  return Bytes{0xff, 0x4f} + headers + tileParts + Bytes{0xff, 0xd9};
}

std::string problemOf(const Bytes& file) {
  DeepImage image;
  try {
    return jpeg2k::decode(file, {}, image).problem;
  } catch (const examples::Error& error) {
    return error.what();
  }
}

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// A file's picture moved to the far end of the grid, with the same blocks: it is the same picture.
TEST(Jpeg2kHostile, CoordinatesUpToTheLargest) {
  constexpr int32_t kSide = 63, kMove = kLargest - kSide;
  for (const bool lossy : {false, true}) {
    jpeg2k::EncodeOptions options;
    options.levels = 1;
    options.codestreamOnly = true;
    if (lossy) options.psnr = 45;
    const DeepImage source = deepPicture({kSide, kSide}, 3, 8);
    const Bytes file = encoded(source, options);
    const Bytes sizes = size({0, 0, kSide, kSide}, kSide, kSide, true, 3);
    ASSERT_TRUE(std::equal(sizes.begin() + 6, sizes.end(), file.begin() + 8)) << "the encoder writes other sizes";
    Bytes moved = file;
    const Bytes movedSizes = size({kMove, kMove, kLargest, kLargest}, kSide, kSide, true, 3);
    std::copy(movedSizes.begin(), movedSizes.end(), moved.begin() + 2);
    expectSamples(asImage(decoded(file)), decoded(moved));
  }
}

// Of a million blocks, 65535 layers of a byte each say that they have none.
TEST(Jpeg2kHostile, LayersWithoutBlocks) {
  const Bytes headers = size({0, 0, 4096, 4096}, 4096, 4096) + coding(0, 65535) + quantization(0);
  EXPECT_EQ(problemOf(codestream(headers, tilePart(0, {}, Bytes(65535, kPacketWithoutBlocks)))), "");
}

// The image shows a corner of the first tile, but a thousand times a thousand precincts of the last.
TEST(Jpeg2kHostile, PrecinctsOfAnyTileAreCounted) {
  const Bytes headers = size({999, 999, 2000, 2000}, 1000, 1000) + coding(0, 1, true) + quantization(0);
  const Bytes parts = tilePart(0, {}, {kEmptyPacket}) + tilePart(3, {}, {kEmptyPacket});
  EXPECT_TRUE(contains(problemOf(codestream(headers, parts)), "3 of 4 tiles are incomplete: the file is too small"));
  // As a later part of the tile says.
  const Bytes whole = size({0, 0, 1000, 1000}, 1000, 1000) + coding(0, 1) + quantization(0);
  const Bytes divided = tilePart(0, {}, {kEmptyPacket}) + tilePart(0, coding(0, 1, true), {kEmptyPacket});
  EXPECT_EQ(problemOf(codestream(whole, divided)), "the file is too small for as many precincts");
}

TEST(Jpeg2kHostile, DamagedTileHeadersCostTheirTileOnly) {
  Bytes parts;
  for (const int32_t tile : {0, 1, 2, 3}) parts = parts + tilePart(tile, coding(0, tile == 1 ? 0 : 1), {kEmptyPacket});
  EXPECT_EQ(problemOf(codestream(size({0, 0, 20, 20}, 10, 10) + coding(0, 1) + quantization(0), parts)),
            "1 of 4 tiles are incomplete: there are no layers");
}

// Of two layers and resolutions, in volumes that have all, some or none of the packets left.
TEST(Jpeg2kHostile, EmptyVolumesOfPackets) {
  const Bytes headers = size({0, 0, 8, 8}, 8, 8) + coding(1, 2) + quantization(1);
  for (uint8_t progression = 0; progression < 5; ++progression) {
    const Bytes volumes = order(0, 0, 33, progression) + order(1, 0, 1, progression) + order(1, 0, 1, progression) +
                          order(9, 7, 33, progression) + order(2, 1, 0, progression) + order(9, 0, 33, progression) +
                          order(2, 0, 2, progression);
    const auto file = [&](size_t packets) {
      return codestream(headers + segment(0x5f, volumes), tilePart(0, {}, Bytes(packets, kEmptyPacket)));
    };
    EXPECT_EQ(problemOf(file(4)), "");
    EXPECT_EQ(problemOf(file(3)), "1 of 1 tiles are incomplete");
  }
}

// Of components with few samples, one in columns and one in rows, a picture with many pixels is made.
TEST(Jpeg2kHostile, PixelsOfComponentsSampledCrosswise) {
  Bytes sizes = size({0, 0, 16384, 16384}, 16384, 16384, false, 2);
  const size_t end = sizes.size();
  sizes[end - 5] = 255;  // the first one's columns
  sizes[end - 1] = 255;  // the second one's rows
  EXPECT_EQ(problemOf(codestream(sizes + coding(0, 1) + quantization(0), tilePart(0, {}, {kEmptyPacket}))),
            "the file is too small for an image of this size");
}

TEST(Jpeg2kHostile, RowsWhoseStepsAreNoInt) {
  const Bytes comment = segment(0x64, Bytes(65000));
  const Bytes headers = size({0, 0, 1 << 28, 1}, 1 << 28, 1) + coding(0, 1) + quantization(0) + comment + comment;
  EXPECT_EQ(problemOf(codestream(headers, tilePart(0, {}, {kEmptyPacket}))), "the image is too large");
}

}  // namespace
}  // namespace interop
