#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>

#include "reference/sampling.h"
#include "support/arguments.h"
#include "support/blocks.h"
#include "support/isa_levels.h"

namespace zorj::test {
namespace {

using reference::ChromaSharing;
using Down = StatusCode(ZORJ_CALL*)(const uint8_t*, int32_t, int16_t* const[3]);
using Up = StatusCode(ZORJ_CALL*)(const int16_t* const[3], uint8_t*, int32_t);

struct McuCase {
  ChromaSharing sharing;
  const char* downName;
  Down down;
  const char* upName;
  Up up;
};

constexpr McuCase kCases[] = {
    {{1, 1},
     "zoriSampleDown444LS_MCU_8u16s_C3P3R",
     &zoriSampleDown444LS_MCU_8u16s_C3P3R,
     "zoriSampleUp444LS_MCU_16s8u_P3C3R",
     &zoriSampleUp444LS_MCU_16s8u_P3C3R},
    {{2, 1},
     "zoriSampleDown422LS_MCU_8u16s_C3P3R",
     &zoriSampleDown422LS_MCU_8u16s_C3P3R,
     "zoriSampleUp422LS_MCU_16s8u_P3C3R",
     &zoriSampleUp422LS_MCU_16s8u_P3C3R},
    {{2, 2},
     "zoriSampleDown411LS_MCU_8u16s_C3P3R",
     &zoriSampleDown411LS_MCU_8u16s_C3P3R,
     "zoriSampleUp411LS_MCU_16s8u_P3C3R",
     &zoriSampleUp411LS_MCU_16s8u_P3C3R},
};

void modelDown(ChromaSharing sharing, const uint8_t* pixels, int32_t step, int16_t* const mcu[3]) {
  for (int plane = 0; plane < 3; ++plane) {
    const int width = plane == 0 ? sharing.pixelsAcross() : 8, height = plane == 0 ? sharing.pixelsDown() : 8;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        mcu[plane][sharing.offset(plane, x, y)] = reference::mcuSampleDown(sharing, pixels, step, plane, x, y);
      }
    }
  }
}

void modelUp(ChromaSharing sharing, const int16_t* const mcu[3], uint8_t* pixels, int32_t step) {
  for (int y = 0; y < sharing.pixelsDown(); ++y, pixels += step) {
    uint8_t* channel = pixels;
    for (int x = 0; x < sharing.pixelsAcross(); ++x) {
      for (int plane = 0; plane < 3; ++plane) {
        *channel++ = reference::mcuSampleUp(sharing, mcu[plane], plane, x, y);
      }
    }
  }
}

TEST(McuSampling, DownEqualsModel) {
  for (const McuCase& test : kCases) {
    const std::vector operands = {sourceImage<uint8_t>(3 * test.sharing.pixelsAcross(), test.sharing.pixelsDown()),
                                  destinationArray<int16_t>(test.sharing.samples(0)), destinationArray<int16_t>(64),
                                  destinationArray<int16_t>(64)};
    const auto blocks = [](const Operands& o) {
      return std::array{o.at<int16_t>(1), o.at<int16_t>(2), o.at<int16_t>(3)};
    };
    expectBlocksEqualModel(
        test.downName, operands,
        [&](const Operands& o) { EXPECT_EQ(test.down(o.at<uint8_t>(0), o.step(0), blocks(o).data()), StatusOk); },
        [&](const Operands& o) { modelDown(test.sharing, o.at<uint8_t>(0), o.step(0), blocks(o).data()); });
  }
}

TEST(McuSampling, UpEqualsModel) {
  for (const McuCase& test : kCases) {
    const std::vector operands = {
        sourceArray<int16_t>(test.sharing.samples(0)), sourceArray<int16_t>(64), sourceArray<int16_t>(64),
        destinationImage<uint8_t>(3 * test.sharing.pixelsAcross(), test.sharing.pixelsDown())};
    const auto blocks = [](const Operands& o) {
      return std::array<const int16_t*, 3>{o.at<int16_t>(0), o.at<int16_t>(1), o.at<int16_t>(2)};
    };
    const auto nearRange = [](int16_t* samples, size_t count, Random& random, int) {
      for (size_t i = 0; i < count; ++i) samples[i] = static_cast<int16_t>(random.between(-200, 200));
    };
    auto operandsNearRange = operands;
    for (size_t plane = 0; plane < 3; ++plane) {
      operandsNearRange[plane] = filledWith<int16_t>(operands[plane], nearRange);
    }
    for (const auto& specs : {operands, operandsNearRange}) {
      expectBlocksEqualModel(
          test.upName, specs,
          [&](const Operands& o) { EXPECT_EQ(test.up(blocks(o).data(), o.at<uint8_t>(3), o.step(3)), StatusOk); },
          [&](const Operands& o) { modelUp(test.sharing, blocks(o).data(), o.at<uint8_t>(3), o.step(3)); });
    }
  }
}

// Down and up again of pixels whose chroma is constant in every MCU gives the same pixels, blocks at odd addresses.
TEST(McuSampling, BlocksMayLieAtOddAddresses) {
  alignas(2) uint8_t memory[3][2 * 256 + 2];
  std::array<int16_t*, 3> mcu;
  for (size_t plane = 0; plane < 3; ++plane) mcu[plane] = reinterpret_cast<int16_t*>(memory[plane] + 1);
  std::array<uint8_t, 768> pixels, result = {};
  Random random(3);
  for (size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = static_cast<uint8_t>(i % 3 == 0 ? random.next() : 70 * (i % 3));
  for (const McuCase& test : kCases) {
    const int32_t step = 3 * test.sharing.pixelsAcross();
    const auto bytes = static_cast<ptrdiff_t>(step) * test.sharing.pixelsDown();
    forEachIsa([&](Isa isa) {
      result.fill(0);
      EXPECT_EQ(test.down(pixels.data(), step, mcu.data()), StatusOk);
      EXPECT_EQ(test.up(mcu.data(), result.data(), step), StatusOk);
      EXPECT_TRUE(std::equal(pixels.begin(), pixels.begin() + bytes, result.begin())) << test.upName << isaName(isa);
    });
  }
}

TEST(McuSampling, CheckArgumentsInOrder) {
  const std::vector order = {StatusNullPointer, StatusNullPointer, StatusBadStep,
                             StatusNullPointer, StatusNullPointer, StatusNullPointer};
  std::array<int16_t, 256> blocks = {};
  std::array<uint8_t, 768> pixels = {};
  const auto unchanged = [&] { return blocks == decltype(blocks){} && pixels == decltype(pixels){}; };
  const auto planes = [&](const Faults& f) {
    return std::array{f.pointer(3, blocks.data()), f.pointer(4, blocks.data()), f.pointer(5, blocks.data())};
  };
  for (const McuCase& test : kCases) {
    expectArgumentOrder(
        test.downName, order,
        [&](const Faults& f) {
          const auto mcu = planes(f);
          return test.down(f.pointer(0, pixels.data()), f.value(2, 48, 0), f.pointer(1, mcu.data()));
        },
        [&] { return !unchanged(); });
    expectArgumentOrder(
        test.upName, order,
        [&](const Faults& f) {
          const auto mcu = planes(f);
          return test.up(f.pointer(0, mcu.data()), f.pointer(1, pixels.data()), f.value(2, 48, -1));
        },
        [&] { return !unchanged(); });
  }
}

}  // namespace
}  // namespace zorj::test
