// Image files: PNG, and binary PGM and PPM.
#pragma once

#include <string>

#include "common/image.h"
#include "common/png_file.h"

namespace examples {

// The kind is told by the file's first bytes. Palettes become RGB, 16-bit and 1 to 4-bit samples become 8-bit ones.
Image readImage(const std::string& path, Opacity opacity = Opacity::overWhite);

enum class ImageFormat { png, pgm, ppm };

// The format a file name's extension asks for.
ImageFormat imageFormatOf(const std::string& path);

// Writes the whole file or none. A grey image is stored as RGB in a PPM; a colour image does not fit a PGM, and
// opacity fits a PNG alone.
void writeImage(const std::string& path, const Image& image);

}  // namespace examples
