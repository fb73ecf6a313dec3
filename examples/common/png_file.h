// PNG files through libpng.
#pragma once

#include <span>

#include "common/files.h"
#include "common/image.h"

namespace examples {

bool isPng(std::span<const uint8_t> bytes);
Image readPng(std::span<const uint8_t> bytes);
void writePng(const Image& image, OutputFile& file);

}  // namespace examples
