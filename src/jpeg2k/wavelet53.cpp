#include "jpeg2k/wavelet53_kernels.h"
#include "jpeg2k/wavelet_calls.h"
#include "zorj/jpeg2k_transform.h"

using namespace zorj;

// Samples of a line in the buffer beyond its own.
static constexpr uint32_t kBorder = 4;

StatusCode ZORJ_CALL zoriWTFwdRow_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                     int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                     RoiSize bandRoiSize, int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet53Kernels<int16_t>().forwardRows);
}

StatusCode ZORJ_CALL zoriWTFwdRow_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                     int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                     RoiSize bandRoiSize, int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet53Kernels<int32_t>().forwardRows);
}

StatusCode ZORJ_CALL zoriWTInvRow_B53_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep, const int16_t* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, int16_t* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet53Kernels<int16_t>().inverseRows);
}

StatusCode ZORJ_CALL zoriWTInvRow_B53_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep, const int32_t* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, int32_t* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet53Kernels<int32_t>().inverseRows);
}

StatusCode ZORJ_CALL zoriWTFwdCol_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, int16_t* pLow,
                                                     int32_t lowStep, int16_t* pHigh, int32_t highStep,
                                                     RoiSize bandRoiSize, int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet53Kernels<int16_t>().forwardColumns);
}

StatusCode ZORJ_CALL zoriWTFwdCol_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, int32_t* pLow,
                                                     int32_t lowStep, int32_t* pHigh, int32_t highStep,
                                                     RoiSize bandRoiSize, int32_t phase) {
  return forwardBands(pSrc, srcStep, pLow, lowStep, pHigh, highStep, bandRoiSize, phase,
                      wavelet53Kernels<int32_t>().forwardColumns);
}

StatusCode ZORJ_CALL zoriWTInvCol_B53_JPEG2K_16s_C1R(const int16_t* pLow, int32_t lowStep, const int16_t* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, int16_t* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet53Kernels<int16_t>().inverseColumns);
}

StatusCode ZORJ_CALL zoriWTInvCol_B53_JPEG2K_32s_C1R(const int32_t* pLow, int32_t lowStep, const int32_t* pHigh,
                                                     int32_t highStep, RoiSize bandRoiSize, int32_t* pDst,
                                                     int32_t dstStep, int32_t phase) {
  return inverseBands(pLow, lowStep, pHigh, highStep, bandRoiSize, pDst, dstStep, phase,
                      wavelet53Kernels<int32_t>().inverseColumns);
}

