// Colour conversion of one MCU between pixels and level-shifted blocks. T.81 leaves the colour space open; JFIF's is
// that of ITU-R BT.601, here in units of 2^-14 (2^-13 where stated).
#pragma once

#include <cstdint>

namespace zorj {

// The pixels of an MCU to blocks of Y, Cb and Cr:
//   Y  = (4899 R + 9617 G + 1868 B - 2088960) >> 14
//   Cb = (-2764 R - 5428 G + 8192 B + 8192 n) >> 14 + log2(n)
//   Cr = (8192 R - 6860 G - 1332 B + 8192 n) >> 14 + log2(n)
// with R, G, B summed over the n pixels that share a chroma sample. A packed field f of 5 bits stands for 8 f, one of 6
// bits for 4 f. C, M and Y stand for 255 - R, 255 - G and 255 - B; K - 128 makes blocks laid out as those of Y.
// Splitting takes pixels of Y Cb Y Cr apart, each sample minus 128.
using McuForward = void (*)(const uint8_t* src, int32_t srcStep, int16_t* const* dst);

struct McuForwardKernels {
  McuForward rgbTo444, rgbTo422, rgbTo411;
  McuForward bgrTo444, bgrTo422, bgrTo411;
  McuForward bgr555To444, bgr555To422, bgr555To411;
  McuForward bgr565To444, bgr565To422, bgr565To411;
  McuForward cmykTo444, cmykTo422, cmykTo411;
  McuForward split422;
};

// Blocks to the pixels of an MCU, chroma repeated: Y plus a term of the chroma, added in 16 bits and clamped. The
// terms, narrowed to 16 bits with saturation, for 4:4:4 and 4:2:2:
//   R: (22970 Cr + 2105344) >> 14   G: (-5638 Cb - 11700 Cr + 2105344) >> 14   B: (29032 Cb + 2105344) >> 14
// for 2x2 chroma:
//   R: (11485 Cr + 1052672) >> 13   G: minus (5638 Cb + 11700 Cr - 2088960) >> 14   B: (14516 Cb + 1052672) >> 13
// Packed pixels drop the low bits of the channels. C, M and Y are 255 - R, 255 - G and 255 - B, and K + 128 is clamped.
// Joining puts pixels of Y Cb Y Cr together, each sample plus 128 and clamped.
using McuInverse = void (*)(const int16_t* const* src, uint8_t* dst, int32_t dstStep);

struct McuInverseKernels {
  McuInverse rgbFrom444, rgbFrom422, rgbFrom411;
  McuInverse bgrFrom444, bgrFrom422, bgrFrom411;
  McuInverse bgr555From444, bgr555From422, bgr555From411;
  McuInverse bgr565From444, bgr565From422, bgr565From411;
  McuInverse cmykFrom444, cmykFrom422, cmykFrom411;
  McuInverse join422;
};

const McuForwardKernels& mcuForwardKernels();
const McuInverseKernels& mcuInverseKernels();

}  // namespace zorj
