// Binary PGM (P5), PPM (P6) and PAM (P7) files.
#pragma once

#include <span>

#include "common/files.h"
#include "common/image.h"

namespace examples {

bool isPnm(std::span<const uint8_t> bytes);
// Samples are scaled to 16 bits where the largest value is not one of a number of bits.
DeepImage readPnm(std::span<const uint8_t> bytes);

// The tuple types GRAYSCALE, RGB and CMYK, the last with the largest value for full ink.
template <class Sample>
void writePam(const BasicImage<Sample>& image, OutputFile& file);

// One channel makes a PGM, three a PPM.
template <class Sample>
void writePnm(const BasicImage<Sample>& image, int32_t channels, OutputFile& file);

}  // namespace examples
