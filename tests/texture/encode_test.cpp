#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <vector>

#include "reference/dxt.h"
#include "support/arguments.h"
#include "support/rows.h"

namespace zorj::test {
namespace {

using reference::BlockPixels;
using reference::Rgba;

struct EncodeCase {
  const char* what;
  StatusCode(ZORJ_CALL* subject)(const uint8_t*, int32_t, RoiSize, uint8_t*);
  int pixelBytes;
  int blockBytes;
  void (*model)(const BlockPixels& pixels, uint8_t* block);
};

constexpr EncodeCase kCases[] = {
    {"zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R", &zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, 4, 8,
     &reference::encodeDxt1},
    {"zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R", &zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, 4, 16,
     &reference::encodeDxt3},
    {"zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R", &zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, 4, 16,
     &reference::encodeDxt5},
    {"zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R", &zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16,
     &reference::encodeDxt5YCoCg},
};

// The driver's heights are small; blocks want more rows, of every number modulo 4.
RoiSize blockImageSize(int width, int height) { return {width, 3 * height + width % 4}; }

// Rows of pixels whose values, block by block, spread more or less far: differences of all sizes, ties, whole ranges.
OperandSpec sourcePixels(int pixelBytes, RoiSize size) {
  OperandSpec spec = sourceImage<uint8_t>(pixelBytes * size.width, size.height);
  spec.fillRow = [plain = spec.fillRow, pixelBytes, size](uint8_t* row, Random& random, int round) {
    if (round % 2 == 0) return plain(row, random, round / 2);
    for (int x = 0; x < size.width; x += 4) {
      const int64_t spread = random.between(0, 8) * random.between(0, 16), middle = random.between(0, 255);
      for (int i = x * pixelBytes; i < std::min(x + 4, size.width) * pixelBytes; ++i) {
        row[i] = static_cast<uint8_t>(std::clamp<int64_t>(middle + random.between(-spread, spread), 0, 255));
      }
    }
  };
  return spec;
}

void computeModel(const EncodeCase& test, const Operands& o, RoiSize size) {
  uint8_t* block = o.at<uint8_t>(1);
  for (int y = 0; y < size.height; y += 4) {
    for (int x = 0; x < size.width; x += 4, block += test.blockBytes) {
      BlockPixels pixels = {};
      for (int p = 0; p < 16; ++p) {
        const int column = std::min(x + p % 4, size.width - 1), row = std::min(y + p / 4, size.height - 1);
        const uint8_t* const pixel = o.at<uint8_t>(0) + ptrdiff_t{row} * o.step(0) + column * test.pixelBytes;
        std::copy(pixel, pixel + test.pixelBytes, pixels[static_cast<size_t>(p)].begin());
      }
      test.model(pixels, block);
    }
  }
}

TEST(TextureEncoding, EqualsModel) {
  for (const EncodeCase& test : kCases) {
    expectRowsEqualModel(
        test.what,
        [&](int width, int height) {
          const RoiSize size = blockImageSize(width, height);
          const int blocks = (size.width + 3) / 4 * ((size.height + 3) / 4);
          return std::vector{sourcePixels(test.pixelBytes, size), destinationArray<uint8_t>(blocks * test.blockBytes)};
        },
        [&](const Operands& o, RoiSize size) {
          EXPECT_EQ(
              test.subject(o.at<uint8_t>(0), o.step(0), blockImageSize(size.width, size.height), o.at<uint8_t>(1)),
              StatusOk);
        },
        [&](const Operands& o, RoiSize size) { computeModel(test, o, blockImageSize(size.width, size.height)); });
  }
}

TEST(TextureEncoding, NegativeStepsWalkUpwards) {
  constexpr RoiSize kSize = {27, 14};
  constexpr size_t kRow = 4 * kSize.width, kRows = kSize.height;
  std::vector<uint8_t> down(kRow * kRows), up(kRow * kRows);
  Random random(3);
  fillSamples(down.data(), down.size(), random, 0);
  for (size_t y = 0; y < kRows; ++y) std::copy_n(&down[kRow * y], kRow, &up[kRow * (kRows - 1 - y)]);
  for (const EncodeCase& test : kCases) {
    std::array<uint8_t, 7 * 4 * 16> expected = {}, blocks = {};
    EXPECT_EQ(test.subject(down.data(), kRow, kSize, expected.data()), StatusOk);
    EXPECT_EQ(test.subject(&up[kRow * (kRows - 1)], -int{kRow}, kSize, blocks.data()), StatusOk);
    EXPECT_EQ(blocks, expected) << test.what;
  }
}

TEST(TextureEncoding, ChecksArgumentsInOrder) {
  const std::array<uint8_t, 64> pixels = {};
  for (const EncodeCase& test : kCases) {
    std::array<uint8_t, 16> block;
    block.fill(77);
    const auto untouched = block;
    expectArgumentOrder(
        test.what, {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusBadSize, StatusBadSize},
        [&](const Faults& f) {
          return test.subject(f.pointer(0, pixels.data()), f.value(2, 16, 0),
                              RoiSize{f.value(3, 4, 0), f.value(4, 4, -1)}, f.pointer(1, block.data()));
        },
        [&] { return block != untouched; });
  }
}

// Worked by hand, so that the models have something to answer to.
TEST(TextureEncoding, EncodesAsDocumented) {
  const auto encode = [](auto function, const std::vector<uint8_t>& row, int width) {
    std::array<uint8_t, 16> block = {};
    EXPECT_EQ(function(row.data(), 1, RoiSize{width, 1}, block.data()), StatusOk);
    return block;
  };
  using Block = std::array<uint8_t, 16>;
  // One pixel makes a block of sixteen.
  const std::vector<uint8_t> pixel = {100, 150, 200, 255};
  EXPECT_EQ(encode(zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, pixel, 1), (Block{0xB9, 0x64, 0xB9, 0x64}));
  EXPECT_EQ(encode(zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, pixel, 1),
            (Block{255, 255, 0x49, 0x92, 0x24, 0x49, 0x92, 0x24, 0xB9, 0x64, 0xB9, 0x64}));
  // White, black, and alphas 0x12, 0xFE: the inset is 15 of the colours and 14 of the alphas.
  const std::vector<uint8_t> two = {255, 255, 255, 0x12, 0, 0, 0, 0xFE};
  EXPECT_EQ(encode(zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, two, 2),
            (Block{0xF1, 0xFF, 0xF1, 0xFF, 0xF1, 0xFF, 0xF1, 0xFF, 0x9E, 0xF7, 0x61, 0x08, 0x54, 0x54, 0x54, 0x54}));
  // Grey: chroma 0 scaled by 4, which blue tells.
  EXPECT_EQ(encode(zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, {77, 128, 128}, 1),
            (Block{77, 77, 0x49, 0x92, 0x24, 0x49, 0x92, 0x24, 0x03, 0x84, 0x03, 0x84}));
}

}  // namespace
}  // namespace zorj::test
