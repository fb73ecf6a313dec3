#include <cstdio>

#include "gallery/gallery.h"
#include "gallery/independent.h"
#include "jpeg2k/codec.h"

namespace examples::gallery {
namespace {

Image decoded(const std::vector<uint8_t>& file) {
  Image image;
  jpeg2k::decode(file, {}, image);
  return image;
}

std::vector<uint8_t> encoded(const Image& image, double ratio) {
  jpeg2k::EncodeOptions options;
  options.ratio = ratio;
  std::vector<uint8_t> file;
  jpeg2k::encode(image, options, file);
  return file;
}

}  // namespace

void showJpeg2k(Gallery& gallery) {
  for (const int ratio : {0, 10, 25, 60}) {
    const std::string of = ratio == 0 ? "" : std::to_string(ratio);
    Exhibit exhibit;
    exhibit.family = "JPEG 2000";
    exhibit.name = ratio == 0 ? "lossless (5/3)" : of + " : 1 (9/7)";
    exhibit.fileName = ratio == 0 ? "lossless.jp2" : "ratio-" + of + ".jp2";
    exhibit.exact = ratio == 0;
    exhibit = gallery.take(
        std::move(exhibit), [&] { return encoded(gallery.original(), ratio); }, &decoded);
    checkWithPillow(gallery, exhibit.exact ? 0 : 1, exhibit);
    gallery.show(std::move(exhibit));
  }
  Curve curve{"JPEG 2000", {}};
  for (const double ratio : {120.0, 60.0, 40.0, 25.0, 16.0, 10.0, 7.0, 5.0}) {
    const std::vector<uint8_t> file = encoded(gallery.original(), ratio);
    curve.points.push_back(gallery.point(file.size(), decoded(file)));
  }
  gallery.show(std::move(curve));
}

}  // namespace examples::gallery
