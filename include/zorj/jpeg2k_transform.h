/**
 * @file jpeg2k_transform.h
 * The transforms of JPEG 2000 (T.800): between colour components, and between samples and wavelet subbands.
 *
 * Samples are signed 16-bit, signed 32-bit or single-precision floats; the level shift is the caller's. Images are
 * pointers with steps in bytes. Everything runs in the calling thread, in rows from the first.
 *
 * Transforming the colours of an image, then one level of a tile whose first sample lies at (32, 48), in place:
 * @code
 * const RoiSize size = {640, 480};
 * const TileRect tile = {32, 48, 640, 480};
 * int32_t bytes = 0;
 * StatusCode status = zoriRCTFwd_JPEG2K_32s_P3IR(planes, 640 * 4, size);
 * if (status == StatusOk) status = zoriWTGetBufSize_B53_JPEG2K_32s_C1IR(&tile, &bytes);
 * if (status == StatusOk) status = zoriWTFwd_B53_JPEG2K_32s_C1IR(planes[0], 640 * 4, &tile, malloc(bytes));
 * @endcode
 */
#ifndef ZORJ_JPEG2K_TRANSFORM_H
#define ZORJ_JPEG2K_TRANSFORM_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The place of a tile on the canvas of its component, in samples. */
typedef struct TileRect {
  int32_t x;      /**< Column of the first sample; only whether it is even or odd matters. */
  int32_t y;      /**< Row of the first sample; only whether it is even or odd matters. */
  int32_t width;  /**< Samples in a row. */
  int32_t height; /**< Rows. */
} TileRect;

/**
 * @name Component transforms
 * Between R, G, B and a luminance with two colour differences (T.800 Annex G): the reversible transform (RCT) gives Y,
 * U and V, the irreversible one (ICT) Y, Cb and Cr. Planes stand in that order; pixels are R, G, B. Shifts are
 * arithmetic.
 *
 * Every function checks in this order: any pointer null, the array of planes and each of its entries included
 * (StatusNullPointer); a step below 1 (StatusBadStep); roiSize empty (StatusBadSize). Nothing is written when a check
 * fails. Planes must not overlap each other, nor pixels planes.
 * @{
 */

