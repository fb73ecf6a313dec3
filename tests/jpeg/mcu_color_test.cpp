#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>

#include "reference/mcu_color.h"
#include "support/arguments.h"
#include "support/blocks.h"
#include "support/samples.h"

namespace zorj::test {
namespace {

struct Sampling {
  int horizontal, vertical;
  int log2Pixels() const { return horizontal * vertical / 2; }
};
constexpr Sampling k444 = {1, 1}, k422 = {2, 1}, k411 = {2, 2};

using Forward = StatusCode(ZORJ_CALL*)(const uint8_t*, int32_t, int16_t* const[3]);
using Inverse = StatusCode(ZORJ_CALL*)(const int16_t* const[3], uint8_t*, int32_t);

struct ForwardCase {
  const char* name;
  Forward function;
  Sampling sampling;
  bool redFirst;
};
constexpr ForwardCase kForward[] = {
    {"zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R, k444, true},
    {"zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R, k422, true},
    {"zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R", &zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R, k411, true},
    {"zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R, k444, false},
    {"zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R, k422, false},
    {"zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R", &zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R, k411, false},
};

struct InverseCase {
  const char* name;
  Inverse function;
  Sampling sampling;
  bool redFirst;
  reference::Rgb (*pixel)(reference::Ycc);
};
constexpr InverseCase kInverse[] = {
    {"zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R, k444, true, &reference::pixelOf444},
    {"zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R", &zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R, k411, true, &reference::pixelOf411},
    {"zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R, k444, false, &reference::pixelOf444},
    {"zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R", &zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R, k411, false, &reference::pixelOf411},
};

// Where the luminance of pixel (x, y) lies among the blocks of an MCU.
int lumaIndex(int x, int y, Sampling sampling) {
  return 64 * (sampling.horizontal * (y / 8) + x / 8) + 8 * (y % 8) + x % 8;
}

// Operands: the pixels, then the planes of blocks.
template <class PixelOperand, class PlaneOperand>
std::vector<OperandSpec> mcuOperands(PixelOperand pixels, PlaneOperand plane, Sampling s) {
  return {pixels(24 * s.horizontal, 8 * s.vertical), plane(64 * s.horizontal * s.vertical), plane(64), plane(64)};
}

reference::Rgb pixelAt(const Operands& o, int x, int y, bool redFirst) {
  const int first = sampleAt<uint8_t>(o, 0, 3 * x, y), third = sampleAt<uint8_t>(o, 0, 3 * x + 2, y);
  return {redFirst ? first : third, sampleAt<uint8_t>(o, 0, 3 * x + 1, y), redFirst ? third : first};
}

void modelForward(const Operands& o, const ForwardCase& test) {
  const Sampling s = test.sampling;
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      reference::Rgb sum{};
      for (int line = s.vertical * y; line < s.vertical * (y + 1); ++line) {
        for (int column = s.horizontal * x; column < s.horizontal * (x + 1); ++column) {
          const reference::Rgb pixel = pixelAt(o, column, line, test.redFirst);
          storeSample(o, 1, lumaIndex(column, line, s), 0, static_cast<int16_t>(reference::lumaOf(pixel)));
          sum = {sum.red + pixel.red, sum.green + pixel.green, sum.blue + pixel.blue};
        }
      }
      storeSample(o, 2, 8 * y + x, 0, static_cast<int16_t>(reference::blueChroma(sum, s.log2Pixels())));
      storeSample(o, 3, 8 * y + x, 0, static_cast<int16_t>(reference::redChroma(sum, s.log2Pixels())));
    }
  }
}

void modelInverse(const Operands& o, const InverseCase& test) {
  const Sampling s = test.sampling;
  for (int y = 0; y < 8 * s.vertical; ++y) {
    for (int x = 0; x < 8 * s.horizontal; ++x) {
      const int chroma = 8 * (y / s.vertical) + x / s.horizontal;
      const reference::Rgb pixel = test.pixel({sampleAt<int16_t>(o, 1, lumaIndex(x, y, s), 0),
                                               sampleAt<int16_t>(o, 2, chroma, 0), sampleAt<int16_t>(o, 3, chroma, 0)});
      storeSample(o, 0, 3 * x, y, static_cast<uint8_t>(test.redFirst ? pixel.red : pixel.blue));
      storeSample(o, 0, 3 * x + 1, y, static_cast<uint8_t>(pixel.green));
      storeSample(o, 0, 3 * x + 2, y, static_cast<uint8_t>(test.redFirst ? pixel.blue : pixel.red));
    }
  }
}

TEST(McuColor, ForwardEqualsModel) {
  for (const ForwardCase& test : kForward) {
    expectBlocksEqualModel(
        test.name, mcuOperands(sourceImage<uint8_t>, destinationArray<int16_t>, test.sampling),
        [&](const Operands& o) {
          int16_t* const planes[] = {o.at<int16_t>(1), o.at<int16_t>(2), o.at<int16_t>(3)};
          EXPECT_EQ(test.function(o.at<uint8_t>(0), o.step(0), planes), StatusOk);
        },
        [&](const Operands& o) { modelForward(o, test); });
  }
}

TEST(McuColor, InverseEqualsModel) {
  for (const InverseCase& test : kInverse) {
    expectBlocksEqualModel(
        test.name, mcuOperands(destinationImage<uint8_t>, sourceArray<int16_t>, test.sampling),
        [&](const Operands& o) {
          const int16_t* const planes[] = {o.at<int16_t>(1), o.at<int16_t>(2), o.at<int16_t>(3)};
          EXPECT_EQ(test.function(planes, o.at<uint8_t>(0), o.step(0)), StatusOk);
        },
        [&](const Operands& o) { modelInverse(o, test); });
  }
}

TEST(McuColor, ChecksArgumentsInOrder) {
  const std::vector order = {StatusNullPointer, StatusNullPointer, StatusBadStep,
                             StatusNullPointer, StatusNullPointer, StatusNullPointer};
  std::vector<uint8_t> pixels(16 * 48, 0);
  std::vector<int16_t> blocks(6 * 64, 7);
  const auto planesOf = [&](const Faults& f, auto& planes) {
    for (size_t i = 0; i < 3; ++i) planes[i] = f.pointer(3 + i, blocks.data() + (i == 0 ? 0 : 256 + 64 * (i - 1)));
  };
  for (const ForwardCase& test : kForward) {
    expectArgumentOrder(
        test.name, order,
        [&](const Faults& f) {
          int16_t* planes[3];
          planesOf(f, planes);
          return test.function(f.pointer(0, pixels.data()), f.value(2, 48, 0), f.pointer(1, planes));
        },
        [&] { return std::any_of(blocks.begin(), blocks.end(), [](int16_t v) { return v != 7; }); });
  }
  for (const InverseCase& test : kInverse) {
    expectArgumentOrder(
        test.name, order,
        [&](const Faults& f) {
          const int16_t* planes[3];
          planesOf(f, planes);
          return test.function(f.pointer(0, planes), f.pointer(1, pixels.data()), f.value(2, 48, -1));
        },
        [&] { return std::any_of(pixels.begin(), pixels.end(), [](uint8_t v) { return v != 0; }); });
  }
}

}  // namespace
}  // namespace zorj::test
