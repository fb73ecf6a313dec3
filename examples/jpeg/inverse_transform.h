// From quantised coefficients to pixels, one row of MCUs after the other.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "common/image.h"
#include "jpeg/coefficients.h"
#include "jpeg/decode_options.h"

namespace examples::jpeg {

// Gives an image the size and the channels of what the frame decodes to.
void shapeImage(const Frame& frame, const DecodeOptions& options, Image& image);

// Transforms the rows of MCUs from a given one on. Several may work on one image at a time, each on rows of its own.
class InverseTransform {
 public:
  virtual ~InverseTransform() = default;

  // `count` MCUs from the given one on, out of these blocks, which are all components' in order. A row of MCUs comes
  // from left to right and whole, and rows follow one another. Where the pixels of a row depend on the row above it,
  // the first to come is the row above the first that is wanted, if there is one.
  virtual void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) = 0;
  virtual bool readsRowAbove() const { return false; }
};

// The tables are step sizes in natural order, by component. The image has its shape already; it and the tables are
// used until the end.
std::unique_ptr<InverseTransform> makeInverseTransform(const Frame& frame,
                                                       const std::array<QuantTable, kMaxComponents>& tables,
                                                       const DecodeOptions& options, int32_t firstMcuRow, Image& image);

}  // namespace examples::jpeg
