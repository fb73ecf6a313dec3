// From pixels to quantised coefficients, MCU by MCU.
#pragma once

#include <array>
#include <cstdint>

#include "common/image.h"
#include "jpeg/coefficients.h"

namespace examples::jpeg {

class ForwardTransform {
 public:
  // Grey images, and colour ones in the samplings 4:4:4, 4:2:2 and 2 x 2. The tables are step sizes in zig-zag order,
  // by component.
  ForwardTransform(const Image& image, const Frame& frame, const std::array<const uint8_t*, kMaxComponents>& tables);

  // `count` MCUs of the image from the given one on, into those of `mcus` from `target` on.
  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, McuArray& mcus, int32_t targetColumn, int32_t targetRow);

 private:
  const uint8_t* wholeMcu(int32_t mcuColumn, int32_t mcuRow, int32_t& step);

  const Image& image_;
  const Frame& frame_;
  int32_t mcuWidth_;
  int32_t mcuHeight_;
  std::array<QuantTable, kMaxComponents> tables_;
  std::array<uint8_t, size_t{16} * 16 * 3> tile_;  // an MCU that reaches over the image's edge
};

}  // namespace examples::jpeg
