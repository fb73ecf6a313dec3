#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "reference/component_transform.h"
#include "support/arguments.h"
#include "support/rows.h"
#include "support/samples.h"

namespace zorj::test {
namespace {

using reference::Pixel;

template <class T>
struct InPlaceCase {
  const char* what;
  StatusCode(ZORJ_CALL* subject)(T* const[3], int32_t, RoiSize);
  Pixel<T> (*model)(Pixel<T>);
};
template <class T>
struct ForwardCase {
  const char* what;
  StatusCode(ZORJ_CALL* subject)(const T*, int32_t, T* const[3], int32_t, RoiSize);
  Pixel<T> (*model)(Pixel<T>);
};
template <class T>
struct InverseCase {
  const char* what;
  StatusCode(ZORJ_CALL* subject)(const T* const[3], int32_t, T*, int32_t, RoiSize);
  Pixel<T> (*model)(Pixel<T>);
};

// Calls test(case) with every function.
template <class Test>
void forEachInPlace(const Test& test) {
  using Case16 = InPlaceCase<int16_t>;
  using Case32 = InPlaceCase<int32_t>;
  using CaseFloat = InPlaceCase<float>;
  test(Case16{"zoriRCTFwd_JPEG2K_16s_P3IR", &zoriRCTFwd_JPEG2K_16s_P3IR, &reference::rctForward<int16_t>});
  test(Case32{"zoriRCTFwd_JPEG2K_32s_P3IR", &zoriRCTFwd_JPEG2K_32s_P3IR, &reference::rctForward<int32_t>});
  test(Case16{"zoriRCTInv_JPEG2K_16s_P3IR", &zoriRCTInv_JPEG2K_16s_P3IR, &reference::rctInverse<int16_t>});
  test(Case32{"zoriRCTInv_JPEG2K_32s_P3IR", &zoriRCTInv_JPEG2K_32s_P3IR, &reference::rctInverse<int32_t>});
  test(Case16{"zoriICTFwd_JPEG2K_16s_P3IR", &zoriICTFwd_JPEG2K_16s_P3IR, &reference::ictForward16});
  test(Case32{"zoriICTFwd_JPEG2K_32s_P3IR", &zoriICTFwd_JPEG2K_32s_P3IR, &reference::ictForward32});
  test(CaseFloat{"zoriICTFwd_JPEG2K_32f_P3IR", &zoriICTFwd_JPEG2K_32f_P3IR, &reference::ictForwardFloat});
  test(Case16{"zoriICTInv_JPEG2K_16s_P3IR", &zoriICTInv_JPEG2K_16s_P3IR, &reference::ictInverse16});
  test(Case32{"zoriICTInv_JPEG2K_32s_P3IR", &zoriICTInv_JPEG2K_32s_P3IR, &reference::ictInverse32});
  test(CaseFloat{"zoriICTInv_JPEG2K_32f_P3IR", &zoriICTInv_JPEG2K_32f_P3IR, &reference::ictInverseFloat});
}

template <class Test>
void forEachForward(const Test& test) {
  test(ForwardCase<int16_t>{"zoriRCTFwd_JPEG2K_16s_C3P3R", &zoriRCTFwd_JPEG2K_16s_C3P3R,
                            &reference::rctForward<int16_t>});
  test(ForwardCase<int32_t>{"zoriRCTFwd_JPEG2K_32s_C3P3R", &zoriRCTFwd_JPEG2K_32s_C3P3R,
                            &reference::rctForward<int32_t>});
  test(ForwardCase<float>{"zoriICTFwd_JPEG2K_32f_C3P3R", &zoriICTFwd_JPEG2K_32f_C3P3R, &reference::ictForwardFloat});
}

template <class Test>
void forEachInverse(const Test& test) {
  test(InverseCase<int16_t>{"zoriRCTInv_JPEG2K_16s_P3C3R", &zoriRCTInv_JPEG2K_16s_P3C3R,
                            &reference::rctInverse<int16_t>});
  test(InverseCase<int32_t>{"zoriRCTInv_JPEG2K_32s_P3C3R", &zoriRCTInv_JPEG2K_32s_P3C3R,
                            &reference::rctInverse<int32_t>});
  test(InverseCase<float>{"zoriICTInv_JPEG2K_32f_P3C3R", &zoriICTInv_JPEG2K_32f_P3C3R, &reference::ictInverseFloat});
}

// ---- Operands

// Floats of several magnitudes, of which every operation rounds.
void fillFloats(float* samples, size_t count, Random& random, int round) {
  for (size_t i = 0; i < count; ++i) {
    samples[i] = static_cast<float>(random.between(-1'000'000, 1'000'000)) / (round % 2 == 0 ? 3000.0f : 7.0f);
  }
}

template <class T>
OperandSpec image(OperandSpec spec) {
  if constexpr (std::is_same_v<T, float>) return filledWith<float>(spec, &fillFloats);
  return spec;
}

template <class T>
OperandSpec plane(OperandSpec::Role role, int width, int height) {
  OperandSpec spec = sourceImage<T>(width, height);
  spec.role = role;
  return image<T>(spec);
}

template <class T>
std::vector<OperandSpec> planes(OperandSpec::Role role, int width, int height) {
  return std::vector<OperandSpec>(3, plane<T>(role, width, height));
}

// The model, which reads planes from operand `source` on, or pixels of it, and writes likewise.
template <class T>
void transform(const Operands& o, size_t source, bool sourcePixels, size_t destination, bool destinationPixels,
               RoiSize size, Pixel<T> (*model)(Pixel<T>)) {
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      Pixel<T> p;
      for (int i = 0; i < 3; ++i) {
        p[static_cast<size_t>(i)] =
            sourcePixels ? sampleAt<T>(o, source, 3 * x + i, y) : sampleAt<T>(o, source + static_cast<size_t>(i), x, y);
      }
      p = model(p);
      for (int i = 0; i < 3; ++i) {
        if (destinationPixels) {
          storeSample(o, destination, 3 * x + i, y, p[static_cast<size_t>(i)]);
        } else {
          storeSample(o, destination + static_cast<size_t>(i), x, y, p[static_cast<size_t>(i)]);
        }
      }
    }
  }
}

