#include "texture/bc7_decode_kernels.h"
#include "texture/block_image.h"
#include "zorj/texture.h"

using namespace zorj;

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                               RoiSize roiSize) {
  return decodeBlockImage(pSrc, pDst, dstStep, roiSize, bc7Decoder());
}
