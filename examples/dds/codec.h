// Textures in memory, between pixels and DDS files.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/image.h"
#include "dds/dds_file.h"

namespace examples::dds {

// Makes a file in a format other than BC7 of an image, with all smaller levels if `mipmaps` is set. Throws Error if the
// image is too large.
std::vector<uint8_t> encode(const Image& image, Format format, bool mipmaps);

// A level of a file, as RGBA, or as RGB where all of it is opaque. Throws Error if the file is not one that is
// supported or has no such level.
Image decode(std::span<const uint8_t> file, int32_t level = 0);

}  // namespace examples::dds
