#include "jpeg/mcu_checks.h"
#include "jpeg/mcu_color_kernels.h"
#include "zorj/jpeg_color.h"

namespace zorj {
namespace {

template <size_t kPlanes, class Pixel>
StatusCode toBlocks(const Pixel* src, int32_t srcStep, int16_t* const* dst, McuForward kernel) {
  const StatusCode status = checkMcu<kPlanes>(src, srcStep, dst);
  if (status == StatusOk) kernel(reinterpret_cast<const uint8_t*>(src), srcStep, dst);
  return status;
}

template <size_t kPlanes, class Pixel>
StatusCode fromBlocks(const int16_t* const* src, Pixel* dst, int32_t dstStep, McuInverse kernel) {
  const StatusCode status = checkMcu<kPlanes>(dst, dstStep, src);
  if (status == StatusOk) kernel(src, reinterpret_cast<uint8_t*>(dst), dstStep);
  return status;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().rgbTo444);
}

StatusCode ZORJ_CALL zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().rgbTo422);
}

StatusCode ZORJ_CALL zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().rgbTo411);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgrTo444);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgrTo422);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgrTo411);
}

StatusCode ZORJ_CALL zoriBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgr555To444);
}

StatusCode ZORJ_CALL zoriBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgr555To422);
}

StatusCode ZORJ_CALL zoriBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgr555To411);
}

StatusCode ZORJ_CALL zoriBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgr565To444);
}

StatusCode ZORJ_CALL zoriBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgr565To422);
}

StatusCode ZORJ_CALL zoriBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const uint16_t* pSrc, int32_t srcStep,
                                                             int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().bgr565To411);
}

StatusCode ZORJ_CALL zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[4]) {
  return toBlocks<4>(pSrc, srcStep, pDstMCU, mcuForwardKernels().cmykTo444);
}

StatusCode ZORJ_CALL zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[4]) {
  return toBlocks<4>(pSrc, srcStep, pDstMCU, mcuForwardKernels().cmykTo422);
}

StatusCode ZORJ_CALL zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[4]) {
  return toBlocks<4>(pSrc, srcStep, pDstMCU, mcuForwardKernels().cmykTo411);
}

StatusCode ZORJ_CALL zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().rgbFrom444);
}

StatusCode ZORJ_CALL zoriYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().rgbFrom422);
}

StatusCode ZORJ_CALL zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().rgbFrom411);
}

StatusCode ZORJ_CALL zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgrFrom444);
}

StatusCode ZORJ_CALL zoriYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgrFrom422);
}

StatusCode ZORJ_CALL zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgrFrom411);
}

StatusCode ZORJ_CALL zoriYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                             int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgr555From444);
}

StatusCode ZORJ_CALL zoriYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                             int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgr555From422);
}

StatusCode ZORJ_CALL zoriYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                             int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgr555From411);
}

StatusCode ZORJ_CALL zoriYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                             int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgr565From444);
}

StatusCode ZORJ_CALL zoriYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                             int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgr565From422);
}

StatusCode ZORJ_CALL zoriYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const int16_t* const pSrcMCU[3], uint16_t* pDst,
                                                             int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().bgr565From411);
}

StatusCode ZORJ_CALL zoriYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<4>(pSrcMCU, pDst, dstStep, mcuInverseKernels().cmykFrom444);
}

StatusCode ZORJ_CALL zoriYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<4>(pSrcMCU, pDst, dstStep, mcuInverseKernels().cmykFrom422);
}

StatusCode ZORJ_CALL zoriYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const int16_t* const pSrcMCU[4], uint8_t* pDst,
                                                         int32_t dstStep) {
  return fromBlocks<4>(pSrcMCU, pDst, dstStep, mcuInverseKernels().cmykFrom411);
}

StatusCode ZORJ_CALL zoriSplit422LS_MCU_8u16s_C2P3R(const uint8_t* pSrc, int32_t srcStep, int16_t* const pDstMCU[3]) {
  return toBlocks<3>(pSrc, srcStep, pDstMCU, mcuForwardKernels().split422);
}

StatusCode ZORJ_CALL zoriJoin422LS_MCU_16s8u_P3C2R(const int16_t* const pSrcMCU[3], uint8_t* pDst, int32_t dstStep) {
  return fromBlocks<3>(pSrcMCU, pDst, dstStep, mcuInverseKernels().join422);
}
