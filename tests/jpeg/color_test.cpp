#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>

#include "reference/color.h"
#include "support/arguments.h"
#include "support/isa_levels.h"
#include "support/pixel_formats.h"
#include "support/rows.h"

namespace zorj::test {
namespace {

using reference::Channels;

// The model of a pixel in column x of a row.
using PixelModel = Channels (*)(const Channels&, int x, int width);

Channels groupedYcc(const Channels& p, int x, int width) {
  return x < width / 8 * 8 ? reference::fineYcc(p) : reference::coarseYcc(p);
}
Channels fineYcc(const Channels& p, int, int) { return reference::fineYcc(p); }
Channels coarseYcc(const Channels& p, int, int) { return reference::coarseYcc(p); }
Channels ycckOfCmyk(const Channels& p, int, int) { return reference::coarseYcc(reference::complemented(p)); }
Channels rgb(const Channels& p, int, int) { return reference::rgbOf(p); }
Channels tabledRgb(const Channels& p, int, int) { return reference::tabledRgbOf(p); }
Channels cmykOfYcck(const Channels& p, int, int) { return reference::complemented(reference::rgbOf(p)); }

// An image argument: its planes and step, and null if the pointer itself is to be so.
struct Image {
  uint8_t* planes[4];
  int32_t step;
  bool isNull = false;

  template <class Pointer>
  Pointer as() const {
    if (isNull) return nullptr;
    if constexpr (std::is_pointer_v<std::remove_pointer_t<Pointer>>) {
      return planes;
    } else {
      return reinterpret_cast<Pointer>(planes[0]);
    }
  }
};

template <class Source, class Destination>
struct Call {
  template <StatusCode(ZORJ_CALL* kFunction)(Source, int32_t, Destination, int32_t, RoiSize)>
  static StatusCode make(const Image& src, const Image& dst, RoiSize size) {
    return kFunction(src.as<Source>(), src.step, dst.as<Destination>(), dst.step, size);
  }
};

struct ColorCase {
  const char* name;
  StatusCode (*function)(const Image& src, const Image& dst, RoiSize);
  Format source, destination;
  PixelModel pixel;
};

using Bytes = const uint8_t*;
using Words = const uint16_t*;
using PlanesIn = const uint8_t* const*;
using PlanesOut = uint8_t* const*;
using PixelsToPlanes = Call<Bytes, PlanesOut>;
using PlanesToPlanes = Call<PlanesIn, PlanesOut>;
using PackedToPlanes = Call<Words, PlanesOut>;
using PlanesToPixels = Call<PlanesIn, uint8_t*>;
using PlanesToPacked = Call<PlanesIn, uint16_t*>;
using PixelsToPixels = Call<Bytes, uint8_t*>;

constexpr ColorCase kCases[] = {
    {"zoriRGBToYCbCr_JPEG_8u_C3P3R", &PixelsToPlanes::make<&zoriRGBToYCbCr_JPEG_8u_C3P3R>, kRgb, kPlanes3, &groupedYcc},
    {"zoriBGRToYCbCr_JPEG_8u_C3P3R", &PixelsToPlanes::make<&zoriBGRToYCbCr_JPEG_8u_C3P3R>, kBgr, kPlanes3, &groupedYcc},
    {"zoriRGBToYCbCr_JPEG_8u_P3R", &PlanesToPlanes::make<&zoriRGBToYCbCr_JPEG_8u_P3R>, kPlanes3, kPlanes3, &groupedYcc},
    {"zoriRGBToY_JPEG_8u_C3C1R", &PixelsToPixels::make<&zoriRGBToY_JPEG_8u_C3C1R>, kRgb, kLuma, &fineYcc},
    {"zoriBGRToY_JPEG_8u_C3C1R", &PixelsToPixels::make<&zoriBGRToY_JPEG_8u_C3C1R>, kBgr, kLuma, &fineYcc},
    {"zoriRGBToY_JPEG_8u_P3C1R", &PlanesToPixels::make<&zoriRGBToY_JPEG_8u_P3C1R>, kPlanes3, kLuma, &fineYcc},
    {"zoriBGR555ToYCbCr_JPEG_16u8u_C3P3R", &PackedToPlanes::make<&zoriBGR555ToYCbCr_JPEG_16u8u_C3P3R>, kBgr555,
     kPlanes3, &coarseYcc},
    {"zoriBGR565ToYCbCr_JPEG_16u8u_C3P3R", &PackedToPlanes::make<&zoriBGR565ToYCbCr_JPEG_16u8u_C3P3R>, kBgr565,
     kPlanes3, &coarseYcc},
    {"zoriRGB555ToYCbCr_JPEG_16u8u_C3P3R", &PackedToPlanes::make<&zoriRGB555ToYCbCr_JPEG_16u8u_C3P3R>, kRgb555,
     kPlanes3, &coarseYcc},
    {"zoriRGB565ToYCbCr_JPEG_16u8u_C3P3R", &PackedToPlanes::make<&zoriRGB565ToYCbCr_JPEG_16u8u_C3P3R>, kRgb565,
     kPlanes3, &coarseYcc},
    {"zoriYCbCrToRGB_JPEG_8u_P3C3R", &PlanesToPixels::make<&zoriYCbCrToRGB_JPEG_8u_P3C3R>, kPlanes3, kRgb, &rgb},
    {"zoriYCbCrToBGR_JPEG_8u_P3C3R", &PlanesToPixels::make<&zoriYCbCrToBGR_JPEG_8u_P3C3R>, kPlanes3, kBgr, &rgb},
    {"zoriYCbCrToRGB_JPEG_8u_P3R", &PlanesToPlanes::make<&zoriYCbCrToRGB_JPEG_8u_P3R>, kPlanes3, kPlanes3, &rgb},
    {"zoriYCbCrToRGB555_JPEG_8u16u_P3C3R", &PlanesToPacked::make<&zoriYCbCrToRGB555_JPEG_8u16u_P3C3R>, kPlanes3,
     kRgb555, &tabledRgb},
    {"zoriYCbCrToRGB565_JPEG_8u16u_P3C3R", &PlanesToPacked::make<&zoriYCbCrToRGB565_JPEG_8u16u_P3C3R>, kPlanes3,
     kRgb565, &tabledRgb},
    {"zoriYCbCrToBGR555_JPEG_8u16u_P3C3R", &PlanesToPacked::make<&zoriYCbCrToBGR555_JPEG_8u16u_P3C3R>, kPlanes3,
     kBgr555, &tabledRgb},
    {"zoriYCbCrToBGR565_JPEG_8u16u_P3C3R", &PlanesToPacked::make<&zoriYCbCrToBGR565_JPEG_8u16u_P3C3R>, kPlanes3,
     kBgr565, &tabledRgb},
    {"zoriYCbCr422ToRGB_JPEG_8u_C2C3R", &PixelsToPixels::make<&zoriYCbCr422ToRGB_JPEG_8u_C2C3R>, kYcc422, kRgb, &rgb},
    {"zoriCMYKToYCCK_JPEG_8u_C4P4R", &PixelsToPlanes::make<&zoriCMYKToYCCK_JPEG_8u_C4P4R>, kCmyk, kPlanes4,
     &ycckOfCmyk},
    {"zoriCMYKToYCCK_JPEG_8u_P4R", &PlanesToPlanes::make<&zoriCMYKToYCCK_JPEG_8u_P4R>, kPlanes4, kPlanes4, &ycckOfCmyk},
    {"zoriYCCKToCMYK_JPEG_8u_P4C4R", &PlanesToPixels::make<&zoriYCCKToCMYK_JPEG_8u_P4C4R>, kPlanes4, kCmyk,
     &cmykOfYcck},
    {"zoriYCCKToCMYK_JPEG_8u_P4R", &PlanesToPlanes::make<&zoriYCCKToCMYK_JPEG_8u_P4R>, kPlanes4, kPlanes4, &cmykOfYcck},
};

Image imageOf(const Operands& o, size_t first, int planes) {
  Image image = {{}, o.step(first)};
  for (size_t i = 0; i < static_cast<size_t>(planes); ++i) image.planes[i] = o.at<uint8_t>(first + i);
  return image;
}

void model(const ColorCase& test, const Operands& o, RoiSize size) {
  const auto destination = static_cast<size_t>(test.source.planes);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      test.destination.store(o, destination, x, y, test.pixel(test.source.load(o, 0, x, y), x, size.width));
    }
  }
}