// ---- Tests

TEST(ComponentTransform, InPlaceEqualsModel) {
  forEachInPlace([]<class T>(const InPlaceCase<T>& test) {
    expectRowsEqualModel(
        test.what, [](int w, int h) { return planes<T>(OperandSpec::Role::kInPlace, w, h); },
        [&](const Operands& o, RoiSize size) {
          T* const data[3] = {o.at<T>(0), o.at<T>(1), o.at<T>(2)};
          EXPECT_EQ(test.subject(data, o.step(0), size), StatusOk);
        },
        [&](const Operands& o, RoiSize size) { transform<T>(o, 0, false, 0, false, size, test.model); });
  });
}

TEST(ComponentTransform, PixelsToPlanesEqualsModel) {
  forEachForward([]<class T>(const ForwardCase<T>& test) {
    expectRowsEqualModel(
        test.what,
        [](int w, int h) {
          auto specs = planes<T>(OperandSpec::Role::kDestination, w, h);
          specs.insert(specs.begin(), plane<T>(OperandSpec::Role::kSource, 3 * w, h));
          return specs;
        },
        [&](const Operands& o, RoiSize size) {
          T* const dst[3] = {o.at<T>(1), o.at<T>(2), o.at<T>(3)};
          EXPECT_EQ(test.subject(o.at<T>(0), o.step(0), dst, o.step(1), size), StatusOk);
        },
        [&](const Operands& o, RoiSize size) { transform<T>(o, 0, true, 1, false, size, test.model); });
  });
}

