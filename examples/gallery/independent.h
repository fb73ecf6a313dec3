// Decoders that have nothing to do with the library, to hold its results against. Those that are programs may be
// missing: their verdict has no decoder then.
#pragma once

#include "gallery/gallery.h"

namespace examples::gallery {

// Compares the samples of a JPEG file before up-sampling and colour conversion: 1 is within rounding.
Verdict askLibjpegTurbo(const Bytes& file);

// Compares the samples of a lossless or 12-bit JPEG file, whose pixels our decoder makes of it.
Verdict askDcmtk(const Gallery& gallery, const Bytes& file);

// RGBA of a file in the gallery, as Pillow decodes it; empty without Pillow.
struct PillowPicture {
  bool installed = true;
  Bytes rgba;  // empty if Pillow cannot read the file
};
PillowPicture decodeWithPillow(const Gallery& gallery, const std::string& fileName);

// Compares the exhibit's picture with what Pillow decodes; what it uses for that may be named.
Verdict askPillow(const Gallery& gallery, const Exhibit& exhibit, int allowed, const char* decoder = "Pillow");

}  // namespace examples::gallery
