// From quantised coefficients to pixels, one row of MCUs after the other: blocks to samples, samples to full
// resolution, and rows of pixels of them, while they are in the caches.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "common/image.h"
#include "jpeg/coefficients.h"
#include "jpeg/component_plane.h"
#include "jpeg/decode_options.h"

namespace examples::jpeg {

// Gives an image the size and the channels of what the frame decodes to.
void shapeImage(const Frame& frame, const DecodeOptions& options, Image& image);

// Several may work on one image at a time, each on rows of its own.
class InverseTransform {
 public:
  // Writes the rows of MCUs from the given one on into the image, which has its shape already. The tables are step
  // sizes in natural order, by component.
  InverseTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables,
                   const DecodeOptions& options, int32_t firstMcuRow, Image& image);

  // `count` MCUs from the given one on, out of these blocks, which are all components' in order. A row of MCUs comes
  // from left to right and whole, and rows follow one another.
  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu);

  // The row of MCUs that is to come first: the one above the first that is written, if there is one and samples are
  // interpolated downwards. The last row of pixels of each row of MCUs waits for the next row of MCUs then.
  int32_t firstNeeded() const { return firstMcuRow_ > 0 ? firstMcuRow_ - delay_ : 0; }

 private:
  void finishRow(int32_t mcuRow);
  void convert(const uint8_t* const* planes, int32_t firstRow, int32_t rows);

  Image& image_;
  ColorCoding coding_;
  bool inverted_;
  int32_t mcusWide_;
  int32_t mcusHigh_;
  int32_t mcuHeight_;  // in pixels of the image
  int32_t firstMcuRow_;
  int32_t step_ = 0;   // of all planes
  int32_t delay_ = 0;  // rows of pixels: 1 if samples are interpolated downwards
  std::vector<ComponentPlane> planes_;
};

}  // namespace examples::jpeg
