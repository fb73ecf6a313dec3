/**
 * @file jpeg_color.h
 * JPEG colour conversion: of whole images, between pixels and planes of full-range YCbCr (JFIF) or YCCK, and of one
 * minimum coded unit (MCU) at a time, between pixels and the level-shifted blocks the DCT works on.
 *
 * Whole images are described by a pointer, or an array of pointers to planes that share one step, and a step in bytes
 * from row to row; pixels may lie at any byte address. To convert an image of 640 x 480 pixels:
 *
 * @code
 * uint8_t* const planes[3] = {y, cb, cr};
 * const RoiSize size = {640, 480};
 * zoriRGBToYCbCr_JPEG_8u_C3P3R(pixels, 3 * 640, planes, 640, size);
 * @endcode
 *
 * Packed pixels are 16-bit words in the processor's byte order, whose lowest field is the first of the name and whose
 * highest the last:
 *
 * | name   | bits 0 to 4 | green        | bits above green | bit 15 |
 * |--------|-------------|--------------|------------------|--------|
 * | BGR555 | blue        | bits 5 to 9  | red              | unused |
 * | RGB555 | red         | bits 5 to 9  | blue             | unused |
 * | BGR565 | blue        | bits 5 to 10 | red              |        |
 * | RGB565 | red         | bits 5 to 10 | blue             |        |
 *
 * A field of 5 bits stands for 8 times its value, one of 6 bits for 4 times; a channel is packed by dropping its low
 * bits, and unused bits are written as 0.
 *
 * The blocks of MCUs are 64 contiguous signed 16-bit samples in row-major order, level-shifted by 128, at any byte
 * address. An MCU is an array of pointers to the blocks of Y, Cb, Cr and, of YCCK, K; the blocks of one component
 * follow one another without a gap.
 *
 * | token | pixels  | blocks of Y, and of K                                   | Cb, Cr                       |
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

/**
 * @name RGB to YCbCr, whole images
 * The luminance of BT.601 and the chroma of JFIF, centred on 128, clamped to 0 .. 255, in fixed point with one of two
 * precisions. Fine: Y = (9798 R + 19235 G + 3736 B + 16266) >> 15, Cb = (-5529 R - 10855 G + 16384 B + 4210688) >> 15,
 * Cr = (16384 R - 13720 G - 2664 B + 4210704) >> 15. Coarse: Y = (4899 R + 9617 G + 1868 B + 8192) >> 14, Cb = (-2764
 * R - 5428 G + 8192 B + 2105344) >> 14, Cr = (8192 R - 6860 G - 1332 B + 2105344) >> 14. The two differ by one at
 * most, on purpose: a pixel's result can depend on its place in the row.
 *
 * Checks, in this order: the source pointer or the array and its planes in turn null, then the destination likewise
 * (StatusNullPointer); a step below 1 (StatusBadStep); an empty size (StatusBadSize). Nothing is written when a check
 * fails. Rows of images of more than 8192 pixels are shared among threads. Planes of the destination may be planes of
 * the source, in place; other overlaps are not allowed. Only the bytes of the pixels are read and written.
 * @{
 */

