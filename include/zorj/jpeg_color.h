/**
 * @file jpeg_color.h
 * JPEG colour conversion of one minimum coded unit (MCU) at a time, between interleaved 8-bit pixels and the blocks the
 * DCT works on.
 *
 * Blocks are 64 contiguous signed 16-bit samples in row-major order, level-shifted by 128, at any byte address. An MCU
 * is an array of three pointers, to the blocks of Y, Cb and Cr; the blocks of one component follow one another without
 * a gap.
 *
 * | token | pixels  | Y blocks                                                | Cb, Cr                       |
 * |-------|---------|---------------------------------------------------------|------------------------------|
 * | 444   | 8 x 8   | 1                                                       | 1 each, a sample a pixel     |
 * | 422   | 16 x 8  | 2: columns 0 to 7, 8 to 15                              | 1 each, a sample for 2 x 1   |
 * | 411   | 16 x 16 | 4: top left, top right, bottom left, bottom right       | 1 each, a sample for 2 x 2   |
 *
 * The caller supplies whole MCUs, at the edges of an image by repeating its last pixels. To prepare an MCU for the DCT:
 *
 * @code
 * int16_t y[4 * 64], cb[64], cr[64];
 * int16_t* const blocks[3] = {y, cb, cr};
 * zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R(pixels, step, blocks);
 * @endcode
 */
#ifndef ZORJ_JPEG_COLOR_H
#define ZORJ_JPEG_COLOR_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                           int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                           int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr_JPEG_8u_P3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                         uint8_t* const pDst[3], int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriRGBToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriBGRToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriRGBToY_JPEG_8u_P3C1R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriBGR555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriBGR565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriRGB555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriRGB565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB_JPEG_8u_P3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                         uint8_t* const pDst[3], int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToBGR555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToBGR565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr422ToRGB_JPEG_8u_C2C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                              int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK_JPEG_8u_C4P4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[4],
                                                           int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int32_t srcStep,
                                                         uint8_t* const pDst[4], int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCCKToCMYK_JPEG_8u_P4C4R(const uint8_t* const pSrc[4], int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, RoiSize roiSize);
ZORJ_API StatusCode ZORJ_CALL zoriYCCKToCMYK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int32_t srcStep,
                                                         uint8_t* const pDst[4], int32_t dstStep, RoiSize roiSize);

