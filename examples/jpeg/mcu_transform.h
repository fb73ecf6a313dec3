// The inverse transform MCU by MCU: for images in which no sample is interpolated, where it is the quickest.
#pragma once

#include <vector>

#include "jpeg/inverse_block.h"
#include "jpeg/inverse_transform.h"

namespace examples::jpeg {

// From the blocks of an MCU to interleaved pixels.
using McuToPixels = StatusCode(ZORJ_CALL*)(const int16_t* const* planes, uint8_t* pixels, int32_t step);

// The library's conversion for the frame with its samples replicated; null if there is none.
McuToPixels mcuConversion(const Frame& frame);

class McuTransform final : public InverseTransform {
 public:
  // The frame has a conversion.
  McuTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables, Image& image);

  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) override;

 private:
  void convert(int32_t left, int32_t top);

  const std::array<QuantTable, kMaxComponents>& tables_;
  Image& image_;
  McuToPixels convert_;
  int32_t mcuWidth_;
  int32_t mcuHeight_;
  std::vector<Block> samples_;                     // the blocks of one MCU, transformed
  std::vector<const int16_t*> planes_;             // the first of them of each component
  std::array<uint8_t, size_t{16} * 16 * 3> edge_;  // pixels that reach over the image's edge
};

// Grey images, at any scale.
class GreyTransform final : public InverseTransform {
 public:
  GreyTransform(const QuantTable& table, int32_t blockSize, Image& image);

  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) override;

 private:
  const QuantTable& table_;
  Image& image_;
  int32_t blockSize_;
  InverseBlock inverse_;
};

}  // namespace examples::jpeg
