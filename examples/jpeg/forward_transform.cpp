#include "jpeg/forward_transform.h"

#include <zorj/jpeg_color.h>
#include <zorj/jpeg_dct.h>

#include <algorithm>
#include <cstring>

namespace examples::jpeg {
namespace {

using ColorConversion = StatusCode(ZORJ_CALL*)(const uint8_t*, int32_t, int16_t* const[3]);

ColorConversion colorConversion(const Component& luma) {
  if (luma.vertical == 2) return zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R;
  return luma.horizontal == 2 ? zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R : zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R;
}

}  // namespace

ForwardTransform::ForwardTransform(const Image& image, const Frame& frame,
                                   const std::array<const uint8_t*, kMaxComponents>& tables)
    : image_(image), frame_(frame), mcuWidth_(frame.mcuWidth()), mcuHeight_(frame.mcuHeight()) {
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
void ForwardTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, McuArray& mcus, int32_t targetColumn,
                           int32_t targetRow) {
  if (frame_.components.size() == 1) {
    const Blocks target = mcus.blocks(0, targetColumn, targetRow);
    for (int32_t i = 0; i < count; ++i) {
      int32_t step = 0;
      const uint8_t* pixels = wholeMcu(mcuColumn + i, mcuRow, step);
      zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(pixels, step, target.at(i, 0), tables_[0].data());
    }
    return;
  }

  const Component& luma = frame_.components[0];
  const ColorConversion convert = colorConversion(luma);
  const Blocks target[3] = {mcus.blocks(0, targetColumn, targetRow), mcus.blocks(1, targetColumn, targetRow),
                            mcus.blocks(2, targetColumn, targetRow)};
  alignas(64) int16_t samples[6 * kBlockSize];
  int16_t* const chroma = samples + kBlockSize * luma.horizontal * luma.vertical;
  int16_t* const planes[3] = {samples, chroma, chroma + kBlockSize};
  for (int32_t i = 0; i < count; ++i) {
    int32_t step = 0;
    const uint8_t* pixels = wholeMcu(mcuColumn + i, mcuRow, step);
    convert(pixels, step, planes);
    const int16_t* source = samples;
    for (int32_t y = 0; y < luma.vertical; ++y) {
      for (int32_t x = 0; x < luma.horizontal; ++x, source += kBlockSize) {
        zoriDCTQuantFwd8x8_JPEG_16s_C1(source, target[0].at(i * luma.horizontal + x, y), tables_[0].data());
      }
    }
    zoriDCTQuantFwd8x8_JPEG_16s_C1(planes[1], target[1].at(i, 0), tables_[1].data());
    zoriDCTQuantFwd8x8_JPEG_16s_C1(planes[2], target[2].at(i, 0), tables_[2].data());
  }
}

}  // namespace examples::jpeg
