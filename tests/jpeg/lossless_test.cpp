#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <climits>
#include <string>
#include <vector>

#include "reference/lossless.h"
#include "support/arguments.h"
#include "support/isa_levels.h"
#include "support/operands.h"
#include "support/samples.h"

namespace zorj::test {
namespace {

using FirstRow = StatusCode(ZORJ_CALL*)(const int16_t*, int16_t*, int32_t, int32_t, int32_t);
using OtherRow = StatusCode(ZORJ_CALL*)(const int16_t*, const int16_t*, int16_t*, int32_t, int32_t);

// The two directions.
struct RowFunctions {
  const char* firstName;
  FirstRow first;
  const char* otherName;
  OtherRow other;
  bool reconstructs;
};
constexpr RowFunctions kDirections[] = {
    {"zoriDiffPredFirstRow_JPEG_16s_C1", &zoriDiffPredFirstRow_JPEG_16s_C1, "zoriDiffPredRow_JPEG_16s_C1",
     &zoriDiffPredRow_JPEG_16s_C1, false},
    {"zoriReconstructPredFirstRow_JPEG_16s_C1", &zoriReconstructPredFirstRow_JPEG_16s_C1,
     "zoriReconstructPredRow_JPEG_16s_C1", &zoriReconstructPredRow_JPEG_16s_C1, true},
};

int16_t at(const int16_t* row, int x) {
  int16_t sample;
  std::memcpy(&sample, reinterpret_cast<const uint8_t*>(row) + 2 * ptrdiff_t{x}, sizeof sample);
  return sample;
}

// Column after column, reading and writing memory as they come, so that rows may overlap. `first` predicts column 0.
void modelRow(bool reconstructs, const int16_t* src, const int16_t* above, int16_t* dst, int width, int predictor,
              int first) {
  for (int x = 0; x < width; ++x) {
    const int16_t* const samples = reconstructs ? dst : src;
    const int prediction =
        x == 0 ? first : reference::prediction(predictor, at(samples, x - 1), at(above, x), at(above, x - 1));
    const auto result = static_cast<int16_t>(reconstructs ? at(src, x) + prediction : at(src, x) - prediction);
    std::memcpy(reinterpret_cast<uint8_t*>(dst) + 2 * ptrdiff_t{x}, &result, sizeof result);
  }
}

std::vector<int> widths() {
  std::vector<int> all = {511, 1000};
  for (int width = 1; width <= 130; ++width) all.push_back(width);
  return all;
}

TEST(Lossless, RowsEqualModel) {
  for (const RowFunctions& functions : kDirections) {
    for (int predictor = 1; predictor <= 7; ++predictor) {
      for (const int width : widths()) {
        expectEqualsModel(
            std::string(functions.otherName) + " of predictor " + std::to_string(predictor) + ", width " +
                std::to_string(width),
            {sourceArray<int16_t>(width), sourceArray<int16_t>(width), destinationArray<int16_t>(width)},
            static_cast<uint64_t>(width), width,
            [&](const Operands& o) {
              EXPECT_EQ(functions.other(o.at<int16_t>(0), o.at<int16_t>(1), o.at<int16_t>(2), width, predictor),
                        StatusOk);
            },
            [&](const Operands& o) {
              modelRow(functions.reconstructs, o.at<int16_t>(0), o.at<int16_t>(1), o.at<int16_t>(2), width, predictor,
                       at(o.at<int16_t>(1), 0));
            });
      }
    }
  }
}

TEST(Lossless, FirstRowsEqualModel) {
  for (const RowFunctions& functions : kDirections) {
    for (const int width : widths()) {
      // Point transforms from none to beyond the precision and round the shift count.
      const int precision = 2 + width % 15, pointTransform = width % 3 == 0 ? width : width % 16;
      expectEqualsModel(
          std::string(functions.firstName) + " of width " + std::to_string(width),
          {sourceArray<int16_t>(width), destinationArray<int16_t>(width)}, static_cast<uint64_t>(width), width,
          [&](const Operands& o) {
            EXPECT_EQ(functions.first(o.at<int16_t>(0), o.at<int16_t>(1), width, precision, pointTransform), StatusOk);
          },
          [&](const Operands& o) {
            modelRow(functions.reconstructs, o.at<int16_t>(0), o.at<int16_t>(0), o.at<int16_t>(1), width, 1,
                     reference::firstPrediction(precision, pointTransform));
          });
    }
  }
}

// Where the rows overlap, predictors 2 and 3 work column after column; offsets are in bytes, odd ones too.
TEST(Lossless, OverlappingRowsGoInOrder) {
  constexpr int kWidth = 200, kMiddle = 600;
  Random random(5);
  std::array<uint8_t, 2 * kMiddle + 2 * kWidth> memory;
  fillSamples(memory.data(), memory.size(), random, 0);
  for (const RowFunctions& functions : kDirections) {
    for (const int predictor : {2, 3}) {
      for (const bool overlapsAbove : {false, true}) {
        for (const int offset : {-2 * kWidth, -65, -64, -2, -1, 0, 1, 2, 3, 30, 64, 2 * kWidth - 1, 2 * kWidth}) {
          const auto run = [&](const auto& call) {
            auto copy = memory;
            auto* const dst = reinterpret_cast<int16_t*>(copy.data() + kMiddle);
            const auto* const overlapping = reinterpret_cast<const int16_t*>(copy.data() + kMiddle + offset);
            const auto* const apart = reinterpret_cast<const int16_t*>(memory.data());
            call(overlapsAbove ? apart : overlapping, overlapsAbove ? overlapping : apart, dst);
            return copy;
          };
          const auto expected = run([&](const int16_t* src, const int16_t* above, int16_t* dst) {
            modelRow(functions.reconstructs, src, above, dst, kWidth, predictor, at(above, 0));
          });
          forEachIsa([&](Isa isa) {
            const auto actual = run([&](const int16_t* src, const int16_t* above, int16_t* dst) {
              EXPECT_EQ(functions.other(src, above, dst, kWidth, predictor), StatusOk);
            });
            EXPECT_EQ(actual, expected) << functions.otherName << " of predictor " << predictor << " at "
                                        << isaName(isa) << ", offset " << offset;
          });
        }
      }
    }
  }
}

TEST(Lossless, CheckArgumentsInOrder) {
  const std::array<int16_t, 4> source = {1, 2, 3, 4};
  std::array<int16_t, 4> destination = {};
  const auto written = [&] { return destination != std::array<int16_t, 4>{}; };
  for (const RowFunctions& functions : kDirections) {
    for (const int bad : {0, 8, -1, INT_MAX}) {
      expectArgumentOrder(
          functions.otherName,
          {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadSize, StatusBadArgument},
          [&](const Faults& f) {
            return functions.other(f.pointer(0, source.data()), f.pointer(1, source.data()),
                                   f.pointer(2, destination.data()), f.value(3, 4, 0), f.value(4, 7, bad));
          },
          written);
    }
    for (const int bad : {1, 17, INT_MIN}) {
      expectArgumentOrder(
          functions.firstName,
          {StatusNullPointer, StatusNullPointer, StatusBadSize, StatusBadArgument, StatusBadArgument},
          [&](const Faults& f) {
            return functions.first(f.pointer(0, source.data()), f.pointer(1, destination.data()), f.value(2, 4, -4),
                                   f.value(3, 16, bad), f.value(4, 0, -1));
          },
          written);
    }
  }
}

// Worked by hand, so that the model has something to answer to.
TEST(Lossless, PredictsAsDocumented) {
  const auto bits = [](int value) { return static_cast<int16_t>(value); };
  const std::array<int16_t, 2> above = {0, 0}, row = {bits(40000), 0}, ones = {-1, -1}, zeroThenOnes = {0, -1};
  std::array<int16_t, 2> out;
  zoriDiffPredRow_JPEG_16s_C1(row.data(), above.data(), out.data(), 2, 7);
  EXPECT_EQ(out[1], bits(0 - 52768));
  zoriDiffPredRow_JPEG_16s_C1(ones.data(), zeroThenOnes.data(), out.data(), 2, 4);
  EXPECT_EQ(out[1], bits(65535 - 65534));
  zoriDiffPredFirstRow_JPEG_16s_C1(above.data(), out.data(), 2, 8, 2);
  EXPECT_EQ(out, (std::array<int16_t, 2>{-32, 0}));
  zoriDiffPredFirstRow_JPEG_16s_C1(above.data(), out.data(), 2, 8, INT_MAX);
  EXPECT_EQ(out[0], -256);  // a shift by 8 - (2^31 - 1) - 1, which is 8 modulo 32
}

}  // namespace
}  // namespace zorj::test
