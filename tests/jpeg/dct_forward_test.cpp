#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "core/unaligned.h"
#include "reference/dct.h"
#include "support/arguments.h"
#include "support/blocks.h"
#include "support/isa_levels.h"

namespace zorj::test {
namespace {

// Any table, tables that make many ties, and reciprocals of steps.
OperandSpec forwardTable() {
  return filledWith<uint16_t>(sourceArray<uint16_t>(64), [](uint16_t* table, size_t count, Random& random, int round) {
    fillSamples(table, count, random, round);
    for (size_t i = 0; i < count; ++i) {
      if (round / kFillKinds % 3 == 1) table[i] = static_cast<uint16_t>(1 << random.between(10, 15));
      if (round / kFillKinds % 3 == 2) table[i] = reference::reciprocal(static_cast<uint8_t>(random.between(0, 255)));
    }
  });
}

void storeModel(const reference::Block& samples, int16_t* dst, const uint16_t* table) {
  const reference::Block coefficients = reference::fixedForward(samples);
  for (size_t i = 0; i < 64; ++i) {
    storeUnaligned(dst + i, reference::quantisedToEven(coefficients[i], loadUnaligned(table + i)));
  }
}

reference::Block blockAt(const int16_t* src) {
  reference::Block block;
  for (size_t i = 0; i < 64; ++i) block[i] = loadUnaligned(src + i);
  return block;
}

TEST(DctForward, BlocksEqualModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1", {sourceArray<int16_t>(64), destinationArray<int16_t>(64), forwardTable()},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8_JPEG_16s_C1(o.at<int16_t>(0), o.at<int16_t>(1), o.at<uint16_t>(2)), StatusOk);
      },
      [](const Operands& o) { storeModel(blockAt(o.at<int16_t>(0)), o.at<int16_t>(1), o.at<uint16_t>(2)); });
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1I", {inPlaceArray<int16_t>(64), forwardTable()},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8_JPEG_16s_C1I(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk);
      },
      [](const Operands& o) { storeModel(blockAt(o.at<int16_t>(0)), o.at<int16_t>(0), o.at<uint16_t>(1)); });
}

TEST(DctForward, LevelShiftedBlocksEqualModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R",
      {sourceImage<uint8_t>(8, 8), destinationArray<int16_t>(64), forwardTable()},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(o.at<uint8_t>(0), o.step(0), o.at<int16_t>(1), o.at<uint16_t>(2)),
                  StatusOk);
      },
      [](const Operands& o) {
        reference::Block samples;
        for (int i = 0; i < 64; ++i) {
          samples[i] = static_cast<int16_t>(o.at<uint8_t>(0)[i / 8 * o.step(0) + i % 8] - 128);
        }
        storeModel(samples, o.at<int16_t>(1), o.at<uint16_t>(2));
      });
}

TEST(DctForward, WithinOneOfTheExactTransform) {
  std::array<uint16_t, 64> table;
  table.fill(32768);
  Random random(1);
  for (int round = 0; round < 2000; ++round) {
    reference::Block block;
    reference::ExactBlock samples;
    const int range = round % 3 == 0 ? 5 : 255;
    for (size_t i = 0; i < 64; ++i) {
      block[i] =
          static_cast<int16_t>(round % 3 == 1 ? (random.oneIn(2) ? range : -range) : random.between(-range, range));
      samples[i] = block[i];
    }
    const reference::ExactBlock exact = reference::exactForward(samples);
    ASSERT_EQ(zoriDCTQuantFwd8x8_JPEG_16s_C1I(block.data(), table.data()), StatusOk);
    for (size_t i = 0; i < 64; ++i) ASSERT_LE(std::abs(block[i] - exact[i]), 1.0) << "coefficient " << i;
  }
}

// Multipliers of real quantisation, and what may not upset the conversion to integers.
OperandSpec floatTable() {
  return filledWith<float>(sourceArray<uint32_t>(64), [](float* table, size_t count, Random& random, int round) {
    constexpr float kWild[] = {std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity(),
                               1e30f,
                               -1e30f,
                               3.0f,
                               -5.0f,
                               1e-42f};
    for (size_t i = 0; i < count; ++i) {
      table[i] = 1.0f / static_cast<float>(random.between(1, 255));
      if (round % 2 == 1 && random.oneIn(3)) table[i] = kWild[random.between(0, 7)];
    }
  });
}

