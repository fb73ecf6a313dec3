#include "jpeg2k/wavelet97_kernels.h"
#include "jpeg2k/wavelet_calls.h"
#include "zorj/jpeg2k_transform.h"

using namespace zorj;

// Samples of a line in the buffer beyond its own.
static constexpr uint32_t kBorder = 8;

StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                     int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                     RoiSize bandRoiSize, int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet97Kernels<int16_t>().forwardRows);
}

StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                     int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                     RoiSize bandRoiSize, int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet97Kernels<int32_t>().forwardRows);
}

StatusCode ZORJ_CALL zoriWTFwdRow_D97_JPEG2K_32f_C1R(const float* pSrc, int32_t srcStep, float* pLow, int32_t lowStep,
                                                     float* pHigh, int32_t highStep, RoiSize bandRoiSize,
                                                     int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet97Kernels<float>().forwardRows);
}

StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep, const int16_t* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, int16_t* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet97Kernels<int16_t>().inverseRows);
}

StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep, const int32_t* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, int32_t* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet97Kernels<int32_t>().inverseRows);
}

StatusCode ZORJ_CALL zoriWTInvRow_D97_JPEG2K_32f_C1R(const float* pLow, int32_t lowStep, const float* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, float* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet97Kernels<float>().inverseRows);
}

StatusCode ZORJ_CALL zoriWTFwdCol_D97_JPEG2K_32f_C1R(const float* pSrc, int32_t srcStep, float* pLow, int32_t lowStep,
                                                     float* pHigh, int32_t highStep, RoiSize bandRoiSize,
                                                     int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet97Kernels<float>().forwardColumns);
}

StatusCode ZORJ_CALL zoriWTInvCol_D97_JPEG2K_32f_C1R(const float* pLow, int32_t lowStep, const float* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, float* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet97Kernels<float>().inverseColumns);
}

StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_16s_C1(const int16_t* pSrcEven, const int16_t* pSrcOdd,
                                                        const int16_t* pSrcNextEven, int16_t* pA, int16_t* pB,
                                                        int16_t* pC, int16_t* pD, int16_t* pE, int32_t width) {
  const StatusCode status = checkRows(width, pSrcEven, pSrcOdd, pSrcNextEven, pA, pB, pC, pD, pE);
  if (status != StatusOk) return status;
  wavelet97Kernels<int16_t>().forwardStep(pSrcEven, pSrcOdd, pSrcNextEven, pA, pB, pC, pD, pE,
                                          static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_32s_C1(const int32_t* pSrcEven, const int32_t* pSrcOdd,
                                                        const int32_t* pSrcNextEven, int32_t* pA, int32_t* pB,
                                                        int32_t* pC, int32_t* pD, int32_t* pE, int32_t width) {
  const StatusCode status = checkRows(width, pSrcEven, pSrcOdd, pSrcNextEven, pA, pB, pC, pD, pE);
  if (status != StatusOk) return status;
  wavelet97Kernels<int32_t>().forwardStep(pSrcEven, pSrcOdd, pSrcNextEven, pA, pB, pC, pD, pE,
                                          static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTFwdColLift_D97_JPEG2K_32f_C1(const float* pSrcEven, const float* pSrcOdd,
                                                        const float* pSrcNextEven, float* pA, float* pB, float* pC,
                                                        float* pD, float* pE, int32_t width) {
  const StatusCode status = checkRows(width, pSrcEven, pSrcOdd, pSrcNextEven, pA, pB, pC, pD, pE);
  if (status != StatusOk) return status;
  wavelet97Kernels<float>().forwardStep(pSrcEven, pSrcOdd, pSrcNextEven, pA, pB, pC, pD, pE,
                                        static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_16s_C1(const int16_t* pLow, const int16_t* pPreviousHigh,
                                                        const int16_t* pHigh, int16_t* pA, int16_t* pB, int16_t* pC,
                                                        int16_t* pD, const int16_t* pE, int32_t width) {
  const StatusCode status = checkRows(width, pLow, pPreviousHigh, pHigh, pA, pB, pC, pD, pE);
  if (status != StatusOk) return status;
  wavelet97Kernels<int16_t>().inverseStep(pLow, pPreviousHigh, pHigh, pA, pB, pC, pD, pE, static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_32s_C1(const int32_t* pLow, const int32_t* pPreviousHigh,
                                                        const int32_t* pHigh, int32_t* pA, int32_t* pB, int32_t* pC,
                                                        int32_t* pD, const int32_t* pE, int32_t width) {
  const StatusCode status = checkRows(width, pLow, pPreviousHigh, pHigh, pA, pB, pC, pD, pE);
  if (status != StatusOk) return status;
  wavelet97Kernels<int32_t>().inverseStep(pLow, pPreviousHigh, pHigh, pA, pB, pC, pD, pE, static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTInvColLift_D97_JPEG2K_32f_C1(const float* pLow, const float* pPreviousHigh,
                                                        const float* pHigh, float* pA, float* pB, float* pC, float* pD,
                                                        const float* pE, int32_t width) {
  const StatusCode status = checkRows(width, pLow, pPreviousHigh, pHigh, pA, pB, pC, pD, pE);
  if (status != StatusOk) return status;
  wavelet97Kernels<float>().inverseStep(pLow, pPreviousHigh, pHigh, pA, pB, pC, pD, pE, static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet97Kernels<int16_t>().forwardInPlace);
}

StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet97Kernels<int32_t>().forwardInPlace);
}

StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet97Kernels<int16_t>().inverseInPlace);
}

StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet97Kernels<int32_t>().inverseInPlace);
}

StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                  int16_t* const pDst[4], const int32_t dstSteps[4], void* pBuffer) {
  return forwardApart(pSrc, srcStep, pTile, pDst, dstSteps, pBuffer, kBorder, wavelet97Kernels<int16_t>());
}

StatusCode ZORJ_CALL zoriWTFwd_D97_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                  int32_t* const pDst[4], const int32_t dstSteps[4], void* pBuffer) {
  return forwardApart(pSrc, srcStep, pTile, pDst, dstSteps, pBuffer, kBorder, wavelet97Kernels<int32_t>());
}

StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int32_t srcSteps[4],
                                                  int16_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                  void* pBuffer) {
  return inverseApart(pSrc, srcSteps, pDst, dstStep, pTile, pBuffer, kBorder, wavelet97Kernels<int16_t>());
}

StatusCode ZORJ_CALL zoriWTInv_D97_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int32_t srcSteps[4],
                                                  int32_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                  void* pBuffer) {
  return inverseApart(pSrc, srcSteps, pDst, dstStep, pTile, pBuffer, kBorder, wavelet97Kernels<int32_t>());
}

StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_16s_C1IR(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int16_t, Buffer::kLine>(pTile, pSize, kBorder);
}

StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_32s_C1IR(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int32_t, Buffer::kLine>(pTile, pSize, kBorder);
}

StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_16s_C1R(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int16_t, Buffer::kTileAndLine>(pTile, pSize, kBorder);
}

StatusCode ZORJ_CALL zoriWTGetBufSize_D97_JPEG2K_32s_C1R(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int32_t, Buffer::kTileAndLine>(pTile, pSize, kBorder);
}