TEST(Color, RowsEqualModel) {
  for (const ColorCase& test : kCases) {
    expectRowsEqualModel(
        test.name,
        [&](int width, int height) {
          std::vector<OperandSpec> operands;
          for (int i = 0; i < test.source.planes; ++i) {
            operands.push_back(sourceImage<uint8_t>(test.source.rowBytes(width), height));
          }
          for (int i = 0; i < test.destination.planes; ++i) {
            operands.push_back(destinationImage<uint8_t>(test.destination.rowBytes(width), height));
          }
          return operands;
        },
        [&](const Operands& o, RoiSize size) {
          EXPECT_EQ(test.function(imageOf(o, 0, test.source.planes),
                                  imageOf(o, static_cast<size_t>(test.source.planes), test.destination.planes), size),
                    StatusOk);
        },
        [&](const Operands& o, RoiSize size) { model(test, o, size); });
  }
}

// All values of the chroma, with dark, middle and bright luminance.
TEST(Color, EveryChromaEqualsModel) {
  constexpr RoiSize kSize = {256, 256};
  for (const ColorCase& test : kCases) {
    if (test.pixel != &rgb && test.pixel != &tabledRgb && test.pixel != &cmykOfYcck) continue;
    if (test.source.planes == 1) continue;
    for (const int luma : {0, 127, 255}) {
      const auto fill = [&](int plane) {
        OperandSpec spec = sourceImage<uint8_t>(256, 256);
        spec.fillRow = [=, row = uint8_t{0}](uint8_t* to, Random&, int) mutable {
          for (int x = 0; x < 256; ++x) to[x] = static_cast<uint8_t>(plane == 1 ? x : plane == 2 ? row : luma);
          ++row;
        };
        return spec;
      };
      std::vector<OperandSpec> operands;
      for (int i = 0; i < test.source.planes; ++i) operands.push_back(fill(i));
      for (int i = 0; i < test.destination.planes; ++i) {
        operands.push_back(destinationImage<uint8_t>(test.destination.rowBytes(256), 256));
      }
      const Operands expected(operands, kLayouts[0], 0, 0);
      model(test, expected, kSize);
      forEachIsa([&](Isa isa) {
        const Operands actual(operands, kLayouts[0], 0, 0);
        const auto destination = static_cast<size_t>(test.source.planes);
        test.function(imageOf(actual, 0, test.source.planes), imageOf(actual, destination, test.destination.planes),
                      kSize);
        EXPECT_EQ(actual.firstDifference(expected), -1) << test.name << " at " << isaName(isa) << ", Y " << luma;
      });
    }
  }
}

