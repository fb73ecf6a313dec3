#include <zorj/hdp.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>

#include "common/error.h"
#include "gallery/gallery.h"

namespace examples::gallery {
namespace {

void check(StatusCode status) {
  if (status != StatusOk) throw Error("the photo core transform failed with status " + std::to_string(status));
}

// The first channel of whole blocks.
struct Plane {
  explicit Plane(const Image& image) : width(image.width / 4 * 4), height(image.height / 4 * 4) {
    samples.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) samples.push_back(image.at(x, y)[image.channels / 2] - 128);
    }
  }
  int32_t step() const { return 4 * width; }

  int32_t width, height;
  std::vector<int32_t> samples;
};

// The coefficients of the blocks sorted into 4 x 4 small pictures: the DC values as they look, the others by the bits
// they have.
Image picture(const Plane& plane) {
  Image image(plane.width, plane.height, 1);
  const int32_t across = plane.width / 4, down = plane.height / 4;
  for (int32_t y = 0; y < plane.height; ++y) {
    for (int32_t x = 0; x < plane.width; ++x) {
      const int32_t value = plane.samples[static_cast<size_t>(y) * static_cast<size_t>(plane.width) + size_t(x)];
      const bool isDc = x % 4 == 0 && y % 4 == 0;
      const int32_t shade = isDc ? value / 4 + 128 : 24 * std::bit_width(static_cast<uint32_t>(std::abs(value)));
      *image.at(x % 4 * across + x / 4, y % 4 * down + y / 4) = static_cast<uint8_t>(std::clamp(shade, 0, 255));
    }
  }
  return image;
}

}  // namespace

void showPhotoCoreTransform(Gallery& gallery) {
  const Plane original(gallery.original());
  if (original.samples.empty()) return;
  Plane plane = original;
  check(zoriPCTFwd_HDP_32s_C1IR(plane.samples.data(), plane.step(), plane.width, plane.height));
  const Image coefficients = picture(plane);
  check(zoriPCTInv_HDP_32s_C1IR(plane.samples.data(), plane.step(), plane.width, plane.height));
  if (plane.samples != original.samples) throw Error("the inverse photo core transform does not give the samples back");
  const double pixels = static_cast<double>(plane.samples.size());
  const double forward = medianSeconds(
      [&] { check(zoriPCTFwd_HDP_32s_C1IR(plane.samples.data(), plane.step(), plane.width, plane.height)); });
  const double inverse = medianSeconds(
      [&] { check(zoriPCTInv_HDP_32s_C1IR(plane.samples.data(), plane.step(), plane.width, plane.height)); });
  std::printf("%-12s %-32s %11s %6s     exact %8.1f %8.1f   -\n", "Photo core", "transform of one channel", "-", "-",
              pixels / forward / 1e6, pixels / inverse / 1e6);
  gallery.show(
      {"The photo core transform", "photo-core-transform.png", coefficients,
       "The coefficients of all 4 x 4 blocks, sorted: the mean of each block in one small picture, each of the "
       "fifteen details in one of its own, brighter where it takes more bits. The inverse gives back the "
       "samples exactly."});
}

}  // namespace examples::gallery
