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

/* B53 BEGIN */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                              int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                              int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_B53_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep,
                                                              const int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int16_t* pDst, int32_t dstStep,
                                                              int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_B53_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep,
                                                              const int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t* pDst, int32_t dstStep,
                                                              int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdCol_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                              int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdCol_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                              int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvCol_B53_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep,
                                                              const int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int16_t* pDst, int32_t dstStep,
                                                              int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvCol_B53_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep,
                                                              const int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t* pDst, int32_t dstStep,
                                                              int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcEven, const int16_t* pSrcOdd,
                                                                 const int16_t* pSrcNextEven, int16_t* pDstLow,
                                                                 const int16_t* pPreviousHigh, int16_t* pDstHigh,
                                                                 int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcEven, const int32_t* pSrcOdd,
                                                                 const int32_t* pSrcNextEven, int32_t* pDstLow,
                                                                 const int32_t* pPreviousHigh, int32_t* pDstHigh,
                                                                 int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pLow, const int16_t* pPreviousHigh,
                                                                 const int16_t* pHigh, const int16_t* pPreviousEven,
                                                                 int16_t* pDstOdd, int16_t* pDstEven, int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pLow, const int32_t* pPreviousHigh,
                                                                 const int32_t* pHigh, const int32_t* pPreviousEven,
                                                                 int32_t* pDstOdd, int32_t* pDstEven, int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int16_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int32_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int16_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int32_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_16s_C1IR(const TileRect* pTile, int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_32s_C1IR(const TileRect* pTile, int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_16s_C1R(const TileRect* pTile, int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_32s_C1R(const TileRect* pTile, int32_t* pSize);
/* B53 END */

/* D97 BEGIN */
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                              int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                              int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_32f_C1R(const float* pSrc, int32_t srcStep, float* pLow,
                                                              int32_t lowStep, float* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep,
                                                              const int16_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int16_t* pDst, int32_t dstStep,
                                                              int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep,
                                                              const int32_t* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t* pDst, int32_t dstStep,
                                                              int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_32f_C1R(const float* pLow, int32_t lowStep, const float* pHigh,
                                                              int32_t highStep, RoiSize bandRoiSize, float* pDst,
                                                              int32_t dstStep, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdCol_D97_JPEG2K_32f_C1R(const float* pSrc, int32_t srcStep, float* pLow,
                                                              int32_t lowStep, float* pHigh, int32_t highStep,
                                                              RoiSize bandRoiSize, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvCol_D97_JPEG2K_32f_C1R(const float* pLow, int32_t lowStep, const float* pHigh,
                                                              int32_t highStep, RoiSize bandRoiSize, float* pDst,
                                                              int32_t dstStep, int32_t phase);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcEven, const int16_t* pSrcOdd,
                                                                 const int16_t* pSrcNextEven, int16_t* pA, int16_t* pB,
                                                                 int16_t* pC, int16_t* pD, int16_t* pE, int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcEven, const int32_t* pSrcOdd,
                                                                 const int32_t* pSrcNextEven, int32_t* pA, int32_t* pB,
                                                                 int32_t* pC, int32_t* pD, int32_t* pE, int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrcEven, const float* pSrcOdd,
                                                                 const float* pSrcNextEven, float* pA, float* pB,
                                                                 float* pC, float* pD, float* pE, int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pLow, const int16_t* pPreviousHigh,
                                                                 const int16_t* pHigh, int16_t* pA, int16_t* pB,
                                                                 int16_t* pC, int16_t* pD, const int16_t* pE,
                                                                 int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pLow, const int32_t* pPreviousHigh,
                                                                 const int32_t* pHigh, int32_t* pA, int32_t* pB,
                                                                 int32_t* pC, int32_t* pD, const int32_t* pE,
                                                                 int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_32f_C1(const float* pLow, const float* pPreviousHigh,
                                                                 const float* pHigh, float* pA, float* pB, float* pC,
                                                                 float* pD, const float* pE, int32_t width);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                            void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int16_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                           int32_t* const pDst[4], const int32_t dstSteps[4],
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int16_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int32_t srcSteps[4],
                                                           int32_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                           void* pBuffer);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_16s_C1IR(const TileRect* pTile, int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_32s_C1IR(const TileRect* pTile, int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_16s_C1R(const TileRect* pTile, int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_32s_C1R(const TileRect* pTile, int32_t* pSize);
/* D97 END */

#ifdef __cplusplus
}
#endif

#endif
