#include "core/checks.h"
#include "hdp/photo_core_kernels.h"
#include "zorj/hdp.h"

namespace zorj {
namespace {

// Steps are compared as unsigned numbers, which lets negative ones pass.
bool coversRow(int32_t step, int32_t width) {
  return uint64_t{static_cast<uint32_t>(step)} >= uint64_t{4} * static_cast<uint32_t>(width);
}

StatusCode transformFixed(PhotoCoreKernels::Transform transform, int32_t* samples, int32_t step, int32_t width,
                          int32_t height) {
  if (anyNull(samples)) return StatusNullPointer;
  if (!coversRow(step, width)) return StatusBadStep;
  transform(samples, step, width, height);
  return StatusOk;
}

StatusCode transformAny(PhotoCoreKernels::Transform transform, int32_t* samples, int32_t step, int32_t width,
                        int32_t height) {
  if (anyNull(samples)) return StatusNullPointer;
  if (width < 1 || height < 1) return StatusBadSize;
  if (!coversRow(step, width)) return StatusBadStep;
  if (width % 4 != 0 || height % 4 != 0) return StatusBadSize;
  transform(samples, step, width, height);
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriPCTFwd16x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step) {
  return transformFixed(photoCoreKernels().forward, pSrcDst, step, 16, 16);
}

StatusCode ZORJ_CALL zoriPCTFwd8x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step) {
  return transformFixed(photoCoreKernels().forward, pSrcDst, step, 8, 16);
}

StatusCode ZORJ_CALL zoriPCTFwd8x8_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step) {
  return transformFixed(photoCoreKernels().forward, pSrcDst, step, 8, 8);
}

StatusCode ZORJ_CALL zoriPCTFwd_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step, int32_t width, int32_t height) {
  return transformAny(photoCoreKernels().forward, pSrcDst, step, width, height);
}

StatusCode ZORJ_CALL zoriPCTInv16x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step) {
  return transformFixed(photoCoreKernels().inverse, pSrcDst, step, 16, 16);
}

StatusCode ZORJ_CALL zoriPCTInv8x16_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step) {
  return transformFixed(photoCoreKernels().inverse, pSrcDst, step, 8, 16);
}

StatusCode ZORJ_CALL zoriPCTInv8x8_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step) {
  return transformFixed(photoCoreKernels().inverse, pSrcDst, step, 8, 8);
}

StatusCode ZORJ_CALL zoriPCTInv_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step, int32_t width, int32_t height) {
  return transformAny(photoCoreKernels().inverse, pSrcDst, step, width, height);
}
