// Preloaded into the demo: functions that do what the library's do and then change the first sample, which every check
// of the demo is to find.
#include <dlfcn.h>
#include <zorj.h>

namespace {

template <class Sample, class... Arguments>
StatusCode callAndSpoil(const char* function, Sample* sample, int32_t change, Arguments... arguments) {
  using Function = StatusCode ZORJ_CALL(Arguments...);
  const StatusCode status = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, function))(arguments...);
  *sample = static_cast<Sample>(*sample ^ change);
  return status;
}

constexpr int32_t kChange = 64;  // more than any check of samples of 8 bits tolerates

}  // namespace

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(const int16_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                         const uint16_t* pQuantInvTable) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pDst, dstStep, pQuantInvTable);
}

StatusCode ZORJ_CALL zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(const int16_t* pSrc, uint16_t* pDst, int32_t dstStep,
                                                          const float* pQuantInvTable) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pDst, dstStep, pQuantInvTable);
}

StatusCode ZORJ_CALL zoriReconstructPredRow_JPEG_16s_C1(const int16_t* pSrc, const int16_t* pPrevious, int16_t* pDst,
                                                        int32_t width, int32_t predictor) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pPrevious, pDst, width, predictor);
}

// In the highest bit plane of the block.
StatusCode ZORJ_CALL zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(const uint8_t* pSrc, int32_t* pDst, int32_t dstStep,
                                                          RoiSize roiSize, int32_t subband, int32_t nbp,
                                                          int32_t nPasses, const int32_t* pSegLen, int32_t nSegments,
                                                          uint32_t flags, int32_t* pErrorPlane, uint8_t* pState) {
  return callAndSpoil(__func__, pDst, 1 << (nbp - 1), pSrc, pDst, dstStep, roiSize, subband, nbp, nPasses, pSegLen,
                      nSegments, flags, pErrorPlane, pState);
}

StatusCode ZORJ_CALL zoriUnpackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int32_t* pSrcPosition, int32_t srcLength,
                                                  uint8_t* pDst, int32_t dstLength) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pSrcPosition, srcLength, pDst, dstLength);
}

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                RoiSize roiSize) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pDst, dstStep, roiSize);
}

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                                RoiSize roiSize) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pDst, dstStep, roiSize);
}

StatusCode ZORJ_CALL zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R(const uint8_t* pSrc, uint8_t* pDst, int32_t dstStep,
                                                               RoiSize roiSize) {
  return callAndSpoil(__func__, pDst, kChange, pSrc, pDst, dstStep, roiSize);
}

StatusCode ZORJ_CALL zoriPCTInv_HDP_32s_C1IR(int32_t* pSrcDst, int32_t step, int32_t width, int32_t height) {
  return callAndSpoil(__func__, pSrcDst, kChange, pSrcDst, step, width, height);
}
