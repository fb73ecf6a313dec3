/**
 * @file texture.h
 * Texture block compression: decodes DXT1, DXT3, DXT5 (BC1, BC2, BC3) and BC7 blocks to RGBA pixels and encodes DXT
 * blocks of RGBA or YCoCg pixels.
 *
 * A block holds 4 x 4 pixels, in 8 bytes (DXT1) or 16 bytes (the others). The blocks of an image follow one another
 * without padding, in rows of (width + 3) / 4 blocks from the top; there are (height + 3) / 4 rows. A function reads or
 * writes all of them. Where the width or height is no multiple of 4, pixels outside the image are not written, and for
 * encoding they repeat the last pixel of the row and the last row.
 *
 * RGBA pixels are four bytes in that order. The step of the pixels is in bytes and may be negative: the pointer then is
 * that of the top row all the same, and the rows below lie before it in memory. Blocks and pixels may lie at any byte
 * address; they must not overlap. Every function runs in the calling thread; bands of 4 rows are independent.
 *
 * Every function checks both pointers (StatusNullPointer), then the step being zero (StatusBadStep), then the width and
 * the height being below 1 (StatusBadSize). Nothing is written when a check fails. There is no other failure: every bit
 * pattern is a block.
 *
 * Decoding a DXT5 texture of 70 x 50 pixels, 18 x 13 blocks of 16 bytes:
 * @code
 * const RoiSize size = {70, 50};
 * StatusCode status = zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(blocks, pixels, 4 * 70, size);
 * @endcode
 */
#ifndef ZORJ_TEXTURE_H
#define ZORJ_TEXTURE_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name DXT decoding
 * A colour block is two colours c0 and c1 of 16 bits (red in bits 11 to 15, green in 5 to 10, blue in 0 to 4) and
 * sixteen indices of 2 bits, all little-endian, pixels row by row from the lowest bits. The colours become 8-bit ones
 * by shifting alone: red 8 r, green 4 g, blue 8 b, so that white is 248, 252, 248. Indices select c0, c1, (2 c0 + c1) /
 * 3 and (c0 + 2 c1) / 3, all divisions truncating. Decoders that repeat a colour's high bits in its low ones, and
 * round, give values up to 8 larger.
 * @{
 */

/**
 * Decodes DXT1: colour blocks. Where c0 <= c1 as numbers, index 2 selects (c0 + c1) / 2 and index 3 opaque white; alpha
 * is 255 always.
 *
 * @param pSrc     the blocks, 8 bytes each
 * @param pDst     first pixel of the destination
 * @param dstStep  bytes from one destination row to the next, not 0
 * @param roiSize  pixels of the destination
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst,
                                                                         int32_t dstStep, RoiSize roiSize);

/**
 * Decodes DXT3: eight bytes of 4-bit alphas, pixels row by row from the lowest bits, then a colour block, which always
 * has the two thirds of the way between c0 and c1. Alpha is 16 times the 4-bit value.
 *
 * @param pSrc     the blocks, 16 bytes each
 * @param pDst     first pixel of the destination
 * @param dstStep  bytes from one destination row to the next, not 0
 * @param roiSize  pixels of the destination
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst,
                                                                         int32_t dstStep, RoiSize roiSize);

/**
 * Decodes DXT5: the alphas a0 and a1, a byte each, six bytes of 3-bit indices, pixels row by row from the lowest bits,
 * then a colour block as in DXT3. Index 0 selects a0, index 1 a1; where a0 > a1, index i from 2 to 7 selects
 * ((8 - i) a0 + (i - 1) a1 + 3) / 7; otherwise i from 2 to 5 selects ((6 - i) a0 + (i - 1) a1 + 2) / 5, 6 selects 0 and
 * 7 selects 255.
 *
 * @param pSrc     the blocks, 16 bytes each
 * @param pDst     first pixel of the destination
 * @param dstStep  bytes from one destination row to the next, not 0
 * @param roiSize  pixels of the destination
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst,
                                                                         int32_t dstStep, RoiSize roiSize);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
