#include <algorithm>

#include "core/checks.h"
#include "core/row_address.h"
#include "core/row_parallel.h"
#include "jpeg/sampling_kernels.h"
#include "zorj/jpeg_sampling.h"

namespace zorj {
namespace {

// A plane as a caller passes it.
template <class Sample>
struct Plane {
  Sample* data;
  int32_t step;
  RoiSize size;

  size_t width() const { return static_cast<size_t>(size.width); }
  Sample* row(int32_t y) const { return rowAt(data, step, y); }
  // Row y, or the nearest one there is.
  Sample* nearestRow(int64_t y) const { return row(static_cast<int32_t>(std::clamp<int64_t>(y, 0, size.height - 1))); }
};
using Source = Plane<const uint8_t>;
using Destination = Plane<uint8_t>;

template <class Sample>
StatusCode check(const Plane<Sample>& plane) {
  if (anyNull(plane.data)) return StatusNullPointer;
  if (plane.step < 1) return StatusBadStep;
  if (isEmpty(plane.size)) return StatusBadSize;
  return StatusOk;
}

StatusCode check(const Source& src, const Destination& dst) {
  const StatusCode status = check(src);
  return status != StatusOk ? status : check(dst);
}

template <class... Pointer>
StatusCode checkRow(int32_t width, const Pointer*... pointers) {
  if (anyNull(pointers...)) return StatusNullPointer;
  return width < 1 ? StatusBadSize : StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriSampleDownH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                    uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize) {
  const Source src = {pSrc, srcStep, srcRoiSize};
  const Destination dst = {pDst, dstStep, dstRoiSize};
  if (const StatusCode status = check(src, dst); status != StatusOk) return status;
  const auto box = samplingKernels().boxH2V1;
  forEachRow(dstRoiSize, [=](int32_t y) { box(dst.row(y), dst.width(), src.width(), src.step, src.nearestRow(y)); });
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleDownH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                    uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize) {
  const Source src = {pSrc, srcStep, srcRoiSize};
  const Destination dst = {pDst, dstStep, dstRoiSize};
  if (const StatusCode status = check(src, dst); status != StatusOk) return status;
  const auto box = samplingKernels().boxH2V2;
  forEachRow(dstRoiSize, [=](int32_t y) {
    const int64_t upper = int64_t{2} * y;
    const auto ahead = static_cast<ptrdiff_t>(2 * static_cast<size_t>(src.step));
    box(dst.row(y), dst.width(), src.width(), ahead, src.nearestRow(upper), src.nearestRow(upper + 1));
  });
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleDownRowH2V1_Box_JPEG_8u_C1(const uint8_t* pSrc, int32_t srcWidth, uint8_t* pDst) {
  if (const StatusCode status = checkRow(srcWidth, pSrc, pDst); status != StatusOk) return status;
  const auto width = static_cast<size_t>(srcWidth);
  samplingKernels().alternatingBoxH2V1(pDst, (width + 1) / 2, width, 0, pSrc);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleDownRowH2V2_Box_JPEG_8u_C1(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t srcWidth,
                                                          uint8_t* pDst) {
  if (const StatusCode status = checkRow(srcWidth, pSrc1, pSrc2, pDst); status != StatusOk) return status;
  const auto width = static_cast<size_t>(srcWidth);
  samplingKernels().alternatingBoxH2V2(pDst, (width + 1) / 2, width, 0, pSrc1, pSrc2);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleUpH2V1_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                  uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize) {
  const Source src = {pSrc, srcStep, srcRoiSize};
  const Destination dst = {pDst, dstStep, dstRoiSize};
  if (const StatusCode status = check(src, dst); status != StatusOk) return status;
  const auto triangle = samplingKernels().borderedTriangleH2V1;
  for (int32_t y = 0; y < dstRoiSize.height; ++y) triangle(dst.row(y), dst.width(), src.row(y));
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleUpH2V2_JPEG_8u_C1R(const uint8_t* pSrc, int32_t srcStep, RoiSize srcRoiSize,
                                                  uint8_t* pDst, int32_t dstStep, RoiSize dstRoiSize) {
  const Source src = {pSrc, srcStep, srcRoiSize};
  const Destination dst = {pDst, dstStep, dstRoiSize};
  if (const StatusCode status = check(src, dst); status != StatusOk) return status;
  const auto triangle = samplingKernels().triangleH2V2;
  forEachRow(dstRoiSize, [=](int32_t y) {
    const int64_t near = y / 2;
    const int64_t far = y % 2 == 0 ? near - 1 : near + 1;
    triangle(dst.row(y), dst.width(), src.width(), src.nearestRow(near), src.nearestRow(far));
  });
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleUpRowH2V1_Triangle_JPEG_8u_C1(const uint8_t* pSrc, int32_t srcWidth, uint8_t* pDst) {
  if (const StatusCode status = checkRow(srcWidth, pSrc, pDst); status != StatusOk) return status;
  const auto width = static_cast<size_t>(srcWidth);
  samplingKernels().triangleH2V1(pDst, 2 * width, width, pSrc);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriSampleUpRowH2V2_Triangle_JPEG_8u_C1(const uint8_t* pSrcNear, const uint8_t* pSrcFar,
                                                             int32_t srcWidth, uint8_t* pDst) {
  if (const StatusCode status = checkRow(srcWidth, pSrcNear, pSrcFar, pDst); status != StatusOk) return status;
  const auto width = static_cast<size_t>(srcWidth);
  samplingKernels().triangleH2V2(pDst, 2 * width, width, pSrcNear, pSrcFar);
  return StatusOk;
}
