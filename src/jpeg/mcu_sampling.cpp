#include "jpeg/mcu_checks.h"
#include "jpeg/mcu_sampling_kernels.h"
#include "zorj/jpeg_sampling.h"

namespace zorj {
namespace {

StatusCode down(const uint8_t* src, int32_t step, int16_t* const mcu[3], McuSamplingKernels::Down kernel) {
  const StatusCode status = checkMcu<3>(src, step, mcu);
  if (status == StatusOk) kernel(src, step, mcu);
  return status;
}

StatusCode up(const int16_t* const mcu[3], uint8_t* dst, int32_t step, McuSamplingKernels::Up kernel) {
  const StatusCode status = checkMcu<3>(dst, step, mcu);
  if (status == StatusOk) kernel(mcu, dst, step);
  return status;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriSampleDown411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return down(pSrc, srcStep, pDstMCU, mcuSamplingKernels().down411);
}

StatusCode ZORJ_CALL zoriSampleDown422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return down(pSrc, srcStep, pDstMCU, mcuSamplingKernels().down422);
}

StatusCode ZORJ_CALL zoriSampleDown444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                         int16_t* const pDstMCU[3]) {
  return down(pSrc, srcStep, pDstMCU, mcuSamplingKernels().down444);
}

StatusCode ZORJ_CALL zoriSampleUp411LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                       int32_t dstStep) {
  return up(pSrcMCU, pDst, dstStep, mcuSamplingKernels().up411);
}

StatusCode ZORJ_CALL zoriSampleUp422LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                       int32_t dstStep) {
  return up(pSrcMCU, pDst, dstStep, mcuSamplingKernels().up422);
}

StatusCode ZORJ_CALL zoriSampleUp444LS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                       int32_t dstStep) {
  return up(pSrcMCU, pDst, dstStep, mcuSamplingKernels().up444);
}
