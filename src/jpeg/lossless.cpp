#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/lossless_kernels.h"
#include "zorj/jpeg_lossless.h"

namespace zorj {
namespace {

constexpr int32_t kLeft = 1;  // the predictor of first rows

StatusCode checkFirstRow(const int16_t* src, const int16_t* dst, int32_t width, int32_t precision,
                         int32_t pointTransform) {
  if (anyNull(src, dst)) return StatusNullPointer;
  if (width < 1) return StatusBadSize;
  return precision < 2 || precision > 16 || pointTransform < 0 ? StatusBadArgument : StatusOk;
}

StatusCode checkRow(const int16_t* src, const int16_t* previous, const int16_t* dst, int32_t width, int32_t predictor) {
  if (anyNull(src, previous, dst)) return StatusNullPointer;
  if (width < 1) return StatusBadSize;
  return predictor < 1 || predictor > 7 ? StatusBadArgument : StatusOk;
}

// Prediction of the first sample of all: half the range, by a shift count modulo 32.
int16_t middle(int32_t precision, int32_t pointTransform) {
  return static_cast<int16_t>(uint32_t{1} << (static_cast<uint32_t>(precision - pointTransform - 1) % 32));
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriDiffPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int32_t width,
                                                      int32_t precision, int32_t pointTransform) {
  if (const StatusCode status = checkFirstRow(pSrc, pDst, width, precision, pointTransform)) return status;
  losslessKernels().differences[kLeft - 1](pSrc, pSrc, middle(precision, pointTransform), pDst,
                                           static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDiffPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevious, int16_t* pDst,
                                                 int32_t width, int32_t predictor) {
  if (const StatusCode status = checkRow(pSrc, pPrevious, pDst, width, predictor)) return status;
  losslessKernels().differences[predictor - 1](pSrc, pPrevious, loadUnaligned(pPrevious), pDst,
                                               static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriReconstructPredFirstRow_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst, int32_t width,
                                                             int32_t precision, int32_t pointTransform) {
  if (const StatusCode status = checkFirstRow(pSrc, pDst, width, precision, pointTransform)) return status;
  losslessKernels().samples[kLeft - 1](pSrc, pSrc, middle(precision, pointTransform), pDst, static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriReconstructPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevious, int16_t* pDst,
                                                        int32_t width, int32_t predictor) {
  if (const StatusCode status = checkRow(pSrc, pPrevious, pDst, width, predictor)) return status;
  losslessKernels().samples[predictor - 1](pSrc, pPrevious, loadUnaligned(pPrevious), pDst, static_cast<size_t>(width));
  return StatusOk;
}
