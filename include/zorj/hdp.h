/**
 * @file hdp.h
 * The photo core transform of HD Photo and JPEG XR (T.832, 9.9.7): an integer approximation of a 4 x 4 DCT that loses
 * nothing.
 *
 * A region of signed 32-bit samples is transformed in place, every 4 x 4 block of it by itself; what the codec does
 * with the blocks' DC values, which a second transform takes, is left to it. Steps are in bytes; pointer and step need
 * no alignment. A negative step leads from the last row in memory to the first; rows may not overlap.
 *
 * With the samples of a block named a b c d / e f g h / i j k l / m n o p, the forward transform is, in this order and
 * with arithmetic that wraps modulo 2^32:
 *
 * 1. H on (a, d, m, p), (b, c, n, o), (e, h, i, l) and (f, g, j, k), where H(w, x, y, z) is: w += z; x -= y;
 *    s = (w - x) >> 1; y and z become s - z and s - y; x += y; w -= z.
 * 2. H on (a, b, e, f) with s = (w - x + 1) >> 1.
 * 3. On (c, d, g, h), and on (i, m, j, n) in the same roles: d -= g; c += h; g += (d + 1) >> 1; h = ((c + 1) >> 1) - h;
 *    d -= (3 c + 4) >> 3; c += (3 d + 4) >> 3; h -= (3 g + 4) >> 3; g += (3 h + 4) >> 3; h += d >> 1;
 *    g -= (c + 1) >> 1; d -= h; c += g.
 * 4. On (k, l, o, p): l = -l; o = -o; p += k; o -= l; k -= p >> 1; l += o >> 1; k += (3 l + 4) >> 3;
 *    l -= (3 k + 3) >> 2; k += (3 l + 3) >> 3; l -= o >> 1; k += p >> 1; o += l; p -= k.
 *
 * The inverse undoes every step in reverse order, and gives back any block exactly. The coefficients lie where the
 * steps leave them: a is the DC value, four times the mean of the block.
 *
 * @code
 * int32_t macroblock[16 * 16];
 * StatusCode status = zoriPCTFwd16x16_HDP_32s_C1IR(macroblock, 16 * sizeof(int32_t));
 * @endcode
 */
#ifndef ZORJ_HDP_H
#define ZORJ_HDP_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Transforms 16 x 16 samples.
 *
 * @param pSrcDst  the samples, coefficients on return
 * @param step     bytes from row to row: 64 or more, or negative
 * @return StatusNullPointer for a null pointer; then StatusBadStep for a step from 0 to 63. Nothing is written on
 *         failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTFwd16x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step);

/**
 * Transforms 8 samples in width and 16 in height.
 *
 * @param pSrcDst  the samples, coefficients on return
 * @param step     bytes from row to row: 32 or more, or negative
 * @return StatusNullPointer for a null pointer; then StatusBadStep for a step from 0 to 31. Nothing is written on
 *         failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTFwd8x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step);

/**
 * Transforms 8 x 8 samples.
 *
 * @param pSrcDst  the samples, coefficients on return
 * @param step     bytes from row to row: 32 or more, or negative
 * @return StatusNullPointer for a null pointer; then StatusBadStep for a step from 0 to 31. Nothing is written on
 *         failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTFwd8x8_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step);

/**
 * Transforms a region of whole blocks.
 *
 * @param pSrcDst  the samples, coefficients on return
 * @param step     bytes from row to row: 4 * width or more, or negative
 * @param width    samples of a row, a multiple of 4
 * @param height   rows, a multiple of 4
 * @return In this order: StatusNullPointer for a null pointer; StatusBadSize for a width or height below 1;
 *         StatusBadStep for a step from 0 to 4 * width - 1; StatusBadSize for a width or height that is no multiple of
 *         4. A step that is negative is compared as an unsigned number, and so fails where 4 * width is larger than
 *         that. Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTFwd_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step, int32_t width, int32_t height);

/**
 * Transforms back 16 x 16 samples.
 *
 * @param pSrcDst  the samples, coefficients on entry
 * @param step     bytes from row to row: 64 or more, or negative
 * @return StatusNullPointer for a null pointer; then StatusBadStep for a step from 0 to 63. Nothing is written on
 *         failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTInv16x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step);

/**
 * Transforms back 8 samples in width and 16 in height.
 *
 * @param pSrcDst  the samples, coefficients on entry
 * @param step     bytes from row to row: 32 or more, or negative
 * @return StatusNullPointer for a null pointer; then StatusBadStep for a step from 0 to 31. Nothing is written on
 *         failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTInv8x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step);

/**
 * Transforms back 8 x 8 samples.
 *
 * @param pSrcDst  the samples, coefficients on entry
 * @param step     bytes from row to row: 32 or more, or negative
 * @return StatusNullPointer for a null pointer; then StatusBadStep for a step from 0 to 31. Nothing is written on
 *         failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTInv8x8_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step);

/**
 * Transforms back a region of whole blocks.
 *
 * @param pSrcDst  the samples, coefficients on entry
 * @param step     bytes from row to row: 4 * width or more, or negative
 * @param width    samples of a row, a multiple of 4
 * @param height   rows, a multiple of 4
 * @return In this order: StatusNullPointer for a null pointer; StatusBadSize for a width or height below 1;
 *         StatusBadStep for a step from 0 to 4 * width - 1; StatusBadSize for a width or height that is no multiple of
 *         4. A step that is negative is compared as an unsigned number, and so fails where 4 * width is larger than
 *         that. Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPCTInv_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step, int32_t width, int32_t height);

#ifdef __cplusplus
}
#endif

#endif