TEST(DctForward, FloatBlocksAreTheSameAtEveryLevel) {
  const auto call = [](const Operands& o) {
    EXPECT_EQ(zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(o.at<uint16_t>(0), o.step(0), o.at<int16_t>(1), o.at<float>(2)),
              StatusOk);
  };
  expectBlocksEqualModel("zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R",
                         {sourceImage<uint16_t>(8, 8), destinationArray<int16_t>(64), floatTable()}, call,
                         [&](const Operands& o) {
                           setIsa(Isa::kPortable);
                           call(o);
                         });
}

TEST(DctForward, FloatBlocksRoundTheExactTransform) {
  Random random(2);
  for (int round = 0; round < 1000; ++round) {
    std::array<uint16_t, 64> source;
    std::array<int16_t, 64> result;
    std::array<float, 64> table;
    reference::ExactBlock samples;
    for (size_t i = 0; i < 64; ++i) {
      source[i] = static_cast<uint16_t>(random.between(0, round % 4 == 0 ? 65535 : 4095));
      samples[i] = static_cast<int16_t>(source[i]) - 2048.0;
      table[i] = 1.0f / static_cast<float>(random.between(1, 255));
    }
    const reference::ExactBlock exact = reference::exactForward(samples);
    ASSERT_EQ(zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(source.data(), 16, result.data(), table.data()), StatusOk);
    for (size_t i = 0; i < 64; ++i) {
      const double quotient = std::clamp(exact[i] * static_cast<double>(table[i]), -32768.0, 32767.0);
      ASSERT_NEAR(result[i], quotient, round % 4 == 0 ? 0.52 : 0.502) << "coefficient " << i;
    }
  }
}

TEST(DctForward, FloatConversionSaturatesBySignAndMakesZeroOfNaN) {
  const std::array<uint16_t, 64> source{4095};
  std::array<float, 64> table;
  std::array<int16_t, 64> result;
  forEachIsa([&](Isa isa) {
    // The DC coefficient of this block is negative, the others are positive where their basis starts positive.
    table.fill(1e30f);
    table[1] = std::numeric_limits<float>::quiet_NaN();
    table[2] = std::numeric_limits<float>::infinity();
    ASSERT_EQ(zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(source.data(), 16, result.data(), table.data()), StatusOk);
    EXPECT_EQ(result[0], -32768) << isaName(isa);
    EXPECT_EQ(result[1], 0) << isaName(isa);
    EXPECT_EQ(result[2], 32767) << isaName(isa);
    EXPECT_EQ(result[63], 32767) << isaName(isa);
  });
}

template <class Sample, class Factor>
void expectLevelShiftedOrder(const char* what,
                             StatusCode(ZORJ_CALL* function)(const Sample*, int32_t, int16_t*, const Factor*)) {
  const std::array<Sample, 64> source{1};
  const std::array<Factor, 64> table{1};
  std::array<int16_t, 64> block{};
  expectArgumentOrder(
      what, {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusNullPointer},
      [&](const Faults& f) {
        return function(f.pointer(0, source.data()), f.value(2, 8, 0), f.pointer(1, block.data()),
                        f.pointer(3, table.data()));
      },
      [&] { return std::count(block.begin(), block.end(), 0) != 64; });
}

TEST(DctForward, ArgumentOrder) {
  expectLevelShiftedOrder("zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R", &zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R);
  expectLevelShiftedOrder("zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R", &zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R);
  const std::array<int16_t, 64> source{1};
  const std::array<uint16_t, 64> table{0xFFFF};
  std::array<int16_t, 64> block{};
  const auto written = [&] { return std::count(block.begin(), block.end(), 0) != 64; };
  expectArgumentOrder(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1", {StatusNullPointer, StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantFwd8x8_JPEG_16s_C1(f.pointer(0, source.data()), f.pointer(1, block.data()),
                                              f.pointer(2, table.data()));
      },
      written);
  expectArgumentOrder(
      "zoriDCTQuantFwd8x8_JPEG_16s_C1I", {StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantFwd8x8_JPEG_16s_C1I(f.pointer(0, block.data()), f.pointer(1, table.data()));
      },
      written);
}

}  // namespace
}  // namespace zorj::test
