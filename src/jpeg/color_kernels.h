// Rows of the whole-image colour conversion. The coefficients are those of ITU-R BT.601 and JFIF in fixed point.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/plane_rows.h"

namespace zorj {

// A row of `width` pixels from kSources planes to kDestinations planes. A destination plane may be any source plane.
template <class Source, size_t kSources, class Destination, size_t kDestinations>
using ColorRow = void (*)(PlaneRows<const Source, kSources> src, PlaneRows<Destination, kDestinations> dst,
                          size_t width);

// Every result is clamped to 0 .. 255. Fine, for whole groups of eight pixels from 8-bit RGB, and for all luminance
// alone:
//   Y  = (9798 R + 19235 G + 3736 B + 16266) >> 15
//   Cb = ((-5529 R - 10855 G + 16384 B + 16384) >> 15) + 128
//   Cr = ((16384 R - 13720 G - 2664 B + 16400) >> 15) + 128
// Coarse, for the pixels left at the end of such a row, and for all from packed pixels and CMYK:
//   Y  = (4899 R + 9617 G + 1868 B + 8192) >> 14
//   Cb = ((-2764 R - 5428 G + 8192 B + 8192) >> 14) + 128
//   Cr = ((8192 R - 6860 G - 1332 B + 8192) >> 14) + 128
// A packed field f of 5 bits stands for 8 f, one of 6 bits for 4 f. C, M and Y stand for 255 - R, 255 - G and 255 - B;
// K is copied.
struct ColorForwardKernels {
  ColorRow<uint8_t, 1, uint8_t, 3> rgbToYCbCr, bgrToYCbCr;
  ColorRow<uint8_t, 3, uint8_t, 3> planesToYCbCr;
  ColorRow<uint8_t, 1, uint8_t, 1> rgbToY, bgrToY;
  ColorRow<uint8_t, 3, uint8_t, 1> planesToY;
  ColorRow<uint16_t, 1, uint8_t, 3> bgr555ToYCbCr, bgr565ToYCbCr, rgb555ToYCbCr, rgb565ToYCbCr;
  ColorRow<uint8_t, 1, uint8_t, 4> cmykToYcck;
  ColorRow<uint8_t, 4, uint8_t, 4> planesToYcck;
};

// Every channel is clamped to 0 .. 255. To 8-bit pixels:
//   R = Y + ((22970 Cr - 2932015) >> 14)
//   G = Y + ((-5638 Cb - 11700 Cr + 2227566) >> 14)
//   B = Y + ((29032 Cb - 3707961) >> 14)
// To packed pixels, with k the chroma minus 128, before the low bits are dropped:
//   R = Y + ((91881 k + 32768) >> 16)
//   G = Y + ((-22554 kb - 46802 kr + 32768) >> 16)
//   B = Y + ((116130 k + 32768) >> 16)
// C, M and Y are 255 - R, 255 - G and 255 - B; K is copied. 4:2:2 rows are Y Cb Y Cr for every two pixels, the last
// pair of an odd row whole too.
struct ColorInverseKernels {
  ColorRow<uint8_t, 3, uint8_t, 1> yCbCrToRgb, yCbCrToBgr;
  ColorRow<uint8_t, 3, uint8_t, 3> yCbCrToPlanes;
  ColorRow<uint8_t, 3, uint16_t, 1> yCbCrToBgr555, yCbCrToBgr565, yCbCrToRgb555, yCbCrToRgb565;
  ColorRow<uint8_t, 1, uint8_t, 1> yCbCr422ToRgb;
  ColorRow<uint8_t, 4, uint8_t, 1> ycckToCmyk;
  ColorRow<uint8_t, 4, uint8_t, 4> ycckToPlanes;
};

const ColorForwardKernels& colorForwardKernels();
const ColorInverseKernels& colorInverseKernels();

}  // namespace zorj
