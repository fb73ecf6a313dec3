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

/**
 * @name DXT encoding
 * Fast encoding in one pass. The colours of a block are the corners of the box of its pixels' colours, moved inwards:
 * with the least and the largest value of a channel and inset = (max - min) >> 4, high = max - inset and low = min +
 * inset. The high corner is c0, the low one c1, cut to 16 bits. Indices are chosen among the colours e0 and e1, those
 * 16 bits with their high bits repeated in the low ones, e2 = (2 e0 + e1) / 3 and e3 = (e0 + 2 e1) / 3, by the sums d0
 * to d3 of the absolute differences in red, green and blue:
 *
 *     lower bit of the index = d2 > d3 and d0 > d3
 *     upper bit = (d1 > d2 and d0 > d2) or (d0 > d3 and d1 > d3)
 *
 * which is the nearest colour, nearly always. (The decoders of this library do not repeat the high bits: their pictures
 * are a little darker.)
 *
 * A DXT5 alpha block has the box a0 = high, a1 = low of the alphas. With bias = (a0 - a1) / 14, seven thresholds
 * ((7 - k) a1 + k a0) / 7 + bias for k = 0 to 6, divisions truncating, part the alphas among a1 (at or below all of
 * them), the six values between, and a0 (above all).
 * @{
 */

/**
 * Encodes DXT1 of RGBA pixels; alpha is ignored. c0 >= c1 always, so that no pixel means another than one of the four
 * colours; where c0 = c1 every index is 0.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  bytes from one source row to the next, not 0
 * @param roiSize  pixels of the source
 * @param pDst     the blocks, 8 bytes each
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const uint8_t* pSrc, int32_t srcStep,
                                                                           RoiSize roiSize, uint8_t* pDst);

/**
 * Encodes DXT3 of RGBA pixels; alpha is cut to its upper 4 bits.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  bytes from one source row to the next, not 0
 * @param roiSize  pixels of the source
 * @param pDst     the blocks, 16 bytes each
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const uint8_t* pSrc, int32_t srcStep,
                                                                           RoiSize roiSize, uint8_t* pDst);

/**
 * Encodes DXT5 of RGBA pixels.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  bytes from one source row to the next, not 0
 * @param roiSize  pixels of the source
 * @param pDst     the blocks, 16 bytes each
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const uint8_t* pSrc, int32_t srcStep,
                                                                           RoiSize roiSize, uint8_t* pDst);

/**
 * Encodes pixels of three bytes Y, Co, Cg, chroma offset by 128, as DXT5 blocks with Y in the alphas: better colour
 * than DXT5 of RGBA, for a decoder that knows (J. M. P. van Waveren and I. Castano, Real-Time YCoCg-DXT Compression,
 * 2007).
 *
 * With m the largest of |Co - 128| and |Cg - 128| in the block, the scale s is 4 for m up to 31, 2 for m up to 63,
 * else 1. The colours encoded are red (Co - 128) s + 128, green (Cg - 128) s + 128, blue 8 (s - 1). Where red and green
 * run in opposite directions (the sum over the block of their products, each counted from the middle (min + max + 1) >>
 * 1 of its box, is negative), c0 and c1 exchange their greens.
 *
 * Decoded as DXT5 to R, G, B, A, a pixel is s = 1 + (B >> 3), Co = (R - 128) / s, Cg = (G - 128) / s, Y = A, and from
 * that red Y + Co - Cg, green Y + Cg, blue Y - Co - Cg, clamped to 0 to 255.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  bytes from one source row to the next, not 0
 * @param roiSize  pixels of the source
 * @param pDst     the blocks, 16 bytes each
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep,
                                                                            RoiSize roiSize, uint8_t* pDst);
/** @} */

/**
 * @name BC7 decoding
 * @{
 */

/**
 * Decodes BC7 (BPTC, unsigned normalised): all eight modes, bit for bit as Khronos (Data Format, chapter BPTC) and
 * Direct3D 11 define them. A block without a mode, whose first byte is 0, gives pixels of zero bytes, alpha too.
 *
 * @param pSrc     the blocks, 16 bytes each
 * @param pDst     first pixel of the destination
 * @param dstStep  bytes from one destination row to the next, not 0
 * @param roiSize  pixels of the destination
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst,
                                                                        int32_t dstStep, RoiSize roiSize);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
