/**
 * @file jpeg_dct.h
 * Quantisation tables and the 8x8 DCT of JPEG (ITU-T T.81): from samples to quantised coefficients and back.
 *
 * Data layouts:
 * - A coefficient block is 64 signed 16-bit values in natural order, index 8 v + u with v the vertical and u the
 *   horizontal frequency, one after the other (no step).
 * - A block of samples in an image is 8 rows of 8 samples, rows a step of bytes apart.
 * - A raw table is 64 step sizes in zig-zag order, as in a DQT segment (T.81 B.2.4.1).
 * - A forward working table is 64 reciprocals 32768 / q, an inverse working table 64 steps q, both in natural order.
 *   A reciprocal of 65535 stands for a step of 0.
 * - The functions on 12-bit samples take 64 floats in natural order instead: multipliers of the caller's choice,
 *   1 / q forward and q inverse for plain JPEG.
 *
 * Scale: F(u,v) = 1/4 C(u) C(v) sum of f(x,y) cos((2x+1) u pi / 16) cos((2y+1) v pi / 16) with C(0) = 1 / sqrt(2) and
 * C(k) = 1 otherwise (T.81 A.3.3), so that a block of value s has F(0,0) = 8 s.
 *
 * Tables, blocks and samples may lie at any byte address. Nothing outside the 64 values of a block or table and the
 * samples of its rows is read or written. Source and destination of a function may not overlap unless they are
 * one argument, or its comment allows it. The fixed-point results are the same on every processor, and so are those in
 * single precision as long as the caller keeps the default rounding mode of the floating-point unit. Table contents are
 * not checked.
 *
 * Encode one block of an 8-bit image at quality 75:
 * @code
 * uint8_t raw[64];                                   // a copy of T.81 table K.1, in zig-zag order
 * uint16_t table[64];
 * int16_t coefficients[64];
 * zoriQuantFwdRawTableInit_JPEG_8u(raw, 75);
 * zoriQuantFwdTableInit_JPEG_8u16u(raw, table);
 * zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(image + 8 * blockY * step + 8 * blockX, step, coefficients, table);
 * @endcode
 */
#ifndef ZORJ_JPEG_DCT_H
#define ZORJ_JPEG_DCT_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Scales a raw table by a quality, in place: q becomes (q s + 50) / 100, at least 1 and at most 255, with the
 * percentage s = 5000 / qualityFactor below 50 and 200 - 2 qualityFactor from there on (divisions truncate).
 * 50 leaves the table as it is; 100 and above make every step 1.
 * @param pQuantRawTable  64 steps, in any order.
 * @param qualityFactor   From 1; there is no upper limit.
 * @return StatusNullPointer for a null pointer; then StatusBadArgument for a quality below 1.
 */
ZORJ_API StatusCode ZORJ_CALL zoriQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int32_t qualityFactor);

/**
 * Makes the forward working table of a raw table: 32768 / q rounded to nearest, in natural order.
 * @param pQuantRawTable   64 steps in zig-zag order.
 * @param pQuantFwdTable   64 entries; all of them are written even if a step is 0.
 * @return StatusNullPointer for a null pointer; the warning StatusDivideByZero if a step is 0, whose entry is 65535
 *         then.
 */
ZORJ_API StatusCode ZORJ_CALL zoriQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable);