/**
 * Reversible transform of 16-bit samples: Y = (R + 2 G + B) >> 2, U = B - G, V = R - G. Sums are formed in 32 bits
 * and each result keeps its low 16 bits, so U and V of extreme samples wrap.
 * From pixels to planes.
 *
 * @param pSrc     pixels of three samples: R, G, B
 * @param srcStep  bytes from one row of pixels to the next
 * @param pDst     three planes
 * @param dstStep  bytes from one row to the next, of all three planes
 * @param roiSize  pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_16s_C3P3R(const int16_t* pSrc, int32_t srcStep, int16_t* const pDst[3],
                                                          int32_t dstStep, RoiSize roiSize);

/**
 * Reversible transform of 16-bit samples: Y = (R + 2 G + B) >> 2, U = B - G, V = R - G. Sums are formed in 32 bits
 * and each result keeps its low 16 bits, so U and V of extreme samples wrap.
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Reversible transform of 32-bit samples: Y = (R + 2 G + B) >> 2, U = B - G, V = R - G in 32-bit arithmetic that wraps.
 * From pixels to planes.
 *
 * @param pSrc     pixels of three samples: R, G, B
 * @param srcStep  bytes from one row of pixels to the next
 * @param pDst     three planes
 * @param dstStep  bytes from one row to the next, of all three planes
 * @param roiSize  pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_32s_C3P3R(const int32_t* pSrc, int32_t srcStep, int32_t* const pDst[3],
                                                          int32_t dstStep, RoiSize roiSize);

/**
 * Reversible transform of 32-bit samples: Y = (R + 2 G + B) >> 2, U = B - G, V = R - G in 32-bit arithmetic that wraps.
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Inverse reversible transform of 16-bit samples: G = Y - ((U + V) >> 2), R = V + G, B = U + G. The sum U + V is formed
 * in 32 bits and each result keeps its low 16 bits.
 * From planes to pixels.
 *
 * @param pSrc     three planes
 * @param srcStep  bytes from one row to the next, of all three planes
 * @param pDst     pixels of three samples: R, G, B
 * @param dstStep  bytes from one row of pixels to the next
 * @param roiSize  pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_16s_P3C3R(const int16_t* const pSrc[3], int32_t srcStep, int16_t* pDst,
                                                          int32_t dstStep, RoiSize roiSize);

/**
 * Inverse reversible transform of 16-bit samples: G = Y - ((U + V) >> 2), R = V + G, B = U + G. The sum U + V is formed
 * in 32 bits and each result keeps its low 16 bits.
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Inverse reversible transform of 32-bit samples: G = Y - ((U + V) >> 2), R = V + G, B = U + G in 32-bit arithmetic
 * that wraps. From planes to pixels.
 *
 * @param pSrc     three planes
 * @param srcStep  bytes from one row to the next, of all three planes
 * @param pDst     pixels of three samples: R, G, B
 * @param dstStep  bytes from one row of pixels to the next
 * @param roiSize  pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_32s_P3C3R(const int32_t* const pSrc[3], int32_t srcStep, int32_t* pDst,
                                                          int32_t dstStep, RoiSize roiSize);

/**
 * Inverse reversible transform of 32-bit samples: G = Y - ((U + V) >> 2), R = V + G, B = U + G in 32-bit arithmetic
 * that wraps. In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Irreversible transform of 16-bit samples in fixed point. With q(x) = (x + 8192) >> 14 and
 * S = 4899 R + 9617 G + 1868 B: Y = q(S), Cb = q(9246 dB), Cr = q(11686 dR), where dB and dR are the low 16 bits of
 * q(16384 B - S) and q(16384 R - S). 9246 and 11686 are 2^14 times 0.5 / (1 - 0.114) and 0.5 / (1 - 0.299). Y, Cb and
 * Cr always fit 16 bits. In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Irreversible transform of 32-bit samples in fixed point, in 32-bit arithmetic that wraps. With
 * q(x) = (x + 8192) >> 14: Y = q(4899 R + 9617 G + 1868 B), Cb = q(-2765 R - 5427 G + 8192 B),
 * Cr = q(8192 R - 6860 G - 1332 B). The sums stay exact for samples of up to 17 bits.
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Irreversible transform of floats: Y = (0.299 R + 0.587 G) + 0.114 B, Cb = (-0.16875 R - 0.33126 G) + 0.5 B,
 * Cr = (0.5 R - 0.41869 G) - 0.08131 B. Every product and sum is rounded to single precision, in this order.
 * From pixels to planes.
 *
 * @param pSrc     pixels of three samples: R, G, B
 * @param srcStep  bytes from one row of pixels to the next
 * @param pDst     three planes
 * @param dstStep  bytes from one row to the next, of all three planes
 * @param roiSize  pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_32f_C3P3R(const float* pSrc, int32_t srcStep, float* const pDst[3],
                                                          int32_t dstStep, RoiSize roiSize);

/**
 * Irreversible transform of floats: Y = (0.299 R + 0.587 G) + 0.114 B, Cb = (-0.16875 R - 0.33126 G) + 0.5 B,
 * Cr = (0.5 R - 0.41869 G) - 0.08131 B. Every product and sum is rounded to single precision, in this order.
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_32f_P3IR(float* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize);

/**
 * Inverse irreversible transform of 16-bit samples in fixed point. With q(x) = (x + 8192) >> 14: R = Y + q(22970 Cr),
 * G = Y - q(5638 Cb + 11700 Cr), B = Y + q(29032 Cb), each saturated to 16 bits. G subtracts a rounded sum where the
 * 32-bit form adds a rounded negative one: they differ by 1 where the sum lies half-way between two integers.
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Inverse irreversible transform of 32-bit samples in fixed point, in 32-bit arithmetic that wraps. With
 * q(x) = (x + 8192) >> 14: R = Y + q(22970 Cr), G = Y + q(-5638 Cb - 11700 Cr), B = Y + q(29032 Cb).
 * In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep,
                                                         RoiSize roiSize);

/**
 * Inverse irreversible transform of floats: R = 1.402 Cr + Y, G = (-0.34413 Cb - 0.71414 Cr) + Y, B = 1.772 Cb + Y.
 * Every product and sum is rounded to single precision, in this order. From planes to pixels.
 *
 * @param pSrc     three planes
 * @param srcStep  bytes from one row to the next, of all three planes
 * @param pDst     pixels of three samples: R, G, B
 * @param dstStep  bytes from one row of pixels to the next
 * @param roiSize  pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTInv_JPEG2K_32f_P3C3R(const float* const pSrc[3], int32_t srcStep, float* pDst,
                                                          int32_t dstStep, RoiSize roiSize);

/**
 * Inverse irreversible transform of floats: R = 1.402 Cr + Y, G = (-0.34413 Cb - 0.71414 Cr) + Y, B = 1.772 Cb + Y.
 * Every product and sum is rounded to single precision, in this order. In place on planes.
 *
 * @param pSrcDst     three planes, changed in place
 * @param srcDstStep  bytes from one row to the next, of all three planes
 * @param roiSize     pixels
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriICTInv_JPEG2K_32f_P3IR(float* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize);

/** @} */

/**
 * @name Reversible 5/3 wavelet: rows and columns
 * Low samples s and high samples d of a line x (T.800 Annex F), in phase 0:
 *
 * @code
 * d(k) = x(2k + 1) - ((x(2k) + x(2k + 2)) >> 1)
 * s(k) = x(2k) + ((d(k - 1) + d(k) + 2) >> 2)
 * @endcode
 *
 * The inverse undoes this in the opposite order and gives the samples back exactly.
 *
 * A line of 2n samples gives n low and n high samples. In phase 0 low sample k stands at position 2k and high sample k
 * at 2k + 1 of the line; in phase 1 high sample k stands at 2k and low sample k at 2k + 1. The filters reach beyond the
 * line: what they read there is the caller's to lay around it, an extension of the line or its neighbours.
 *
 * Every function checks in this order: any pointer null (StatusNullPointer); a step below 1 (StatusBadStep);
 * bandRoiSize empty (StatusBadSize). Nothing is written when a check fails. Source and destination images, border
 * included, must not overlap.
 * @{
 */

