#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>

#include "reference/sampling.h"
#include "support/arguments.h"
#include "support/rows.h"

namespace zorj::test {
namespace {

using reference::ExtendedPlane;

// Output (x, y) of a source.
using Model = uint8_t (*)(const ExtendedPlane& source, int x, int y);

template <class AnyModel>
void computeModel(const ExtendedPlane& source, const AnyModel& model, uint8_t* dst, int32_t step, RoiSize size) {
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) dst[ptrdiff_t{y} * step + x] = model(source, x, y);
  }
}

uint8_t triangleOfPlane(const ExtendedPlane& source, int x, int y) {
  return reference::triangleH2V2(source, x, y / 2, y % 2 == 0 ? y / 2 - 1 : y / 2 + 1);
}

// ---- Rows

// A row function on one or two source rows.
struct RowCase {
  const char* what;
  int sourceRows;
  StatusCode (*subject)(const uint8_t* const rows[2], int32_t width, uint8_t* dst);
  int (*outputWidth)(int srcWidth);
  Model model;  // sees the source rows of output row y as the rows from sourceRows * y on of one plane
};

int halved(int width) { return (width + 1) / 2; }
int doubled(int width) { return 2 * width; }

constexpr RowCase kRowCases[] = {
    {"zoriSampleDownRowH2V1_Box_JPEG_8u_C1", 1,
     [](const uint8_t* const rows[2], int32_t width, uint8_t* dst) {
       return zoriSampleDownRowH2V1_Box_JPEG_8u_C1(rows[0], width, dst);
     },
     &halved, [](const ExtendedPlane& source, int x, int y) { return reference::boxH2V1(source, x, y, x % 2); }},
    {"zoriSampleDownRowH2V2_Box_JPEG_8u_C1", 2,
     [](const uint8_t* const rows[2], int32_t width, uint8_t* dst) {
       return zoriSampleDownRowH2V2_Box_JPEG_8u_C1(rows[0], rows[1], width, dst);
     },
     &halved, [](const ExtendedPlane& source, int x, int y) { return reference::boxH2V2(source, x, y, 1 + x % 2); }},
    {"zoriSampleUpRowH2V1_Triangle_JPEG_8u_C1", 1,
     [](const uint8_t* const rows[2], int32_t width, uint8_t* dst) {
       return zoriSampleUpRowH2V1_Triangle_JPEG_8u_C1(rows[0], width, dst);
     },
     &doubled, &reference::triangleH2V1},
    {"zoriSampleUpRowH2V2_Triangle_JPEG_8u_C1", 2,
     [](const uint8_t* const rows[2], int32_t width, uint8_t* dst) {
       return zoriSampleUpRowH2V2_Triangle_JPEG_8u_C1(rows[0], rows[1], width, dst);
     },
     &doubled,
     [](const ExtendedPlane& source, int x, int y) { return reference::triangleH2V2(source, x, 2 * y, 2 * y + 1); }},
};

TEST(SamplingRows, EqualModel) {
  for (const RowCase& test : kRowCases) {
    expectRowsEqualModel(
        test.what,
        [&](int width, int height) {
          return std::vector{sourceImage<uint8_t>(width, test.sourceRows * height),
                             destinationImage<uint8_t>(test.outputWidth(width), height)};
        },
        [&](const Operands& o, RoiSize size) {
          for (ptrdiff_t y = 0; y < size.height; ++y) {
            const uint8_t* const first = o.at<uint8_t>(0) + y * test.sourceRows * o.step(0);
            const uint8_t* const rows[2] = {first, test.sourceRows == 2 ? first + o.step(0) : nullptr};
            EXPECT_EQ(test.subject(rows, size.width, o.at<uint8_t>(1) + y * o.step(1)), StatusOk);
          }
        },
        [&](const Operands& o, RoiSize size) {
          computeModel({o.at<uint8_t>(0), o.step(0), size.width, test.sourceRows * size.height}, test.model,
                       o.at<uint8_t>(1), o.step(1), {test.outputWidth(size.width), size.height});
        });
  }
}

