// PNG files through libpng.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "common/image.h"

namespace examples {

// What becomes of transparent pixels: they are laid over white, or the image gets a channel of opacity.
enum class Opacity { overWhite, keep };

bool isPng(std::span<const uint8_t> bytes);
// Samples of 16 bits, or of 8 where the file has no more.
DeepImage readPng(std::span<const uint8_t> bytes, Opacity opacity);
// Samples of 8 or 16 bits; all kinds of image but CMYK.
template <class Sample>
void writePng(const BasicImage<Sample>& image, std::FILE* file);

}  // namespace examples
