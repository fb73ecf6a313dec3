// The inverse transform of a block to 8 x 8, 4 x 4, 2 x 2 or 1 x 1 samples.
#pragma once

#include <zorj/jpeg_dct.h>

namespace examples::jpeg {

using InverseBlock = StatusCode(ZORJ_CALL*)(const int16_t* coefficients, uint8_t* samples, int32_t step,
                                            const uint16_t* quantTable);

// The library has no function that gives one sample: this takes it out of a flat block.
inline StatusCode ZORJ_CALL inverseToOneSample(const int16_t* coefficients, uint8_t* samples, int32_t,
                                               const uint16_t* quantTable) {
  uint8_t flat[64];
  const StatusCode status = zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(coefficients, flat, 8, quantTable);
  *samples = flat[0];
  return status;
}

constexpr InverseBlock inverseBlockTo(int32_t size) {
  switch (size) {
    case 1:
      return inverseToOneSample;
    case 2:
      return zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R;
    case 4:
      return zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R;
    default:
      return zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R;
  }
}

}  // namespace examples::jpeg
