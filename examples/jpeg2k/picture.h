// From components of different sizes, palettes and colour spaces to an image.
#pragma once

#include <vector>

#include "common/image.h"
#include "jpeg2k/codec.h"
#include "jpeg2k/geometry.h"
#include "jpeg2k/jp2_reader.h"

namespace examples::jpeg2k {

// Where the picture's pixels and the components' samples are, reduced.
struct Layout {
  int32_t dx = 1;  // of the pixels on the reference grid: that of the finest component
  int32_t dy = 1;
  Rect pixels;
  std::vector<Rect> components;
};

// The pixels that are wanted, and all that is needed of each component. Throws Error if that is nothing.
Layout makeLayout(const ImageSize& size, const DecodeOptions& options);

// The picture of whole component planes.
void assemble(const Jp2File& file, const ImageSize& size, const Layout& layout,
              const std::vector<ComponentSamples>& components, DeepImage& image);

}  // namespace examples::jpeg2k
