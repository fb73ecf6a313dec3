// PNG files through libpng.
#pragma once

#include <span>

#include "common/files.h"
#include "common/image.h"

namespace examples {

bool isPng(std::span<const uint8_t> bytes);
// Samples of 16 bits, or of 8 where the file has no more.
DeepImage readPng(std::span<const uint8_t> bytes);
// Samples of 8 or 16 bits, of one channel or three.
template <class Sample>
void writePng(const BasicImage<Sample>& image, OutputFile& file);

}  // namespace examples
