#include <algorithm>
#include <cstddef>

#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/dct_float_kernels.h"
#include "jpeg/dct_inverse_kernels.h"
#include "zorj/jpeg_dct.h"

namespace zorj {
namespace {

template <class Sample, class Factor>
StatusCode inverseToSamples(const int16_t* src, Sample* dst, int32_t dstStep, const Factor* table,
                            void (*kernel)(const int16_t*, Sample*, int32_t, const Factor*)) {
  if (anyNull(src, dst)) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  if (anyNull(table)) return StatusNullPointer;
  kernel(src, dst, dstStep, table);
  return StatusOk;
}

uint8_t clampedSample(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

// From the DC coefficient alone: a flat block, without rounding.
void flatSamples(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  const int product = loadUnaligned(src) * loadUnaligned(table);
  const uint8_t sample = clampedSample(static_cast<int16_t>((product >> 3) + 128));
  for (ptrdiff_t y = 0; y < 8; ++y) std::memset(dst + y * dstStep, sample, 8);
}

// The 2-point inverse DCT of the lowest 2x2 coefficients: 2x2 samples.
void to2x2Samples(const int16_t* src, uint8_t* dst, int32_t dstStep, const uint16_t* table) {
  const auto coefficient = [&](int i) {
    return int{static_cast<int16_t>(loadUnaligned(src + i) * loadUnaligned(table + i))};
  };
  const int left[2] = {coefficient(0) + coefficient(8), coefficient(0) - coefficient(8)};
  const int right[2] = {coefficient(1) + coefficient(9), coefficient(1) - coefficient(9)};
  for (ptrdiff_t y = 0; y < 2; ++y) {
    dst[y * dstStep] = clampedSample(((left[y] + right[y] + 4) >> 3) + 128);
    dst[y * dstStep + 1] = clampedSample(((left[y] - right[y] + 4) >> 3) + 128);
  }
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                         const uint16_t* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().toSamples);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int32_t dstStep,
                                                          const float* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, dctFloatKernels().inverse);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                             const uint16_t* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, &flatSamples);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                             const uint16_t* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().toSamplesFrom2x2);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                             const uint16_t* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().toSamplesFrom4x4);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                              const uint16_t* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, &to2x2Samples);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                              const uint16_t* pQuantInvTable) {
  return inverseToSamples(pSrc, pDst, dstStep, pQuantInvTable, dctInverseKernels().to4x4Samples);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                    const uint16_t* pQuantInvTable) {
  if (anyNull(pSrc, pDst, pQuantInvTable)) return StatusNullPointer;
  dctInverseKernels().block(pSrc, pDst, pQuantInvTable);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable) {
  if (anyNull(pSrcDst, pQuantInvTable)) return StatusNullPointer;
  dctInverseKernels().block(pSrcDst, pSrcDst, pQuantInvTable);
  return StatusOk;
}
