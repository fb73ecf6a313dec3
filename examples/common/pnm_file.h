// Binary PGM (P5), PPM (P6) and PAM (P7) files with samples of 0 to 255.
#pragma once

#include <span>

#include "common/files.h"
#include "common/image.h"

namespace examples {

bool isPnm(std::span<const uint8_t> bytes);
Image readPnm(std::span<const uint8_t> bytes);

// The tuple types GRAYSCALE, RGB and CMYK, the last with 255 for full ink.
void writePam(const Image& image, OutputFile& file);

// One channel makes a PGM, three a PPM.
void writePnm(const Image& image, int32_t channels, OutputFile& file);

}  // namespace examples
