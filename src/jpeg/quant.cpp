#include <algorithm>
#include <array>

#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/quant_kernels.h"
#include "zorj/jpeg_dct.h"

namespace zorj {
namespace {

constexpr size_t kBlockSize = 64;

// The zig-zag index of each natural (row-major) position (T.81 Figure A.6).
constexpr std::array<uint8_t, kBlockSize> kZigZagIndex = [] {
  std::array<uint8_t, kBlockSize> index{};
  uint8_t next = 0;
  for (int diagonal = 0; diagonal < 15; ++diagonal) {
    for (int i = 0; i <= diagonal; ++i) {
      const int row = diagonal % 2 == 0 ? diagonal - i : i, column = diagonal - row;
      if (row < 8 && column < 8) index[static_cast<size_t>(8 * row + column)] = next++;
    }
  }
  return index;
}();

// Element-wise in natural order; `workingEntry` makes a table entry of a step size.
template <class WorkingEntry>
void buildTable(const uint8_t* raw, uint16_t* table, WorkingEntry workingEntry) {
  uint16_t steps[kBlockSize];  // the tables may overlap
  std::copy_n(raw, kBlockSize, steps);
  for (size_t i = 0; i < kBlockSize; ++i) storeUnaligned(table + i, workingEntry(steps[kZigZagIndex[i]]));
}

constexpr uint16_t kReciprocalOfZero = 0xFFFF;

// 32768 / step to the nearest; no step of 1 to 255 makes a tie.
uint16_t reciprocal(uint16_t step) {
  return step == 0 ? kReciprocalOfZero : static_cast<uint16_t>((32768 + step / 2) / step);
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int32_t qualityFactor) {
  if (anyNull(pQuantRawTable)) return StatusNullPointer;
  if (qualityFactor < 1) return StatusBadArgument;
  // From 100 on the scale is not positive, and every entry 1.
  const int32_t quality = std::min(qualityFactor, 100);
  const int32_t scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
  for (size_t i = 0; i < kBlockSize; ++i) {
    pQuantRawTable[i] = static_cast<uint8_t>(std::clamp((pQuantRawTable[i] * scale + 50) / 100, 1, 255));
  }
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable) {
  if (anyNull(pQuantRawTable, pQuantFwdTable)) return StatusNullPointer;
  bool anyZero = false;
  buildTable(pQuantRawTable, pQuantFwdTable, [&](uint16_t step) {
    anyZero |= step == 0;
    return reciprocal(step);
  });
  return anyZero ? StatusDivideByZero : StatusOk;
}

StatusCode ZORJ_CALL zoriQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable) {
  if (anyNull(pQuantRawTable, pQuantInvTable)) return StatusNullPointer;
  buildTable(pQuantRawTable, pQuantInvTable, [](uint16_t step) { return step; });
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable) {
  if (anyNull(pSrcDst, pQuantFwdTable)) return StatusNullPointer;
  quantKernels().quantise(pSrcDst, pQuantFwdTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable) {
  if (anyNull(pSrcDst, pQuantInvTable)) return StatusNullPointer;
  quantKernels().dequantise(pSrcDst, pQuantInvTable);
  return StatusOk;
}
