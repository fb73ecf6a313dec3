// From quantised coefficients to pixels, MCU by MCU.
#pragma once

#include <zorj/jpeg_color.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "common/image.h"
#include "jpeg/coefficients.h"

namespace examples::jpeg {

class InverseTransform {
 public:
  // Gives the image its size; the tables are step sizes in natural order, by component.
  InverseTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables, Image& image);

  // `count` MCUs of the image from the given one on, out of these blocks, which are all components' in order.
  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu);

 private:
  using ToPixels = StatusCode(ZORJ_CALL*)(const int16_t* const[3], uint8_t*, int32_t);

  void planPixelReplication();
  void greyMcu(const int16_t* block, int32_t left, int32_t top);
  void convertMcu(int32_t left, int32_t top);
  void convertTile(int32_t tile, int32_t left, int32_t top);
  void copyVisible(const uint8_t* pixels, int32_t step, int32_t left, int32_t top, int32_t width, int32_t height);

  const Frame& frame_;
  const std::array<QuantTable, kMaxComponents>& tables_;
  Image& image_;
  int32_t mcuWidth_;
  int32_t mcuHeight_;
  ToPixels convert_ = nullptr;     // for a whole MCU; null where tiles are converted one by one
  std::vector<Block> samples_;     // the blocks of one MCU, transformed
  const int16_t* planes_[3] = {};  // the first of them of each component
  // Where the MCU's pixels find their sample of a component, 64 positions for each 8 x 8 tile of them: for samplings
  // without a conversion of their own.
  std::vector<uint16_t> positions_[3];
  std::array<uint8_t, size_t{16} * 16 * 3> edge_;  // pixels that reach over the image's edge
};

}  // namespace examples::jpeg