/**
 * Converts RGB to YCbCr. Whole groups of eight pixels, counted from the start of the row, are converted with the fine
 * precision, the width mod 8 pixels left with the coarse one.
 *
 * @param pSrc     pixels of R, G, B, 3 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                           int32_t dstStep, RoiSize roiSize);

/**
 * Converts BGR to YCbCr, as zoriRGBToYCbCr_JPEG_8u_C3P3R() does with RGB.
 *
 * @param pSrc     pixels of B, G, R, 3 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                           int32_t dstStep, RoiSize roiSize);

/**
 * Converts planes of RGB to YCbCr, with the precisions of zoriRGBToYCbCr_JPEG_8u_C3P3R().
 *
 * @param pSrc     the planes of R, G and B
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr_JPEG_8u_P3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                         uint8_t* const pDst[3], int32_t dstStep, RoiSize roiSize);

/**
 * Takes the luminance of RGB, with the fine precision for every pixel.
 *
 * @param pSrc     pixels of R, G, B, 3 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the plane of Y
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize);

/**
 * Takes the luminance of BGR, with the fine precision for every pixel.
 *
 * @param pSrc     pixels of B, G, R, 3 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the plane of Y
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize);

/**
 * Takes the luminance of planes of RGB, with the fine precision for every pixel.
 *
 * @param pSrc     the planes of R, G and B
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     the plane of Y
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToY_JPEG_8u_P3C1R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, RoiSize roiSize);

/**
 * Converts packed BGR555 to YCbCr, with the coarse precision for every pixel. Runs in the calling thread.
 *
 * @param pSrc     pixels of BGR555, 2 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);

/**
 * Converts packed BGR565 to YCbCr, with the coarse precision for every pixel. Runs in the calling thread.
 *
 * @param pSrc     pixels of BGR565, 2 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);

/**
 * Converts packed RGB555 to YCbCr, with the coarse precision for every pixel. Runs in the calling thread.
 *
 * @param pSrc     pixels of RGB555, 2 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGB555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);

/**
 * Converts packed RGB565 to YCbCr, with the coarse precision for every pixel. Runs in the calling thread.
 *
 * @param pSrc     pixels of RGB565, 2 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb and Cr
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGB565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                 uint8_t* const pDst[3], int32_t dstStep,
                                                                 RoiSize roiSize);

/** @} */

/**
 * @name YCbCr to RGB, whole images
 * The inverse of JFIF's matrix, every channel clamped to 0 .. 255. To 8 bits a channel: R = Y + ((22970 Cr - 2932015)
 * >> 14), G = Y + ((-5638 Cb - 11700 Cr + 2227566) >> 14), B = Y + ((29032 Cb - 3707961) >> 14). The offsets hold the
 * centre of 128 and a rounding close to one half. To packed pixels, before the low bits are dropped and with the
 * chroma minus 128: R = Y + ((91881 Cr + 32768) >> 16), G = Y + ((-22554 Cb - 46802 Cr + 32768) >> 16), B = Y +
 * ((116130 Cb + 32768) >> 16).
 *
 * Checks, in this order: the source pointer or the array and its planes in turn null, then the destination likewise
 * (StatusNullPointer); a step below 1 (StatusBadStep); an empty size (StatusBadSize). Nothing is written when a check
 * fails. Rows of images of more than 8192 pixels are shared among threads. Planes of the destination may be planes of
 * the source, in place; other overlaps are not allowed. Only the bytes of the pixels are read and written.
 * @{
 */

/**
 * Converts YCbCr to RGB.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of R, G, B, 3 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCbCr to BGR.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of B, G, R, 3 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCbCr to planes of RGB.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     the planes of R, G and B
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB_JPEG_8u_P3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                         uint8_t* const pDst[3], int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCbCr to packed RGB555.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of RGB555, 2 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCbCr to packed RGB565.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of RGB565, 2 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToRGB565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCbCr to packed BGR555.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of BGR555, 2 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToBGR555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCbCr to packed BGR565.
 *
 * @param pSrc     the planes of Y, Cb and Cr
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of BGR565, 2 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCrToBGR565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep,
                                                                 uint16_t* pDst, int32_t dstStep, RoiSize roiSize);

/**
 * Converts interleaved YCbCr of which two neighbouring pixels share the chroma to RGB. The chroma is repeated, not
 * interpolated.
 *
 * @param pSrc     Y, Cb, Y, Cr for every two pixels of a row: 4 (width + 1) / 2 bytes, at an odd width too, where the
 *                 last Y is ignored
 * @param srcStep  bytes from source row to source row
 * @param pDst     pixels of R, G, B, 3 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr422ToRGB_JPEG_8u_C2C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                              int32_t dstStep, RoiSize roiSize);

/** @} */

