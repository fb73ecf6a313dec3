// Image files: PNG, binary PGM and PPM, and PAM.
#pragma once

#include <string>

#include "common/image.h"
#include "common/png_file.h"

namespace examples {

// The kind is told by the file's first bytes. Palettes become RGB. The first scales all samples to 8 bits;
// the second keeps those of a PNG as 8 or 16 bits (fewer become 8), those of other files as the bits of their largest
// value, and lays transparent pixels over white.
Image readImage(const std::string& path, Opacity opacity = Opacity::overWhite);
DeepImage readDeepImage(const std::string& path);

enum class ImageFormat { png, pgm, ppm, pam };

// The format a file name's extension asks for.
ImageFormat imageFormatOf(const std::string& path);

// Write the whole file or none. A grey image is stored as RGB in a PPM; a colour image does not fit a PGM. CMYK images
// stay what they are in a PAM file alone, and become RGB in others; opacity fits a PNG file alone. Other precisions
// than 8 and 16 bits are kept in all files but PNG, where samples are scaled to the next of these.
void writeImage(const std::string& path, const Image& image);
void writeImage(const std::string& path, const DeepImage& image);

// RGB as it looks on a device without colour management: each primary is (1 - ink) (1 - K) of the largest value.
template <class Sample>
BasicImage<Sample> cmykToRgb(const BasicImage<Sample>& cmyk);

// The same picture with samples of another precision, rounded.
template <class To, class From>
BasicImage<To> withPrecision(const BasicImage<From>& image, int32_t precision);

}  // namespace examples
