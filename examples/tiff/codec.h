// A TIFF codec in memory (TIFF 6.0): grey, RGB and CMYK images of 8 or 16 bits a sample, uncompressed or with PackBits.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/image.h"

namespace examples::tiff {

enum class Compression : uint32_t { none = 1, packBits = 32773 };

// Writes a little-endian file of strips to `tiff`. Samples of up to 8 bits are stored as 8 bits, others as 16, scaled
// where they are fewer.
void encode(const DeepImage& image, Compression compression, std::vector<uint8_t>& tiff);

// What the first directory of a file says; numbers as they are in the file where there is no name for them.
struct Description {
  bool littleEndian = true;
  uint32_t width = 0, height = 0;
  uint32_t samplesPerPixel = 1;
  uint32_t bitsPerSample = 1;
  uint32_t compression = 1;
  uint32_t photometric = 0;
  uint32_t rowsPerStrip = 0;  // at most the height
  bool separatePlanes = false;
  std::vector<uint32_t> stripOffsets, stripByteCounts;
};
// Throws Error if the file is not TIFF, its directory is damaged, or it says what this codec has no notion of.
Description describe(std::span<const uint8_t> tiff);

// How many images the file holds. Throws Error if its directories run in a circle or lead outside the file.
size_t countImages(std::span<const uint8_t> tiff);

struct DecodeReport {
  std::string problem;  // in one line; empty if nothing is missing

  bool complete() const { return problem.empty(); }
};

// Decodes the first image of a file. Damaged or truncated strips are decoded as far as they go: what is missing is 0,
// and the report says so. Samples beyond the colours (opacity) are left out. Throws Error if the file is not one that
// is supported, or not one row of it is there.
DecodeReport decode(std::span<const uint8_t> tiff, DeepImage& image);

}  // namespace examples::tiff