/**
 * @name CMYK and YCCK, whole images
 * YCCK is the YCbCr of the complements R = 255 - C, G = 255 - M, B = 255 - Y, with K as it is. The coarse precision of
 * RGB to YCbCr serves every pixel one way, the 8-bit formulas of YCbCr to RGB the other.
 *
 * Checks, in this order: the source pointer or the array and its planes in turn null, then the destination likewise
 * (StatusNullPointer); a step below 1 (StatusBadStep); an empty size (StatusBadSize). Nothing is written when a check
 * fails. Rows of images of more than 8192 pixels are shared among threads. Planes of the destination may be planes of
 * the source, in place; other overlaps are not allowed. Only the bytes of the pixels are read and written.
 * @{
 */

/**
 * Converts CMYK to YCCK.
 *
 * @param pSrc     pixels of C, M, Y, K, 4 bytes each
 * @param srcStep  bytes from source row to source row
 * @param pDst     the planes of Y, Cb, Cr and K
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK_JPEG_8u_C4P4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[4],
                                                           int32_t dstStep, RoiSize roiSize);

/**
 * Converts planes of CMYK to YCCK.
 *
 * @param pSrc     the planes of C, M, Y and K
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     the planes of Y, Cb, Cr and K
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int32_t srcStep,
                                                         uint8_t* const pDst[4], int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCCK to CMYK.
 *
 * @param pSrc     the planes of Y, Cb, Cr and K
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     pixels of C, M, Y, K, 4 bytes each
 * @param dstStep  bytes from destination row to destination row
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCCKToCMYK_JPEG_8u_P4C4R(const uint8_t* const pSrc[4], int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, RoiSize roiSize);

/**
 * Converts YCCK to planes of CMYK.
 *
 * @param pSrc     the planes of Y, Cb, Cr and K
 * @param srcStep  bytes from source row to source row, of every plane
 * @param pDst     the planes of C, M, Y and K
 * @param dstStep  bytes from destination row to destination row, of every plane
 * @param roiSize  pixels of the image
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCCKToCMYK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int32_t srcStep,
                                                         uint8_t* const pDst[4], int32_t dstStep, RoiSize roiSize);

/** @} */

/**
 * @name Pixels to the blocks of an MCU
 * The luminance of BT.601 and the chroma of JFIF, minus 128, in fixed point with 14 fractional bits:
 * Y = (4899 R + 9617 G + 1868 B - 2088960) >> 14, within -128 .. 127. With R, G and B summed over the n = 1, 2 or 4
 * pixels that share a chroma sample, their average is taken in the same step:
 * Cb = (-2764 R - 5428 G + 8192 B + 8192 n) >> (14 + log2(n)), Cr = (8192 R - 6860 G - 1332 B + 8192 n) >>
 * (14 + log2(n)), both within -128 .. 128. CMYK stands for R = 255 - C, G = 255 - M, B = 255 - Y, and K - 128 makes
 * the fourth component.
 *
 * Checks, in this order: the pixels or the array null (StatusNullPointer); the step below 1 (StatusBadStep); the
 * pointers to the blocks in turn null (StatusNullPointer). Nothing is written when a check fails. The blocks may not
 * overlap the pixels or one another. Only the bytes of the pixels are read, only those of the blocks written.
 * @{
 */

