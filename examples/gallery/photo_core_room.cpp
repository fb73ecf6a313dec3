#include <zorj/hdp.h>

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "common/error.h"
#include "gallery/gallery.h"

namespace examples::gallery {
namespace {

constexpr int32_t kSide = 4;

int32_t roundedUp(int32_t length) { return (length + kSide - 1) / kSide * kSide; }

// Level-shifted samples of a channel in whole blocks; the last row and column are repeated.
struct Plane {
  Plane(const Image& image, int32_t channel) : width(roundedUp(image.width)), height(roundedUp(image.height)) {
    samples.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int32_t y = 0; y < height; ++y) {
      const uint8_t* const row = image.at(0, std::min(y, image.height - 1)) + channel;
      for (int32_t x = 0; x < width; ++x) samples.push_back(row[std::min(x, image.width - 1) * image.channels] - 128);
    }
  }
  int32_t step() const { return width * int32_t{sizeof(int32_t)}; }
  int32_t& at(int32_t x, int32_t y) { return samples[size_t(y) * size_t(width) + size_t(x)]; }

  int32_t width, height;
  std::vector<int32_t> samples;
};

void transform(std::vector<Plane>& planes, decltype(zoriPCTFwd_HDP_32s_C1IR)* function) {
  for (Plane& plane : planes) {
    const StatusCode status = function(plane.samples.data(), plane.step(), plane.width, plane.height);
    if (status != StatusOk) throw Error("the photo core transform failed with status " + std::to_string(status));
  }
}

// The coefficients of the blocks sorted into 4 x 4 small pictures: the DC values as they look, the others by the bits
// they take.
Image sorted(Plane& plane) {
  Image image(plane.width, plane.height, 1);
  const int32_t across = plane.width / kSide, down = plane.height / kSide;
  for (int32_t y = 0; y < plane.height; ++y) {
    for (int32_t x = 0; x < plane.width; ++x) {
      const int32_t value = plane.at(x, y), column = x % kSide, row = y % kSide;
      const int32_t shade =
          column + row == 0 ? value / kSide + 128 : 24 * std::bit_width(static_cast<uint32_t>(std::abs(value)));
      *image.at(column * across + x / kSide, row * down + y / kSide) = static_cast<uint8_t>(std::clamp(shade, 0, 255));
    }
  }
  return image;
}

}  // namespace

void showPhotoCoreTransform(Gallery& gallery) {
  std::vector<Plane> coefficients;
  Exhibit exhibit;
  exhibit.family = "Photo core";
  exhibit.name = "4 x 4 transform and back";
  exhibit.comment = "The transform of each channel, in memory.";
  exhibit.exact = true;
  gallery.show(
      exhibit,
      [&](const Image& image) {
        coefficients.clear();
        for (int32_t c = 0; c < image.channels; ++c) coefficients.emplace_back(image, c);
        transform(coefficients, &zoriPCTFwd_HDP_32s_C1IR);
        return Bytes();
      },
      [&](std::span<const uint8_t>) {
        std::vector<Plane> planes = coefficients;
        transform(planes, &zoriPCTInv_HDP_32s_C1IR);
        const Image& original = gallery.original();
        Image image(original.width, original.height, original.channels);
        for (int32_t y = 0; y < image.height; ++y) {
          for (int32_t x = 0; x < image.width; ++x) {
            for (int32_t c = 0; c < image.channels; ++c) {
              image.at(x, y)[c] = static_cast<uint8_t>(planes[static_cast<size_t>(c)].at(x, y) + 128);
            }
          }
        }
        return image;
      },
      [](const Exhibit&, const Bytes&) { return Verdict(); });
  gallery.show({"The photo core transform", "photo-core-coefficients.png",
                sorted(coefficients[coefficients.size() / 2]),
                "The coefficients of all 4 x 4 blocks, sorted: the mean of each block in the small picture at the top "
                "left, each of the fifteen details in a picture of its own, brighter where it takes more bits. The "
                "inverse gives back every sample."});
}

}  // namespace examples::gallery
