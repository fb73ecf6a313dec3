// Rows of TIFF strips.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zorj/types.h"

namespace zorj {

struct TiffRowKernels {
  // PackBits; the position is that of the packets. Packets that were not complete leave no trace in the output.
  StatusCode (*pack)(const uint8_t* row, int32_t rowLength, uint8_t* packets, int32_t* position, int32_t length);
  StatusCode (*unpack)(const uint8_t* packets, int32_t* position, int32_t length, uint8_t* row, int32_t rowLength);
  // sample = high << 8 | low
  void (*split)(const uint16_t* samples, uint8_t* high, uint8_t* low, size_t width);
  void (*join)(const uint8_t* high, const uint8_t* low, uint16_t* samples, size_t width);
};

const TiffRowKernels& tiffRowKernels();

}  // namespace zorj
