#include "core/checks.h"
#include "core/row_address.h"
#include "core/row_parallel.h"
#include "jpeg/level_shift_kernels.h"
#include "zorj/jpeg_dct.h"

namespace zorj {
namespace {

template <class Source, class Destination>
StatusCode shiftImage(const Source* src, int32_t srcStep, Destination* dst, int32_t dstStep, RoiSize size,
                      void (*shiftRow)(const Source*, Destination*, size_t)) {
  if (anyNull(src)) return StatusNullPointer;
  if (srcStep < 1) return StatusBadStep;
  if (anyNull(dst)) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  if (isEmpty(size)) return StatusBadSize;
  forEachRow(size, [=](int32_t y) {
    shiftRow(rowAt(src, srcStep, y), rowAt(dst, dstStep, y), static_cast<size_t>(size.width));
  });
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriSub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst, int32_t dstStep,
                                               RoiSize roiSize) {
  return shiftImage(pSrc, srcStep, pDst, dstStep, roiSize, levelShiftKernels().subtract);
}

StatusCode ZORJ_CALL zoriAdd128_JPEG_16s8u_C1R(const int16_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                                               RoiSize roiSize) {
  return shiftImage(pSrc, srcStep, pDst, dstStep, roiSize, levelShiftKernels().add);
}
