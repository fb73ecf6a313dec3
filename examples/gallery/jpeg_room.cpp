#include "gallery/gallery.h"
#include "gallery/independent.h"
#include "jpeg/codec.h"

namespace examples::gallery {
namespace {

Image decoded(const std::vector<uint8_t>& file) {
  Image image;
  jpeg::decode(file, {}, image);
  return image;
}

std::vector<uint8_t> encoded(const Image& image, const jpeg::EncodeOptions& options) {
  std::vector<uint8_t> file;
  jpeg::encode(image, options, file);
  return file;
}

Curve curveOf(const Gallery& gallery, const std::string& name, bool progressive) {
  Curve curve{name, {}};
  for (const int32_t quality : {20, 35, 50, 65, 75, 85, 90, 94}) {
    jpeg::EncodeOptions options{quality, jpeg::Sampling::s420};
    options.progressive = progressive;
    const std::vector<uint8_t> file = encoded(gallery.original(), options);
    curve.points.push_back(gallery.point(file.size(), decoded(file)));
  }
  return curve;
}

}  // namespace

void showJpeg(Gallery& gallery) {
  using jpeg::EncodeOptions;
  using jpeg::Sampling;
  struct Row {
    const char* name;
    const char* fileName;
    EncodeOptions options;
    const char* comment;
  };
  EncodeOptions optimised{90, Sampling::s420}, progressive = optimised, deep = optimised, lossless;
  optimised.optimize = true;
  progressive.progressive = true;
  deep.precision = 12;
  lossless.predictor = 4;
  const Row rows[] = {
      {"baseline 4:4:4, quality 90", "baseline-444-q90.jpg", {90, Sampling::s444}, ""},
      {"baseline 4:2:0, quality 90", "baseline-420-q90.jpg", {90, Sampling::s420}, ""},
      {"baseline 4:2:0, quality 50", "baseline-420-q50.jpg", {50, Sampling::s420}, ""},
      {"optimised 4:2:0, quality 90", "optimised-420-q90.jpg", optimised,
       "The same picture in fewer bytes: tables made for it."},
      {"progressive 4:2:0, quality 90", "progressive-420-q90.jpg", progressive,
       "The same picture again, which comes into view in ten scans."},
      {"12 bits 4:2:0, quality 90", "deep-420-q90.jpg", deep,
       "Samples of 12 bits in the extended sequential process; few decoders read it."},
      {"lossless, predictor 4", "lossless.jpg", lossless, "The process of 1992, not JPEG-LS; few decoders read it."},
  };
  for (const Row& row : rows) {
    Exhibit exhibit;
    exhibit.family = "JPEG";
    exhibit.name = row.name;
    exhibit.fileName = row.fileName;
    exhibit.exact = row.options.predictor > 0;
    exhibit.comment = row.comment;
    exhibit = gallery.take(
        std::move(exhibit), [&] { return encoded(gallery.original(), row.options); }, &decoded);
    if (row.options.precision == 8 && row.options.predictor == 0) {
      checkWithLibjpegTurbo(encoded(gallery.original(), row.options), exhibit);
    } else {
      exhibit.check = "-";
    }
    gallery.show(std::move(exhibit));
  }
  gallery.show(curveOf(gallery, "JPEG baseline 4:2:0", false));
  gallery.show(curveOf(gallery, "JPEG progressive 4:2:0", true));
}

}  // namespace examples::gallery