TEST(SamplingRows, CheckArgumentsInOrder) {
  const std::array<uint8_t, 4> source = {1, 2, 3, 4};
  for (const RowCase& test : kRowCases) {
    std::array<uint8_t, 8> destination = {};
    const auto pointers = static_cast<size_t>(test.sourceRows) + 1;
    std::vector<StatusCode> order(pointers, StatusNullPointer);
    order.push_back(StatusBadSize);
    expectArgumentOrder(
        test.what, order,
        [&](const Faults& f) {
          const uint8_t* const rows[2] = {f.pointer(0, source.data()), f.pointer(1, source.data())};
          return test.subject(rows, f.value(pointers, 4, 0), f.pointer(pointers - 1, destination.data()));
        },
        [&] { return destination != std::array<uint8_t, 8>{}; });
  }
}

// ---- Planes

using PlaneFunction = StatusCode(ZORJ_CALL*)(const uint8_t*, int32_t, RoiSize, uint8_t*, int32_t, RoiSize);

struct PlaneSizes {
  RoiSize src;
  RoiSize dst;
};

struct PlaneCase {
  const char* what;
  PlaneFunction subject;
  Model model;
  // Sizes of an ordinary call, odd ones among them, whose destination has at least width * height samples.
  PlaneSizes (*sizes)(RoiSize);
  int border = 0;  // samples the caller provides on either side of a source row
};

PlaneSizes downH2V1Sizes(RoiSize size) { return {{2 * size.width - size.width / 2 % 2, size.height}, size}; }
PlaneSizes downH2V2Sizes(RoiSize size) {
  return {{2 * size.width - size.width / 2 % 2, 2 * size.height - size.width / 4 % 2}, size};
}
PlaneSizes upH2V1Sizes(RoiSize size) {
  const int width = std::max(1, 2 * size.width - size.width / 2 % 2);
  return {{(width + 1) / 2, size.height}, {width, size.height}};
}
PlaneSizes upH2V2Sizes(RoiSize size) {
  return {{size.width, (size.height + 1) / 2}, {2 * size.width - size.width / 2 % 2, size.height}};
}

constexpr PlaneCase kDownH2V1 = {
    "zoriSampleDownH2V1_JPEG_8u_C1R", &zoriSampleDownH2V1_JPEG_8u_C1R,
    [](const ExtendedPlane& source, int x, int y) { return reference::boxH2V1(source, x, y, 1); }, &downH2V1Sizes};
constexpr PlaneCase kDownH2V2 = {
    "zoriSampleDownH2V2_JPEG_8u_C1R", &zoriSampleDownH2V2_JPEG_8u_C1R,
    [](const ExtendedPlane& source, int x, int y) { return reference::boxH2V2(source, x, y, 3); }, &downH2V2Sizes};
constexpr PlaneCase kUpH2V1 = {"zoriSampleUpH2V1_JPEG_8u_C1R", &zoriSampleUpH2V1_JPEG_8u_C1R, &reference::triangleH2V1,
                               &upH2V1Sizes, 1};
constexpr PlaneCase kUpH2V2 = {"zoriSampleUpH2V2_JPEG_8u_C1R", &zoriSampleUpH2V2_JPEG_8u_C1R, &triangleOfPlane,
                               &upH2V2Sizes};

std::vector<OperandSpec> operandsOf(const PlaneCase& test, PlaneSizes sizes) {
  return {sourceImage<uint8_t>(sizes.src.width + 2 * test.border, sizes.src.height),
          destinationImage<uint8_t>(sizes.dst.width, sizes.dst.height)};
}

void callSubject(const PlaneCase& test, const Operands& o, PlaneSizes sizes) {
  EXPECT_EQ(test.subject(o.at<uint8_t>(0) + test.border, o.step(0), sizes.src, o.at<uint8_t>(1), o.step(1), sizes.dst),
            StatusOk);
}

