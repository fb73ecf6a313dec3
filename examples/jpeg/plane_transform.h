// The inverse transform by rows of MCUs: blocks to samples, samples to full resolution, and rows of pixels of them.
#pragma once

#include <vector>

#include "jpeg/component_plane.h"
#include "jpeg/inverse_transform.h"

namespace examples::jpeg {

// Any frame, scale and up-sampling.
class PlaneTransform final : public InverseTransform {
 public:
  PlaneTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables, const DecodeOptions& options,
                 int32_t firstMcuRow, Image& image);

  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) override;

  // Where samples are interpolated downwards, the last row of pixels of a row of MCUs waits for the next.
  bool readsRowAbove() const override { return delay_ != 0; }

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
  int32_t delay_ = 0;  // rows of pixels
  std::vector<ComponentPlane> planes_;
};

}  // namespace examples::jpeg
