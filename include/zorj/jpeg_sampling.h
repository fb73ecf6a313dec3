/**
 * @file jpeg_sampling.h
 * Chroma sampling: halves chroma planes for an encoder and doubles them again for a decoder.
 *
 * H2V1 means half the samples horizontally, H2V2 half of them in both directions. Down-sampling averages boxes of 2 or
 * of 2 x 2 samples. Up-sampling is the triangle filter: every output is 3 parts of the source sample it lies in and 1
 * part of the nearest neighbour, in each direction in turn. Down-sampling divides by a power of two, and how a sum
 * between two integers is rounded differs on purpose: always the same way in the functions on planes, alternating from
 * sample to sample in the functions on rows, so that no brightness is gained or lost on average.
 *
 * Samples are unsigned 8-bit. A plane is a pointer, a step in bytes and a size in samples; a row is a pointer and a
 * width in samples. Source and destination must not overlap. Functions on planes share the rows of a large destination
 * among threads, except zoriSampleUpH2V1_JPEG_8u_C1R; all others run in the calling thread.
 *
 * The LS_MCU functions do the same for one MCU of interleaved pixels whose first channel keeps all its samples, and
 * shift the level, without changing the colour space.
 *
 * Doubling a chroma plane of an image of an odd width and height:
 * @code
 * const RoiSize image = {33, 17}, chroma = {17, 9};
 * StatusCode status = zoriSampleUpH2V2_JPEG_8u_C1R(cb, 17, chroma, fullCb, 33, image);
 * @endcode
 */
