#include "common/error.h"
#include "common/image_file.h"
#include "gallery/gallery.h"
#include "gallery/independent.h"
#include "tiff/codec.h"

namespace examples::gallery {

void showTiff(Gallery& gallery) {
  Exhibit exhibit;
  exhibit.family = "TIFF";
  exhibit.name = "PackBits";
  exhibit.fileName = "packbits.tif";
  exhibit.comment = "Made for scanned pages: a photograph has few runs of equal bytes, and even grows.";
  exhibit.exact = true;
  gallery.show(
      exhibit,
      [](const Image& image) {
        Bytes file;
        tiff::encode(withPrecision<uint16_t>(image, 8), tiff::Compression::packBits, file);
        return file;
      },
      [](std::span<const uint8_t> file) {
        DeepImage image;
        const tiff::DecodeReport report = tiff::decode(file, image);
        if (!report.complete()) throw Error(report.problem);
        return withPrecision<uint8_t>(image, 8);
      },
      [&](const Exhibit& shown, const Bytes&) { return askPillow(gallery, shown, 0); });
}

}  // namespace examples::gallery
