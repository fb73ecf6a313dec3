#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <vector>

#include "reference/bc7.h"
#include "reference/dxt.h"
#include "support/arguments.h"
#include "support/isa_levels.h"
#include "support/rows.h"
#include "texture/bc7_decode_kernels.h"
#include "texture/dxt_decode_kernels.h"

namespace zorj::test {
namespace {

using reference::Rgba;

struct DecodeCase {
  const char* what;
  StatusCode(ZORJ_CALL* subject)(const uint8_t*, uint8_t*, int32_t, RoiSize);
  int blockBytes;
  Rgba (*model)(const uint8_t* block, int x, int y);  // pixel (x, y) of a block
};

constexpr DecodeCase kCases[] = {
    {"zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R", &zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, 8,
     &reference::dxt1Pixel},
    {"zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R", &zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, 16,
     &reference::dxt3Pixel},
    {"zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R", &zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, 16,
     &reference::dxt5Pixel},
    {"zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R", &zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R, 16, &reference::bc7Pixel},
};

// The driver's heights are small; blocks want more rows, of every number modulo 4.
RoiSize blockImageSize(int width, int height) { return {width, 3 * height + width % 4}; }

std::vector<OperandSpec> operandsOf(const DecodeCase& test, RoiSize size) {
  const int blocks = (size.width + 3) / 4 * ((size.height + 3) / 4);
  return {sourceArray<uint8_t>(blocks * test.blockBytes), destinationImage<uint8_t>(4 * size.width, size.height)};
}

void computeModel(const DecodeCase& test, const Operands& o, RoiSize size) {
  const int blocksPerRow = (size.width + 3) / 4;
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const uint8_t* const block = o.at<uint8_t>(0) + (y / 4 * blocksPerRow + x / 4) * test.blockBytes;
      const Rgba pixel = test.model(block, x % 4, y % 4);
      std::copy(pixel.begin(), pixel.end(), o.at<uint8_t>(1) + ptrdiff_t{y} * o.step(1) + 4 * x);
    }
  }
}

TEST(TextureDecoding, EqualsModel) {
  for (const DecodeCase& test : kCases) {
    expectRowsEqualModel(
        test.what, [&](int width, int height) { return operandsOf(test, blockImageSize(width, height)); },
        [&](const Operands& o, RoiSize size) {
          EXPECT_EQ(
              test.subject(o.at<uint8_t>(0), o.at<uint8_t>(1), o.step(1), blockImageSize(size.width, size.height)),
              StatusOk);
        },
        [&](const Operands& o, RoiSize size) { computeModel(test, o, blockImageSize(size.width, size.height)); });
  }
}

// Every mode, and no mode, with every partition, rotation and index selection.
TEST(TextureDecoding, DecodesEveryKindOfBc7Block) {
  constexpr int kFirstBits = 14;
  Random random(5);
  std::vector<uint8_t> blocks(size_t{16} << kFirstBits);
  for (size_t i = 0; i < blocks.size(); ++i) blocks[i] = static_cast<uint8_t>(random.next());
  for (size_t first = 0; first < size_t{1} << kFirstBits; ++first) {
    blocks[16 * first] = static_cast<uint8_t>(first);
    blocks[16 * first + 1] = static_cast<uint8_t>((blocks[16 * first + 1] & 0xC0) | first >> 8);
  }
  const RoiSize size = {512, int32_t{16} << kFirstBits >> 9};
  std::vector<uint8_t> expected(blocks.size() * 4), pixels(expected.size());
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const uint8_t* const block = &blocks[static_cast<size_t>(y / 4 * (size.width / 4) + x / 4) * 16];
      const Rgba pixel = reference::bc7Pixel(block, x % 4, y % 4);
      std::copy(pixel.begin(), pixel.end(), &expected[static_cast<size_t>(y * size.width + x) * 4]);
    }
  }
  forEachIsa([&](Isa isa) {
    EXPECT_EQ(zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R(blocks.data(), pixels.data(), 4 * size.width, size), StatusOk);
    EXPECT_TRUE(pixels == expected) << isaName(isa);
  });
}

