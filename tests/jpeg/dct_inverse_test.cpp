#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "core/unaligned.h"
#include "reference/dct.h"
#include "support/arguments.h"
#include "support/blocks.h"
#include "support/isa_levels.h"

namespace zorj::test {
namespace {

using ToSamples = StatusCode(ZORJ_CALL*)(const int16_t*, uint8_t*, int32_t, const uint16_t*);
using Samples = std::array<uint8_t, 64>;

uint8_t clampedSample(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value + 128, 0, 255)); }

// The dequantised coefficients, those outside the lowest size x size taken as 0.
reference::Block dequantisedBlock(const int16_t* src, const uint16_t* table, int size = 8) {
  reference::Block block{};
  for (int i = 0; i < 64; ++i) {
    if (i / 8 >= size || i % 8 >= size) continue;
    block[i] = reference::dequantised(loadUnaligned(src + i), loadUnaligned(table + i));
  }
  return block;
}

Samples levelShifted(const reference::Block& block) {
  Samples samples;
  std::transform(block.begin(), block.end(), samples.begin(), clampedSample);
  return samples;
}

template <int kSize>
Samples modelFrom(const int16_t* src, const uint16_t* table) {
  return levelShifted(reference::fixedInverse(dequantisedBlock(src, table, kSize)));
}

Samples modelFrom1x1(const int16_t* src, const uint16_t* table) {
  const int product = loadUnaligned(src) * loadUnaligned(table);
  Samples samples;
  samples.fill(clampedSample(reference::wrap16((product >> 3) + 128) - 128));
  return samples;
}

Samples modelTo4x4(const int16_t* src, const uint16_t* table) {
  const reference::Block coefficients = dequantisedBlock(src, table, 4);
  int columns[4][4], row[4];
  for (int x = 0; x < 4; ++x) {
    for (int v = 0; v < 4; ++v) columns[x][v] = coefficients[8 * v + x];
    reference::fourPointInverse(columns[x], 11);
  }
  Samples samples{};
  for (int y = 0; y < 4; ++y) {
    for (int u = 0; u < 4; ++u) row[u] = columns[u][y];
    reference::fourPointInverse(row, 18);
    for (int x = 0; x < 4; ++x) samples[8 * y + x] = clampedSample(row[x]);
  }
  return samples;
}

Samples modelTo2x2(const int16_t* src, const uint16_t* table) {
  const reference::Block c = dequantisedBlock(src, table, 2);
  Samples samples{};
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 2; ++x) {
      const int sum = c[0] + (x == 0 ? c[1] : -c[1]) + (y == 0 ? c[8] : -c[8]) + (x == y ? c[9] : -c[9]);
      samples[8 * y + x] = clampedSample((sum + 4) >> 3);
    }
  }
  return samples;
}

