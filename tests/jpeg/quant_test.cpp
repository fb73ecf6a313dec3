#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "core/unaligned.h"
#include "reference/quant.h"
#include "support/arguments.h"
#include "support/blocks.h"

namespace zorj::test {
namespace {

std::array<uint8_t, 64> rawTable(int first) {
  std::array<uint8_t, 64> table;
  std::iota(table.begin(), table.end(), static_cast<uint8_t>(first));
  return table;
}

TEST(QuantTable, QualityScalesEveryStep) {
  for (int quality : {1, 2, 10, 49, 50, 51, 75, 99, 100, 101, 1000, 0x7FFFFFFF}) {
    for (int first : {0, 64, 128, 192}) {
      auto table = rawTable(first);
      ASSERT_EQ(zoriQuantFwdRawTableInit_JPEG_8u(table.data(), quality), StatusOk);
      for (int i = 0; i < 64; ++i) {
        ASSERT_EQ(table[i], reference::scaledStep(static_cast<uint8_t>(first + i), quality)) << quality;
      }
    }
  }
}

TEST(QuantTable, WorkingTablesAreInNaturalOrder) {
  for (int first : {1, 64, 128, 192}) {
    const auto raw = rawTable(first);
    std::array<uint16_t, 64> forward, inverse;
    ASSERT_EQ(zoriQuantFwdTableInit_JPEG_8u16u(raw.data(), forward.data()), StatusOk);
    ASSERT_EQ(zoriQuantInvTableInit_JPEG_8u16u(raw.data(), inverse.data()), StatusOk);
    for (int i = 0; i < 64; ++i) {
      EXPECT_EQ(forward[i], reference::reciprocal(raw[reference::kZigZag[i]]));
      EXPECT_EQ(inverse[i], raw[reference::kZigZag[i]]);
    }
  }
}

TEST(QuantTable, ZeroStepIsAWarningAndTheTableComplete) {
  const auto raw = rawTable(0);
  std::array<uint16_t, 64> forward, inverse;
  EXPECT_EQ(zoriQuantFwdTableInit_JPEG_8u16u(raw.data(), forward.data()), StatusDivideByZero);
  EXPECT_EQ(zoriQuantInvTableInit_JPEG_8u16u(raw.data(), inverse.data()), StatusOk);
  EXPECT_EQ(forward[0], 0xFFFF);
  EXPECT_EQ(forward[63], reference::reciprocal(63));
  EXPECT_EQ(inverse[0], 0);
}

void expectQuantEqualsModel(const char* what, StatusCode(ZORJ_CALL* subject)(int16_t*, const uint16_t*),
                            int16_t (*model)(int16_t, uint16_t)) {
  expectBlocksEqualModel(
      what, {inPlaceArray<int16_t>(64), sourceArray<uint16_t>(64)},
      [&](const Operands& o) { EXPECT_EQ(subject(o.at<int16_t>(0), o.at<uint16_t>(1)), StatusOk); },
      [&](const Operands& o) {
        for (int i = 0; i < 64; ++i) {
          int16_t* const value = o.at<int16_t>(0) + i;
          storeUnaligned(value, model(loadUnaligned(value), loadUnaligned(o.at<uint16_t>(1) + i)));
        }
      });
}

TEST(Quant, BlocksEqualModel) {
  expectQuantEqualsModel("zoriQuantFwd8x8_JPEG_16s_C1I", &zoriQuantFwd8x8_JPEG_16s_C1I, &reference::quantised);
  expectQuantEqualsModel("zoriQuantInv8x8_JPEG_16s_C1I", &zoriQuantInv8x8_JPEG_16s_C1I, &reference::dequantised);
}

TEST(Quant, ArgumentOrder) {
  std::array<uint8_t, 64> raw{};
  std::array<uint16_t, 64> table{};
  std::array<int16_t, 64> block{};
  const auto written = [&] {
    return std::count(table.begin(), table.end(), 0) + std::count(block.begin(), block.end(), 0) +
               std::count(raw.begin(), raw.end(), 0) !=
           192;
  };
  expectArgumentOrder(
      "zoriQuantFwdRawTableInit_JPEG_8u", {StatusNullPointer, StatusBadArgument},
      [&](const Faults& f) { return zoriQuantFwdRawTableInit_JPEG_8u(f.pointer(0, raw.data()), f.value(1, 50, 0)); },
      written);
  for (const auto function : {&zoriQuantFwdTableInit_JPEG_8u16u, &zoriQuantInvTableInit_JPEG_8u16u}) {
    expectArgumentOrder(
        "a working table's initialiser", {StatusNullPointer, StatusNullPointer},
        [&](const Faults& f) { return function(f.pointer(0, raw.data()), f.pointer(1, table.data())); }, written);
  }
  for (const auto function : {&zoriQuantFwd8x8_JPEG_16s_C1I, &zoriQuantInv8x8_JPEG_16s_C1I}) {
    expectArgumentOrder(
        "a block's quantisation", {StatusNullPointer, StatusNullPointer},
        [&](const Faults& f) { return function(f.pointer(0, block.data()), f.pointer(1, table.data())); }, written);
  }
}

}  // namespace
}  // namespace zorj::test