/**
 * The 5/3 wavelet of rows of 16-bit samples. Sums are formed in 32 bits; each d and each result keeps its low 16 bits.
 *
 * @param pSrc         first sample of 2n in each row; positions -2 to 2n (phase 0) or -1 to 2n + 1 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each row
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each row
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                              int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The 5/3 wavelet of rows of 32-bit samples. In 32-bit arithmetic that wraps.
 *
 * @param pSrc         first sample of 2n in each row; positions -2 to 2n (phase 0) or -1 to 2n + 1 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each row
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each row
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                              int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The inverse 5/3 wavelet, to rows of 16-bit samples. Sums are formed in 32 bits; each d and each result keeps its low
 * 16 bits.
 *
 * @param pLow         first of n low samples of each row; 0 to n (phase 0) or -1 to n - 1 are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each row; -1 to n are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param pDst         2n samples of each row
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_B53_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep,
                                                              const int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int16_t* pDst, int32_t dstStep,
                                                              int32_t phase);

/**
 * The inverse 5/3 wavelet, to rows of 32-bit samples. In 32-bit arithmetic that wraps.
 *
 * @param pLow         first of n low samples of each row; 0 to n (phase 0) or -1 to n - 1 are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each row; -1 to n are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param pDst         2n samples of each row
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_B53_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep,
                                                              const int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t* pDst, int32_t dstStep,
                                                              int32_t phase);

/**
 * The 5/3 wavelet of columns of 16-bit samples. Sums are formed in 32 bits; each d and each result keeps its low 16
 * bits.
 *
 * @param pSrc         first sample of 2n in each column; positions -2 to 2n (phase 0) or -1 to 2n + 1 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each column
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each column
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: as wide as there are columns, n high
 * @param phase        0: the first sample of a column stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdCol_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                              int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The 5/3 wavelet of columns of 32-bit samples. In 32-bit arithmetic that wraps.
 *
 * @param pSrc         first sample of 2n in each column; positions -2 to 2n (phase 0) or -1 to 2n + 1 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each column
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each column
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: as wide as there are columns, n high
 * @param phase        0: the first sample of a column stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdCol_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                              int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The inverse 5/3 wavelet, to columns of 16-bit samples. Sums are formed in 32 bits; each d and each result keeps its
 * low 16 bits.
 *
 * @param pLow         first of n low samples of each column; 0 to n (phase 0) or -1 to n - 1 are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each column; -1 to n are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: as wide as there are columns, n high
 * @param pDst         2n samples of each column
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a column stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvCol_B53_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep,
                                                              const int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int16_t* pDst, int32_t dstStep,
                                                              int32_t phase);

/**
 * The inverse 5/3 wavelet, to columns of 32-bit samples. In 32-bit arithmetic that wraps.
 *
 * @param pLow         first of n low samples of each column; 0 to n (phase 0) or -1 to n - 1 are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each column; -1 to n are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: as wide as there are columns, n high
 * @param pDst         2n samples of each column
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a column stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvCol_B53_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep,
                                                              const int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t* pDst, int32_t dstStep,
                                                              int32_t phase);

/** @} */

/**
 * @name Reversible 5/3 wavelet: steps down columns
 * For transforms that go through an image once, with a few rows in use: each call makes a low and a high row, or an
 * even and an odd one, of three rows and of the high (even) row of the call before. The caller extends the columns at
 * their ends.
 *
 * Each sample is read before it is written, so a row may be written in place of one that is read at the same index,
 * and rows that are only read may be one and the same.
 *
 * Every function checks in this order: any row null (StatusNullPointer); width below 1 (StatusBadSize). Nothing is
 * written when a check fails.
 * @{
 */

