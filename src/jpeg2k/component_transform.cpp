#include "core/checks.h"
#include "core/row_address.h"
#include "jpeg2k/component_transform_kernels.h"
#include "zorj/jpeg2k_transform.h"

namespace zorj {
namespace {

template <class T>
bool anyPlaneNull(T* const planes[3]) {
  return anyNull(planes) || anyNull(planes[0], planes[1], planes[2]);
}

// Rows that lie next to each other in memory are transformed as one.
RoiSize joined(RoiSize size, bool dense) {
  const int64_t samples = int64_t{size.width} * size.height;
  return dense && samples <= INT32_MAX ? RoiSize{static_cast<int32_t>(samples), 1} : size;
}

// Whether the rows of planes or of pixels of so many samples lie next to each other.
template <class T>
bool isDense(int32_t step, int32_t width, int32_t samples) {
  return step == int64_t{width} * samples * int32_t{sizeof(T)};
}

// Rows are taken in order: a caller's planes may share memory in ways that only the order makes sense of.
template <class T>
StatusCode transformInPlace(T* const planes[3], int32_t step, RoiSize size, TransformPlanes<T> transformRow) {
  if (anyPlaneNull(planes)) return StatusNullPointer;
  if (step < 1) return StatusBadStep;
  if (isEmpty(size)) return StatusBadSize;
  size = joined(size, isDense<T>(step, size.width, 1));
  for (int32_t y = 0; y < size.height; ++y) {
    transformRow(rowAt(planes[0], step, y), rowAt(planes[1], step, y), rowAt(planes[2], step, y),
                 static_cast<size_t>(size.width));
  }
  return StatusOk;
}

template <class T>
StatusCode transformPixels(const T* src, int32_t srcStep, T* const dst[3], int32_t dstStep, RoiSize size,
                           PixelsToPlanes<T> transformRow) {
  if (anyNull(src) || anyPlaneNull(dst)) return StatusNullPointer;
  if (srcStep < 1 || dstStep < 1) return StatusBadStep;
  if (isEmpty(size)) return StatusBadSize;
  size = joined(size, isDense<T>(srcStep, size.width, 3) && isDense<T>(dstStep, size.width, 1));
  for (int32_t y = 0; y < size.height; ++y) {
    transformRow(rowAt(src, srcStep, y), rowAt(dst[0], dstStep, y), rowAt(dst[1], dstStep, y),
                 rowAt(dst[2], dstStep, y), static_cast<size_t>(size.width));
  }
  return StatusOk;
}

template <class T>
StatusCode transformPlanes(const T* const src[3], int32_t srcStep, T* dst, int32_t dstStep, RoiSize size,
                           PlanesToPixels<T> transformRow) {
  if (anyNull(dst) || anyPlaneNull(src)) return StatusNullPointer;
  if (srcStep < 1 || dstStep < 1) return StatusBadStep;
  if (isEmpty(size)) return StatusBadSize;
  size = joined(size, isDense<T>(srcStep, size.width, 1) && isDense<T>(dstStep, size.width, 3));
  for (int32_t y = 0; y < size.height; ++y) {
    transformRow(rowAt(src[0], srcStep, y), rowAt(src[1], srcStep, y), rowAt(src[2], srcStep, y),
                 rowAt(dst, dstStep, y), static_cast<size_t>(size.width));
  }
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_16s_C3P3R(const int16_t* pSrc, int32_t srcStep, int16_t* const pDst[3],
                                                 int32_t dstStep, RoiSize roiSize) {
  return transformPixels(pSrc, srcStep, pDst, dstStep, roiSize, componentTransformKernels().rctForwardPixels16);
}

StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().rctForward16);
}

StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_32s_C3P3R(const int32_t* pSrc, int32_t srcStep, int32_t* const pDst[3],
                                                 int32_t dstStep, RoiSize roiSize) {
  return transformPixels(pSrc, srcStep, pDst, dstStep, roiSize, componentTransformKernels().rctForwardPixels32);
}

StatusCode ZORJ_CALL zoriRCTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().rctForward32);
}

StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_16s_P3C3R(const int16_t* const pSrc[3], int32_t srcStep, int16_t* pDst,
                                                 int32_t dstStep, RoiSize roiSize) {
  return transformPlanes(pSrc, srcStep, pDst, dstStep, roiSize, componentTransformKernels().rctInversePixels16);
}

StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().rctInverse16);
}

StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_32s_P3C3R(const int32_t* const pSrc[3], int32_t srcStep, int32_t* pDst,
                                                 int32_t dstStep, RoiSize roiSize) {
  return transformPlanes(pSrc, srcStep, pDst, dstStep, roiSize, componentTransformKernels().rctInversePixels32);
}

StatusCode ZORJ_CALL zoriRCTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().rctInverse32);
}

StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().ictForward16);
}

StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().ictForward32);
}

StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_32f_C3P3R(const float* pSrc, int32_t srcStep, float* const pDst[3],
                                                 int32_t dstStep, RoiSize roiSize) {
  return transformPixels(pSrc, srcStep, pDst, dstStep, roiSize, componentTransformKernels().ictForwardPixelsFloat);
}

StatusCode ZORJ_CALL zoriICTFwd_JPEG2K_32f_P3IR(float* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().ictForwardFloat);
}

StatusCode ZORJ_CALL zoriICTInv_JPEG2K_16s_P3IR(int16_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().ictInverse16);
}

StatusCode ZORJ_CALL zoriICTInv_JPEG2K_32s_P3IR(int32_t* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().ictInverse32);
}

StatusCode ZORJ_CALL zoriICTInv_JPEG2K_32f_P3C3R(const float* const pSrc[3], int32_t srcStep, float* pDst,
                                                 int32_t dstStep, RoiSize roiSize) {
  return transformPlanes(pSrc, srcStep, pDst, dstStep, roiSize, componentTransformKernels().ictInversePixelsFloat);
}

StatusCode ZORJ_CALL zoriICTInv_JPEG2K_32f_P3IR(float* const pSrcDst[3], int32_t srcDstStep, RoiSize roiSize) {
  return transformInPlace(pSrcDst, srcDstStep, roiSize, componentTransformKernels().ictInverseFloat);
}
