#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <vector>

#include "reference/mcu_color.h"
#include "support/arguments.h"
#include "support/blocks.h"
#include "support/isa_levels.h"
#include "support/pixel_formats.h"

namespace zorj::test {
namespace {

struct Sampling {
  int horizontal, vertical;
  int width() const { return 8 * horizontal; }
  int height() const { return 8 * vertical; }
  int log2Pixels() const { return horizontal * vertical / 2; }
  // Which sample of Y, or K, is that of a pixel, and which of Cb and Cr.
  int lumaAt(int x, int y) const { return 64 * (horizontal * (y / 8) + x / 8) + 8 * (y % 8) + x % 8; }
  int chromaAt(int x, int y) const { return 8 * (y / vertical) + x / horizontal; }
};
constexpr Sampling k444 = {1, 1}, k422 = {2, 1}, k411 = {2, 2};

// The functions with pixels of any type.
using Forward = StatusCode (*)(const void*, int32_t, int16_t* const*);
using Inverse = StatusCode (*)(const int16_t* const*, void*, int32_t);

template <class Pixel>
StatusCode call(StatusCode(ZORJ_CALL* function)(const Pixel*, int32_t, int16_t* const*), const void* src, int32_t step,
                int16_t* const* dst) {
  return function(static_cast<const Pixel*>(src), step, dst);
}
template <class Pixel>
StatusCode call(StatusCode(ZORJ_CALL* function)(const int16_t* const*, Pixel*, int32_t), const int16_t* const* src,
                void* dst, int32_t step) {
  return function(src, static_cast<Pixel*>(dst), step);
}
template <auto kFunction>
StatusCode forward(const void* src, int32_t step, int16_t* const* dst) {
  return call(kFunction, src, step, dst);
}
template <auto kFunction>
StatusCode inverse(const int16_t* const* src, void* dst, int32_t step) {
  return call(kFunction, src, dst, step);
}

Channels unchanged(const Channels& pixel) { return pixel; }

struct ForwardCase {
  const char* name;
  Forward function;
  Sampling sampling;
  Format format;
  size_t planes = 3;
  Channels (*toRgb)(const Channels&) = &unchanged;
  Channels (*samples)(const Channels& sum, int log2Pixels) = &reference::mcuYcc;
};
constexpr ForwardCase kForward[] = {
    {"zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R", &forward<&zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R>, k444, kRgb},
    {"zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R", &forward<&zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R>, k422, kRgb},
    {"zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R", &forward<&zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R>, k411, kRgb},
    {"zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R", &forward<&zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R>, k444, kBgr},
    {"zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R", &forward<&zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R>, k422, kBgr},
    {"zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R", &forward<&zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R>, k411, kBgr},
    {"zoriBGR555ToYCbCr444LS_MCU_16u16s_C3P3R", &forward<&zoriBGR555ToYCbCr444LS_MCU_16u16s_C3P3R>, k444, kBgr555},
    {"zoriBGR555ToYCbCr422LS_MCU_16u16s_C3P3R", &forward<&zoriBGR555ToYCbCr422LS_MCU_16u16s_C3P3R>, k422, kBgr555},
    {"zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R", &forward<&zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R>, k411, kBgr555},
    {"zoriBGR565ToYCbCr444LS_MCU_16u16s_C3P3R", &forward<&zoriBGR565ToYCbCr444LS_MCU_16u16s_C3P3R>, k444, kBgr565},
    {"zoriBGR565ToYCbCr422LS_MCU_16u16s_C3P3R", &forward<&zoriBGR565ToYCbCr422LS_MCU_16u16s_C3P3R>, k422, kBgr565},
    {"zoriBGR565ToYCbCr411LS_MCU_16u16s_C3P3R", &forward<&zoriBGR565ToYCbCr411LS_MCU_16u16s_C3P3R>, k411, kBgr565},
    {"zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R", &forward<&zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R>, k444, kCmyk, 4,
     &reference::complemented},
    {"zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R", &forward<&zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R>, k422, kCmyk, 4,
     &reference::complemented},
    {"zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R", &forward<&zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R>, k411, kCmyk, 4,
     &reference::complemented},
    {"zoriSplit422LS_MCU_8u16s_C2P3R", &forward<&zoriSplit422LS_MCU_8u16s_C2P3R>, k422, kYcc422, 3, &unchanged,
     &reference::mcuSplit},
};

struct InverseCase {
  const char* name;
  Inverse function;
  Sampling sampling;
  Format format;
  Channels (*pixel)(const Channels&);
  size_t planes = 3;
  Channels (*fromRgb)(const Channels&) = &unchanged;
};
constexpr InverseCase kInverse[] = {
    {"zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R", &inverse<&zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R>, k444, kRgb,
     &reference::pixelOf444},
    {"zoriYCbCr422ToRGBLS_MCU_16s8u_P3C3R", &inverse<&zoriYCbCr422ToRGBLS_MCU_16s8u_P3C3R>, k422, kRgb,
     &reference::pixelOf444},
    {"zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R", &inverse<&zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R>, k411, kRgb,
     &reference::pixelOf411},
    {"zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R", &inverse<&zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R>, k444, kBgr,
     &reference::pixelOf444},
    {"zoriYCbCr422ToBGRLS_MCU_16s8u_P3C3R", &inverse<&zoriYCbCr422ToBGRLS_MCU_16s8u_P3C3R>, k422, kBgr,
     &reference::pixelOf444},
    {"zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R", &inverse<&zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R>, k411, kBgr,
     &reference::pixelOf411},
    {"zoriYCbCr444ToBGR555LS_MCU_16s16u_P3C3R", &inverse<&zoriYCbCr444ToBGR555LS_MCU_16s16u_P3C3R>, k444, kBgr555,
     &reference::pixelOf444},
    {"zoriYCbCr422ToBGR555LS_MCU_16s16u_P3C3R", &inverse<&zoriYCbCr422ToBGR555LS_MCU_16s16u_P3C3R>, k422, kBgr555,
     &reference::pixelOf444},
    {"zoriYCbCr411ToBGR555LS_MCU_16s16u_P3C3R", &inverse<&zoriYCbCr411ToBGR555LS_MCU_16s16u_P3C3R>, k411, kBgr555,
     &reference::pixelOf411},
    {"zoriYCbCr444ToBGR565LS_MCU_16s16u_P3C3R", &inverse<&zoriYCbCr444ToBGR565LS_MCU_16s16u_P3C3R>, k444, kBgr565,
     &reference::pixelOf444},
    {"zoriYCbCr422ToBGR565LS_MCU_16s16u_P3C3R", &inverse<&zoriYCbCr422ToBGR565LS_MCU_16s16u_P3C3R>, k422, kBgr565,
     &reference::pixelOf444},
    {"zoriYCbCr411ToBGR565LS_MCU_16s16u_P3C3R", &inverse<&zoriYCbCr411ToBGR565LS_MCU_16s16u_P3C3R>, k411, kBgr565,
     &reference::pixelOf411},
    {"zoriYCCK444ToCMYKLS_MCU_16s8u_P4C4R", &inverse<&zoriYCCK444ToCMYKLS_MCU_16s8u_P4C4R>, k444, kCmyk,
     &reference::pixelOf444, 4, &reference::complemented},
    {"zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R", &inverse<&zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R>, k422, kCmyk,
     &reference::pixelOf444, 4, &reference::complemented},
    {"zoriYCCK411ToCMYKLS_MCU_16s8u_P4C4R", &inverse<&zoriYCCK411ToCMYKLS_MCU_16s8u_P4C4R>, k411, kCmyk,
     &reference::pixelOf411, 4, &reference::complemented},
    {"zoriJoin422LS_MCU_16s8u_P3C2R", &inverse<&zoriJoin422LS_MCU_16s8u_P3C2R>, k422, kYcc422,
     &reference::pixelOfJoined},
};

// Operands: the pixels, then the planes of blocks.
template <class Case>
std::vector<OperandSpec> mcuOperands(const Case& test, const OperandSpec& pixels, OperandSpec (*array)(int)) {
  std::vector<OperandSpec> operands = {pixels};
  for (size_t plane = 0; plane < test.planes; ++plane) {
    const bool isChroma = plane == 1 || plane == 2;
    operands.push_back(array(isChroma ? 64 : test.sampling.width() * test.sampling.height()));
  }
  return operands;
}

// Every other set of samples lies little beyond the range of 8 bits.
OperandSpec samples(int count) {
  return filledWith<int16_t>(sourceArray<int16_t>(count), [](int16_t* at, size_t n, Random& random, int round) {
    if (round / kFillKinds % 2 == 0) return fillSamples(at, n, random, round);
    for (size_t i = 0; i < n; ++i) at[i] = static_cast<int16_t>(random.between(-200, 200));
  });
}

constexpr int kRounds = 20 * kFillKinds;

std::vector<int16_t*> blocksOf(const Operands& o, size_t planes) {
  std::vector<int16_t*> blocks;
  for (size_t plane = 0; plane < planes; ++plane) blocks.push_back(o.at<int16_t>(1 + plane));
  return blocks;
}

void modelForward(const Operands& o, const ForwardCase& test) {
  const Sampling s = test.sampling;
  Channels sums[64] = {};
  for (int y = 0; y < s.height(); ++y) {
    for (int x = 0; x < s.width(); ++x) {
      const Channels pixel = test.toRgb(test.format.load(o, 0, x, y));
      const Channels sample = test.samples(pixel, 0);
      storeSample(o, 1, s.lumaAt(x, y), 0, static_cast<int16_t>(sample[0]));
      if (test.planes == 4) storeSample(o, 4, s.lumaAt(x, y), 0, static_cast<int16_t>(sample[3]));
      Channels& sum = sums[s.chromaAt(x, y)];
      std::transform(sum.begin(), sum.end(), pixel.begin(), sum.begin(), std::plus());
    }
  }
  for (int i = 0; i < 64; ++i) {
    const Channels sample = test.samples(sums[i], s.log2Pixels());
    storeSample(o, 2, i, 0, static_cast<int16_t>(sample[1]));
    storeSample(o, 3, i, 0, static_cast<int16_t>(sample[2]));
  }
}

void modelInverse(const Operands& o, const InverseCase& test) {
  const Sampling s = test.sampling;
  for (int y = 0; y < s.height(); ++y) {
    for (int x = 0; x < s.width(); ++x) {
      const int luma = s.lumaAt(x, y), chroma = s.chromaAt(x, y);
      const Channels sample = {sampleAt<int16_t>(o, 1, luma, 0), sampleAt<int16_t>(o, 2, chroma, 0),
                               sampleAt<int16_t>(o, 3, chroma, 0),
                               test.planes == 4 ? sampleAt<int16_t>(o, 4, luma, 0) : 0};
      test.format.store(o, 0, x, y, test.fromRgb(test.pixel(sample)));
    }
  }
}

TEST(McuColor, ForwardEqualsModel) {
  for (const ForwardCase& test : kForward) {
    const Sampling s = test.sampling;
    expectBlocksEqualModel(
        test.name,
        mcuOperands(test, sourceImage<uint8_t>(test.format.rowBytes(s.width()), s.height()),
                    &destinationArray<int16_t>),
        [&](const Operands& o) {
          EXPECT_EQ(test.function(o.at<void>(0), o.step(0), blocksOf(o, test.planes).data()), StatusOk);
        },
        [&](const Operands& o) { modelForward(o, test); }, kRounds);
  }
}

TEST(McuColor, InverseEqualsModel) {
  for (const InverseCase& test : kInverse) {
    const Sampling s = test.sampling;
    expectBlocksEqualModel(
        test.name, mcuOperands(test, destinationImage<uint8_t>(test.format.rowBytes(s.width()), s.height()), &samples),
        [&](const Operands& o) {
          EXPECT_EQ(test.function(blocksOf(o, test.planes).data(), o.at<void>(0), o.step(0)), StatusOk);
        },
        [&](const Operands& o) { modelInverse(o, test); }, kRounds);
  }
}

// An MCU in memory of its own, its planes at even or at odd addresses.
struct Mcu {
  explicit Mcu(size_t offset = 0) {
    for (size_t i = 0; i < 4; ++i) planes[i] = reinterpret_cast<int16_t*>(memory[i] + offset);
  }
  int sample(size_t plane, int at) const {
    int16_t value;
    std::memcpy(&value, static_cast<const void*>(planes[plane] + at), sizeof value);
    return value;
  }
  alignas(2) uint8_t memory[4][2 * 256 + 2] = {};
  int16_t* planes[4];
};

TEST(McuColor, BlocksAndPixelsMayLieAtOddAddresses) {
  constexpr size_t kBytes = 16 * 64;
  struct Pixels {
    alignas(2) uint8_t even[kBytes], odd[1 + kBytes];
  } source, result;
  Random random(5);
  fillSamples(source.even, kBytes, random, 0);
  std::copy_n(source.even, kBytes, source.odd + 1);
  forEachIsa([&](Isa isa) {
    for (const ForwardCase& test : kForward) {
      Mcu even, odd(1);
      test.function(source.even, 64, even.planes);
      test.function(source.odd + 1, 64, odd.planes);
      for (size_t plane = 0; plane < 4; ++plane) {
        EXPECT_EQ(std::memcmp(odd.planes[plane], even.planes[plane], 512), 0) << test.name << isaName(isa);
      }
    }
    for (const InverseCase& test : kInverse) {
      Mcu even, odd(1);
      for (size_t plane = 0; plane < 4; ++plane) {
        fillSamples(even.memory[plane], 512, random, 0);
        std::copy_n(even.memory[plane], 512, odd.memory[plane] + 1);
      }
      result = {};
      test.function(even.planes, result.even, 64);
      test.function(odd.planes, result.odd + 1, 64);
      EXPECT_EQ(std::memcmp(result.odd + 1, result.even, kBytes), 0) << test.name << isaName(isa);
    }
  });
}

TEST(McuColor, ChecksArgumentsInOrder) {
  const auto order = [](size_t planes) {
    std::vector statuses = {StatusNullPointer, StatusNullPointer, StatusBadStep};
    statuses.insert(statuses.end(), planes, StatusNullPointer);
    return statuses;
  };
  std::vector<uint16_t> pixels(16 * 32, 0);
  std::vector<int16_t> blocks(256, 7);
  const auto written = [&] {
    return std::any_of(blocks.begin(), blocks.end(), [](int16_t v) { return v != 7; }) ||
           std::any_of(pixels.begin(), pixels.end(), [](uint16_t v) { return v != 0; });
  };
  const auto planes = [&](const Faults& f) {
    std::array<int16_t*, 4> pointers;
    for (size_t i = 0; i < 4; ++i) pointers[i] = f.pointer(3 + i, blocks.data());
    return pointers;
  };
  for (const ForwardCase& test : kForward) {
    expectArgumentOrder(
        test.name, order(test.planes),
        [&](const Faults& f) {
          const auto mcu = planes(f);
          return test.function(f.pointer(0, pixels.data()), f.value(2, 64, 0), f.pointer(1, mcu.data()));
        },
        written);
  }
  for (const InverseCase& test : kInverse) {
    expectArgumentOrder(
        test.name, order(test.planes),
        [&](const Faults& f) {
          const auto mcu = planes(f);
          return test.function(f.pointer(0, mcu.data()), f.pointer(1, pixels.data()), f.value(2, 64, -1));
        },
        written);
  }
}

// Worked by hand, so that the models have something to answer to.
TEST(McuColor, LaysOutAndRoundsAsDocumented) {
  // Two packed pixels with the blue field 1, that is 8, among black ones: 2 * 8192 * 8 + 8192 * 4 >> 16.
  uint16_t packed[16][16] = {};
  packed[0][14] = packed[1][15] = 1;
  // The left half of the top row is all red.
  std::fill_n(packed[0], 8, uint16_t{31 << 10});
  Mcu mcu;
  ASSERT_EQ(zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(packed[0], 32, mcu.planes), StatusOk);
  EXPECT_EQ(mcu.sample(0, 7), -54);        // 0.299 * 248 - 128
  EXPECT_EQ(mcu.sample(0, 8), -128);       // below it
  EXPECT_EQ(mcu.sample(0, 64), -128);      // right of it
  EXPECT_EQ(mcu.sample(0, 64 + 6), -127);  // 0.114 * 8 - 128
  EXPECT_EQ(mcu.sample(1, 7), 2);
  EXPECT_EQ(mcu.sample(2, 3), 62);  // half of 248 / 2

  // K goes with the luminance, complemented nowhere: here 9 in the last pixel alone, on paper without ink.
  uint8_t cmyk[8][16][4] = {};
  cmyk[7][15][3] = 9;
  ASSERT_EQ(zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R(cmyk[0][0], 64, mcu.planes), StatusOk);
  EXPECT_EQ(mcu.sample(0, 127), 127);
  EXPECT_EQ(mcu.sample(1, 63), 0);
  EXPECT_EQ(mcu.sample(3, 126), -128);
  EXPECT_EQ(mcu.sample(3, 127), -119);
  uint8_t back[8][16][4];
  ASSERT_EQ(zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R(mcu.planes, back[0][0], 64), StatusOk);
  EXPECT_EQ(std::memcmp(back, cmyk, sizeof back), 0);

  uint8_t pairs[8][32] = {};
  pairs[3][18] = 200, pairs[3][17] = 1, pairs[3][19] = 255;
  ASSERT_EQ(zoriSplit422LS_MCU_8u16s_C2P3R(pairs[0], 32, mcu.planes), StatusOk);
  EXPECT_EQ(mcu.sample(0, 64 + 24 + 1), 72);
  EXPECT_EQ(mcu.sample(1, 24 + 4), -127);
  EXPECT_EQ(mcu.sample(2, 24 + 4), 127);
}

}  // namespace
}  // namespace zorj::test