/**
 * One step down columns of 16-bit samples by the 5/3 wavelet: d(k), then s(k). All sums wrap at 16 bits.
 *
 * @param pSrcEven       row x(2k)
 * @param pSrcOdd        row x(2k + 1)
 * @param pSrcNextEven   row x(2k + 2)
 * @param pDstLow        takes the low row s(k)
 * @param pPreviousHigh  high row d(k - 1): pDstHigh of the step before
 * @param pDstHigh       takes the high row d(k)
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcEven, const int16_t* pSrcOdd,
                                                                 const int16_t* pSrcNextEven, int16_t* pDstLow,
                                                                 const int16_t* pPreviousHigh, int16_t* pDstHigh,
                                                                 int32_t width);

/**
 * One step down columns of 32-bit samples by the 5/3 wavelet: d(k), then s(k). All sums wrap at 32 bits.
 *
 * @param pSrcEven       row x(2k)
 * @param pSrcOdd        row x(2k + 1)
 * @param pSrcNextEven   row x(2k + 2)
 * @param pDstLow        takes the low row s(k)
 * @param pPreviousHigh  high row d(k - 1): pDstHigh of the step before
 * @param pDstHigh       takes the high row d(k)
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcEven, const int32_t* pSrcOdd,
                                                                 const int32_t* pSrcNextEven, int32_t* pDstLow,
                                                                 const int32_t* pPreviousHigh, int32_t* pDstHigh,
                                                                 int32_t width);

/**
 * One step down columns of 16-bit samples by the inverse 5/3 wavelet: x(2k), then x(2k - 1). All sums wrap at 16 bits.
 *
 * @param pLow           low row s(k)
 * @param pPreviousHigh  high row d(k - 1)
 * @param pHigh          high row d(k)
 * @param pPreviousEven  row x(2k - 2): pDstEven of the step before
 * @param pDstOdd        takes row x(2k - 1)
 * @param pDstEven       takes row x(2k)
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pLow, const int16_t* pPreviousHigh,
                                                                 const int16_t* pHigh, const int16_t* pPreviousEven,
                                                                 int16_t* pDstOdd, int16_t* pDstEven, int32_t width);

/**
 * One step down columns of 32-bit samples by the inverse 5/3 wavelet: x(2k), then x(2k - 1). All sums wrap at 32 bits.
 *
 * @param pLow           low row s(k)
 * @param pPreviousHigh  high row d(k - 1)
 * @param pHigh          high row d(k)
 * @param pPreviousEven  row x(2k - 2): pDstEven of the step before
 * @param pDstOdd        takes row x(2k - 1)
 * @param pDstEven       takes row x(2k)
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pLow, const int32_t* pPreviousHigh,
                                                                 const int32_t* pHigh, const int32_t* pPreviousEven,
                                                                 int32_t* pDstOdd, int32_t* pDstEven, int32_t width);

/** @} */

/**
 * @name Reversible 5/3 wavelet: levels of tiles
 * Columns are transformed first, then rows; the inverse goes back. Lines are extended symmetrically about their end
 * samples: x(-j) = x(j). Low samples come first. Of lines of one sample, one at an even position stays as it is and one
 * at an odd position is doubled (the inverse halves it, truncating toward zero). Of lines of two samples, e at the even
 * and o at the odd position, high = o - e and low = e + ((o - e + 1) >> 1).
 *
 * A line of L samples that starts at an even position has (L + 1) / 2 low samples, one that starts at an odd position
 * L / 2. The functions with four images ignore that when they copy: LL and LH are always (width + 1) / 2 wide and LL
 * and HL (height + 1) / 2 high. For an odd origin, the images together still hold the whole level, but a column or row
 * of it lies in the image next to its own.
 *
 * Nothing outside the tile is read or written, and nothing is written when a check fails. The buffer and the images
 * must not overlap.
 *
 * A buffer of more than INT32_MAX bytes is none: its size is told modulo 2^32, and the transforms refuse the tile with
 * StatusBadSize, after all other checks.
 *
 * A level and its inverse give the samples back exactly. 16-bit samples take the arithmetic of the rows: sums in 32
 * bits, results of 16.
 * @{
 */

