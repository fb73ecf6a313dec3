// From pixels to quantised coefficients, MCU by MCU.
#pragma once

#include <zorj/jpeg_color.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "common/image.h"
#include "jpeg/coefficients.h"

namespace examples::jpeg {

class ForwardTransform {
 public:
  // Grey images, RGB and CMYK as they are, and YCbCr and YCCK in the samplings 4:4:4, 4:2:2 and 4:2:0. The tables are
  // step sizes in zig-zag order, by component.
  ForwardTransform(const Image& image, const Frame& frame, const std::array<const uint8_t*, kMaxComponents>& tables);

  // `count` MCUs of the image from the given one on, into these blocks, which are all components' in order.
  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu);

 private:
  using ToBlocks = StatusCode(ZORJ_CALL*)(const uint8_t* pixels, int32_t step, int16_t* const* planes);

  const uint8_t* wholeMcu(int32_t mcuColumn, int32_t mcuRow, int32_t& step);

  const Image& image_;
  bool inverted_;
  int32_t mcuWidth_;
  int32_t mcuHeight_;
  ToBlocks convert_ = nullptr;  // null for grey images
  std::array<QuantTable, kMaxComponents> tables_;
  std::vector<Block> samples_;                     // of one MCU
  std::vector<int16_t*> planes_;                   // the first of them of each component
  std::array<uint8_t, size_t{16} * 16 * 4> tile_;  // pixels of an MCU, if they are not used where they are
};

}  // namespace examples::jpeg
