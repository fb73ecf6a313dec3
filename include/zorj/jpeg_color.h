/** @file jpeg_color.h */
#ifndef ZORJ_JPEG_COLOR_H
#define ZORJ_JPEG_COLOR_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);
ZORJ_API StatusCode ZORJ_CALL zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr444LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr422LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);
ZORJ_API StatusCode ZORJ_CALL zoriBGRToYCbCr411LS_MCU_8u16s_C3P3R(const uint8_t* pSrc, int32_t srcStep,
                                                                  int16_t* const pDstMCU[3]);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);
ZORJ_API StatusCode ZORJ_CALL zoriYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const int16_t* const pSrcMCU[3], uint8_t* pDst,
                                                                  int32_t dstStep);

#ifdef __cplusplus
}
#endif

#endif
