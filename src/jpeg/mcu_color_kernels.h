// Colour conversion of one MCU between 8-bit pixels and level-shifted blocks. T.81 numbers its coefficients from the
// luminance of ITU-R BT.601, JFIF; here in units of 2^-14 (2^-13 where stated).
#pragma once

#include <cstdint>

namespace zorj {

// The pixels of an MCU to blocks of Y, Cb and Cr:
//   Y  = (4899 R + 9617 G + 1868 B - 2088960) >> 14
//   Cb = (-2764 R - 5428 G + 8192 B + 8192 n) >> 14 + log2(n)
//   Cr = (8192 R - 6860 G - 1332 B + 8192 n) >> 14 + log2(n)
// with R, G, B summed over the n pixels that share a chroma sample.
using McuForward = void (*)(const uint8_t* src, int32_t srcStep, int16_t* const dst[3]);

// Blocks to the pixels of an MCU, chroma repeated: Y plus a term of the chroma, added in 16 bits and clamped. The
// terms, narrowed to 16 bits with saturation, for 4:4:4:
//   R: (22970 Cr + 2105344) >> 14   G: (-5638 Cb - 11700 Cr + 2105344) >> 14   B: (29032 Cb + 2105344) >> 14
// for 2x2 chroma:
//   R: (11485 Cr + 1052672) >> 13   G: minus (5638 Cb + 11700 Cr - 2088960) >> 14   B: (14516 Cb + 1052672) >> 13
using McuInverse = void (*)(const int16_t* const src[3], uint8_t* dst, int32_t dstStep);

struct McuColorKernels {
  McuForward rgbTo444, rgbTo422, rgbTo411;
  McuForward bgrTo444, bgrTo422, bgrTo411;
  McuInverse rgbFrom444, rgbFrom411;
  McuInverse bgrFrom444, bgrFrom411;
};

const McuColorKernels& mcuColorKernels();

}  // namespace zorj
