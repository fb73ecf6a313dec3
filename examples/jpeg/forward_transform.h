// From pixels to quantised coefficients, MCU by MCU.
#pragma once

#include <zorj/jpeg_color.h>

#include <array>
#include <cstdint>
#include <span>

#include "common/image.h"
#include "jpeg/coefficients.h"

namespace examples::jpeg {

class ForwardTransform {
 public:
  // Grey images, and colour ones in the samplings 4:4:4, 4:2:2 and 2 x 2. The tables are step sizes in zig-zag order,
  // by component.
  ForwardTransform(const Image& image, const Frame& frame, const std::array<const uint8_t*, kMaxComponents>& tables);

  // `count` MCUs of the image from the given one on, into these blocks, which are all components' in order.
  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu);

 private:
  using ToBlocks = StatusCode(ZORJ_CALL*)(const uint8_t*, int32_t, int16_t* const[3]);

  const uint8_t* wholeMcu(int32_t mcuColumn, int32_t mcuRow, int32_t& step);

  const Image& image_;
  int32_t mcuWidth_;
  int32_t mcuHeight_;
  ToBlocks convert_ = nullptr;  // null for grey images
  std::array<QuantTable, kMaxComponents> tables_;
  std::array<uint8_t, size_t{16} * 16 * 3> tile_;  // an MCU that reaches over the image's edge
};

}  // namespace examples::jpeg
