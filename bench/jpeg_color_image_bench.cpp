// Colour conversion of whole images against memcpy of the bytes it touches, on images that fit in the second-level
// cache and on images that do not fit in any; and two threads against one.
#include <zorcore.h>
#include <zorj.h>

#include "support/copy.h"

namespace zorj::bench {
namespace {

struct ImageSize {
  const char* name;
  RoiSize size;
};
constexpr ImageSize kSizes[] = {{"L2", {256, 160}}, {"DRAM", {4096, 2730}}};

// Planes of an image of 8-bit samples; where a format is interleaved or packed only the first is used.
template <class Byte>
struct Planes {
  Byte* plane[4];
};
template <class Byte>
Planes<Byte> planesOf(Byte* bytes, RoiSize size) {
  const ptrdiff_t distance = ptrdiff_t{size.width} * size.height;
  return {{bytes, bytes + distance, bytes + 2 * distance, bytes + 3 * distance}};
}

// An argument of an image function and the bytes of a row of it.
template <class Pointer, class Byte>
Pointer argument(const Planes<Byte>& planes) {
  if constexpr (std::is_pointer_v<std::remove_pointer_t<Pointer>>) {
    return planes.plane;
  } else {
    return reinterpret_cast<Pointer>(planes.plane[0]);
  }
}
template <class Pointer>
int32_t stepOf(int32_t width, int32_t bytesPerPixel) {
  return std::is_pointer_v<std::remove_pointer_t<Pointer>> ? width : width * bytesPerPixel;
}

template <class Source, class Destination>
using ImageFunction = StatusCode(ZORJ_CALL*)(Source, int32_t, Destination, int32_t, RoiSize);

template <class Source, class Destination>
std::function<void()> call(ImageFunction<Source, Destination> function, const std::shared_ptr<Buffers>& buffers,
                           RoiSize size, int32_t srcBytes, int32_t dstBytes) {
  return [=] {
    const auto src = planesOf(buffers->src(), size);
    const auto dst = planesOf(buffers->dst(), size);
    function(argument<Source>(src), stepOf<Source>(size.width, srcBytes), argument<Destination>(dst),
             stepOf<Destination>(size.width, dstBytes), size);
  };
}

std::shared_ptr<Buffers> buffersFor(RoiSize size, int32_t srcBytes, int32_t dstBytes) {
  const size_t pixels = size_t(size.width) * size_t(size.height);
  return std::make_shared<Buffers>(pixels * size_t(srcBytes), pixels * size_t(dstBytes));
}

// srcBytes and dstBytes are bytes a pixel, of all planes together.
template <class Source, class Destination>
void compareImages(const std::string& name, ImageFunction<Source, Destination> function, int32_t srcBytes,
                   int32_t dstBytes) {
  for (const ImageSize& image : kSizes) {
    const auto buffers = buffersFor(image.size, srcBytes, dstBytes);
    compareWithCopy(name + ", " + image.name, buffers, call(function, buffers, image.size, srcBytes, dstBytes));
  }
}

template <class Source, class Destination>
void compareThreads(const std::string& name, ImageFunction<Source, Destination> function, int32_t srcBytes,
                    int32_t dstBytes) {
  constexpr RoiSize kFourMegapixels = {2048, 2048};
  const auto buffers = buffersFor(kFourMegapixels, srcBytes, dstBytes);
  const auto run = call(function, buffers, kFourMegapixels, srcBytes, dstBytes);
  const auto with = [=](int threads) {
    return [=] {
      zorSetNumThreads(threads);
      run();
      zorSetNumThreads(1);
    };
  };
  compare(name + ", 4 MP", double(kFourMegapixels.width) * kFourMegapixels.height, "pixels",
          {{"2 threads", with(2)}, {"1 thread", with(1)}}, true);
}

}  // namespace

void registerComparisons() {
  zorSetNumThreads(1);
  compareImages("RGB to YCbCr", &zoriRGBToYCbCr_JPEG_8u_C3P3R, 3, 3);
  compareImages("BGR to YCbCr", &zoriBGRToYCbCr_JPEG_8u_C3P3R, 3, 3);
  compareImages("RGB planes to YCbCr", &zoriRGBToYCbCr_JPEG_8u_P3R, 3, 3);
  compareImages("RGB to Y", &zoriRGBToY_JPEG_8u_C3C1R, 3, 1);
  compareImages("BGR to Y", &zoriBGRToY_JPEG_8u_C3C1R, 3, 1);
  compareImages("RGB planes to Y", &zoriRGBToY_JPEG_8u_P3C1R, 3, 1);
  compareImages("BGR555 to YCbCr", &zoriBGR555ToYCbCr_JPEG_16u8u_C3P3R, 2, 3);
  compareImages("BGR565 to YCbCr", &zoriBGR565ToYCbCr_JPEG_16u8u_C3P3R, 2, 3);
  compareImages("RGB555 to YCbCr", &zoriRGB555ToYCbCr_JPEG_16u8u_C3P3R, 2, 3);
  compareImages("RGB565 to YCbCr", &zoriRGB565ToYCbCr_JPEG_16u8u_C3P3R, 2, 3);
  compareImages("YCbCr to RGB", &zoriYCbCrToRGB_JPEG_8u_P3C3R, 3, 3);
  compareImages("YCbCr to BGR", &zoriYCbCrToBGR_JPEG_8u_P3C3R, 3, 3);
  compareImages("YCbCr to RGB planes", &zoriYCbCrToRGB_JPEG_8u_P3R, 3, 3);
  compareImages("YCbCr to RGB555", &zoriYCbCrToRGB555_JPEG_8u16u_P3C3R, 3, 2);
  compareImages("YCbCr to RGB565", &zoriYCbCrToRGB565_JPEG_8u16u_P3C3R, 3, 2);
  compareImages("YCbCr to BGR555", &zoriYCbCrToBGR555_JPEG_8u16u_P3C3R, 3, 2);
  compareImages("YCbCr to BGR565", &zoriYCbCrToBGR565_JPEG_8u16u_P3C3R, 3, 2);
  compareImages("YCbCr 4:2:2 to RGB", &zoriYCbCr422ToRGB_JPEG_8u_C2C3R, 2, 3);
  compareImages("CMYK to YCCK", &zoriCMYKToYCCK_JPEG_8u_C4P4R, 4, 4);
  compareImages("CMYK planes to YCCK", &zoriCMYKToYCCK_JPEG_8u_P4R, 4, 4);
  compareImages("YCCK to CMYK", &zoriYCCKToCMYK_JPEG_8u_P4C4R, 4, 4);
  compareImages("YCCK to CMYK planes", &zoriYCCKToCMYK_JPEG_8u_P4R, 4, 4);
  compareThreads("RGB to YCbCr", &zoriRGBToYCbCr_JPEG_8u_C3P3R, 3, 3);
  compareThreads("YCbCr to RGB", &zoriYCbCrToRGB_JPEG_8u_P3C3R, 3, 3);
}

}  // namespace zorj::bench
