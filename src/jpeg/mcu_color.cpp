#include "core/checks.h"
#include "jpeg/mcu_color_kernels.h"
#include "zorj/jpeg_color.h"

namespace zorj {
namespace {

template <class T>
bool anyPlaneNull(T* const planes[3]) {
  return anyNull(planes[0], planes[1], planes[2]);
}

StatusCode toBlocks(const uint8_t* src, int32_t srcStep, int16_t* const dst[3], McuForward kernel) {
  if (anyNull(src, dst)) return StatusNullPointer;
  if (srcStep < 1) return StatusBadStep;
  if (anyPlaneNull(dst)) return StatusNullPointer;
  kernel(src, srcStep, dst);
  return StatusOk;
}

StatusCode fromBlocks(const int16_t* const src[3], uint8_t* dst, int32_t dstStep, McuInverse kernel) {
  if (anyNull(src) || anyNull(dst)) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  if (anyPlaneNull(src)) return StatusNullPointer;
  kernel(src, dst, dstStep);
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks(pSrc, srcStep, pDstMCU, mcuColorKernels().rgbTo444);
}

StatusCode ZORJ_CALL zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks(pSrc, srcStep, pDstMCU, mcuColorKernels().rgbTo422);
}

StatusCode ZORJ_CALL zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks(pSrc, srcStep, pDstMCU, mcuColorKernels().rgbTo411);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks(pSrc, srcStep, pDstMCU, mcuColorKernels().bgrTo444);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks(pSrc, srcStep, pDstMCU, mcuColorKernels().bgrTo422);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks(pSrc, srcStep, pDstMCU, mcuColorKernels().bgrTo411);
}

StatusCode ZORJ_CALL zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks(pSrcMCU, pDst, dstStep, mcuColorKernels().rgbFrom444);
}

StatusCode ZORJ_CALL zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks(pSrcMCU, pDst, dstStep, mcuColorKernels().rgbFrom411);
}

StatusCode ZORJ_CALL zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks(pSrcMCU, pDst, dstStep, mcuColorKernels().bgrFrom444);
}

StatusCode ZORJ_CALL zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks(pSrcMCU, pDst, dstStep, mcuColorKernels().bgrFrom411);
}
