#include <gtest/gtest.h>
#include <zorj.h>

#include "jpeg/dct_support.h"
#include "support/arguments.h"
#include "support/blocks.h"

namespace zorj::test {
namespace {

using reference::Block;
using reference::Steps;
using ToSamples = StatusCode(ZORJ_CALL*)(const int16_t*, uint8_t*, int32_t, const uint16_t*);
using Model = std::array<int, 64> (*)(const Block& coefficients, const Steps& steps);

Block lowest(const Block& coefficients, size_t size) {
  Block kept{};
  for (size_t v = 0; v < size; ++v) {
    for (size_t u = 0; u < size; ++u) kept[8 * v + u] = coefficients[8 * v + u];
  }
  return kept;
}

std::array<int, 64> shifted(const Block& samples) {
  std::array<int, 64> result;
  for (size_t i = 0; i < 64; ++i) result[i] = reference::clampedByte(samples[i] + 128);
  return result;
}

template <size_t kSize>
std::array<int, 64> modelOfLowest(const Block& coefficients, const Steps& steps) {
  return shifted(reference::inverseFixed(reference::dequantised(lowest(coefficients, kSize), steps)));
}

std::array<int, 64> modelOfDc(const Block& coefficients, const Steps& steps) {
  const int64_t product = int64_t{coefficients[0]} * steps[0];
  std::array<int, 64> result;
  result.fill(reference::clampedByte(reference::wrapped((product >= 0 ? product / 8 : -((7 - product) / 8)) + 128)));
  return result;
}

std::array<int, 64> modelTo2x2(const Block& coefficients, const Steps& steps) {
  const Block f = reference::dequantised(coefficients, steps);
  std::array<int, 64> result{};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 2; ++x) {
      const int sum = f[0] + (x ? -f[1] : f[1]) + (y ? -f[8] : f[8]) + (x != y ? -f[9] : f[9]);
      const int rounded = static_cast<int>(std::floor((sum + 4) / 8.0));
      result[static_cast<size_t>(2 * y + x)] = reference::clampedByte(reference::saturated(rounded) + 128);
    }
  }
  return result;
}

std::array<int, 64> modelTo4x4(const Block& coefficients, const Steps& steps) {
  const Block f = reference::dequantised(coefficients, steps);
  float values[16];
  for (size_t i = 0; i < 16; ++i) values[i] = f[8 * (i / 4) + i % 4];
  for (int u = 0; u < 4; ++u) reference::inverseFour(values + u, 4);
  for (int y = 0; y < 4; ++y) reference::inverseFour(values + 4 * y, 1);
  std::array<int, 64> result{};
  for (size_t i = 0; i < 16; ++i) {
    const int rounded = static_cast<int>(std::nearbyint(values[i] / 8));
    result[i] = reference::clampedByte(reference::saturated(rounded) + 128);
  }
  return result;
}

struct Variant {
  const char* name;
  ToSamples subject;
  Model model;
  int size;  // of the block written
};