/**
 * One level of the 5/3 wavelet on a tile of 16-bit samples, in place. A tile without samples is left alone, with
 * StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the samples; afterwards the subbands LL, HL to its right, LH below it, HH below HL
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_B53_JPEG2K_16s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One level of the 5/3 wavelet on a tile of 32-bit samples, in place. A tile without samples is left alone, with
 * StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the samples; afterwards the subbands LL, HL to its right, LH below it, HH below HL
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_B53_JPEG2K_32s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One inverse level of the 5/3 wavelet on a tile of 16-bit samples, in place. A tile without samples is left alone,
 * with StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the subbands as the forward level leaves them; afterwards the samples
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_B53_JPEG2K_16s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One inverse level of the 5/3 wavelet on a tile of 32-bit samples, in place. A tile without samples is left alone,
 * with StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the subbands as the forward level leaves them; afterwards the samples
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_B53_JPEG2K_32s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One level of the 5/3 wavelet on a tile of 16-bit samples, into four images.
 *
 * Checks: pSrc, pDst, dstSteps, pTile or pBuffer null; srcStep below 1; an entry of pDst null; an entry of dstSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      the samples; they stay as they are
 * @param srcStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pDst      images of the subbands LL, LH, HL, HH
 * @param dstSteps  bytes from one row to the next in each of them
 * @param pBuffer   as many bytes as zoriWTGetBufSize_B53_JPEG2K_16s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int16_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);

/**
 * One level of the 5/3 wavelet on a tile of 32-bit samples, into four images.
 *
 * Checks: pSrc, pDst, dstSteps, pTile or pBuffer null; srcStep below 1; an entry of pDst null; an entry of dstSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      the samples; they stay as they are
 * @param srcStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pDst      images of the subbands LL, LH, HL, HH
 * @param dstSteps  bytes from one row to the next in each of them
 * @param pBuffer   as many bytes as zoriWTGetBufSize_B53_JPEG2K_32s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int32_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);

/**
 * One inverse level of the 5/3 wavelet, from four images to a tile of 16-bit samples.
 *
 * Checks: pSrc, pDst, srcSteps, pTile or pBuffer null; dstStep below 1; an entry of pSrc null; an entry of srcSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      images of the subbands LL, LH, HL, HH; they stay as they are
 * @param srcSteps  bytes from one row to the next in each of them
 * @param pDst      takes the samples
 * @param dstStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pBuffer   as many bytes as zoriWTGetBufSize_B53_JPEG2K_16s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int16_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);

/**
 * One inverse level of the 5/3 wavelet, from four images to a tile of 32-bit samples.
 *
 * Checks: pSrc, pDst, srcSteps, pTile or pBuffer null; dstStep below 1; an entry of pSrc null; an entry of srcSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      images of the subbands LL, LH, HL, HH; they stay as they are
 * @param srcSteps  bytes from one row to the next in each of them
 * @param pDst      takes the samples
 * @param dstStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pBuffer   as many bytes as zoriWTGetBufSize_B53_JPEG2K_32s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int32_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);

/**
 * The bytes of the buffer for a 5/3 level of a tile of 16-bit samples in place, forward or inverse. 0 where width and
 * height are below 3, else 2 bytes for each of max(width, height) + 4 samples.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_16s_C1IR(const TileRect* pTile, int32_t* pSize);

/**
 * The bytes of the buffer for a 5/3 level of a tile of 32-bit samples in place, forward or inverse. 0 where width and
 * height are below 3, else 4 bytes for each of max(width, height) + 4 samples.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_32s_C1IR(const TileRect* pTile, int32_t* pSize);

/**
 * The bytes of the buffer for a 5/3 level of a tile of 16-bit samples from or to four images, forward or inverse. The
 * rows of the tile, each rounded up to 32 bytes, and the buffer of the level in place.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_16s_C1R(const TileRect* pTile, int32_t* pSize);

/**
 * The bytes of the buffer for a 5/3 level of a tile of 32-bit samples from or to four images, forward or inverse. The
 * rows of the tile, each rounded up to 32 bytes, and the buffer of the level in place.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_32s_C1R(const TileRect* pTile, int32_t* pSize);

/** @} */

/**
 * @name Irreversible 9/7 wavelet: rows and columns
 * Low samples s and high samples d of a line x (T.800 Annex F), in phase 0:
 *
 * @code
 * d1(k) = x(2k + 1) + alpha (x(2k) + x(2k + 2))
 * s1(k) = x(2k) + beta (d1(k - 1) + d1(k))
 * d2(k) = d1(k) + gamma (s1(k) + s1(k + 1))
 * s2(k) = s1(k) + delta (d2(k - 1) + d2(k))
 * s(k) = s2(k) / K        d(k) = K d2(k)
 * @endcode
 *
 * Float arithmetic rounds every sum and product to single precision: neighbours are added, multiplied, added to the
 * sample. alpha = -1.586134315, beta = -0.0529801175, gamma = 0.8829110861, delta = 0.4435068667, K = 1.230174065, 1 /
 * K = 0.8128930926. The inverse divides both subbands by their factors first.
 *
 * Fixed-point arithmetic has constants in units of 2^-16: alpha -103949, beta -3472, gamma 57862, K 80621, 1 / K
 * 53274, delta / K 23627. Sums of neighbours wrap at 32 bits; each of d1, s1, d2, s = (s1 + delta ...) / K and d is
 * one sum of 64-bit products, rounded as floor(sum / 2^16 + 1/2). Samples are integers in between as well.
 *
 * A line that was transformed and back differs from itself: floats by at most 2^-21 of the largest sample in
 * measurements, fixed-point samples by up to 5 where they fit 16 bits, and larger ones also by about 2^-16 of their
 * size, which is what the constants are exact to.
 *
 * A line of 2n samples gives n low and n high samples. In phase 0 low sample k stands at position 2k and high sample k
 * at 2k + 1 of the line; in phase 1 high sample k stands at 2k and low sample k at 2k + 1. The filters reach beyond the
 * line: what they read there is the caller's to lay around it, an extension of the line or its neighbours.
 *
 * Every function checks in this order: any pointer null (StatusNullPointer); a step below 1 (StatusBadStep);
 * bandRoiSize empty (StatusBadSize). Nothing is written when a check fails. Source and destination images, border
 * included, must not overlap.
 * @{
 */

