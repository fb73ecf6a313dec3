#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>

#include "reference/level_shift.h"
#include "support/arguments.h"
#include "support/rows.h"
#include "support/samples.h"

namespace zorj::test {
namespace {

// Applies a function of one sample to every sample of operand 0, into operand 1.
template <class Source, class Destination>
void mapSamples(const Operands& o, RoiSize size, Destination (*model)(Source)) {
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      storeSample(o, 1, x, y, model(sampleAt<Source>(o, 0, x, y)));
    }
  }
}

template <class Source, class Destination>
void expectLevelShift(const char* what,
                      StatusCode(ZORJ_CALL* subject)(const Source*, int32_t, Destination*, int32_t, RoiSize),
                      Destination (*model)(Source)) {
  expectRowsEqualModel(
      what,
      [](int width, int height) {
        return std::vector{sourceImage<Source>(width, height), destinationImage<Destination>(width, height)};
      },
      [&](const Operands& o, RoiSize size) {
        EXPECT_EQ(subject(o.at<Source>(0), o.step(0), o.at<Destination>(1), o.step(1), size), StatusOk);
      },
      [&](const Operands& o, RoiSize size) { mapSamples(o, size, model); });

  const Source source[4] = {};
  Destination destination[4] = {};
  const auto written = [&] { return std::count(destination, destination + 4, Destination{}) != 4; };
  expectArgumentOrder(
      what, {StatusNullPointer, StatusBadStep, StatusNullPointer, StatusBadStep, StatusBadSize, StatusBadSize},
      [&](const Faults& f) {
        return subject(f.pointer(0, source), f.value(1, 4, 0), f.pointer(2, destination), f.value(3, 4, -4),
                       RoiSize{f.value(4, 2, 0), f.value(5, 1, -1)});
      },
      written);
}

TEST(LevelShift, SubtractEqualsModel) {
  expectLevelShift("zoriSub128_JPEG_8u16s_C1R", &zoriSub128_JPEG_8u16s_C1R, &reference::subtract128);
}

TEST(LevelShift, AddEqualsModel) {
  expectLevelShift("zoriAdd128_JPEG_16s8u_C1R", &zoriAdd128_JPEG_16s8u_C1R, &reference::add128);
}

}  // namespace
}  // namespace zorj::test
