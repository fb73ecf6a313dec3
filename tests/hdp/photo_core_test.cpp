#include <gtest/gtest.h>
#include <zorj.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

#include "reference/photo_core.h"
#include "support/arguments.h"
#include "support/blocks.h"
#include "support/isa_levels.h"
#include "support/samples.h"

namespace zorj::test {
namespace {

using FixedRegion = StatusCode(ZORJ_CALL*)(int32_t*, int32_t);
using AnyRegion = StatusCode(ZORJ_CALL*)(int32_t*, int32_t, int32_t, int32_t);
using BlockModel = void (*)(reference::PhotoBlock&);

struct FixedCase {
  const char* name;
  FixedRegion function;
  BlockModel model;
  int width, height;
};
constexpr FixedCase kFixed[] = {
    {"zoriPCTFwd16x16_HDP_32s_C1IR", &zoriPCTFwd16x16_HDP_32s_C1IR, &reference::forwardPhotoCore, 16, 16},
    {"zoriPCTFwd8x16_HDP_32s_C1IR", &zoriPCTFwd8x16_HDP_32s_C1IR, &reference::forwardPhotoCore, 8, 16},
    {"zoriPCTFwd8x8_HDP_32s_C1IR", &zoriPCTFwd8x8_HDP_32s_C1IR, &reference::forwardPhotoCore, 8, 8},
    {"zoriPCTInv16x16_HDP_32s_C1IR", &zoriPCTInv16x16_HDP_32s_C1IR, &reference::inversePhotoCore, 16, 16},
    {"zoriPCTInv8x16_HDP_32s_C1IR", &zoriPCTInv8x16_HDP_32s_C1IR, &reference::inversePhotoCore, 8, 16},
    {"zoriPCTInv8x8_HDP_32s_C1IR", &zoriPCTInv8x8_HDP_32s_C1IR, &reference::inversePhotoCore, 8, 8},
};

struct AnyCase {
  const char* name;
  AnyRegion function;
  BlockModel model;
};
constexpr AnyCase kAny[] = {
    {"zoriPCTFwd_HDP_32s_C1IR", &zoriPCTFwd_HDP_32s_C1IR, &reference::forwardPhotoCore},
    {"zoriPCTInv_HDP_32s_C1IR", &zoriPCTInv_HDP_32s_C1IR, &reference::inversePhotoCore},
};

OperandSpec region(int width, int height) {
  return detail::operandSpec<int32_t>(OperandSpec::Role::kInPlace, width, height, true);
}

// Every block of a region whose row y, of `height`, lies in row rowOf(y) of the operand.
template <class RowOf>
void modelRegion(const Operands& o, int width, int height, BlockModel model, const RowOf& rowOf) {
  for (int y = 0; y < height; y += 4) {
    for (int x = 0; x < width; x += 4) {
      reference::PhotoBlock block;
      for (int i = 0; i < 16; ++i) {
        block[static_cast<size_t>(i)] = reference::Wrapping::of(sampleAt<int32_t>(o, 0, x + i % 4, rowOf(y + i / 4)));
      }
      model(block);
      for (int i = 0; i < 16; ++i) {
        storeSample(o, 0, x + i % 4, rowOf(y + i / 4), static_cast<int32_t>(block[static_cast<size_t>(i)].value()));
      }
    }
  }
}

TEST(PhotoCore, FixedRegionsEqualModel) {
  for (const FixedCase& test : kFixed) {
    expectBlocksEqualModel(
        test.name, {region(test.width, test.height)},
        [&](const Operands& o) { EXPECT_EQ(test.function(o.at<int32_t>(0), o.step(0)), StatusOk); },
        [&](const Operands& o) { modelRegion(o, test.width, test.height, test.model, [](int y) { return y; }); });
  }
}

TEST(PhotoCore, RegionsOfAllSizesEqualModelInBothDirections) {
  for (const AnyCase& test : kAny) {
    for (int width = 4; width <= 80; width += 4) {
      for (const int height : {4, 8, 12, 20}) {
        for (const bool upwards : {false, true}) {
          expectEqualsModel(
              std::string(test.name) + " of " + std::to_string(width) + " x " + std::to_string(height) +
                  (upwards ? ", upwards" : ""),
              {region(width, height)}, static_cast<uint64_t>(width), width / 4 + height / 4,
              [&](const Operands& o) {
                const ptrdiff_t first = upwards ? ptrdiff_t{height - 1} * o.step(0) : 0;
                auto* const samples = reinterpret_cast<int32_t*>(o.at<uint8_t>(0) + first);
                EXPECT_EQ(test.function(samples, upwards ? -o.step(0) : o.step(0), width, height), StatusOk);
              },
              [&](const Operands& o) {
                modelRegion(o, width, height, test.model, [=](int y) { return upwards ? height - 1 - y : y; });
              });
        }
      }
    }
  }
}

TEST(PhotoCore, InverseRestoresAnyBlock) {
  Random random(9);
  forEachIsa([&](Isa isa) {
    for (int round = 0; round < 100; ++round) {
      std::array<int32_t, 256> original;
      fillSamples(original.data(), original.size(), random, round);
      auto samples = original;
      zoriPCTFwd16x16_HDP_32s_C1IR(samples.data(), 64);
      EXPECT_NE(samples, original);
      zoriPCTInv16x16_HDP_32s_C1IR(samples.data(), 64);
      EXPECT_EQ(samples, original) << isaName(isa) << ", round " << round;
    }
  });
}

TEST(PhotoCore, CheckArgumentsInOrder) {
  std::array<int32_t, 256> samples = {};
  samples[5] = 1;
  const auto untouched = samples;
  const auto written = [&] { return samples != untouched; };
  for (const FixedCase& test : kFixed) {
    for (const int32_t badStep : {0, 4 * test.width - 1}) {
      expectArgumentOrder(
          test.name, {StatusNullPointer, StatusBadStep},
          [&](const Faults& faults) {
            return test.function(faults.pointer(0, samples.data()), faults.value(1, 64, badStep));
          },
          written);
    }
  }
  for (const AnyCase& test : kAny) {
    expectArgumentOrder(
        test.name, {StatusNullPointer, StatusBadSize, StatusBadSize, StatusBadStep, StatusBadSize, StatusBadSize},
        [&](const Faults& faults) {
          const int32_t width = faults.value(1, faults.value(4, 8, 6), 0);
          const int32_t height = faults.value(2, faults.value(5, 8, 7), -4);
          return test.function(faults.pointer(0, samples.data()), faults.value(3, 64, 8), width, height);
        },
        written);
    // The size of a row is not taken modulo 2^32, and a negative step is a large one.
    EXPECT_EQ(test.function(samples.data(), 64, 0x40000004, 4), StatusBadStep);
    EXPECT_EQ(test.function(samples.data(), -1, INT_MAX, 4), StatusBadStep);
    EXPECT_EQ(test.function(samples.data(), INT_MIN, 0x1FFFFFFF, 4), StatusBadSize);
  }
}

// Worked by hand, so that the model has something to answer to.
TEST(PhotoCore, TransformsAsDocumented) {
  std::array<int32_t, 16> ramp, flat;
  for (size_t i = 0; i < 16; ++i) ramp[i] = static_cast<int32_t>(i);
  flat.fill(10);
  zoriPCTFwd_HDP_32s_C1IR(ramp.data(), 16, 4, 4);
  zoriPCTFwd_HDP_32s_C1IR(flat.data(), 16, 4, 4);
  EXPECT_EQ(ramp, (std::array<int32_t, 16>{30, 0, -17, 0, 0, 0, 0, -2, -4, 0, 0, 0, 0, -1, 0, 0}));
  EXPECT_EQ(flat, (std::array<int32_t, 16>{40}));
}

}  // namespace
}  // namespace zorj::test
