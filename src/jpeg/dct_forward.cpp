#include "core/checks.h"
#include "jpeg/dct_float_kernels.h"
#include "jpeg/dct_forward_kernels.h"
#include "zorj/jpeg_dct.h"

using namespace zorj;

StatusCode ZORJ_CALL zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                         const uint16_t* pQuantFwdTable) {
  if (anyNull(pSrc, pDst)) return StatusNullPointer;
  if (srcStep < 1) return StatusBadStep;
  if (anyNull(pQuantFwdTable)) return StatusNullPointer;
  dctForwardKernels().levelShifted(pSrc, srcStep, pDst, pQuantFwdTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const uint16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                          const float* pQuantFwdTable) {
  if (anyNull(pSrc, pDst)) return StatusNullPointer;
  if (srcStep < 1) return StatusBadStep;
  if (anyNull(pQuantFwdTable)) return StatusNullPointer;
  dctFloatKernels().forward(pSrc, srcStep, pDst, pQuantFwdTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                    const uint16_t* pQuantFwdTable) {
  if (anyNull(pSrc, pDst, pQuantFwdTable)) return StatusNullPointer;
  dctForwardKernels().block(pSrc, pDst, pQuantFwdTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDCTQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable) {
  if (anyNull(pSrcDst, pQuantFwdTable)) return StatusNullPointer;
  dctForwardKernels().block(pSrcDst, pSrcDst, pQuantFwdTable);
  return StatusOk;
}