constexpr Variant kVariants[] = {
    {"zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R, &modelOfLowest<8>, 8},
    {"zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, &modelOfLowest<4>, 8},
    {"zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, &modelOfLowest<2>, 8},
    {"zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, &modelOfDc, 8},
    {"zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, &modelTo4x4, 4},
    {"zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, &modelTo2x2, 2},
};

TEST(DctInverse, LevelShiftedEqualsModel) {
  for (const Variant& variant : kVariants) {
    expectBlocksEqualModel(
        variant.name,
        {sourceArray<int16_t>(64), destinationImage<uint8_t>(variant.size, variant.size), sourceArray<uint16_t>(64)},
        [&](const Operands& o) {
          EXPECT_EQ(variant.subject(o.at<int16_t>(0), o.at<uint8_t>(1), o.step(1), o.at<uint16_t>(2)), StatusOk);
        },
        [&](const Operands& o) {
          const auto samples = variant.model(loadArray<Block>(o, 0), loadArray<Steps>(o, 2));
          for (int y = 0; y < variant.size; ++y) {
            for (int x = 0; x < variant.size; ++x) {
              storeSample(o, 1, x, y, static_cast<uint8_t>(samples[static_cast<size_t>(variant.size * y + x)]));
            }
          }
        });
  }
}

TEST(DctInverse, CentredEqualsModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantInv8x8_JPEG_16s_C1",
      {sourceArray<int16_t>(64), destinationArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1(o.at<int16_t>(0), o.at<int16_t>(1), o.at<uint16_t>(2)), StatusOk);
      },
      [](const Operands& o) {
        storeArray(o, 1,
                   reference::inverseFixed(reference::dequantised(loadArray<Block>(o, 0), loadArray<Steps>(o, 2))));
      });
  expectBlocksEqualModel(
      "zoriDCTQuantInv8x8_JPEG_16s_C1I", {inPlaceArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1I(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk);
      },
      [](const Operands& o) {
        storeArray(o, 0,
                   reference::inverseFixed(reference::dequantised(loadArray<Block>(o, 0), loadArray<Steps>(o, 1))));
      });
}

TEST(DctInverse, FloatEqualsModel) {
  expectBlocksEqualModel(
      "zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R",
      {sourceArray<int16_t>(64), destinationImage<uint16_t>(8, 8),
       filledWith<float>(sourceArray<float>(64), fillMultipliers)},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(o.at<int16_t>(0), o.at<uint16_t>(1), o.step(1), o.at<float>(2)),
                  StatusOk);
      },
      [](const Operands& o) {
        const auto coefficients = loadArray<Block>(o, 0);
        const auto table = loadArray<std::array<float, 64>>(o, 2);
        float block[64];
        for (size_t i = 0; i < 64; ++i) block[i] = static_cast<float>(coefficients[i]) * table[i];
        for (int y = 0; y < 8; ++y) reference::inverseFloat(block + 8 * y, 1);
        for (int x = 0; x < 8; ++x) reference::inverseFloat(block + x, 8);
        for (int i = 0; i < 64; ++i) {
          const float sample = block[i] + 2048.0f;
          const float clamped = std::isnan(sample) ? 0.0f : std::clamp(sample, 0.0f, 4095.0f);
          storeSample(o, 1, i % 8, i / 8, static_cast<uint16_t>(clamped));
        }
      });
}

// Coefficients of blocks of samples within +-`limit`, each rounded to a multiple of a random step.
struct QuantisedBlock {
  Block coefficients;
  Steps steps;
  std::array<double, 64> exact;  // dequantised
};

QuantisedBlock randomBlock(Random& random, int limit, int round) {
  std::array<double, 64> samples;
  const int spread = round % 3 == 0 ? limit : 20;
  const auto level = static_cast<int>(random.between(-limit + spread, limit - spread));
  for (double& sample : samples) sample = level + static_cast<double>(random.between(-spread, spread));
  const auto coefficients = reference::exactForward(samples);
  QuantisedBlock block;
  for (size_t i = 0; i < 64; ++i) {
    block.steps[i] = static_cast<uint16_t>(round % 2 == 0 ? 1 : random.between(1, 12));
    block.coefficients[i] = static_cast<int16_t>(std::lround(coefficients[i] / block.steps[i]));
    block.exact[i] = block.coefficients[i] * block.steps[i];
  }
  return block;
}

TEST(DctInverse, IsAccurateToOneUnit) {
  Random random(1);
  double worst = 0, worstFloat = 0, sum = 0, squares = 0;
  constexpr int kBlocks = 3000;
  for (int round = 0; round < kBlocks; ++round) {
    const QuantisedBlock block = randomBlock(random, 300, round);
    Block result;
    ASSERT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1(block.coefficients.data(), result.data(), block.steps.data()), StatusOk);
    uint16_t wide[64];
    float multipliers[64];
    for (size_t i = 0; i < 64; ++i) multipliers[i] = block.steps[i];
    ASSERT_EQ(zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(block.coefficients.data(), wide, 16, multipliers), StatusOk);
    for (int i = 0; i < 64; ++i) {
      const double exact = reference::exactInverse(block.exact, i % 8, i / 8);
      ASSERT_LE(std::abs(exact), 361);
      const double error = result[static_cast<size_t>(i)] - exact;
      worst = std::max(worst, std::abs(error));
      // Truncation: the exact value lies less than one above the sample.
      worstFloat = std::max(worstFloat, std::abs(exact + 2048 - 0.5 - wide[i]));
      // What rounding the exact value to an integer costs is not the transform's error.
      const double roundingError = result[static_cast<size_t>(i)] - std::round(exact);
      sum += roundingError;
      squares += roundingError * roundingError;
    }
  }
  EXPECT_LE(worst, 1.0);
  EXPECT_LE(worstFloat, 0.51);
  EXPECT_LT(std::abs(sum) / (64.0 * kBlocks), 0.001);
  EXPECT_LT(squares / (64.0 * kBlocks), 0.02);
}

TEST(DctInverse, ReducedSizesAreAccurateToOneUnit) {
  Random random(2);
  for (int round = 0; round < 3000; ++round) {
    const QuantisedBlock block = randomBlock(random, 250, round);
    for (const int size : {2, 4}) {
      const auto subject =
          size == 2 ? &zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R : &zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R;
      uint8_t samples[16];
      ASSERT_EQ(subject(block.coefficients.data(), samples, size, block.steps.data()), StatusOk);
      for (int i = 0; i < size * size; ++i) {
        const double exact = reference::exactInverse(block.exact, i % size, i / size, size);
        EXPECT_LE(std::abs(samples[i] - std::clamp(exact + 128, 0.0, 255.0)), 1.0);
      }
    }
  }
}

TEST(DctInverse, ChecksArgumentsInOrder) {
  int16_t block[64] = {}, other[64] = {};
  uint8_t bytes[64] = {};
  uint16_t table[64] = {}, wide[64] = {};
  float multipliers[64] = {};
  const std::vector order = {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusNullPointer};
  for (const Variant& variant : kVariants) {
    expectArgumentOrder(
        variant.name, order,
        [&](const Faults& f) {
          return variant.subject(f.pointer(0, block), f.pointer(1, bytes), f.value(2, 8, 0), f.pointer(3, table));
        },
        [&] { return std::any_of(bytes, bytes + 64, [](uint8_t b) { return b != 0; }); });
  }
  expectArgumentOrder(
      "zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R", order,
      [&](const Faults& f) {
        return zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(f.pointer(0, block), f.pointer(1, wide), f.value(2, 16, 0),
                                                    f.pointer(3, multipliers));
      },
      [&] { return std::any_of(wide, wide + 64, [](uint16_t b) { return b != 0; }); });
  block[0] = 8;  // not what an inverse would leave there
  const auto written = [&] { return block[0] != 8 || block[1] != 0 || other[0] != 0; };
  expectArgumentOrder(
      "zoriDCTQuantInv8x8_JPEG_16s_C1", {StatusNullPointer, StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantInv8x8_JPEG_16s_C1(f.pointer(0, block), f.pointer(1, other), f.pointer(2, table));
      },
      written);
  expectArgumentOrder(
      "zoriDCTQuantInv8x8_JPEG_16s_C1I", {StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) { return zoriDCTQuantInv8x8_JPEG_16s_C1I(f.pointer(0, block), f.pointer(1, table)); },
      written);
}

}  // namespace
}  // namespace zorj::test
