// Decoders that have nothing to do with the library, to hold its results against.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gallery/gallery.h"

namespace examples::gallery {

// Holds the samples of a JPEG file before up-sampling and colour conversion against libjpeg-turbo's: a difference of 1
// is within the accuracy of the inverse transform.
void checkWithLibjpegTurbo(const std::vector<uint8_t>& file, Exhibit& exhibit);

// Holds the exhibit's picture against what Pillow decodes of its file, where it is installed. `allowed` is the largest
// difference of a sample that counts as agreement.
void checkWithPillow(const Gallery& gallery, int allowed, Exhibit& exhibit);

}  // namespace examples::gallery
