#include "texture/block_image.h"
#include "texture/dxt_encode_kernels.h"
#include "zorj/texture.h"

using namespace zorj;

StatusCode ZORJ_CALL zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                                                  uint8_t* pDst) {
  return encodeBlockImage<4>(pSrc, srcStep, roiSize, pDst, 8, dxtEncodeKernels().dxt1);
}

StatusCode ZORJ_CALL zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                                                  uint8_t* pDst) {
  return encodeBlockImage<4>(pSrc, srcStep, roiSize, pDst, 16, dxtEncodeKernels().dxt3);
}

StatusCode ZORJ_CALL zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                                                  uint8_t* pDst) {
  return encodeBlockImage<4>(pSrc, srcStep, roiSize, pDst, 16, dxtEncodeKernels().dxt5);
}

StatusCode ZORJ_CALL zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(const uint8_t* pSrc, int32_t srcStep,
                                                                   RoiSize roiSize, uint8_t* pDst) {
  return encodeBlockImage<3>(pSrc, srcStep, roiSize, pDst, 16, dxtEncodeKernels().dxt5YCoCg);
}
