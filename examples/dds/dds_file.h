// DDS files of block-compressed two-dimensional textures: headers of DirectX 9 and 10, levels of a mip chain.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace examples::dds {

enum class Format { dxt1, dxt3, dxt5, ycocgDxt5, bc7 };

const char* nameOf(Format format);

// A picture of one level of a mip chain: half of the size above it in each direction, at least 1.
struct Level {
  int32_t width;
  int32_t height;
  size_t bytes;  // of blocks
};

struct Texture {
  Format format = Format::dxt1;
  int32_t width = 0;
  int32_t height = 0;
  int32_t levels = 1;
  bool dx10 = false;  // has a DirectX 10 header

  Level level(int32_t number) const;
};

// The number of levels down to 1 x 1.
int32_t fullChain(int32_t width, int32_t height);

// Reads the headers. Throws Error if they are not those of a texture in one of the formats, or if blocks are missing.
Texture parse(std::span<const uint8_t> file);

// The blocks of a level of the file of this texture.
std::span<const uint8_t> blocksOf(std::span<const uint8_t> file, const Texture& texture, int32_t level);

// Headers for the texture; the blocks of its levels follow them. BC7 takes a DirectX 10 header.
std::vector<uint8_t> makeHeaders(const Texture& texture);

}  // namespace examples::dds
