/**
 * @file jpeg_lossless.h
 * Prediction and reconstruction of rows of samples for the lossless process of JPEG (T.81 Annex H).
 *
 * An encoder turns each row of a component into differences from a prediction and codes those
 * (zoriEncodeHuffmanRow_JPEG_16s1u_P4C1); a decoder reconstructs the rows from them in the same order. A row is a dense
 * array of 16-bit samples at any byte address, already shifted by the point transform. All results are kept modulo
 * 65536, nothing is clamped, and reconstruction gives back every row exactly.
 *
 * With Ra the sample to the left, Rb the one above and Rc the one above Ra, the predictors (T.81 Table H.1) are:
 *
 * | value | prediction                |
 * |-------|---------------------------|
 * | 1     | Ra                        |
 * | 2     | Rb                        |
 * | 3     | Rc                        |
 * | 4     | Ra + Rb - Rc              |
 * | 5     | Ra + floor((Rb - Rc) / 2) |
 * | 6     | Rb + floor((Ra - Rc) / 2) |
 * | 7     | floor((Ra + Rb) / 2)      |
 *
 * The first sample of a row is always predicted by the one above it. The halves of 5, 6 and 7 are those of signed
 * samples: samples of 16 bits that are 32768 and more count as 65536 less there, other than in T.81.
 *
 * To predict a component of 8-bit samples without a point transform, its rows one after the other in memory:
 *
 * @code
 * zoriDiffPredFirstRow_JPEG_16s_C1(samples, differences, width, 8, 0);
 * for (int32_t y = 1; y < height; ++y) {
 *   const int16_t* const row = samples + (size_t)y * width;
 *   zoriDiffPredRow_JPEG_16s_C1(row, row - width, differences + (size_t)y * width, width, 4);
 * }
 * @endcode
 */
#ifndef ZORJ_JPEG_LOSSLESS_H
#define ZORJ_JPEG_LOSSLESS_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Predicts the first row of a scan or of a restart interval: d[0] = x[0] - 2^(precision - pointTransform - 1) and
 * d[i] = x[i] - x[i - 1]. A point transform of the precision or more makes the shift count wrap modulo 32, so that the
 * first prediction is 0 up to a point transform of precision + 15.
 *
 * @param pSrc            the row's samples
 * @param pDst            receives `width` differences; may not overlap the samples
 * @param width           samples of the row
 * @param precision       bits of a sample before the point transform, 2 to 16
 * @param pointTransform  bits the samples were shifted down by, 0 or more
 * @return StatusNullPointer for a null pointer; then StatusBadSize for a width below 1; then StatusBadArgument for a
 *         precision or a point transform out of range. Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDiffPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int32_t width,
                                                               int32_t precision, int32_t pointTransform);

/**
 * Predicts any other row: d[0] = x[0] - above[0] and d[i] = x[i] - prediction.
 *
 * @param pSrc       the row's samples
 * @param pPrevious  `width` samples of the row above
 * @param pDst       receives `width` differences. With predictors 2 and 3 it may overlap the samples of either row: the
 *                   differences are then made one after the other, from the left, each from what is there by then.
 *                   With the others it may not overlap them.
 * @param width      samples of the row
 * @param predictor  1 to 7, as in the table above
 * @return StatusNullPointer for a null pointer; then StatusBadSize for a width below 1; then StatusBadArgument for
 *         another predictor. Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDiffPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevious, int16_t* pDst,
                                                          int32_t width, int32_t predictor);

/**
 * Undoes zoriDiffPredFirstRow_JPEG_16s_C1: x[0] = d[0] + 2^(precision - pointTransform - 1), x[i] = x[i - 1] + d[i].
 *
 * @param pSrc            the row's differences
 * @param pDst            receives `width` samples; may not overlap the differences
 * @param width           samples of the row
 * @param precision       bits of a sample before the point transform, 2 to 16
 * @param pointTransform  bits the samples were shifted down by, 0 or more
 * @return StatusNullPointer for a null pointer; then StatusBadSize for a width below 1; then StatusBadArgument for a
 *         precision or a point transform out of range. Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriReconstructPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int32_t width,
                                                                      int32_t precision, int32_t pointTransform);

/**
 * Undoes zoriDiffPredRow_JPEG_16s_C1: x[0] = d[0] + above[0] and x[i] = d[i] + prediction.
 *
 * @param pSrc       the row's differences
 * @param pPrevious  `width` samples of the row above, reconstructed before
 * @param pDst       receives `width` samples. With predictors 2 and 3 it may overlap the differences or the row above,
 *                   as in zoriDiffPredRow_JPEG_16s_C1; with the others it may not.
 * @param width      samples of the row
 * @param predictor  1 to 7, as in the table above
 * @return StatusNullPointer for a null pointer; then StatusBadSize for a width below 1; then StatusBadArgument for
 *         another predictor. Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriReconstructPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevious,
                                                                 int16_t* pDst, int32_t width, int32_t predictor);

#ifdef __cplusplus
}
#endif

#endif