TEST(TextureDecoding, NegativeStepsWalkUpwards) {
  constexpr RoiSize kSize = {27, 14};
  std::array<uint8_t, 7 * 4 * 16> blocks;
  Random random(3);
  fillSamples(blocks.data(), blocks.size(), random, 0);
  for (const DecodeCase& test : kCases) {
    constexpr size_t kRow = 4 * kSize.width, kRows = kSize.height;
    std::vector<uint8_t> down(kRow * kRows), up(kRow * kRows);
    EXPECT_EQ(test.subject(blocks.data(), down.data(), kRow, kSize), StatusOk);
    EXPECT_EQ(test.subject(blocks.data(), &up[kRow * (kRows - 1)], -int{kRow}, kSize), StatusOk);
    for (size_t y = 0; y < kRows; ++y) {
      EXPECT_TRUE(std::equal(&down[kRow * y], &down[kRow * y] + kRow, &up[kRow * (kRows - 1 - y)])) << test.what;
    }
  }
}

// The stores of images larger than the caches, which would take too long to decode here.
TEST(TextureDecoding, StreamsTheSamePixels) {
  constexpr size_t kBlocks = 37, kRow = 16 * kBlocks;
  std::vector<uint8_t> blocks(16 * kBlocks);
  Random random(4);
  fillSamples(blocks.data(), blocks.size(), random, 0);
  forEachIsa([&](Isa isa) {
    const DxtDecodeKernels& dxt = dxtDecodeKernels();
    for (const BlockDecoder& decoder : {dxt.dxt1, dxt.dxt3, dxt.dxt5, bc7Decoder()}) {
      // Odd multiples of 16 bytes: all the alignment there is.
      alignas(64) std::array<uint8_t, 16 + 4 *kRow> cached = {}, streamed = {};
      decoder.cached(blocks.data(), kBlocks, &cached[16], kRow);
      decoder.streaming(blocks.data(), kBlocks, &streamed[16], kRow);
      EXPECT_EQ(cached, streamed) << isaName(isa);
    }
  });
}

TEST(TextureDecoding, ChecksArgumentsInOrder) {
  const std::array<uint8_t, 16> block = {};
  for (const DecodeCase& test : kCases) {
    std::array<uint8_t, 64> pixels;
    pixels.fill(77);
    const auto untouched = pixels;
    expectArgumentOrder(
        test.what, {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusBadSize, StatusBadSize},
        [&](const Faults& f) {
          return test.subject(f.pointer(0, block.data()), f.pointer(1, pixels.data()), f.value(2, 16, 0),
                              RoiSize{f.value(3, 4, 0), f.value(4, 4, -1)});
        },
        [&] { return pixels != untouched; });
  }
}

// Worked by hand, so that the models have something to answer to.
TEST(TextureDecoding, DecodesAsDocumented) {
  const auto firstRow = [](auto function, const std::array<uint8_t, 16>& block) {
    std::array<Rgba, 4> row;
    EXPECT_EQ(function(block.data(), row[0].data(), 16, RoiSize{4, 1}), StatusOk);
    return row;
  };
  // Red and blue; indices 0, 1, 2, 3.
  const std::array<uint8_t, 16> thirds = {0x00, 0xF8, 0x1F, 0x00, 0xE4};
  EXPECT_EQ(firstRow(zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, thirds),
            (std::array<Rgba, 4>{{{248, 0, 0, 255}, {0, 0, 248, 255}, {165, 0, 82, 255}, {82, 0, 165, 255}}}));
  const std::array<uint8_t, 16> halves = {0x1F, 0x00, 0x00, 0xF8, 0xE4};
  EXPECT_EQ(firstRow(zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, halves),
            (std::array<Rgba, 4>{{{0, 0, 248, 255}, {248, 0, 0, 255}, {124, 0, 124, 255}, {255, 255, 255, 255}}}));
  // Alphas 1, 2, 15, 0 over the same colours in the same order, which here give thirds.
  const std::array<uint8_t, 16> nibbles = {0x21, 0x0F, 0, 0, 0, 0, 0, 0, 0x1F, 0x00, 0x00, 0xF8, 0xE4};
  EXPECT_EQ(firstRow(zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, nibbles),
            (std::array<Rgba, 4>{{{0, 0, 248, 16}, {248, 0, 0, 32}, {82, 0, 165, 240}, {165, 0, 82, 0}}}));
  // Alpha indices 2, 7, 1, 0.
  const std::array<uint8_t, 16> sevenths = {255, 0, 0x7A};
  EXPECT_EQ(firstRow(zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, sevenths),
            (std::array<Rgba, 4>{{{0, 0, 0, 219}, {0, 0, 0, 36}, {0, 0, 0, 0}, {0, 0, 0, 255}}}));
}

}  // namespace
}  // namespace zorj::test
