#include <gtest/gtest.h>
#include <zorj.h>

#include "jpeg/dct_support.h"
#include "support/arguments.h"
#include "support/blocks.h"

namespace zorj::test {
namespace {

using reference::Block;
using reference::Steps;

Block quantised(const Block& coefficients, const Steps& table) {
  Block result;
  for (size_t i = 0; i < 64; ++i) result[i] = reference::quantisedByReciprocal(coefficients[i], table[i]);
  return result;
}

TEST(DctForward, LevelShiftedEqualsModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R",
      {sourceImage<uint8_t>(8, 8), destinationArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(o.at<uint8_t>(0), o.step(0), o.at<int16_t>(1), o.at<uint16_t>(2)),
                  StatusOk);
      },
      [](const Operands& o) {
        Block samples;
        for (int i = 0; i < 64; ++i) {
          samples[static_cast<size_t>(i)] = static_cast<int16_t>(sampleAt<uint8_t>(o, 0, i % 8, i / 8) - 128);
        }
        storeArray(o, 1, quantised(reference::forwardFixed(samples), loadArray<Steps>(o, 2)));
      });
}

TEST(DctForward, CentredEqualsModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1",
      {sourceArray<int16_t>(64), destinationArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8_JPEG_16s_C1(o.at<int16_t>(0), o.at<int16_t>(1), o.at<uint16_t>(2)), StatusOk);
      },
      [](const Operands& o) {
        storeArray(o, 1, quantised(reference::forwardFixed(loadArray<Block>(o, 0)), loadArray<Steps>(o, 2)));
      });
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1I", {inPlaceArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8_JPEG_16s_C1I(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk);
      },
      [](const Operands& o) {
        storeArray(o, 0, quantised(reference::forwardFixed(loadArray<Block>(o, 0)), loadArray<Steps>(o, 1)));
      });
}

TEST(DctForward, FloatEqualsModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R",
      {sourceImage<uint16_t>(8, 8), destinationArray<int16_t>(64),
       filledWith<float>(sourceArray<float>(64), fillMultipliers)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(o.at<uint16_t>(0), o.step(0), o.at<int16_t>(1), o.at<float>(2)),
                  StatusOk);
      },
      [](const Operands& o) {
        float block[64];
        for (int i = 0; i < 64; ++i) {
          block[i] = static_cast<float>(static_cast<int16_t>(sampleAt<uint16_t>(o, 0, i % 8, i / 8))) - 2048.0f;
        }
        for (int x = 0; x < 8; ++x) reference::forwardFloat(block + x, 8);
        for (int y = 0; y < 8; ++y) reference::forwardFloat(block + 8 * y, 1);
        const auto table = loadArray<std::array<float, 64>>(o, 2);
        Block result;
        for (size_t i = 0; i < 64; ++i) result[i] = reference::roundedTo16(block[i] * table[i]);
        storeArray(o, 1, result);
      });
}

// Unquantised coefficients of 8-bit samples stay within a unit of the exact ones; the bound is what rounding to 16 bits
// in the column pass allows.
TEST(DctForward, IsAccurate) {
  Random random(1);
  Steps one;
  one.fill(32768);
  std::array<float, 64> oneFloat;
  oneFloat.fill(1.0f);
  double worst = 0, worstFloat = 0, total = 0;
  constexpr int kBlocks = 2000;
  for (int round = 0; round < kBlocks; ++round) {
    uint8_t samples[64];
    uint16_t wide[64];
    fillSamples(samples, 64, random, round);
    std::array<double, 64> centred, centredWide;
    for (size_t i = 0; i < 64; ++i) {
      wide[i] = static_cast<uint16_t>(random.between(0, 4095));
      centred[i] = samples[i] - 128.0;
      centredWide[i] = wide[i] - 2048.0;
    }
    const auto exact = reference::exactForward(centred), exactWide = reference::exactForward(centredWide);
    Block result, resultWide;
    zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(samples, 8, result.data(), one.data());
    zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(wide, 16, resultWide.data(), oneFloat.data());
    for (size_t i = 0; i < 64; ++i) {
      worst = std::max(worst, std::abs(result[i] - exact[i]));
      worstFloat = std::max(worstFloat, std::abs(resultWide[i] - exactWide[i]));
      total += result[i] - exact[i];
    }
  }
  EXPECT_LT(worst, 1.0);
  EXPECT_LT(worstFloat, 0.51);
  EXPECT_LT(std::abs(total / (64.0 * kBlocks)), 0.01);
}

TEST(DctForward, FlatBlocksGiveTheirMeanAlone) {
  Steps one;
  one.fill(32768);
  for (const int value : {0, 128, 255}) {
    uint8_t samples[64];
    std::fill_n(samples, 64, static_cast<uint8_t>(value));
    Block expected{}, result;
    expected[0] = static_cast<int16_t>(8 * (value - 128));
    EXPECT_EQ(zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(samples, 8, result.data(), one.data()), StatusOk);
    EXPECT_EQ(result, expected);
  }
}

TEST(DctForward, ChecksArgumentsInOrder) {
  int16_t block[64] = {}, values[64] = {};
  uint16_t table[64] = {}, wide[64] = {};
  uint8_t bytes[64] = {};
  float multipliers[64] = {};
  std::fill_n(values, 64, int16_t{100});
  std::fill_n(table, 64, uint16_t{32768});
  const auto written = [&] { return std::any_of(block, block + 64, [](int16_t c) { return c != 0; }); };
  expectArgumentOrder(
      "zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R", {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(f.pointer(0, bytes), f.value(2, 8, 0), f.pointer(1, block),
                                                   f.pointer(3, table));
      },
      written);
  expectArgumentOrder(
      "zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R", {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(f.pointer(0, wide), f.value(2, 16, -16), f.pointer(1, block),
                                                    f.pointer(3, multipliers));
      },
      written);
  expectArgumentOrder(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1", {StatusNullPointer, StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantFwd8x8_JPEG_16s_C1(f.pointer(0, values), f.pointer(1, block), f.pointer(2, table));
      },
      written);
  expectArgumentOrder(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1I", {StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) { return zoriDCTQuantFwd8x8_JPEG_16s_C1I(f.pointer(0, block), f.pointer(1, table)); },
      written);
}

}  // namespace
}  // namespace zorj::test
