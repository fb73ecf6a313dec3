// Rows of an image as what the wavelet transforms: one plane per component, centred on zero, its colours decorrelated.
#pragma once

#include <zorj.h>

#include <array>
#include <memory>

#include "common/image.h"
#include "jpeg2k/forward_wavelet.h"

namespace examples::jpeg2k {

// T is what the wavelet takes: integers for the reversible colour transform, floats for the irreversible one. Rows are
// those of a rectangle of the image, and are made when they are asked for; the last four remain valid.
template <class Sample, class T>
class ComponentRows {
 public:
  ComponentRows(const BasicImage<Sample>& image, const TileRect& rect, bool convertColors);

  const T* row(int32_t component, int32_t y);

 private:
  static constexpr int32_t kRows = 4;

  T* slot(int32_t component, int32_t y) const;
  void make(int32_t y);

  const BasicImage<Sample>& image_;
  TileRect rect_;
  bool convertColors_;
  size_t length_;  // of a row of samples
  std::unique_ptr<T[]> wide_;
  std::unique_ptr<T[]> rows_;
  std::array<int32_t, kRows> made_;
};

}  // namespace examples::jpeg2k