/**
 * The 9/7 wavelet of rows of 16-bit samples. The fixed-point arithmetic in 32 bits, each result saturated to 16.
 *
 * @param pSrc         first sample of 2n in each row; positions -4 to 2n + 2 (phase 0) or -3 to 2n + 3 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each row
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each row
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                              int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The 9/7 wavelet of rows of 32-bit samples. The fixed-point arithmetic.
 *
 * @param pSrc         first sample of 2n in each row; positions -4 to 2n + 2 (phase 0) or -3 to 2n + 3 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each row
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each row
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                              int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The 9/7 wavelet of rows of floats. The float arithmetic.
 *
 * @param pSrc         first sample of 2n in each row; positions -4 to 2n + 2 (phase 0) or -3 to 2n + 3 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each row
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each row
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_32f_C1R(const float* pSrc, int32_t srcStep, float* pLow,
                                                              int32_t lowStep, float* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The inverse 9/7 wavelet, to rows of 16-bit samples. The fixed-point arithmetic in 32 bits, each result saturated to
 * 16.
 *
 * @param pLow         first of n low samples of each row; -1 to n + 1 (phase 0) or -2 to n are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each row; -2 to n + 1 are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param pDst         2n samples of each row
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep,
                                                              const int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int16_t* pDst, int32_t dstStep,
                                                              int32_t phase);

/**
 * The inverse 9/7 wavelet, to rows of 32-bit samples. The fixed-point arithmetic.
 *
 * @param pLow         first of n low samples of each row; -1 to n + 1 (phase 0) or -2 to n are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each row; -2 to n + 1 are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param pDst         2n samples of each row
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep,
                                                              const int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t* pDst, int32_t dstStep,
                                                              int32_t phase);

/**
 * The inverse 9/7 wavelet, to rows of floats. The float arithmetic.
 *
 * @param pLow         first of n low samples of each row; -1 to n + 1 (phase 0) or -2 to n are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each row; -2 to n + 1 are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: n wide, as high as there are rows
 * @param pDst         2n samples of each row
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a row stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_32f_C1R(const float* pLow, int32_t lowStep, const float* pHigh,
                                                              int32_t highStep, RoiSize bandRoiSize, float* pDst,
                                                              int32_t dstStep, int32_t phase);

/**
 * The 9/7 wavelet of columns of floats. The float arithmetic.
 *
 * @param pSrc         first sample of 2n in each column; positions -4 to 2n + 2 (phase 0) or -3 to 2n + 3 are read
 * @param srcStep      bytes from one row of the samples to the next
 * @param pLow         n low samples of each column
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        n high samples of each column
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: as wide as there are columns, n high
 * @param phase        0: the first sample of a column stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdCol_D97_JPEG2K_32f_C1R(const float* pSrc, int32_t srcStep, float* pLow,
                                                              int32_t lowStep, float* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);

/**
 * The inverse 9/7 wavelet, to columns of floats. The float arithmetic.
 *
 * @param pLow         first of n low samples of each column; -1 to n + 1 (phase 0) or -2 to n are read
 * @param lowStep      bytes from one row of low samples to the next
 * @param pHigh        first of n high samples of each column; -2 to n + 1 are read
 * @param highStep     bytes from one row of high samples to the next
 * @param bandRoiSize  band size in samples: as wide as there are columns, n high
 * @param pDst         2n samples of each column
 * @param dstStep      bytes from one row of the samples to the next
 * @param phase        0: the first sample of a column stands at an even position; anything else: at an odd one
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvCol_D97_JPEG2K_32f_C1R(const float* pLow, int32_t lowStep, const float* pHigh,
                                                              int32_t highStep, RoiSize bandRoiSize, float* pDst,
                                                              int32_t dstStep, int32_t phase);

/** @} */

/**
 * @name Irreversible 9/7 wavelet: steps down columns
 * For transforms that go through an image once. A call takes in two rows and gives out one low row and one high row
 * (or the inverse) of a few steps before, in five rows of state. Forward, the rows change roles after each call: B
 * becomes the next A, D the next C, E the next D; the old A and C, with the results, are free to become B and E.
 * Inverse: B becomes the next A, D the next C, A the next E; results are in A and C. To start at the upper end of a
 * column the caller lets the steps run over four rows that mirror it, and takes the results from the first that are
 * its own.
 *
 * The 16-bit functions have an arithmetic of their own: constants in units of 2^-15 (K as twice K / 2 in the high
 * rows), P(v, c) = (v c + 16384) >> 15, and every sum of two neighbours and every stored value saturated to 16 bits.
 * Forward: alpha -51974, beta -1736, gamma 28931, delta 14533, 1 / K 26637, K / 2 20155; inverse: K 40310, delta / K
 * 11814. Columns of samples within 6000 of 0 come back with errors of up to 4 in measurements; larger ones saturate.
 * Errors of the other types are those of rows.
 *
 * Each sample is read before it is written, so B and E (inverse: B and D) may stand in place of rows that are only
 * read, and rows that are only read may be one and the same.
 *
 * Every function checks in this order: any row null (StatusNullPointer); width below 1 (StatusBadSize). Nothing is
 * written when a check fails.
 * @{
 */