/**
 * Converts the 8 x 8 pixels of one MCU from RGB to level-shifted YCbCr, a chroma sample a pixel.
 *
 * @param pSrc     the pixels, 8 to a row of 24 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 8 pixels of one MCU from RGB to level-shifted YCbCr, a chroma sample for two neighbours.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 16 pixels of one MCU from RGB to level-shifted YCbCr, a chroma sample for 2 x 2 pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 8 x 8 pixels of one MCU from BGR to level-shifted YCbCr, a chroma sample a pixel.
 *
 * @param pSrc     the pixels, 8 to a row of 24 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 8 pixels of one MCU from BGR to level-shifted YCbCr, a chroma sample for two neighbours.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 16 pixels of one MCU from BGR to level-shifted YCbCr, a chroma sample for 2 x 2 pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 48 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Converts the 8 x 8 pixels of one MCU from packed BGR555 to level-shifted YCbCr, a chroma sample a pixel.
 *
 * @param pSrc     the pixels, 8 to a row of 16 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                      int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 8 pixels of one MCU from packed BGR555 to level-shifted YCbCr, a chroma sample for two neighbours.
 *
 * @param pSrc     the pixels, 16 to a row of 32 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                      int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 16 pixels of one MCU from packed BGR555 to level-shifted YCbCr, a chroma sample for 2 x 2 pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 32 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                      int16_t* const pDstMCU[3]);

/**
 * Converts the 8 x 8 pixels of one MCU from packed BGR565 to level-shifted YCbCr, a chroma sample a pixel.
 *
 * @param pSrc     the pixels, 8 to a row of 16 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                      int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 8 pixels of one MCU from packed BGR565 to level-shifted YCbCr, a chroma sample for two neighbours.
 *
 * @param pSrc     the pixels, 16 to a row of 32 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                      int16_t* const pDstMCU[3]);

/**
 * Converts the 16 x 16 pixels of one MCU from packed BGR565 to level-shifted YCbCr, a chroma sample for 2 x 2 pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 32 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                                      int16_t* const pDstMCU[3]);

/**
 * Converts the 8 x 8 pixels of one MCU from CMYK to level-shifted YCCK, a chroma sample a pixel.
 *
 * @param pSrc     the pixels, 8 to a row of 32 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  one block each of Y, Cb, Cr and K
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[4]);

/**
 * Converts the 16 x 8 pixels of one MCU from CMYK to level-shifted YCCK, a chroma sample for two neighbours.
 *
 * @param pSrc     the pixels, 16 to a row of 64 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks each of Y and K, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[4]);

/**
 * Converts the 16 x 16 pixels of one MCU from CMYK to level-shifted YCCK, a chroma sample for 2 x 2 pixels.
 *
 * @param pSrc     the pixels, 16 to a row of 64 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  four blocks each of Y and K, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[4]);

/** @} */