/**
 * Makes the inverse working table of a raw table: the same steps in natural order, widened.
 * @param pQuantRawTable   64 steps in zig-zag order; 0 is allowed.
 * @param pQuantInvTable   64 entries.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable);

/**
 * Quantises a coefficient block in place: c becomes (floor(8 c h / 65536) + 1) >> 1, with h half the table entry,
 * rounded down. Approximates c / q, rounded half up, for coefficients of magnitude below 4096; 8 c wraps in 16 bits.
 * The quantisation inside zoriDCTQuantFwd8x8_JPEG_16s_C1 is another, more exact one.
 * @param pSrcDst          64 coefficients.
 * @param pQuantFwdTable   Forward working table.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);

/**
 * Dequantises a coefficient block in place: c becomes the low 16 bits of c q.
 * @param pSrcDst          64 coefficients.
 * @param pQuantInvTable   Inverse working table.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);

/**
 * Transforms and quantises a block of 8-bit samples: takes 128 from each, then does what
 * zoriDCTQuantFwd8x8_JPEG_16s_C1 does.
 * @param pSrc             8 rows of 8 samples.
 * @param srcStep          Bytes from row to row.
 * @param pDst             64 coefficients.
 * @param pQuantFwdTable   Forward working table.
 * @return In this order: StatusNullPointer for a null `pSrc` or `pDst`; StatusBadStep for a step below 1;
 *         StatusNullPointer for a null table.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                                  const uint16_t* pQuantFwdTable);

/**
 * Transforms and quantises a block of samples of up to 12 bits in single precision: reads each as a signed 16-bit
 * number, takes 2048 from it, and stores F T rounded to nearest (ties to even), saturated to 16 bits. NaN gives 0.
 * @param pSrc             8 rows of 8 samples.
 * @param srcStep          Bytes from row to row; may be odd.
 * @param pDst             64 coefficients.
 * @param pQuantFwdTable   64 multipliers T in natural order.
 * @return As zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const uint16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                                   const float* pQuantFwdTable);

/**
 * Transforms and quantises a block of signed values in fixed point: the coefficient F becomes F T / 32768 with the
 * table entry T, rounded to nearest with ties to even and saturated to 16 bits. A table of 32768 gives F itself, which
 * for values within +-255 is less than 1 away from the exact coefficient; greater values saturate or wrap on the way.
 * @param pSrc             64 values, already shifted to be signed.
 * @param pDst             64 coefficients; may be pSrc.
 * @param pQuantFwdTable   Forward working table.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                             const uint16_t* pQuantFwdTable);

/**
 * zoriDCTQuantFwd8x8_JPEG_16s_C1 in place.
 * @param pSrcDst          64 values, then 64 coefficients.
 * @param pQuantFwdTable   Forward working table.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);

/**
 * Shifts the level of an image to signed values: dst = src - 128. Shares the rows of a large image among threads.
 * @param pSrc      Samples.
 * @param srcStep   Bytes from row to row of the source.
 * @param pDst      Signed values.
 * @param dstStep   Bytes from row to row of the destination; may be odd.
 * @param roiSize   Size in pixels.
 * @return In this order: StatusNullPointer for a null `pSrc`; StatusBadStep for a `srcStep` below 1; StatusNullPointer
 *         for a null `pDst`; StatusBadStep for a `dstStep` below 1; StatusBadSize for a width or height below 1.
 */
ZORJ_API StatusCode ZORJ_CALL zoriSub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize);