#ifndef ZORJ_JPEG_SAMPLING_H
#define ZORJ_JPEG_SAMPLING_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @name Planes
 * Every function checks its arguments in this order: pSrc null (StatusNullPointer), srcStep below 1 (StatusBadStep),
 * srcRoiSize empty (StatusBadSize), pDst null (StatusNullPointer), dstStep below 1 (StatusBadStep), dstRoiSize empty
 * (StatusBadSize). Nothing is written when a check fails.
 *
 * The destination size says how much is computed; it need not be half or twice the source size. Where a filter reaches
 * beyond the source, the nearest source sample stands in (except in zoriSampleUpH2V1_JPEG_8u_C1R).
 * @{
 */

/**
 * Halves the width: dst[i] = (src[2i] + src[2i+1] + 1) >> 1, destination row y from source row y.
 *
 * @param pSrc        source plane
 * @param srcStep     bytes from one source row to the next
 * @param srcRoiSize  samples of the source
 * @param pDst        destination plane
 * @param dstStep     bytes from one destination row to the next
 * @param dstRoiSize  samples of the destination, usually (srcRoiSize.width + 1) / 2 by srcRoiSize.height
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDownH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                             uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize);

/**
 * Halves width and height: dst[i] = (a[2i] + a[2i+1] + b[2i] + b[2i+1] + 3) >> 2, where a and b are source rows 2y and
 * 2y + 1 of destination row y. The bias of 3 rounds up whatever is not an integer.
 *
 * @param pSrc        source plane
 * @param srcStep     bytes from one source row to the next
 * @param srcRoiSize  samples of the source
 * @param pDst        destination plane
 * @param dstStep     bytes from one destination row to the next
 * @param dstRoiSize  samples of the destination, usually (srcRoiSize.width + 1) / 2 by (srcRoiSize.height + 1) / 2
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDownH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                             uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize);

/**
 * Doubles the width: dst[2i] = (3 src[i] + src[i-1] + 1) >> 2 and dst[2i+1] = (3 src[i] + src[i+1] + 2) >> 2 for every
 * i, destination row y from source row y. Runs in the calling thread.
 *
 * Reads one sample before and one after the (dstRoiSize.width + 1) / 2 samples of each source row that the destination
 * covers: the caller provides them, for example as copies of the first and the last sample.
 *
 * @param pSrc        first sample of the source plane; pSrc[-1] is read
 * @param srcStep     bytes from one source row to the next
 * @param srcRoiSize  samples of the source; checked, but the destination size alone says what is read
 * @param pDst        destination plane
 * @param dstStep     bytes from one destination row to the next
 * @param dstRoiSize  samples of the destination
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUpH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                           uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize);

/**
 * Doubles width and height. Destination row 2j is zoriSampleUpRowH2V2_Triangle_JPEG_8u_C1 with the near row j and the
 * far row j - 1, row 2j + 1 with the near row j and the far row j + 1; beyond the source the row at its edge stands in.
 * With an odd destination width or height the last column or row of the doubled plane is left out.
 *
 * @param pSrc        source plane
 * @param srcStep     bytes from one source row to the next
 * @param srcRoiSize  samples of the source
 * @param pDst        destination plane
 * @param dstStep     bytes from one destination row to the next
 * @param dstRoiSize  samples of the destination, usually twice the source or one less
 * @return StatusOk, StatusNullPointer, StatusBadStep or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUpH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                           uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize);
/** @} */

/**
 * @name Rows
 * Every function checks all pointers (StatusNullPointer), then srcWidth below 1 (StatusBadSize). Nothing is written
 * when a check fails.
 * @{
 */

/**
 * Halves a row: dst[i] = (src[2i] + src[2i+1] + bias) >> 1 with bias 0 for even and 1 for odd i. The last sample of an
 * odd width is paired with itself.
 *
 * @param pSrc      srcWidth samples
 * @param srcWidth  samples of the source row
 * @param pDst      receives (srcWidth + 1) / 2 samples
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* pSrc, int32_t srcWidth,
                                                                   uint8_t* pDst);

/**
 * Halves two rows into one: dst[i] = (a[2i] + a[2i+1] + b[2i] + b[2i+1] + bias) >> 2 with bias 1 for even and 2 for odd
 * i. The last samples of an odd width are paired with themselves.
 *
 * @param pSrc1     row a, srcWidth samples
 * @param pSrc2     row b, srcWidth samples; may be row a
 * @param srcWidth  samples of each source row
 * @param pDst      receives (srcWidth + 1) / 2 samples
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2,
                                                                   int32_t srcWidth, uint8_t* pDst);

/**
 * Doubles a row: dst[2i] = (3 src[i] + src[i-1] + 1) >> 2 and dst[2i+1] = (3 src[i] + src[i+1] + 2) >> 2. The first and
 * the last output are the first and the last sample.
 *
 * @param pSrc      srcWidth samples
 * @param srcWidth  samples of the source row
 * @param pDst      receives 2 * srcWidth samples
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* pSrc, int32_t srcWidth,
                                                                      uint8_t* pDst);

/**
 * One row of a plane of twice the width and height. With c = 3 near + far: dst[2i] = (3 c[i] + c[i-1] + 8) >> 4 and
 * dst[2i+1] = (3 c[i] + c[i+1] + 7) >> 4; at the ends c[i] stands in for the missing neighbour.
 *
 * @param pSrcNear  the source row nearer to the output row, srcWidth samples
 * @param pSrcFar   the source row on its other side, srcWidth samples; may be the near row
 * @param srcWidth  samples of each source row
 * @param pDst      receives 2 * srcWidth samples
 * @return StatusOk, StatusNullPointer or StatusBadSize
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* pSrcNear, const uint8_t* pSrcFar,
                                                                      int32_t srcWidth, uint8_t* pDst);
/** @} */

/**
 * @name MCUs
 * Between interleaved three-channel pixels and one MCU of 8x8 blocks of 16-bit samples, row-major, the blocks of a
 * plane without a gap between them:
 *
 * |     | pixels  | plane 0                                                 | planes 1 and 2                   |
 * |-----|---------|---------------------------------------------------------|----------------------------------|
 * | 444 | 8 x 8   | 1 block                                                 | 1 block, a sample for each pixel |
 * | 422 | 16 x 8  | 2 blocks: left, right                                   | 1 block, one for 2 x 1 pixels    |
 * | 411 | 16 x 16 | 4 blocks: top left, top right, bottom left, bottom right | 1 block, one for 2 x 2 pixels    |
 *
 * Every function checks the pixel pointer and the array of planes (StatusNullPointer), then the step below 1
 * (StatusBadStep), then each plane in turn (StatusNullPointer). Nothing is written when a check fails. Planes and
 * pixels must not overlap. A whole MCU of pixels is read or written, and nothing beyond it.
 * @{
 */

/**
 * Pixels to an MCU of 16 x 16 pixels: a sample of plane 0 is its channel minus 128, one of planes 1 and 2 is
 * ((sum of the 4 samples it covers + 2) >> 2) - 128.
 *
 * @param pSrc     first byte of the first pixel
 * @param srcStep  bytes from one row of pixels to the next
 * @param pDstMCU  planes of 256, 64 and 64 samples
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Pixels to an MCU of 16 x 8 pixels: a sample of plane 0 is its channel minus 128, one of planes 1 and 2 is
 * ((sum of the 2 samples it covers + 1) >> 1) - 128.
 *
 * @param pSrc     first byte of the first pixel
 * @param srcStep  bytes from one row of pixels to the next
 * @param pDstMCU  planes of 128, 64 and 64 samples
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * Pixels to an MCU of 8 x 8 pixels: every sample is its channel minus 128.
 *
 * @param pSrc     first byte of the first pixel
 * @param srcStep  bytes from one row of pixels to the next
 * @param pDstMCU  planes of 64 samples each
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);

/**
 * An MCU of 16 x 16 pixels to pixels: every channel is its sample plus 128, clamped to [0, 255]; each sample of planes
 * 1 and 2 serves the 4 pixels it covers.
 *
 * @param pSrcMCU  planes of 256, 64 and 64 samples
 * @param pDst     first byte of the first pixel
 * @param dstStep  bytes from one row of pixels to the next
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUp411LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                int32_t dstStep);

/**
 * An MCU of 16 x 8 pixels to pixels: every channel is its sample plus 128, clamped to [0, 255]; each sample of planes
 * 1 and 2 serves the 2 pixels it covers.
 *
 * @param pSrcMCU  planes of 128, 64 and 64 samples
 * @param pDst     first byte of the first pixel
 * @param dstStep  bytes from one row of pixels to the next
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUp422LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                int32_t dstStep);

/**
 * An MCU of 8 x 8 pixels to pixels: every channel is its sample plus 128, clamped to [0, 255].
 *
 * @param pSrcMCU  planes of 64 samples each
 * @param pDst     first byte of the first pixel
 * @param dstStep  bytes from one row of pixels to the next
 * @return StatusOk, StatusNullPointer or StatusBadStep
 */
ZORJ_API StatusCode ZORJ_CALL zoriSampleUp444LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                int32_t dstStep);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