/**
 * Converts the 8 x 8 pixels of one MCU from RGB to level-shifted YCbCr.
 *
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127; Cb = (-2764 R - 5428 G + 8192 B + 8192) >> 14;
 * Cr = (8192 R - 6860 G - 1332 B + 8192) >> 14, both within -128 .. 128.
 *
 * @param pSrc     the pixels, 8 to a row of 24 bytes; nothing beyond them is read
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb and Cr; may not overlap the pixels or one another
 * @return StatusNullPointer if pSrc or pDstMCU is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 8 pixels of one MCU from RGB to level-shifted YCbCr, a chroma sample for two neighbours.
 *
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127; Cb = (-2764 R - 5428 G + 8192 B + 16384) >> 15;
 * Cr = (8192 R - 6860 G - 1332 B + 16384) >> 15, both within -128 .. 128, with R, G and B
 * summed over the two pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes; nothing beyond them is read
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, left and right, and one each of Cb and Cr; may not overlap the pixels or one another
 * @return StatusNullPointer if pSrc or pDstMCU is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 16 pixels of one MCU from RGB to level-shifted YCbCr, a chroma sample for 2 x 2 pixels.
 *
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127; Cb = (-2764 R - 5428 G + 8192 B + 32768) >> 16;
 * Cr = (8192 R - 6860 G - 1332 B + 32768) >> 16, both within -128 .. 128, with R, G and B
 * summed over the four pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes; nothing beyond them is read
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks of Y (top left, top right, bottom left, bottom right) and one each of Cb and Cr; may not
 * overlap the pixels or one another
 * @return StatusNullPointer if pSrc or pDstMCU is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 8 x 8 pixels of one MCU from BGR to level-shifted YCbCr.
 *
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127; Cb = (-2764 R - 5428 G + 8192 B + 8192) >> 14;
 * Cr = (8192 R - 6860 G - 1332 B + 8192) >> 14, both within -128 .. 128.
 *
 * @param pSrc     the pixels, 8 to a row of 24 bytes; nothing beyond them is read
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb and Cr; may not overlap the pixels or one another
 * @return StatusNullPointer if pSrc or pDstMCU is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 8 pixels of one MCU from BGR to level-shifted YCbCr, a chroma sample for two neighbours.
 *
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127; Cb = (-2764 R - 5428 G + 8192 B + 16384) >> 15;
 * Cr = (8192 R - 6860 G - 1332 B + 16384) >> 15, both within -128 .. 128, with R, G and B
 * summed over the two pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes; nothing beyond them is read
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, left and right, and one each of Cb and Cr; may not overlap the pixels or one another
 * @return StatusNullPointer if pSrc or pDstMCU is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 16 pixels of one MCU from BGR to level-shifted YCbCr, a chroma sample for 2 x 2 pixels.
 *
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127; Cb = (-2764 R - 5428 G + 8192 B + 32768) >> 16;
 * Cr = (8192 R - 6860 G - 1332 B + 32768) >> 16, both within -128 .. 128, with R, G and B
 * summed over the four pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes; nothing beyond them is read
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks of Y (top left, top right, bottom left, bottom right) and one each of Cb and Cr; may not
 * overlap the pixels or one another
 * @return StatusNullPointer if pSrc or pDstMCU is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts one MCU of level-shifted YCbCr to 8 x 8 pixels of RGB.
 *
 * R = clamp(Y + ((22970 Cr + 2105344) >> 14)), G = clamp(Y + ((-5638 Cb - 11700 Cr + 2105344) >> 14)),
 * B = clamp(Y + ((29032 Cb + 2105344) >> 14)): the inverse of JFIF's matrix plus 128, rounded. The terms are saturated
 * to 16 bits, the sums wrap in 16 bits, and the result is clamped to 0 .. 255.
 *
 * @param pSrcMCU  one block each of Y, Cb and Cr
 * @param pDst     the pixels, 8 to a row of 24 bytes; may not overlap the blocks
 * @param dstStep  bytes from row to row
 * @return StatusNullPointer if pSrcMCU or pDst is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr to 16 x 16 pixels of RGB, a chroma sample for 2 x 2 pixels.
 *
 * With one fractional bit less for red and blue than the function for 4:4:4, so the two may differ by one:
 * R = clamp(Y + ((11485 Cr + 1052672) >> 13)), G = clamp(Y - ((5638 Cb + 11700 Cr - 2088960) >> 14)),
 * B = clamp(Y + ((14516 Cb + 1052672) >> 13)). The terms are saturated to 16 bits, the sums wrap in 16 bits, and the
 * result is clamped to 0 .. 255. Chroma is repeated, not interpolated.
 *
 * @param pSrcMCU  four blocks of Y (top left, top right, bottom left, bottom right) and one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 48 bytes; may not overlap the blocks
 * @param dstStep  bytes from row to row
 * @return StatusNullPointer if pSrcMCU or pDst is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr to 8 x 8 pixels of BGR.
 *
 * R = clamp(Y + ((22970 Cr + 2105344) >> 14)), G = clamp(Y + ((-5638 Cb - 11700 Cr + 2105344) >> 14)),
 * B = clamp(Y + ((29032 Cb + 2105344) >> 14)): the inverse of JFIF's matrix plus 128, rounded. The terms are saturated
 * to 16 bits, the sums wrap in 16 bits, and the result is clamped to 0 .. 255.
 *
 * @param pSrcMCU  one block each of Y, Cb and Cr
 * @param pDst     the pixels, 8 to a row of 24 bytes; may not overlap the blocks
 * @param dstStep  bytes from row to row
 * @return StatusNullPointer if pSrcMCU or pDst is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr to 16 x 16 pixels of BGR, a chroma sample for 2 x 2 pixels.
 *
 * With one fractional bit less for red and blue than the function for 4:4:4, so the two may differ by one:
 * R = clamp(Y + ((11485 Cr + 1052672) >> 13)), G = clamp(Y - ((5638 Cb + 11700 Cr - 2088960) >> 14)),
 * B = clamp(Y + ((14516 Cb + 1052672) >> 13)). The terms are saturated to 16 bits, the sums wrap in 16 bits, and the
 * result is clamped to 0 .. 255. Chroma is repeated, not interpolated.
 *
 * @param pSrcMCU  four blocks of Y (top left, top right, bottom left, bottom right) and one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 48 bytes; may not overlap the blocks
 * @param dstStep  bytes from row to row
 * @return StatusNullPointer if pSrcMCU or pDst is null; then StatusBadStep; then StatusNullPointer if a plane is null.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

#ifdef __cplusplus
}
#endif

#endif
