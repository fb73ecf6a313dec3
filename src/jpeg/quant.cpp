#include <algorithm>
#include <array>

#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/quant_kernels.h"
#include "zorj/jpeg_dct.h"

namespace zorj {
namespace {

// The position of each coefficient, in natural order, in the zig-zag sequence (T.81 figure A.6).
constexpr auto kZigZagOfNatural = [] {
  std::array<uint8_t, 64> position{};
  uint8_t next = 0;
  for (int diagonal = 0; diagonal < 15; ++diagonal) {
    for (int i = std::max(0, diagonal - 7); i <= std::min(diagonal, 7); ++i) {
      const int row = diagonal % 2 == 0 ? diagonal - i : i;
      position[static_cast<size_t>(8 * row + diagonal - row)] = next++;
    }
  }
  return position;
}();

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
  for (int i = 0; i < 64; ++i) {
    pQuantRawTable[i] = static_cast<uint8_t>(std::clamp((pQuantRawTable[i] * scale + 50) / 100, 1, 255));
  }
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable) {
  if (anyNull(pQuantRawTable, pQuantFwdTable)) return StatusNullPointer;
  StatusCode status = StatusOk;
  for (size_t i = 0; i < 64; ++i) {
    const int step = pQuantRawTable[kZigZagOfNatural[i]];
    if (step == 0) status = StatusDivideByZero;
    const int reciprocal = step == 0 ? 0xFFFF : (2 * 32768 + step) / (2 * step);
    storeUnaligned(pQuantFwdTable + i, static_cast<uint16_t>(reciprocal));
  }
  return status;
}

StatusCode ZORJ_CALL zoriQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable) {
  if (anyNull(pQuantRawTable, pQuantInvTable)) return StatusNullPointer;
  for (size_t i = 0; i < 64; ++i) {
    storeUnaligned(pQuantInvTable + i, uint16_t{pQuantRawTable[kZigZagOfNatural[i]]});
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
