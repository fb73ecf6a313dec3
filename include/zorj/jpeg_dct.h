/** @file jpeg_dct.h */
#ifndef ZORJ_JPEG_DCT_H
#define ZORJ_JPEG_DCT_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

ZORJ_API StatusCode ZORJ_CALL zoriQuantFwdRawTableInit_JPEG_8u(uint8_t* pQuantRawTable, int32_t qualityFactor);
ZORJ_API StatusCode ZORJ_CALL zoriQuantFwdTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantFwdTable);
ZORJ_API StatusCode ZORJ_CALL zoriQuantInvTableInit_JPEG_8u16u(const uint8_t* pQuantRawTable, uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);
ZORJ_API StatusCode ZORJ_CALL zoriQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);

ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                                  const uint16_t* pQuantFwdTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const uint16_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                                   const float* pQuantFwdTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                             const uint16_t* pQuantFwdTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantFwd8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantFwdTable);
ZORJ_API StatusCode ZORJ_CALL zoriSub128_JPEG_8u16s_C1R(const uint8_t* pSrc, int32_t srcStep, int16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize);

ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                  const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int32_t dstStep,
                                                                   const float* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                      int32_t dstStep, const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                      int32_t dstStep, const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                      int32_t dstStep, const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                       int32_t dstStep, const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst,
                                                                       int32_t dstStep, const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1(const int16_t* pSrc, int16_t* pDst,
                                                             const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriDCTQuantInv8x8_JPEG_16s_C1I(int16_t* pSrcDst, const uint16_t* pQuantInvTable);
ZORJ_API StatusCode ZORJ_CALL zoriAdd128_JPEG_16s8u_C1R(const int16_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize);

#ifdef __cplusplus
}
#endif

#endif