/**
 * @name Blocks of an MCU to pixels
 * The inverse of JFIF's matrix plus 128, rounded; chroma is repeated, not interpolated. For 4:4:4 and 4:2:2:
 * R = clamp(Y + ((22970 Cr + 2105344) >> 14)), G = clamp(Y + ((-5638 Cb - 11700 Cr + 2105344) >> 14)),
 * B = clamp(Y + ((29032 Cb + 2105344) >> 14)). For chroma of 2 x 2 pixels, with one fractional bit less for red and
 * blue, so that the two may differ by one: R = clamp(Y + ((11485 Cr + 1052672) >> 13)),
 * G = clamp(Y - ((5638 Cb + 11700 Cr - 2088960) >> 14)), B = clamp(Y + ((14516 Cb + 1052672) >> 13)). Any samples are
 * allowed: the terms are saturated to 16 bits, the sums wrap in 16 bits, and the result is clamped to 0 .. 255.
 * Packed pixels drop the low bits of these channels. CMYK is C = 255 - R, M = 255 - G, Y = 255 - B and clamp(K + 128).
 *
 * Checks, in this order: the array or the pixels null (StatusNullPointer); the step below 1 (StatusBadStep); the
 * pointers to the blocks in turn null (StatusNullPointer). Nothing is written when a check fails. The pixels may not
 * overlap the blocks. Only the samples of the blocks are read, only the bytes of the pixels written.
 * @{
 */

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample a pixel, to 8 x 8 pixels of RGB.
 *
 * @param pSrcMCU  one block each of Y, Cb and Cr
 * @param pDst     the pixels, 8 to a row of 24 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for two neighbours, to 16 x 8 pixels of RGB.
 *
 * @param pSrcMCU  two blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 48 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for 2 x 2 pixels, to 16 x 16 pixels of RGB.
 *
 * @param pSrcMCU  four blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 48 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample a pixel, to 8 x 8 pixels of BGR.
 *
 * @param pSrcMCU  one block each of Y, Cb and Cr
 * @param pDst     the pixels, 8 to a row of 24 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for two neighbours, to 16 x 8 pixels of BGR.
 *
 * @param pSrcMCU  two blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 48 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for 2 x 2 pixels, to 16 x 16 pixels of BGR.
 *
 * @param pSrcMCU  four blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 48 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample a pixel, to 8 x 8 pixels of packed BGR555.
 *
 * @param pSrcMCU  one block each of Y, Cb and Cr
 * @param pDst     the pixels, 8 to a row of 16 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                                      int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for two neighbours, to 16 x 8 pixels of packed BGR555.
 *
 * @param pSrcMCU  two blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 32 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                                      int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for 2 x 2 pixels, to 16 x 16 pixels of packed BGR555.
 *
 * @param pSrcMCU  four blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 32 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                                      int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample a pixel, to 8 x 8 pixels of packed BGR565.
 *
 * @param pSrcMCU  one block each of Y, Cb and Cr
 * @param pDst     the pixels, 8 to a row of 16 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                                      int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for two neighbours, to 16 x 8 pixels of packed BGR565.
 *
 * @param pSrcMCU  two blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 32 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                                      int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCbCr, a chroma sample for 2 x 2 pixels, to 16 x 16 pixels of packed BGR565.
 *
 * @param pSrcMCU  four blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 32 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                                      int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCCK, a chroma sample a pixel, to 8 x 8 pixels of CMYK.
 *
 * @param pSrcMCU  one block each of Y, Cb, Cr and K
 * @param pDst     the pixels, 8 to a row of 32 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCCK, a chroma sample for two neighbours, to 16 x 8 pixels of CMYK.
 *
 * @param pSrcMCU  two blocks each of Y and K, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 64 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst,
                                                                  int32_t dstStep);

/**
 * Converts one MCU of level-shifted YCCK, a chroma sample for 2 x 2 pixels, to 16 x 16 pixels of CMYK.
 *
 * @param pSrcMCU  four blocks each of Y and K, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 64 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst,
                                                                  int32_t dstStep);

/** @} */

/**
 * @name Interleaved 4:2:2 and the blocks of an MCU
 * Two neighbouring pixels are the four bytes Y Cb Y Cr. No colour is converted.
 *
 * Checks, in this order: pSrc or pDstMCU, pSrcMCU or pDst, null (StatusNullPointer); the step below 1 (StatusBadStep);
 * the pointers to the blocks in turn null (StatusNullPointer). Nothing is written when a check fails. Pixels and blocks
 * may not overlap. Only the bytes of the pixels and the samples of the blocks are read and written.
 * @{
 */

/**
 * Takes the 16 x 8 pixels of one MCU apart, every sample minus 128.
 *
 * @param pSrc     the pixels, 16 to a row of 32 bytes
 * @param srcStep  bytes from row to row
 * @param pDstMCU  two blocks of Y, one each of Cb and Cr
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSplit422LS_MCU_8u16s_C2P3R(const uint8_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]);

/**
 * Puts the 16 x 8 pixels of one MCU together, every sample plus 128 and clamped to 0 .. 255.
 *
 * @param pSrcMCU  two blocks of Y, one each of Cb and Cr
 * @param pDst     the pixels, 16 to a row of 32 bytes
 * @param dstStep  bytes from row to row
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriJoin422LS_MCU_16s8u_P3C2R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                            int32_t dstStep);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
