#include "common/error.h"
#include "gallery/gallery.h"
#include "gallery/independent.h"
#include "jpeg/codec.h"

namespace examples::gallery {
namespace {

using jpeg::EncodeOptions;
using jpeg::Sampling;

Image decode(std::span<const uint8_t> file) {
  Image image;
  const jpeg::DecodeReport report = jpeg::decode(file, {}, image);
  if (!report.complete()) throw Error(report.problem);
  return image;
}

Gallery::Encode encoder(const EncodeOptions& options) {
  return [options](const Image& image) {
    Bytes file;
    jpeg::encode(image, options, file);
    return file;
  };
}

void drawCurve(Gallery& gallery, const std::string& name, EncodeOptions options) {
  std::vector<Gallery::Encode> encoders;
  for (const int32_t quality : {10, 20, 35, 50, 65, 75, 85, 90, 94}) {
    options.quality = quality;
    encoders.push_back(encoder(options));
  }
  gallery.draw("JPEG", name, encoders, &decode);
}

}  // namespace

void showJpeg(Gallery& gallery) {
  EncodeOptions optimised{90, Sampling::s420}, progressive = optimised, deep, lossless;
  optimised.optimize = true;
  progressive.progressive = true;
  deep.precision = 12;
  lossless.predictor = 4;
  const struct {
    const char* name;
    const char* fileName;
    EncodeOptions options;
    const char* comment;
  } rows[] = {
      {"baseline", "baseline-444-q90.jpg", {90, Sampling::s444}, "A chroma sample for every pixel."},
      {"baseline", "baseline-420-q90.jpg", {90, Sampling::s420}, "In colour, four pixels share a chroma sample."},
      {"baseline", "baseline-420-q50.jpg", {50, Sampling::s420}, "Coarser steps: blocks and ringing begin to show."},
      {"optimised", "optimised-420-q90.jpg", optimised,
       "The same picture as baseline in fewer bytes, by Huffman tables made for it."},
      {"progressive", "progressive-420-q90.jpg", progressive,
       "The same picture again, which comes into view scan by scan."},
      {"12 bits", "twelve-bits-444-q90.jpg", deep,
       "Samples of 12 bits. Quality 90 has the steps it has for 8 bits, which are 16 times finer here. Few decoders "
       "read it."},
      {"lossless", "lossless.jpg", lossless,
       "Every sample predicted from its neighbours, the differences Huffman-coded, each channel by itself."},
  };
  for (const auto& [name, fileName, options, comment] : rows) {
    const bool usual = options.precision == 8 && options.predictor == 0;
    const bool grey = gallery.original().channels == 1;
    if (grey && usual && options.sampling == Sampling::s444) continue;  // as the next
    const std::string sampling = grey ? "" : options.sampling == Sampling::s444 ? " 4:4:4" : " 4:2:0";
    Exhibit exhibit;
    exhibit.family = "JPEG";
    exhibit.name = name + (options.predictor > 0 ? format(", predictor %d", options.predictor)
                                                 : sampling + format(", quality %d", options.quality));
    exhibit.fileName = fileName;
    exhibit.comment = comment;
    exhibit.exact = options.predictor > 0;
    gallery.show(exhibit, encoder(options), &decode, [&](const Exhibit&, const Bytes& file) {
      return usual ? askLibjpegTurbo(file) : askDcmtk(gallery, file);
    });
  }
  drawCurve(gallery, "baseline", {90, Sampling::s420});
  drawCurve(gallery, "progressive", progressive);
}

}  // namespace examples::gallery
