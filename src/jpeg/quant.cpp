#include <algorithm>
#include <cstddef>

#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/quant_kernels.h"
#include "jpeg/zigzag.h"
#include "zorj/jpeg_dct.h"

namespace zorj {
namespace {

// Percentage by which a quality of 1 to 100 scales the example tables of T.81 Annex K.1.
int32_t scaleOfQuality(int32_t quality) {
  if (quality >= 100) return 0;
  return quality < 50 ? 5000 / quality : 200 - 2 * quality;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int32_t qualityFactor) {
  if (anyNull(pQuantRawTable)) return StatusNullPointer;
  if (qualityFactor < 1) return StatusBadArgument;
  const int32_t scale = scaleOfQuality(qualityFactor);
  for (int i = 0; i < kBlockSize; ++i) {
    pQuantRawTable[i] = static_cast<uint8_t>(std::clamp((pQuantRawTable[i] * scale + 50) / 100, 1, 255));
  }
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable) {
  if (anyNull(pQuantRawTable, pQuantFwdTable)) return StatusNullPointer;
  StatusCode status = StatusOk;
  for (size_t k = 0; k < kBlockSize; ++k) {
    const int step = pQuantRawTable[k];
    if (step == 0) status = StatusDivideByZero;
    const int reciprocal = step == 0 ? 0xFFFF : (2 * 32768 + step) / (2 * step);
    storeUnaligned(pQuantFwdTable + kNaturalOrder[k], static_cast<uint16_t>(reciprocal));
  }
  return status;
}

StatusCode ZORJ_CALL zoriQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable) {
  if (anyNull(pQuantRawTable, pQuantInvTable)) return StatusNullPointer;
  for (size_t k = 0; k < kBlockSize; ++k) {
    storeUnaligned(pQuantInvTable + kNaturalOrder[k], uint16_t{pQuantRawTable[k]});
  }
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable) {
  if (anyNull(pSrcDst, pQuantFwdTable)) return StatusNullPointer;
  quantKernels().forward(pSrcDst, pQuantFwdTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable) {
  if (anyNull(pSrcDst, pQuantInvTable)) return StatusNullPointer;
  quantKernels().inverse(pSrcDst, pQuantInvTable);
  return StatusOk;
}