TEST(ComponentTransform, PlanesToPixelsEqualsModel) {
  forEachInverse([]<class T>(const InverseCase<T>& test) {
    expectRowsEqualModel(
        test.what,
        [](int w, int h) {
          auto specs = planes<T>(OperandSpec::Role::kSource, w, h);
          specs.push_back(plane<T>(OperandSpec::Role::kDestination, 3 * w, h));
          return specs;
        },
        [&](const Operands& o, RoiSize size) {
          const T* const src[3] = {o.at<T>(0), o.at<T>(1), o.at<T>(2)};
          EXPECT_EQ(test.subject(src, o.step(0), o.at<T>(3), o.step(3), size), StatusOk);
        },
        [&](const Operands& o, RoiSize size) { transform<T>(o, 0, false, 3, true, size, test.model); });
  });
}

// Rows without a gap between them are joined: of one operand alone they must not be.
TEST(ComponentTransform, EitherStepMayLeaveGaps) {
  constexpr int kWidth = 3, kHeight = 4, kGap = 2;
  for (const bool gapInPixels : {false, true}) {
    const int pixelRow = 3 * kWidth + (gapInPixels ? kGap : 0), planeRow = kWidth + (gapInPixels ? 0 : kGap);
    forEachInverse([&]<class T>(const InverseCase<T>& test) {
      std::vector<T> planes(static_cast<size_t>(3 * planeRow * kHeight)), pixels(60, T{77}), expected = pixels;
      std::iota(planes.begin(), planes.end(), T{1});
      const T* const src[3] = {planes.data(), &planes[planeRow * kHeight], &planes[2 * planeRow * kHeight]};
      for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
          const int at = y * planeRow + x;
          const Pixel<T> pixel = test.model({src[0][at], src[1][at], src[2][at]});
          std::copy(pixel.begin(), pixel.end(), expected.begin() + y * pixelRow + 3 * x);
        }
      }
      const int32_t size = sizeof(T);
      EXPECT_EQ(test.subject(src, planeRow * size, pixels.data(), pixelRow * size, {kWidth, kHeight}), StatusOk);
      EXPECT_EQ(pixels, expected) << test.what;
    });
    forEachForward([&]<class T>(const ForwardCase<T>& test) {
      std::vector<T> pixels(60), planes(static_cast<size_t>(3 * planeRow * kHeight), T{77}), expected = planes;
      std::iota(pixels.begin(), pixels.end(), T{1});
      T* const dst[3] = {planes.data(), &planes[planeRow * kHeight], &planes[2 * planeRow * kHeight]};
      for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
          const T* const from = &pixels[y * pixelRow + 3 * x];
          const Pixel<T> pixel = test.model({from[0], from[1], from[2]});
          for (int i = 0; i < 3; ++i) expected[(i * kHeight + y) * planeRow + x] = pixel[static_cast<size_t>(i)];
        }
      }
      const int32_t size = sizeof(T);
      EXPECT_EQ(test.subject(pixels.data(), pixelRow * size, dst, planeRow * size, {kWidth, kHeight}), StatusOk);
      EXPECT_EQ(planes, expected) << test.what;
    });
  }
}

template <class T>
void expectReversed(StatusCode(ZORJ_CALL* forward)(T* const[3], int32_t, RoiSize),
                    StatusCode(ZORJ_CALL* inverse)(T* const[3], int32_t, RoiSize)) {
  Random random(3);
  for (int round = 0; round < 1000; ++round) {
    Pixel<T> p;
    fillSamples(p.data(), p.size(), random, round);
    for (T& sample : p) sample /= 4;  // so that every sum fits the type
    const Pixel<T> before = p;
    T* const data[3] = {&p[0], &p[1], &p[2]};
    forward(data, sizeof(T), {1, 1});
    inverse(data, sizeof(T), {1, 1});
    EXPECT_EQ(p, before);
  }
}

TEST(ComponentTransform, ReversibleFormsAreReversed) {
  expectReversed(&zoriRCTFwd_JPEG2K_16s_P3IR, &zoriRCTInv_JPEG2K_16s_P3IR);
  expectReversed(&zoriRCTFwd_JPEG2K_32s_P3IR, &zoriRCTInv_JPEG2K_32s_P3IR);
}

