#include "texture/block_image.h"
#include "texture/dxt_decode_kernels.h"
#include "zorj/texture.h"

using namespace zorj;

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                RoiSize roiSize) {
  return decodeBlockImage(pSrc, pDst, dstStep, roiSize, dxtDecodeKernels().dxt1);
}

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                RoiSize roiSize) {
  return decodeBlockImage(pSrc, pDst, dstStep, roiSize, dxtDecodeKernels().dxt3);
}

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                RoiSize roiSize) {
  return decodeBlockImage(pSrc, pDst, dstStep, roiSize, dxtDecodeKernels().dxt5);
}