/**
 * Dequantises and inversely transforms a block to 8-bit samples: the value zoriDCTQuantInv8x8_JPEG_16s_C1 gives plus
 * 128, clamped to 0..255. Samples are less than 1 away from those of the exact inverse, clamped alike, in blocks
 * whose exact inverse lies within +-400 before the 128 is added; beyond, 16-bit sums saturate on the way.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             8 rows of 8 samples.
 * @param dstStep          Bytes from row to row.
 * @param pQuantInvTable   Inverse working table.
 * @return In this order: StatusNullPointer for a null `pSrc` or `pDst`; StatusBadStep for a step below 1;
 *         StatusNullPointer for a null table.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                  const uint16_t* pQuantInvTable);

/**
 * Inversely transforms a block to 12-bit samples in single precision: multiplies the coefficients by the table, adds
 * 2048 to the result, truncates it toward zero and clamps it to 0..4095. NaN gives 0.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             8 rows of 8 samples.
 * @param dstStep          Bytes from row to row; may be odd.
 * @param pQuantInvTable   64 multipliers in natural order.
 * @return As zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int32_t dstStep,
                                                                   const float* pQuantInvTable);

/**
 * A flat block of 8x8 samples from the DC coefficient alone: (F(0,0) q(0,0) >> 3) + 128, wrapped to a signed 16-bit
 * number and clamped to 0..255. Does not round, so that a sample may be 1 below that of the full transform. Reads the
 * first coefficient and the first step only.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             8 rows of 8 samples.
 * @param dstStep          Bytes from row to row.
 * @param pQuantInvTable   Inverse working table.
 * @return As zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                      int32_t dstStep, const uint16_t* pQuantInvTable);

/**
 * What zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R gives if all coefficients but the lowest 2x2 are 0, for a fraction of its
 * work. The other coefficients are ignored.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             8 rows of 8 samples.
 * @param dstStep          Bytes from row to row.
 * @param pQuantInvTable   Inverse working table.
 * @return As zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                      int32_t dstStep, const uint16_t* pQuantInvTable);

/**
 * What zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R gives if all coefficients but the lowest 4x4 are 0, for a part of its work.
 * The other coefficients are ignored.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             8 rows of 8 samples.
 * @param dstStep          Bytes from row to row.
 * @param pQuantInvTable   Inverse working table.
 * @return As zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                      int32_t dstStep, const uint16_t* pQuantInvTable);

/**
 * A block at a quarter of its width and height: the 2-point inverse DCT of the lowest 2x2 coefficients, scaled so that
 * F(0,0) = 8 s gives s, plus 128, clamped to 0..255. The other coefficients are ignored.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             2 rows of 2 samples.
 * @param dstStep          Bytes from row to row.
 * @param pQuantInvTable   Inverse working table.
 * @return As zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                       int32_t dstStep, const uint16_t* pQuantInvTable);

/**
 * A block at half of its width and height: the 4-point inverse DCT of the lowest 4x4 coefficients, scaled so that
 * F(0,0) = 8 s gives s, plus 128, clamped to 0..255. The other coefficients are ignored. As accurate as
 * zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R, in blocks whose exact 4x4 samples lie within +-511.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             4 rows of 4 samples.
 * @param dstStep          Bytes from row to row.
 * @param pQuantInvTable   Inverse working table.
 * @return As zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                       int32_t dstStep, const uint16_t* pQuantInvTable);

/**
 * Dequantises a block (wrapping in 16 bits) and transforms it inversely to signed values, in fixed point. The values
 * are less than 1 away from the exact inverse in blocks whose exact inverse lies within +-361, and as close to it on
 * average as IEEE 1180-1990 asks; beyond that, 16-bit sums saturate on the way, and no value leaves -512..511.
 * @param pSrc             64 quantised coefficients.
 * @param pDst             64 values; may be pSrc.
 * @param pQuantInvTable   Inverse working table.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                             const uint16_t* pQuantInvTable);

/**
 * zoriDCTQuantInv8x8_JPEG_16s_C1 in place.
 * @param pSrcDst          64 quantised coefficients, then 64 values.
 * @param pQuantInvTable   Inverse working table.
 * @return StatusNullPointer for a null pointer.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);

/**
 * Shifts the level of signed values back to 8-bit samples: dst = src + 128, clamped to 0..255. Shares the rows of a
 * large image among threads.
 * @param pSrc      Signed values.
 * @param srcStep   Bytes from row to row of the source; may be odd.
 * @param pDst      Samples.
 * @param dstStep   Bytes from row to row of the destination.
 * @param roiSize   Size in pixels.
 * @return In this order: StatusNullPointer for a null `pSrc`; StatusBadStep for a `srcStep` below 1; StatusNullPointer
 *         for a null `pDst`; StatusBadStep for a `dstStep` below 1; StatusBadSize for a width or height below 1.
 */
ZORJ_API StatusCode ZORJ_CALL zoriAdd128_JPEG_16s8u_C1R(const int16_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize);

#ifdef __cplusplus
}
#endif

#endif