TEST(Color, PlanesConvertInPlace) {
  constexpr RoiSize kSize = {107, 3};
  for (const ColorCase& test : kCases) {
    if (test.source.planes < 3 || test.destination.planes != test.source.planes) continue;
    const auto planes = static_cast<size_t>(test.source.planes);
    const std::vector<OperandSpec> operands(planes, sourceImage<uint8_t>(kSize.width, kSize.height));
    // The destination's planes are the source's in another order.
    for (size_t shift = 0; shift < planes; ++shift) {
      const auto rotated = [&](const Image& image) {
        Image other = image;
        std::rotate(other.planes, other.planes + shift, other.planes + planes);
        return other;
      };
      forEachIsa([&](Isa isa) {
        const Operands before(operands, kLayouts[0], shift, 0), after(operands, kLayouts[0], shift, 0);
        const Image image = imageOf(after, 0, test.source.planes);
        EXPECT_EQ(test.function(image, rotated(image), kSize), StatusOk);
        for (int y = 0; y < kSize.height; ++y) {
          for (int x = 0; x < kSize.width; ++x) {
            const Channels expected = test.pixel(test.source.load(before, 0, x, y), x, kSize.width);
            Channels actual = test.source.load(after, 0, x, y);
            std::rotate(actual.begin(), actual.begin() + static_cast<ptrdiff_t>(shift),
                        actual.begin() + static_cast<ptrdiff_t>(planes));
            ASSERT_EQ(actual, expected) << test.name << " at " << isaName(isa) << ", column " << x;
          }
        }
      });
    }
  }
}

TEST(Color, ChecksArgumentsInOrder) {
  for (const ColorCase& test : kCases) {
    std::vector<uint8_t> source(64, 1), destination(64, 0);
    const auto pointerChecks = [](const Format& format) { return format.isArray ? 1 + format.planes : 1; };
    const int sourceChecks = pointerChecks(test.source), destinationChecks = pointerChecks(test.destination);
    std::vector<StatusCode> order(static_cast<size_t>(sourceChecks + destinationChecks), StatusNullPointer);
    const size_t steps = order.size(), sizes = steps + 2;
    order.insert(order.end(), {StatusBadStep, StatusBadStep, StatusBadSize, StatusBadSize});
    const auto image = [](const Faults& f, std::vector<uint8_t>& bytes, size_t firstCheck, const Format& format,
                          int32_t step) {
      Image result = {{}, step, f[firstCheck]};
      for (size_t i = 0; i < static_cast<size_t>(format.planes); ++i) {
        const bool isNull = format.isArray && f[firstCheck + 1 + i];
        result.planes[i] = isNull ? nullptr : bytes.data() + 8 * i;
      }
      return result;
    };
    expectArgumentOrder(
        test.name, order,
        [&](const Faults& f) {
          return test.function(
              image(f, source, 0, test.source, f.value(steps, 8, 0)),
              image(f, destination, static_cast<size_t>(sourceChecks), test.destination, f.value(steps + 1, 8, -8)),
              RoiSize{f.value(sizes, 2, 0), f.value(sizes + 1, 2, -1)});
        },
        [&] { return std::count(destination.begin(), destination.end(), 0) != 64; });
  }
}

// What every user relies on, as numbers.
TEST(Color, BlackWhiteAndGreyAreNeutral) {
  for (const int level : {0, 128, 255}) {
    std::vector<uint8_t> pixels(3 * 11, static_cast<uint8_t>(level)), y(11), cb(11), cr(11), back(3 * 11);
    uint8_t* const planes[] = {y.data(), cb.data(), cr.data()};
    ASSERT_EQ(zoriRGBToYCbCr_JPEG_8u_C3P3R(pixels.data(), 33, planes, 11, {11, 1}), StatusOk);
    EXPECT_EQ(y, std::vector<uint8_t>(11, static_cast<uint8_t>(level)));
    EXPECT_EQ(cb, std::vector<uint8_t>(11, 128));
    EXPECT_EQ(cr, std::vector<uint8_t>(11, 128));
    ASSERT_EQ(zoriYCbCrToRGB_JPEG_8u_P3C3R(planes, 11, back.data(), 33, {11, 1}), StatusOk);
    EXPECT_EQ(back, pixels);
  }
}

}  // namespace
}  // namespace zorj::test
