// PNG files through libpng.
#pragma once

#include <span>

#include "common/files.h"
#include "common/image.h"

namespace examples {

// What becomes of transparent pixels: they are laid over white, or the image gets a channel of opacity.
enum class Opacity { overWhite, keep };

bool isPng(std::span<const uint8_t> bytes);
Image readPng(std::span<const uint8_t> bytes, Opacity opacity);
void writePng(const Image& image, OutputFile& file);

}  // namespace examples
