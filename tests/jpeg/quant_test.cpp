#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <numeric>

#include "jpeg/dct_support.h"
#include "support/arguments.h"
#include "support/blocks.h"

namespace zorj::test {
namespace {

using reference::Block;
using reference::Steps;

// Natural position of each zig-zag index, walked along the diagonals.
std::array<size_t, 64> zigZagWalk() {
  std::array<size_t, 64> natural;
  int x = 0, y = 0;
  for (size_t& position : natural) {
    position = static_cast<size_t>(8 * y + x);
    const bool up = (x + y) % 2 == 0;
    if (up ? x == 7 : y < 7 && x == 0) {
      ++y;
    } else if (up ? y == 0 : y == 7) {
      ++x;
    } else {
      x += up ? 1 : -1;
      y += up ? -1 : 1;
    }
  }
  return natural;
}

TEST(QuantTables, AreInNaturalOrderWithReciprocals) {
  const auto natural = zigZagWalk();
  EXPECT_EQ(natural[2], 8u);
  for (int first = 0; first < 256; first += 61) {
    uint8_t raw[64];
    for (int i = 0; i < 64; ++i) raw[i] = static_cast<uint8_t>(first + i);
    const bool hasZero = std::find(raw, raw + 64, 0) != raw + 64;
    Steps forward, inverse;
    EXPECT_EQ(zoriQuantFwdTableInit_JPEG_8u16u(raw, forward.data()), hasZero ? StatusDivideByZero : StatusOk);
    EXPECT_EQ(zoriQuantInvTableInit_JPEG_8u16u(raw, inverse.data()), StatusOk);
    for (size_t i = 0; i < 64; ++i) {
      EXPECT_EQ(inverse[natural[i]], raw[i]);
      EXPECT_EQ(forward[natural[i]], raw[i] == 0 ? 0xFFFF : std::lround(32768.0 / raw[i]));
    }
  }
}

TEST(QuantTables, ScaleByQuality) {
  for (const int quality : {1, 2, 10, 49, 50, 51, 75, 99, 100, 101, 1000, INT32_MAX}) {
    uint8_t table[64];
    std::iota(table, table + 64, uint8_t{0});
    table[63] = 255;
    uint8_t scaled[64];
    std::copy_n(table, 64, scaled);
    ASSERT_EQ(zoriQuantFwdRawTableInit_JPEG_8u(scaled, quality), StatusOk);
    const double percent = quality < 50 ? std::floor(5000.0 / quality) : 200.0 - 2.0 * quality;
    for (int i = 0; i < 64; ++i) {
      EXPECT_EQ(scaled[i], std::clamp(std::trunc((table[i] * percent + 50) / 100), 1.0, 255.0)) << quality;
    }
  }
}

TEST(QuantBlocks, EqualModel) {
  expectBlocksEqualModel(
      "zoriQuantFwd8x8_JPEG_16s_C1I", {inPlaceArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) { EXPECT_EQ(zoriQuantFwd8x8_JPEG_16s_C1I(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk); },
      [](const Operands& o) {
        Block block = loadArray<Block>(o, 0);
        const Steps table = loadArray<Steps>(o, 1);
        for (size_t i = 0; i < 64; ++i) {
          const int scaled = reference::wrapped(8 * block[i]);
          block[i] = static_cast<int16_t>(std::floor((reference::mulhi(scaled, table[i] / 2) + 1) / 2.0));
        }
        storeArray(o, 0, block);
      });
  expectBlocksEqualModel(
      "zoriQuantInv8x8_JPEG_16s_C1I", {inPlaceArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [](const Operands& o) { EXPECT_EQ(zoriQuantInv8x8_JPEG_16s_C1I(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk); },
      [](const Operands& o) {
        storeArray(o, 0, reference::dequantised(loadArray<Block>(o, 0), loadArray<Steps>(o, 1)));
      });
}

TEST(Quant, ChecksArgumentsInOrder) {
  uint8_t raw[64] = {};
  Steps table{};
  Block block{};
  const auto written = [&] { return raw[0] != 0 || table != Steps{} || block != Block{}; };
  expectArgumentOrder(
      "zoriQuantFwdRawTableInit_JPEG_8u", {StatusNullPointer, StatusBadArgument},
      [&](const Faults& f) { return zoriQuantFwdRawTableInit_JPEG_8u(f.pointer(0, raw), f.value(1, 50, 0)); }, written);
  const auto expectNullChecks = [&](const char* what, const auto& call) {
    expectArgumentOrder(what, {StatusNullPointer, StatusNullPointer}, call, written);
  };
  expectNullChecks("zoriQuantFwdTableInit_JPEG_8u16u", [&](const Faults& f) {
    return zoriQuantFwdTableInit_JPEG_8u16u(f.pointer(0, raw), f.pointer(1, table.data()));
  });
  expectNullChecks("zoriQuantInvTableInit_JPEG_8u16u", [&](const Faults& f) {
    return zoriQuantInvTableInit_JPEG_8u16u(f.pointer(0, raw), f.pointer(1, table.data()));
  });
  expectNullChecks("zoriQuantFwd8x8_JPEG_16s_C1I", [&](const Faults& f) {
    return zoriQuantFwd8x8_JPEG_16s_C1I(f.pointer(0, block.data()), f.pointer(1, table.data()));
  });
  expectNullChecks("zoriQuantInv8x8_JPEG_16s_C1I", [&](const Faults& f) {
    return zoriQuantInv8x8_JPEG_16s_C1I(f.pointer(0, block.data()), f.pointer(1, table.data()));
  });
}

}  // namespace
}  // namespace zorj::test