void callModel(const PlaneCase& test, const Operands& o, PlaneSizes sizes) {
  // In a bordered source the border is part of the plane and outputs start that much further in.
  const ExtendedPlane source = {o.at<uint8_t>(0), o.step(0), sizes.src.width + 2 * test.border, sizes.src.height};
  const auto model = [&](const ExtendedPlane& plane, int x, int y) {
    return test.model(plane, x + 2 * test.border, y);
  };
  computeModel(source, model, o.at<uint8_t>(1), o.step(1), sizes.dst);
}

TEST(SamplingPlanes, EqualModel) {
  for (const PlaneCase& test : {kDownH2V1, kDownH2V2, kUpH2V1, kUpH2V2}) {
    expectRowsEqualModel(
        test.what,
        [&](int width, int height) {
          return operandsOf(test, test.sizes({width, height}));
        },
        [&](const Operands& o, RoiSize size) { callSubject(test, o, test.sizes(size)); },
        [&](const Operands& o, RoiSize size) { callModel(test, o, test.sizes(size)); });
  }
}

TEST(SamplingPlanes, TheDestinationSizeDrives) {
  Random random(7);
  const auto side = [&](int limit) { return static_cast<int32_t>(random.between(1, limit)); };
  for (const PlaneCase& test : {kDownH2V1, kDownH2V2, kUpH2V2}) {
    for (int round = 0; round < 200; ++round) {
      const PlaneSizes sizes = {{side(300), side(7)}, {side(300), side(7)}};
      expectEqualsModel(
          std::string(test.what) + " of width " + std::to_string(sizes.src.width) + " to " +
              std::to_string(sizes.dst.width),
          operandsOf(test, sizes), static_cast<uint64_t>(round), round,
          [&](const Operands& o) { callSubject(test, o, sizes); },
          [&](const Operands& o) { callModel(test, o, sizes); });
    }
  }
}

TEST(SamplingPlanes, CheckArgumentsInOrder) {
  const std::array<uint8_t, 64> source = {};
  for (const PlaneCase& test : {kDownH2V1, kDownH2V2, kUpH2V1, kUpH2V2}) {
    std::array<uint8_t, 64> destination;
    destination.fill(1);
    const auto untouched = destination;
    expectArgumentOrder(
        test.what,
        {StatusNullPointer, StatusBadStep, StatusBadSize, StatusBadSize, StatusNullPointer, StatusBadStep,
         StatusBadSize, StatusBadSize},
        [&](const Faults& f) {
          return test.subject(f.pointer(0, source.data() + 1), f.value(1, 8, 0),
                              RoiSize{f.value(2, 4, 0), f.value(3, 4, -1)}, f.pointer(4, destination.data()),
                              f.value(5, 8, -8), RoiSize{f.value(6, 4, -1), f.value(7, 4, 0)});
        },
        [&] { return destination != untouched; });
  }
}

// Worked by hand, so that the models have something to answer to.
TEST(Sampling, RoundsAsDocumented) {
  const uint8_t square[2][2] = {{0, 0}, {0, 1}}, pairs[4] = {0, 1, 0, 1}, ramp[2] = {10, 21};
  uint8_t out[4] = {};
  zoriSampleDownH2V2_JPEG_8u_C1R(square[0], 2, {2, 2}, out, 1, {1, 1});
  EXPECT_EQ(out[0], 1);
  zoriSampleDownRowH2V2_Box_JPEG_8u_C1(square[0], square[1], 2, out);
  EXPECT_EQ(out[0], 0);
  zoriSampleDownH2V1_JPEG_8u_C1R(pairs, 4, {4, 1}, out, 2, {2, 1});
  EXPECT_TRUE(out[0] == 1 && out[1] == 1);
  zoriSampleDownRowH2V1_Box_JPEG_8u_C1(pairs, 4, out);
  EXPECT_TRUE(out[0] == 0 && out[1] == 1);
  zoriSampleUpRowH2V1_Triangle_JPEG_8u_C1(ramp, 2, out);
  EXPECT_EQ(std::to_array(out), (std::array<uint8_t, 4>{10, 13, 18, 21}));
}

}  // namespace
}  // namespace zorj::test
