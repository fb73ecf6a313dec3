#include "jpeg/forward_transform.h"

#include <zorj/jpeg_dct.h>

#include <algorithm>
#include <cstring>

namespace examples::jpeg {
namespace {

// Four of luminance and two of chrominance.
constexpr size_t kMaxMcuBlocks = 6;

}  // namespace

ForwardTransform::ForwardTransform(const Image& image, const Frame& frame,
                                   const std::array<const uint8_t*, kMaxComponents>& tables)
    : image_(image), mcuWidth_(frame.mcuWidth()), mcuHeight_(frame.mcuHeight()) {
  if (frame.components.size() == 3) {
    const bool pairs = mcuWidth_ == 16;
    const bool squares = mcuHeight_ == 16;
    convert_ = squares ? zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R
               : pairs ? zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R
                       : zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R;
  }
  for (size_t c = 0; c < frame.components.size(); ++c) {
    zoriQuantFwdTableInit_JPEG_8u16u(tables[c], tables_[c].data());
  }
}

// The pixels of an MCU; beyond the image's edges the last ones are repeated.
const uint8_t* ForwardTransform::wholeMcu(int32_t mcuColumn, int32_t mcuRow, int32_t& step) {
  const int32_t left = mcuColumn * mcuWidth_;
  const int32_t top = mcuRow * mcuHeight_;
  if (left + mcuWidth_ <= image_.width && top + mcuHeight_ <= image_.height) {
    step = image_.step();
    return image_.at(left, top);
  }
  const size_t pixel = static_cast<size_t>(image_.channels);
  step = mcuWidth_ * image_.channels;
  uint8_t* target = tile_.data();
  for (int32_t y = 0; y < mcuHeight_; ++y) {
    for (int32_t x = 0; x < mcuWidth_; ++x, target += pixel) {
      const uint8_t* source = image_.at(std::min(left + x, image_.width - 1), std::min(top + y, image_.height - 1));
      std::memcpy(target, source, pixel);
    }
  }
  return tile_.data();
}

// The statuses of the block functions tell of bad arguments only, and there are none here.
void ForwardTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) {
  for (int32_t i = 0; i < count; ++i) {
    int32_t step = 0;
    const uint8_t* const pixels = wholeMcu(mcuColumn + i, mcuRow, step);
    if (!convert_) {
      zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(pixels, step, mcu[0].ofMcu(i), tables_[0].data());
      continue;
    }
    Block samples[kMaxMcuBlocks];
    int16_t* const planes[3] = {samples[0].values, samples[mcu.size() - 2].values, samples[mcu.size() - 1].values};
    convert_(pixels, step, planes);
    const Block* source = samples;
    for (const McuBlock& block : mcu) {
      zoriDCTQuantFwd8x8_JPEG_16s_C1(source->values, block.ofMcu(i), tables_[block.component].data());
      ++source;
    }
  }
}

}  // namespace examples::jpeg
