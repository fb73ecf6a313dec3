// Image files: PNG, binary PGM and PPM, and PAM.
#pragma once

#include <string>

#include "common/image.h"

namespace examples {

// The kind is told by the file's first bytes. Palettes become RGB, transparent pixels are laid over white, 16-bit and
// 1 to 4-bit samples become 8-bit ones.
Image readImage(const std::string& path);

enum class ImageFormat { png, pgm, ppm, pam };

// The format a file name's extension asks for.
ImageFormat imageFormatOf(const std::string& path);

// Writes the whole file or none. A grey image is stored as RGB in a PPM; a colour image does not fit a PGM. CMYK images
// stay what they are in a PAM file alone, and become RGB in others.
void writeImage(const std::string& path, const Image& image);

// RGB as it looks on a device without colour management: each primary is (255 - ink) (255 - K) / 255.
Image cmykToRgb(const Image& cmyk);

}  // namespace examples