/**
 * One step down columns of 16-bit samples by the 9/7 wavelet. The saturating 16-bit arithmetic.
 *
 * @param pSrcEven      row x(2k)
 * @param pSrcOdd       row x(2k + 1)
 * @param pSrcNextEven  row x(2k + 2)
 * @param pA            has s1(k - 1), takes the low row s(k - 1)
 * @param pB            takes s1(k)
 * @param pC            has d2(k - 2), takes the high row d(k - 2)
 * @param pD            has d1(k - 1), takes d2(k - 1)
 * @param pE            takes d1(k)
 * @param width         samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcEven, const int16_t* pSrcOdd,
                                                                 const int16_t* pSrcNextEven, int16_t* pA, int16_t* pB,
                                                                 int16_t* pC, int16_t* pD, int16_t* pE, int32_t width);

/**
 * One step down columns of 32-bit samples by the 9/7 wavelet. The fixed-point arithmetic.
 *
 * @param pSrcEven      row x(2k)
 * @param pSrcOdd       row x(2k + 1)
 * @param pSrcNextEven  row x(2k + 2)
 * @param pA            has s1(k - 1), takes the low row s(k - 1)
 * @param pB            takes s1(k)
 * @param pC            has d2(k - 2), takes the high row d(k - 2)
 * @param pD            has d1(k - 1), takes d2(k - 1)
 * @param pE            takes d1(k)
 * @param width         samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcEven, const int32_t* pSrcOdd,
                                                                 const int32_t* pSrcNextEven, int32_t* pA, int32_t* pB,
                                                                 int32_t* pC, int32_t* pD, int32_t* pE, int32_t width);

/**
 * One step down columns of floats by the 9/7 wavelet. The float arithmetic.
 *
 * @param pSrcEven      row x(2k)
 * @param pSrcOdd       row x(2k + 1)
 * @param pSrcNextEven  row x(2k + 2)
 * @param pA            has s1(k - 1), takes the low row s(k - 1)
 * @param pB            takes s1(k)
 * @param pC            has d2(k - 2), takes the high row d(k - 2)
 * @param pD            has d1(k - 1), takes d2(k - 1)
 * @param pE            takes d1(k)
 * @param width         samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrcEven, const float* pSrcOdd,
                                                                 const float* pSrcNextEven, float* pA, float* pB,
                                                                 float* pC, float* pD, float* pE, int32_t width);

/**
 * One step down columns of 16-bit samples by the inverse 9/7 wavelet. The saturating 16-bit arithmetic.
 *
 * @param pLow           low row s(k)
 * @param pPreviousHigh  high row d(k - 1)
 * @param pHigh          high row d(k)
 * @param pA             has s1(k - 1), takes row x(2k - 2)
 * @param pB             takes s1(k)
 * @param pC             has d1(k - 2), takes row x(2k - 3)
 * @param pD             takes d1(k - 1)
 * @param pE             row x(2k - 4); only read
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pLow, const int16_t* pPreviousHigh,
                                                                 const int16_t* pHigh, int16_t* pA, int16_t* pB,
                                                                 int16_t* pC, int16_t* pD, const int16_t* pE,
                                                                 int32_t width);

/**
 * One step down columns of 32-bit samples by the inverse 9/7 wavelet. The fixed-point arithmetic.
 *
 * @param pLow           low row s(k)
 * @param pPreviousHigh  high row d(k - 1)
 * @param pHigh          high row d(k)
 * @param pA             has s1(k - 1), takes row x(2k - 2)
 * @param pB             takes s1(k)
 * @param pC             has d1(k - 2), takes row x(2k - 3)
 * @param pD             takes d1(k - 1)
 * @param pE             row x(2k - 4); only read
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pLow, const int32_t* pPreviousHigh,
                                                                 const int32_t* pHigh, int32_t* pA, int32_t* pB,
                                                                 int32_t* pC, int32_t* pD, const int32_t* pE,
                                                                 int32_t width);

/**
 * One step down columns of floats by the inverse 9/7 wavelet. The float arithmetic.
 *
 * @param pLow           low row s(k)
 * @param pPreviousHigh  high row d(k - 1)
 * @param pHigh          high row d(k)
 * @param pA             has s1(k - 1), takes row x(2k - 2)
 * @param pB             takes s1(k)
 * @param pC             has d1(k - 2), takes row x(2k - 3)
 * @param pD             takes d1(k - 1)
 * @param pE             row x(2k - 4); only read
 * @param width          samples in every row
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_32f_C1(const float* pLow, const float* pPreviousHigh,
                                                                 const float* pHigh, float* pA, float* pB, float* pC,
                                                                 float* pD, const float* pE, int32_t width);

/** @} */

/**
 * @name Irreversible 9/7 wavelet: levels of tiles
 * In the fixed-point arithmetic of the rows; 16-bit samples are computed in 32 bits and saturated where they are
 * stored, between columns and rows too. Lines are extended, and lines of one and two samples transformed, as by the
 * 5/3 wavelet. So are the subbands laid out.
 *
 * A level and its inverse leave errors with a root mean square of 1.08, and of at most 9 in measurements: for 16-bit
 * samples within 4095 of 0 (beyond that the subbands may saturate), and 32-bit samples that fit 16 bits. Larger
 * samples err by 2^-15 of their size. Codecs that want less shift their samples left first.
 *
 * Nothing outside the tile is read or written, and nothing is written when a check fails. The buffer and the images
 * must not overlap.
 *
 * A buffer of more than INT32_MAX bytes is none: its size is told modulo 2^32, and the transforms refuse the tile with
 * StatusBadSize, after all other checks.
 * @{
 */