// Worked by hand, so that the models have something to answer to.
TEST(ComponentTransform, RoundsAsDocumented) {
  const auto transformed = []<class T>(StatusCode(ZORJ_CALL * function)(T* const[3], int32_t, RoiSize), Pixel<T> p) {
    T* const data[3] = {&p[0], &p[1], &p[2]};
    function(data, 4, {1, 1});
    return p;
  };
  using Narrow = Pixel<int16_t>;
  using Wide = Pixel<int32_t>;
  EXPECT_EQ(transformed(&zoriRCTFwd_JPEG2K_16s_P3IR, Narrow{32767, -32768, 0}), (Narrow{-8193, -32768, -1}));
  EXPECT_EQ(transformed(&zoriICTInv_JPEG2K_32s_P3IR, Wide{0, 0, 2048})[1], -1462);
  EXPECT_EQ(transformed(&zoriICTInv_JPEG2K_16s_P3IR, Narrow{0, 0, 2048})[1], -1463);
  EXPECT_EQ(transformed(&zoriICTFwd_JPEG2K_16s_P3IR, Narrow{32767, 32767, 32767}), (Narrow{32767, 0, 0}));
}

// ---- Argument checks

TEST(ComponentTransform, InPlaceChecksArgumentsInOrder) {
  forEachInPlace([]<class T>(const InPlaceCase<T>& test) {
    std::array<T, 12> samples = {1, 2, 3};
    const auto untouched = samples;
    expectArgumentOrder(
        test.what,
        {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadStep, StatusBadSize,
         StatusBadSize},
        [&](const Faults& f) {
          T* const data[3] = {f.pointer(1, &samples[0]), f.pointer(2, &samples[4]), f.pointer(3, &samples[8])};
          return test.subject(f.pointer(0, data), f.value(4, 4, 0), RoiSize{f.value(5, 2, 0), f.value(6, 1, -1)});
        },
        [&] { return samples != untouched; });
  });
}

TEST(ComponentTransform, PixelFormsCheckArgumentsInOrder) {
  const std::vector<StatusCode> order = {StatusNullPointer, StatusNullPointer, StatusNullPointer,
                                         StatusNullPointer, StatusNullPointer, StatusBadStep,
                                         StatusBadStep,     StatusBadSize,     StatusBadSize};
  forEachForward([&]<class T>(const ForwardCase<T>& test) {
    const std::array<T, 12> pixels = {1, 2, 3};
    std::array<T, 12> samples = {};
    const auto untouched = samples;
    expectArgumentOrder(
        test.what, order,
        [&](const Faults& f) {
          T* const dst[3] = {f.pointer(2, &samples[0]), f.pointer(3, &samples[4]), f.pointer(4, &samples[8])};
          return test.subject(f.pointer(0, pixels.data()), f.value(5, 4, 0), f.pointer(1, dst), f.value(6, 4, -4),
                              RoiSize{f.value(7, 2, 0), f.value(8, 1, -1)});
        },
        [&] { return samples != untouched; });
  });
  forEachInverse([&]<class T>(const InverseCase<T>& test) {
    const std::array<T, 12> samples = {1, 2, 3};
    std::array<T, 12> pixels = {};
    const auto untouched = pixels;
    expectArgumentOrder(
        test.what, order,
        [&](const Faults& f) {
          const T* const src[3] = {f.pointer(2, &samples[0]), f.pointer(3, &samples[4]), f.pointer(4, &samples[8])};
          return test.subject(f.pointer(0, src), f.value(5, 4, 0), f.pointer(1, pixels.data()), f.value(6, 4, -4),
                              RoiSize{f.value(7, 2, 0), f.value(8, 1, -1)});
        },
        [&] { return pixels != untouched; });
  });
}

}  // namespace
}  // namespace zorj::test
