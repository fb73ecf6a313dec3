#include "common/image_file.h"
#include "gallery/gallery.h"
#include "gallery/independent.h"
#include "tiff/codec.h"

namespace examples::gallery {

void showTiff(Gallery& gallery) {
  const DeepImage deep = withPrecision<uint16_t>(gallery.original(), 8);
  Exhibit exhibit;
  exhibit.family = "TIFF";
  exhibit.name = "PackBits";
  exhibit.fileName = "packbits.tif";
  exhibit.exact = true;
  exhibit.comment = "Made for scanned pages: a photograph has no runs, and grows.";
  exhibit = gallery.take(
      std::move(exhibit),
      [&] {
        std::vector<uint8_t> file;
        tiff::encode(deep, tiff::Compression::packBits, file);
        return file;
      },
      [](const std::vector<uint8_t>& file) {
        DeepImage image;
        tiff::decode(file, image);
        return withPrecision<uint8_t>(image, 8);
      });
  checkWithPillow(gallery, 0, exhibit);
  gallery.show(std::move(exhibit));
}

}  // namespace examples::gallery
