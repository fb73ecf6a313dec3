// A component of a tile, from the coefficients of its subbands to samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "jpeg2k/geometry.h"
#include "jpeg2k/inverse_wavelet.h"
#include "jpeg2k/zeroed_memory.h"

namespace examples::jpeg2k {

// A part of a subband, on its canvas.
template <class T>
struct Window {
  Rect rect;
  Plane<T> plane;

  T* at(int32_t x, int32_t y) const { return plane.row(y - rect.y0) + (x - rect.x0); }
};

// Holds and transforms only what the wanted part of the component depends on.
template <class T>
class ComponentDecoder {
 public:
  // Uses so many resolutions; `wanted` is on the canvas of the last of them.
  ComponentDecoder(const TileComponent& component, int32_t resolutions, const Rect& wanted);

  // Where coefficients go; zero until they do.
  const Window<T>& window(int32_t resolution, int32_t band) const {
    return resolutions_[static_cast<size_t>(resolution)].windows[band];
  }

  // When all coefficients are there: rows [begin, end) of each resolution from 1 to the last but one, when all of the
  // resolution before are done.
  void transform(int32_t resolution, int32_t begin, int32_t end);
  int32_t resolutions() const { return static_cast<int32_t>(resolutions_.size()); }
  Rect rect(int32_t resolution) const { return resolutions_[static_cast<size_t>(resolution)].rect; }

  // Then rows [begin, end) of the wanted part, counted from its first. A row is rowLength() samples, of which the
  // wanted ones start at firstColumn().
  void rows(int32_t begin, int32_t end, const Plane<T>& to) const;
  int32_t rowLength() const { return resolutions_.back().rect.width(); }
  int32_t firstColumn() const { return wanted_.x0 - resolutions_.back().rect.x0; }

 private:
  struct PartOfResolution {
    Rect rect;  // what the rectangle above depends on
    Window<T> windows[3];
    Plane<T> samples;  // of the rectangle; not of the last resolution
  };

  WaveletLevel<T> level(size_t resolution) const;

  Rect wanted_;
  std::vector<PartOfResolution> resolutions_;
  ZeroedMemory<T> memory_;
};

}  // namespace examples::jpeg2k
