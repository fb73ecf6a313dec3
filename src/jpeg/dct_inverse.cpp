#include "core/checks.h"
#include "jpeg/dct_inverse_kernels.h"
#include "zorj/jpeg_dct.h"

namespace zorj {
namespace {

template <class Sample, class Multiplier>
StatusCode invertBlock(const int16_t* src, Sample* dst, int32_t dstStep, const Multiplier* table,
                       void (*kernel)(const int16_t*, Sample*, int32_t, const Multiplier*)) {
  if (anyNull(src, dst)) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  if (anyNull(table)) return StatusNullPointer;
  kernel(src, dst, dstStep, table);
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                         const uint16_t* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShifted);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int32_t dstStep,
                                                          const float* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShiftedFloat);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                             const uint16_t* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShiftedFromDc);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                             const uint16_t* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShiftedFrom2x2);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                             const uint16_t* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShiftedFrom4x4);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                              const uint16_t* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShiftedTo2x2);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                              const uint16_t* pQuantInvTable) {
  return invertBlock(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().levelShiftedTo4x4);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                    const uint16_t* pQuantInvTable) {
  if (anyNull(pSrc, pDst, pQuantInvTable)) return StatusNullPointer;
  dctInverseKernels().centred(pSrc, pDst, pQuantInvTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable) {
  if (anyNull(pSrcDst, pQuantInvTable)) return StatusNullPointer;
  dctInverseKernels().centred(pSrcDst, pSrcDst, pQuantInvTable);
  return StatusOk;
}
