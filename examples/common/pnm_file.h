// Binary PGM (P5) and PPM (P6) files with samples of 0 to 255.
#pragma once

#include <span>

#include "common/files.h"
#include "common/image.h"

namespace examples {

bool isPnm(std::span<const uint8_t> bytes);
Image readPnm(std::span<const uint8_t> bytes);

// One channel makes a PGM, three a PPM.
void writePnm(const Image& image, int32_t channels, OutputFile& file);

}  // namespace examples