/**
 * One level of the 9/7 wavelet on a tile of 16-bit samples, in place. A tile without samples is left alone, with
 * StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the samples; afterwards the subbands LL, HL to its right, LH below it, HH below HL
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_D97_JPEG2K_16s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One level of the 9/7 wavelet on a tile of 32-bit samples, in place. A tile without samples is left alone, with
 * StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the samples; afterwards the subbands LL, HL to its right, LH below it, HH below HL
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_D97_JPEG2K_32s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One inverse level of the 9/7 wavelet on a tile of 16-bit samples, in place. A tile without samples is left alone,
 * with StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the subbands as the forward level leaves them; afterwards the samples
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_D97_JPEG2K_16s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One inverse level of the 9/7 wavelet on a tile of 32-bit samples, in place. A tile without samples is left alone,
 * with StatusOk.
 *
 * Checks: pSrcDst null, srcDstStep below 1, pTile or pBuffer null.
 *
 * @param pSrcDst     the subbands as the forward level leaves them; afterwards the samples
 * @param srcDstStep  bytes from one row to the next
 * @param pTile       the tile
 * @param pBuffer     as many bytes as zoriWTGetBufSize_D97_JPEG2K_32s_C1IR says, at any address; never null
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);

/**
 * One level of the 9/7 wavelet on a tile of 16-bit samples, into four images.
 *
 * Checks: pSrc, pDst, dstSteps, pTile or pBuffer null; srcStep below 1; an entry of pDst null; an entry of dstSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      the samples; they stay as they are
 * @param srcStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pDst      images of the subbands LL, LH, HL, HH
 * @param dstSteps  bytes from one row to the next in each of them
 * @param pBuffer   as many bytes as zoriWTGetBufSize_D97_JPEG2K_16s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int16_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);

/**
 * One level of the 9/7 wavelet on a tile of 32-bit samples, into four images.
 *
 * Checks: pSrc, pDst, dstSteps, pTile or pBuffer null; srcStep below 1; an entry of pDst null; an entry of dstSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      the samples; they stay as they are
 * @param srcStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pDst      images of the subbands LL, LH, HL, HH
 * @param dstSteps  bytes from one row to the next in each of them
 * @param pBuffer   as many bytes as zoriWTGetBufSize_D97_JPEG2K_32s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int32_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);

/**
 * One inverse level of the 9/7 wavelet, from four images to a tile of 16-bit samples.
 *
 * Checks: pSrc, pDst, srcSteps, pTile or pBuffer null; dstStep below 1; an entry of pSrc null; an entry of srcSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      images of the subbands LL, LH, HL, HH; they stay as they are
 * @param srcSteps  bytes from one row to the next in each of them
 * @param pDst      takes the samples
 * @param dstStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pBuffer   as many bytes as zoriWTGetBufSize_D97_JPEG2K_16s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int16_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);

/**
 * One inverse level of the 9/7 wavelet, from four images to a tile of 32-bit samples.
 *
 * Checks: pSrc, pDst, srcSteps, pTile or pBuffer null; dstStep below 1; an entry of pSrc null; an entry of srcSteps
 * below 1; the tile without samples.
 *
 * @param pSrc      images of the subbands LL, LH, HL, HH; they stay as they are
 * @param srcSteps  bytes from one row to the next in each of them
 * @param pDst      takes the samples
 * @param dstStep   bytes from one row of the samples to the next
 * @param pTile     the tile
 * @param pBuffer   as many bytes as zoriWTGetBufSize_D97_JPEG2K_32s_C1R says, at any address; never null
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int32_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);

/**
 * The bytes of the buffer for a 9/7 level of a tile of 16-bit samples in place, forward or inverse. 0 where width and
 * height are below 3, else 2 bytes for each of max(width, height) + 8 samples.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_16s_C1IR(const TileRect* pTile, int32_t* pSize);

/**
 * The bytes of the buffer for a 9/7 level of a tile of 32-bit samples in place, forward or inverse. 0 where width and
 * height are below 3, else 4 bytes for each of max(width, height) + 8 samples.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_32s_C1IR(const TileRect* pTile, int32_t* pSize);

/**
 * The bytes of the buffer for a 9/7 level of a tile of 16-bit samples from or to four images, forward or inverse. The
 * rows of the tile, each rounded up to 32 bytes, and the buffer of the level in place.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_16s_C1R(const TileRect* pTile, int32_t* pSize);

/**
 * The bytes of the buffer for a 9/7 level of a tile of 32-bit samples from or to four images, forward or inverse. The
 * rows of the tile, each rounded up to 32 bytes, and the buffer of the level in place.
 *
 * @param pTile  the tile; its place does not matter
 * @param pSize  takes the bytes
 * @return StatusOk or StatusNullPointer
 */
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_32s_C1R(const TileRect* pTile, int32_t* pSize);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
