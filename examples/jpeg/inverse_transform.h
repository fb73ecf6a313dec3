// From quantised coefficients to pixels, MCU by MCU.
#pragma once

#include <zorj/jpeg_color.h>

#include <array>
#include <cstdint>
#include <vector>

#include "common/image.h"
#include "jpeg/coefficients.h"

namespace examples::jpeg {

class InverseTransform {
 public:
  // Gives the image its size; the tables are step sizes in natural order, by component.
  InverseTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables, Image& image);

  // `count` MCUs of the image from the given one on, out of those of `mcus` from `source` on.
  void run(int32_t mcuColumn, int32_t mcuRow, int32_t count, McuArray& mcus, int32_t sourceColumn, int32_t sourceRow);

 private:
  using ToPixels = StatusCode(ZORJ_CALL*)(const int16_t* const[3], uint8_t*, int32_t);

  // One component's blocks of one MCU, transformed, in MCU order; and where an MCU's pixels find their sample of it
  // when the sampling is none that has its own conversion: 64 positions for each 8 x 8 tile of the MCU.
  struct Samples {
    std::vector<int16_t> values;
    std::vector<uint16_t> positions;
  };

  void planPixelReplication();
  void greyMcu(const Blocks& source, int32_t left, int32_t top);
  void transformMcu(const Blocks* sources, int32_t index);
  void convertMcu(int32_t left, int32_t top);
  void convertTile(int32_t tile, int32_t left, int32_t top);
  void copyVisible(const uint8_t* pixels, int32_t step, int32_t left, int32_t top, int32_t width, int32_t height);

  const Frame& frame_;
  const std::array<QuantTable, kMaxComponents>& tables_;
  Image& image_;
  int32_t mcuWidth_;
  int32_t mcuHeight_;
  ToPixels convert_ = nullptr;  // for a whole MCU; null where tiles are converted one by one
  Samples samples_[3];
  std::array<uint8_t, size_t{16} * 16 * 3> edge_;  // pixels that reach over the image's edge
};

}  // namespace examples::jpeg
