// Images as callers pass them, and the conversion of whole images row by row.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/checks.h"
#include "core/plane_rows.h"
#include "core/row_address.h"
#include "core/row_parallel.h"

namespace zorj {

// kPlanes planes that share one step; an image of interleaved channels is one plane.
template <class T, size_t kPlanes>
struct ImageView {
  T* planes[kPlanes];
  int32_t step;

  bool hasNull() const {
    return std::any_of(planes, planes + kPlanes, [](const T* plane) { return plane == nullptr; });
  }
  PlaneRows<T, kPlanes> rows(int32_t y) const {
    PlaneRows<T, kPlanes> at;
    for (size_t i = 0; i < kPlanes; ++i) at.plane[i] = rowAt(planes[i], step, y);
    return at;
  }
};

template <class T>
ImageView<T, 1> interleaved(T* image, int32_t step) {
  return {{image}, step};
}

// A null array counts as null planes.
template <size_t kPlanes, class T>
ImageView<T, kPlanes> planar(T* const* planes, int32_t step) {
  ImageView<T, kPlanes> view = {{}, step};
  if (planes) std::copy(planes, planes + kPlanes, view.planes);
  return view;
}

template <class Source, class Destination>
StatusCode checkImages(const Source& src, const Destination& dst, RoiSize size) {
  if (src.hasNull() || dst.hasNull()) return StatusNullPointer;
  if (src.step < 1 || dst.step < 1) return StatusBadStep;
  return isEmpty(size) ? StatusBadSize : StatusOk;
}

// Checks the arguments of a whole-image export and calls convertRow(source rows, destination rows, width) for every
// row, on a team of threads if the image is large.
template <class Source, class Destination, class ConvertRow>
StatusCode convertImage(const Source& src, const Destination& dst, RoiSize size, ConvertRow convertRow) {
  if (const StatusCode status = checkImages(src, dst, size); status != StatusOk) return status;
  forEachRow(size, [=](int32_t y) { convertRow(src.rows(y), dst.rows(y), static_cast<size_t>(size.width)); });
  return StatusOk;
}

// The same in the calling thread alone.
template <class Source, class Destination, class ConvertRow>
StatusCode convertImageSerially(const Source& src, const Destination& dst, RoiSize size, ConvertRow convertRow) {
  if (const StatusCode status = checkImages(src, dst, size); status != StatusOk) return status;
  for (int32_t y = 0; y < size.height; ++y) convertRow(src.rows(y), dst.rows(y), static_cast<size_t>(size.width));
  return StatusOk;
}

}  // namespace zorj