StatusCode ZORJ_CALL zoriWTFwdColLift_B53_JPEG2K_16s_C1(const int16_t* pSrcEven, const int16_t* pSrcOdd,
                                                        const int16_t* pSrcNextEven, int16_t* pDstLow,
                                                        const int16_t* pPreviousHigh, int16_t* pDstHigh,
                                                        int32_t width) {
  const StatusCode status = checkRows(width, pSrcEven, pSrcOdd, pSrcNextEven, pDstLow, pPreviousHigh, pDstHigh);
  if (status != StatusOk) return status;
  wavelet53Kernels<int16_t>().forwardStep(pSrcEven, pSrcOdd, pSrcNextEven, pDstLow, pPreviousHigh, pDstHigh,
                                          static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTFwdColLift_B53_JPEG2K_32s_C1(const int32_t* pSrcEven, const int32_t* pSrcOdd,
                                                        const int32_t* pSrcNextEven, int32_t* pDstLow,
                                                        const int32_t* pPreviousHigh, int32_t* pDstHigh,
                                                        int32_t width) {
  const StatusCode status = checkRows(width, pSrcEven, pSrcOdd, pSrcNextEven, pDstLow, pPreviousHigh, pDstHigh);
  if (status != StatusOk) return status;
  wavelet53Kernels<int32_t>().forwardStep(pSrcEven, pSrcOdd, pSrcNextEven, pDstLow, pPreviousHigh, pDstHigh,
                                          static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTInvColLift_B53_JPEG2K_16s_C1(const int16_t* pLow, const int16_t* pPreviousHigh,
                                                        const int16_t* pHigh, const int16_t* pPreviousEven,
                                                        int16_t* pDstOdd, int16_t* pDstEven, int32_t width) {
  const StatusCode status = checkRows(width, pLow, pPreviousHigh, pHigh, pPreviousEven, pDstOdd, pDstEven);
  if (status != StatusOk) return status;
  wavelet53Kernels<int16_t>().inverseStep(pLow, pPreviousHigh, pHigh, pPreviousEven, pDstOdd, pDstEven,
                                          static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTInvColLift_B53_JPEG2K_32s_C1(const int32_t* pLow, const int32_t* pPreviousHigh,
                                                        const int32_t* pHigh, const int32_t* pPreviousEven,
                                                        int32_t* pDstOdd, int32_t* pDstEven, int32_t width) {
  const StatusCode status = checkRows(width, pLow, pPreviousHigh, pHigh, pPreviousEven, pDstOdd, pDstEven);
  if (status != StatusOk) return status;
  wavelet53Kernels<int32_t>().inverseStep(pLow, pPreviousHigh, pHigh, pPreviousEven, pDstOdd, pDstEven,
                                          static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet53Kernels<int16_t>().forwardInPlace);
}

StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet53Kernels<int32_t>().forwardInPlace);
}

StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_16s_C1IR(int16_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet53Kernels<int16_t>().inverseInPlace);
}

StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_32s_C1IR(int32_t* pSrcDst, int32_t srcDstStep, const TileRect* pTile,
                                                   void* pBuffer) {
  return transformInPlace(pSrcDst, srcDstStep, pTile, pBuffer, kBorder, wavelet53Kernels<int32_t>().inverseInPlace);
}

StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_16s_C1R(const int16_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                  int16_t* const pDst[4], const int32_t dstSteps[4], void* pBuffer) {
  return forwardApart(pSrc, srcStep, pTile, pDst, dstSteps, pBuffer, kBorder, wavelet53Kernels<int16_t>());
}

StatusCode ZORJ_CALL zoriWTFwd_B53_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, const TileRect* pTile,
                                                  int32_t* const pDst[4], const int32_t dstSteps[4], void* pBuffer) {
  return forwardApart(pSrc, srcStep, pTile, pDst, dstSteps, pBuffer, kBorder, wavelet53Kernels<int32_t>());
}

StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_16s_C1R(const int16_t* const pSrc[4], const int32_t srcSteps[4],
                                                  int16_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                  void* pBuffer) {
  return inverseApart(pSrc, srcSteps, pDst, dstStep, pTile, pBuffer, kBorder, wavelet53Kernels<int16_t>());
}

StatusCode ZORJ_CALL zoriWTInv_B53_JPEG2K_32s_C1R(const int32_t* const pSrc[4], const int32_t srcSteps[4],
                                                  int32_t* pDst, int32_t dstStep, const TileRect* pTile,
                                                  void* pBuffer) {
  return inverseApart(pSrc, srcSteps, pDst, dstStep, pTile, pBuffer, kBorder, wavelet53Kernels<int32_t>());
}

StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_16s_C1IR(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int16_t, Buffer::kLine>(pTile, pSize, kBorder);
}

StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_32s_C1IR(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int32_t, Buffer::kLine>(pTile, pSize, kBorder);
}

StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_16s_C1R(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int16_t, Buffer::kTileAndLine>(pTile, pSize, kBorder);
}

StatusCode ZORJ_CALL zoriWTGetBufSize_B53_JPEG2K_32s_C1R(const TileRect* pTile, int32_t* pSize) {
  return bufferSize<int32_t, Buffer::kTileAndLine>(pTile, pSize, kBorder);
}
