#include "core/image_view.h"
#include "jpeg/color_kernels.h"
#include "zorj/jpeg_color.h"

using namespace zorj;

StatusCode ZORJ_CALL zoriRGBToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                  int32_t dstStep, RoiSize roiSize) {
  return convertImage(interleaved(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize, colorForwardKernels().rgbToYCbCr);
}

StatusCode ZORJ_CALL zoriBGRToYCbCr_JPEG_8u_C3P3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                  int32_t dstStep, RoiSize roiSize) {
  return convertImage(interleaved(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize, colorForwardKernels().bgrToYCbCr);
}

StatusCode ZORJ_CALL zoriRGBToYCbCr_JPEG_8u_P3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* const pDst[3],
                                                int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize, colorForwardKernels().planesToYCbCr);
}

StatusCode ZORJ_CALL zoriRGBToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                                              RoiSize roiSize) {
  return convertImage(interleaved(pSrc, srcStep), interleaved(pDst, dstStep), roiSize, colorForwardKernels().rgbToY);
}

StatusCode ZORJ_CALL zoriBGRToY_JPEG_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep,
                                              RoiSize roiSize) {
  return convertImage(interleaved(pSrc, srcStep), interleaved(pDst, dstStep), roiSize, colorForwardKernels().bgrToY);
}

StatusCode ZORJ_CALL zoriRGBToY_JPEG_8u_P3C1R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                              int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize, colorForwardKernels().planesToY);
}

StatusCode ZORJ_CALL zoriBGR555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImageSerially(interleaved(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize,
                              colorForwardKernels().bgr555ToYCbCr);
}

StatusCode ZORJ_CALL zoriBGR565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImageSerially(interleaved(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize,
                              colorForwardKernels().bgr565ToYCbCr);
}

StatusCode ZORJ_CALL zoriRGB555ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImageSerially(interleaved(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize,
                              colorForwardKernels().rgb555ToYCbCr);
}

StatusCode ZORJ_CALL zoriRGB565ToYCbCr_JPEG_16u8u_C3P3R(const uint16_t* pSrc, int32_t srcStep, uint8_t* const pDst[3],
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImageSerially(interleaved(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize,
                              colorForwardKernels().rgb565ToYCbCr);
}

StatusCode ZORJ_CALL zoriYCbCrToRGB_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                  int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize, colorInverseKernels().yCbCrToRgb);
}

StatusCode ZORJ_CALL zoriYCbCrToBGR_JPEG_8u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* pDst,
                                                  int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize, colorInverseKernels().yCbCrToBgr);
}

StatusCode ZORJ_CALL zoriYCbCrToRGB_JPEG_8u_P3R(const uint8_t* const pSrc[3], int32_t srcStep, uint8_t* const pDst[3],
                                                int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), planar<3>(pDst, dstStep), roiSize, colorInverseKernels().yCbCrToPlanes);
}

StatusCode ZORJ_CALL zoriYCbCrToRGB555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize,
                      colorInverseKernels().yCbCrToRgb555);
}

StatusCode ZORJ_CALL zoriYCbCrToRGB565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize,
                      colorInverseKernels().yCbCrToRgb565);
}

StatusCode ZORJ_CALL zoriYCbCrToBGR555_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize,
                      colorInverseKernels().yCbCrToBgr555);
}

StatusCode ZORJ_CALL zoriYCbCrToBGR565_JPEG_8u16u_P3C3R(const uint8_t* const pSrc[3], int32_t srcStep, uint16_t* pDst,
                                                        int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<3>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize,
                      colorInverseKernels().yCbCrToBgr565);
}

StatusCode ZORJ_CALL zoriYCbCr422ToRGB_JPEG_8u_C2C3R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                     int32_t dstStep, RoiSize roiSize) {
  return convertImage(interleaved(pSrc, srcStep), interleaved(pDst, dstStep), roiSize,
                      colorInverseKernels().yCbCr422ToRgb);
}

StatusCode ZORJ_CALL zoriCMYKToYCCK_JPEG_8u_C4P4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* const pDst[4],
                                                  int32_t dstStep, RoiSize roiSize) {
  return convertImage(interleaved(pSrc, srcStep), planar<4>(pDst, dstStep), roiSize, colorForwardKernels().cmykToYcck);
}

StatusCode ZORJ_CALL zoriCMYKToYCCK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int32_t srcStep, uint8_t* const pDst[4],
                                                int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<4>(pSrc, srcStep), planar<4>(pDst, dstStep), roiSize, colorForwardKernels().planesToYcck);
}

StatusCode ZORJ_CALL zoriYCCKToCMYK_JPEG_8u_P4C4R(const uint8_t* const pSrc[4], int32_t srcStep, uint8_t* pDst,
                                                  int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<4>(pSrc, srcStep), interleaved(pDst, dstStep), roiSize, colorInverseKernels().ycckToCmyk);
}

StatusCode ZORJ_CALL zoriYCCKToCMYK_JPEG_8u_P4R(const uint8_t* const pSrc[4], int32_t srcStep, uint8_t* const pDst[4],
                                                int32_t dstStep, RoiSize roiSize) {
  return convertImage(planar<4>(pSrc, srcStep), planar<4>(pDst, dstStep), roiSize, colorInverseKernels().ycckToPlanes);
}
