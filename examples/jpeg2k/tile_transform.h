// The wavelet coefficients of all tiles of an image.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "common/image.h"
#include "jpeg2k/forward_wavelet.h"
#include "jpeg2k/geometry.h"

namespace examples::jpeg2k {

// T is int16_t or int32_t for the reversible transforms, float for the irreversible ones.
template <class T>
class TileTransform {
 public:
  // Transforms the tiles of an image whose rows are those of the reference grid.
  template <class Sample>
  TileTransform(const BasicImage<Sample>& image, std::span<const Rect> tiles, int32_t levels, bool convertColors,
                int32_t threads);

  // The coefficients of a subband of a resolution.
  Plane<T> subband(size_t tile, int32_t component, int32_t resolution, SubbandKind kind) const;

 private:
  struct Component {
    std::unique_ptr<T[]> memory;
    std::vector<WaveletLevel<T>> levels;  // from the largest; a level without wavelet has only the subband LL
  };

  Component makeComponent(const Rect& rect) const;
  template <class Sample>
  void transformFirst(const BasicImage<Sample>& image, bool convertColors, size_t tile, int32_t begin, int32_t end);
  template <class Sample>
  void copySamples(const BasicImage<Sample>& image, bool convertColors, size_t tile, int32_t begin, int32_t end);
  Component& at(size_t tile, int32_t component) {
    return components_[tile * static_cast<size_t>(channels_) + static_cast<size_t>(component)];
  }

  int32_t levels_;
  int32_t channels_;
  std::vector<Component> components_;  // of the first tile, of the second one, ...
};

}  // namespace examples::jpeg2k
