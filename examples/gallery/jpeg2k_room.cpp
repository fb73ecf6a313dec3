#include "common/error.h"
#include "gallery/gallery.h"
#include "gallery/independent.h"
#include "jpeg2k/codec.h"

namespace examples::gallery {
namespace {

Image decode(std::span<const uint8_t> file) {
  Image image;
  const jpeg2k::DecodeReport report = jpeg2k::decode(file, {}, image);
  if (!report.complete()) throw Error(report.problem);
  return image;
}

Gallery::Encode encoder(double ratio) {
  return [ratio](const Image& image) {
    jpeg2k::EncodeOptions options;
    options.ratio = ratio;
    Bytes file;
    jpeg2k::encode(image, options, file);
    return file;
  };
}

}  // namespace

void showJpeg2k(Gallery& gallery) {
  for (const int ratio : {0, 10, 25, 60}) {
    Exhibit exhibit;
    exhibit.family = "JPEG 2000";
    exhibit.name = ratio == 0 ? "lossless, 5/3 wavelet" : format("%d:1, 9/7 wavelet", ratio);
    exhibit.fileName = ratio == 0 ? "lossless.jp2" : format("%d-to-1.jp2", ratio);
    exhibit.comment = ratio == 0 ? "The reversible wavelet and colour transform, with all bit-planes coded."
                                 : format("The best picture in a %dth of the samples' size.", ratio);
    exhibit.exact = ratio == 0;
    gallery.show(exhibit, encoder(ratio), &decode, [&](const Exhibit& shown, const Bytes&) {
      return askPillow(gallery, shown, shown.exact ? 0 : 1, "OpenJPEG");
    });
  }
  std::vector<Gallery::Encode> encoders;
  for (const double ratio : {160.0, 80.0, 40.0, 25.0, 16.0, 10.0, 7.0, 5.0}) encoders.push_back(encoder(ratio));
  gallery.draw("JPEG 2000", "9/7", encoders, &decode);
}

}  // namespace examples::gallery