struct SampleFunction {
  const char* name;
  ToSamples function;
  Samples (*model)(const int16_t* src, const uint16_t* table);
  int size;  // of the result
};
constexpr SampleFunction kSampleFunctions[] = {
    {"zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R, &modelFrom<8>, 8},
    {"zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R, &modelFrom<4>, 8},
    {"zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R, &modelFrom<2>, 8},
    {"zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R, &modelFrom1x1, 8},
    {"zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R, &modelTo4x4, 4},
    {"zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R, &modelTo2x2, 2},
};

// Coefficients and steps of any size, or small enough that no stage saturates.
OperandSpec coefficients() {
  return filledWith<int16_t>(sourceArray<int16_t>(64), [](int16_t* values, size_t count, Random& random, int round) {
    fillSamples(values, count, random, round);
    if (round / kFillKinds % 2 == 0) return;
    for (size_t i = 0; i < count; ++i) values[i] = static_cast<int16_t>(values[i] % 256);
  });
}
OperandSpec steps() {
  return filledWith<uint16_t>(sourceArray<uint16_t>(64), [](uint16_t* values, size_t count, Random& random, int round) {
    fillSamples(values, count, random, round / 2);
    if (round / kFillKinds % 2 == 0) return;
    for (size_t i = 0; i < count; ++i) values[i] = static_cast<uint16_t>(random.between(1, 8));
  });
}

TEST(DctInverse, SampleBlocksEqualModel) {
  for (const SampleFunction& f : kSampleFunctions) {
    expectBlocksEqualModel(
        f.name, {coefficients(), destinationImage<uint8_t>(f.size, f.size), steps()},
        [&](const Operands& o) {
          EXPECT_EQ(f.function(o.at<int16_t>(0), o.at<uint8_t>(1), o.step(1), o.at<uint16_t>(2)), StatusOk);
        },
        [&](const Operands& o) {
          const Samples samples = f.model(o.at<int16_t>(0), o.at<uint16_t>(2));
          for (int y = 0; y < f.size; ++y) {
            std::memcpy(o.at<uint8_t>(1) + y * o.step(1), samples.data() + 8 * y, static_cast<size_t>(f.size));
          }
        });
  }
}

TEST(DctInverse, SignedBlocksEqualModel) {
  const auto model = [](const int16_t* src, int16_t* dst, const uint16_t* table) {
    const reference::Block block = reference::fixedInverse(dequantisedBlock(src, table));
    std::memcpy(static_cast<void*>(dst), block.data(), sizeof block);
  };
  expectBlocksEqualModel(
      "zoriDCTQuantInv8x8_JPEG_16s_C1", {coefficients(), destinationArray<int16_t>(64), steps()},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1(o.at<int16_t>(0), o.at<int16_t>(1), o.at<uint16_t>(2)), StatusOk);
      },
      [&](const Operands& o) { model(o.at<int16_t>(0), o.at<int16_t>(1), o.at<uint16_t>(2)); });
  OperandSpec inPlace = coefficients();
  inPlace.role = OperandSpec::Role::kInPlace;
  expectBlocksEqualModel(
      "zoriDCTQuantInv8x8_JPEG_16s_C1I", {inPlace, steps()},
      [](const Operands& o) {
        EXPECT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1I(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk);
      },
      [&](const Operands& o) { model(o.at<int16_t>(0), o.at<int16_t>(0), o.at<uint16_t>(1)); });
}

// A block of rounded coefficients whose samples lie in [low, high], or are one of the two.
reference::Block coefficientsOfSamples(Random& random, int low, int high, bool extreme) {
  reference::ExactBlock samples;
  for (double& s : samples) {
    s = static_cast<double>(extreme ? (random.oneIn(2) ? low : high) : random.between(low, high));
  }
  reference::Block result;
  const reference::ExactBlock exact = reference::exactForward(samples);
  std::transform(exact.begin(), exact.end(), result.begin(),
                 [](double f) { return static_cast<int16_t>(std::lround(f)); });
  return result;
}

reference::ExactBlock widened(const reference::Block& block) {
  reference::ExactBlock result;
  std::copy(block.begin(), block.end(), result.begin());
  return result;
}

// The procedure and limits of IEEE 1180-1990, against the rounded exact inverse.
TEST(DctInverse, IsAsAccurateAsIeee1180Asks) {
  std::array<uint16_t, 64> table;
  table.fill(1);
  constexpr int kBlocks = 10000;
  for (const auto& [low, high] : {std::pair{-256, 255}, {-255, 256}, {-5, 5}, {-300, 300}}) {
    Random random(1);
    std::array<double, 64> sum{}, squares{};
    for (int n = 0; n < kBlocks; ++n) {
      reference::Block block = coefficientsOfSamples(random, low, high, false);
      const reference::ExactBlock exact = reference::exactInverse(widened(block));
      ASSERT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1I(block.data(), table.data()), StatusOk);
      for (size_t i = 0; i < 64; ++i) {
        const double error = block[i] - std::round(exact[i]);
        ASSERT_LE(std::abs(error), 1);
        sum[i] += error / kBlocks;
        squares[i] += error * error / kBlocks;
      }
    }
    double mean = 0, meanSquare = 0;
    for (size_t i = 0; i < 64; ++i) {
      EXPECT_LE(std::abs(sum[i]), 0.015) << "sample " << i;
      EXPECT_LE(squares[i], 0.06) << "sample " << i;
      mean += sum[i] / 64;
      meanSquare += squares[i] / 64;
    }
    EXPECT_LE(std::abs(mean), 0.0015) << "samples from " << low << " to " << high;
    EXPECT_LE(meanSquare, 0.02) << "samples from " << low << " to " << high;
  }
}

TEST(DctInverse, WithinOneOfTheExactInverseInItsRange) {
  std::array<uint16_t, 64> table;
  table.fill(1);
  Random random(3);
  for (int round = 0; round < 2000; ++round) {
    const reference::Block narrow = coefficientsOfSamples(random, -360, 360, round % 2 == 0);
    reference::ExactBlock exact = reference::exactInverse(widened(narrow));
    reference::Block result = narrow;
    ASSERT_EQ(zoriDCTQuantInv8x8_JPEG_16s_C1I(result.data(), table.data()), StatusOk);
    for (size_t i = 0; i < 64; ++i) {
      if (std::abs(exact[i]) > 361) continue;
      ASSERT_LE(std::abs(result[i] - exact[i]), 1) << "sample " << i;
    }

    const reference::Block wide = coefficientsOfSamples(random, -400, 400, round % 2 == 0);
    for (const SampleFunction& f : {kSampleFunctions[0], kSampleFunctions[4], kSampleFunctions[5]}) {
      Samples samples;
      exact = reference::exactInverse(widened(wide), f.size);
      ASSERT_EQ(f.function(wide.data(), samples.data(), 8, table.data()), StatusOk);
      for (int i = 0; i < f.size * f.size; ++i) {
        const int at = 8 * (i / f.size) + i % f.size;
        ASSERT_LE(std::abs(samples[at] - std::clamp(exact[at] + 128, 0.0, 255.0)), 1) << f.name << ", sample " << at;
      }
    }
  }
}

TEST(DctInverse, FloatBlocksAreTheSameAtEveryLevel) {
  const auto table = filledWith<float>(sourceArray<uint32_t>(64), [](float* t, size_t count, Random& random, int round) {
    constexpr float kWild[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1e38f,
                               1e38f};
    for (size_t i = 0; i < count; ++i) {
      t[i] = static_cast<float>(random.between(-1000, 1000)) / 8;
      if (round % 3 == 1 && random.oneIn(16)) t[i] = kWild[random.between(0, 3)];
    }
  });
  const auto call = [](const Operands& o) {
    EXPECT_EQ(zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(o.at<int16_t>(0), o.at<uint16_t>(1), o.step(1), o.at<float>(2)),
              StatusOk);
  };
  expectBlocksEqualModel("zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R",
                         {coefficients(), destinationImage<uint16_t>(8, 8), table}, call, [&](const Operands& o) {
                           setIsa(Isa::kPortable);
                           call(o);
                         });
}

TEST(DctInverse, FloatBlocksTruncateTheExactInverse) {
  std::array<float, 64> table;
  std::array<uint16_t, 64> result;
  Random random(4);
  for (int round = 0; round < 1000; ++round) {
    const reference::Block block = coefficientsOfSamples(random, -2100, 2100, round % 4 == 0);
    reference::ExactBlock exact = widened(block);
    for (size_t i = 0; i < 64; ++i) {
      table[i] = static_cast<float>(random.between(8, 12)) / 10;
      exact[i] *= static_cast<double>(table[i]);
    }
    exact = reference::exactInverse(exact);
    ASSERT_EQ(zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(block.data(), result.data(), 16, table.data()), StatusOk);
    for (size_t i = 0; i < 64; ++i) {
      ASSERT_LE(std::abs(result[i] - std::floor(std::clamp(exact[i] + 2048, 0.0, 4095.0))), 1);
    }
  }
  table.fill(1);
  for (int s = -2048; s < 2048; ++s) {
    const reference::Block flat{static_cast<int16_t>(8 * s)};
    ASSERT_EQ(zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(flat.data(), result.data(), 16, table.data()), StatusOk);
    ASSERT_EQ(std::count(result.begin(), result.end(), s + 2048), 64) << "a flat block loses precision";
  }
}

TEST(DctInverse, FloatConversionSaturatesBySignAndMakesZeroOfNaN) {
  const std::array<int16_t, 64> block{1};
  std::array<uint16_t, 64> result;
  std::array<float, 64> table{};
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  for (const auto& [factor, expected] : {std::pair{1e30f, 4095}, {-1e30f, 0}, {std::nanf(""), 0}, {kInfinity, 4095}}) {
    table[0] = factor;
    forEachIsa([&, f = factor, e = expected](Isa isa) {
      ASSERT_EQ(zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(block.data(), result.data(), 16, table.data()), StatusOk);
      EXPECT_EQ(std::count(result.begin(), result.end(), e), 64) << f << " at " << isaName(isa);
    });
  }
}

template <class Sample, class Factor>
void expectLevelShiftedOrder(const char* what,
                             StatusCode(ZORJ_CALL* function)(const int16_t*, Sample*, int32_t, const Factor*)) {
  const std::array<int16_t, 64> source{1};
  const std::array<Factor, 64> table{1};
  std::array<Sample, 64> samples{};
  expectArgumentOrder(
      what, {StatusNullPointer, StatusNullPointer, StatusBadStep, StatusNullPointer},
      [&](const Faults& f) {
        return function(f.pointer(0, source.data()), f.pointer(1, samples.data()), f.value(2, 8, 0),
                        f.pointer(3, table.data()));
      },
      [&] { return std::count(samples.begin(), samples.end(), 0) != 64; });
}

TEST(DctInverse, ArgumentOrder) {
  for (const SampleFunction& f : kSampleFunctions) expectLevelShiftedOrder(f.name, f.function);
  expectLevelShiftedOrder("zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R", &zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R);
  const std::array<int16_t, 64> source{800};
  const std::array<uint16_t, 64> table{1};
  std::array<int16_t, 64> block{};
  const auto written = [&] { return std::count(block.begin(), block.end(), 0) != 64; };
  expectArgumentOrder(
      "zoriDCTQuantInv8x8_JPEG_16s_C1", {StatusNullPointer, StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantInv8x8_JPEG_16s_C1(f.pointer(0, source.data()), f.pointer(1, block.data()),
                                              f.pointer(2, table.data()));
      },
      written);
  expectArgumentOrder(
      "zoriDCTQuantInv8x8_JPEG_16s_C1I", {StatusNullPointer, StatusNullPointer},
      [&](const Faults& f) {
        return zoriDCTQuantInv8x8_JPEG_16s_C1I(f.pointer(0, block.data()), f.pointer(1, table.data()));
      },
      written);
}

}  // namespace
}  // namespace zorj::test
