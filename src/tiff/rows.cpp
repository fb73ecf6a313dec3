#include "core/checks.h"
#include "tiff/rows_kernels.h"
#include "zorj/tiff.h"

namespace zorj {
namespace {

StatusCode checkPackets(const uint8_t* src, const int32_t* position, const uint8_t* dst, int32_t srcLength,
                        int32_t dstLength) {
  if (anyNull(src, dst) || anyNull(position)) return StatusNullPointer;
  if (srcLength < 1 || dstLength < 1) return StatusBadSize;
  return *position < 0 ? StatusPackBitsError : StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriPackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int32_t srcLength, uint8_t* pDst,
                                                int32_t* pDstPosition, int32_t dstLength) {
  if (const StatusCode status = checkPackets(pSrc, pDstPosition, pDst, srcLength, dstLength)) return status;
  return tiffRowKernels().pack(pSrc, srcLength, pDst, pDstPosition, dstLength);
}

StatusCode ZORJ_CALL zoriUnpackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int32_t* pSrcPosition, int32_t srcLength,
                                                  uint8_t* pDst, int32_t dstLength) {
  if (const StatusCode status = checkPackets(pSrc, pSrcPosition, pDst, srcLength, dstLength)) return status;
  return tiffRowKernels().unpack(pSrc, pSrcPosition, srcLength, pDst, dstLength);
}

StatusCode ZORJ_CALL zoriSplitRow_TIFF_16u8u_C1(const uint16_t* pSrc, uint8_t* const pDst[2], int32_t width) {
  if (anyNull(pSrc) || anyNull(pDst) || anyNull(pDst[0], pDst[1])) return StatusNullPointer;
  if (width < 1) return StatusBadStep;
  tiffRowKernels().split(pSrc, pDst[0], pDst[1], static_cast<size_t>(width));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriJoinRow_TIFF_8u16u_C1(const uint8_t* const pSrc[2], uint16_t* pDst, int32_t width) {
  if (anyNull(pDst) || anyNull(pSrc) || anyNull(pSrc[0], pSrc[1])) return StatusNullPointer;
  if (width < 1) return StatusBadStep;
  tiffRowKernels().join(pSrc[0], pSrc[1], pDst, static_cast<size_t>(width));
  return StatusOk;
}
