#include "jpeg/forward_transform.h"

#include <zorj/jpeg_dct.h>
#include <zorj/jpeg_sampling.h>

#include <algorithm>
#include <cstring>

namespace examples::jpeg {
namespace {

struct Conversion {
  ColorCoding coding;
  int32_t mcuWidth;
  int32_t mcuHeight;
  StatusCode(ZORJ_CALL* convert)(const uint8_t* pixels, int32_t step, int16_t* const* planes);
};

// The library has no function for this one.
StatusCode ZORJ_CALL splitCmyk(const uint8_t* pixels, int32_t step, int16_t* const* planes) {
  for (int32_t i = 0; i < 64; ++i) {
    const uint8_t* const pixel = pixels + ptrdiff_t{i / 8} * step + ptrdiff_t{4} * (i % 8);
    for (int32_t c = 0; c < 4; ++c) planes[c][i] = static_cast<int16_t>(pixel[c] - 128);
  }
  return StatusOk;
}

constexpr Conversion kConversions[] = {
    {ColorCoding::yCbCr, 8, 8, zoriRGBToYCbCr444LS_MCU_8u16s_C3P3R},
    {ColorCoding::yCbCr, 16, 8, zoriRGBToYCbCr422LS_MCU_8u16s_C3P3R},
    {ColorCoding::yCbCr, 16, 16, zoriRGBToYCbCr411LS_MCU_8u16s_C3P3R},
    {ColorCoding::rgb, 8, 8, zoriSampleDown444LS_MCU_8u16s_C3P3R},
    {ColorCoding::cmyk, 8, 8, splitCmyk},
    {ColorCoding::ycck, 8, 8, zoriCMYKToYCCK444LS_MCU_8u16s_C4P4R},
    {ColorCoding::ycck, 16, 8, zoriCMYKToYCCK422LS_MCU_8u16s_C4P4R},
    {ColorCoding::ycck, 16, 16, zoriCMYKToYCCK411LS_MCU_8u16s_C4P4R},
};

}  // namespace

ForwardTransform::ForwardTransform(const Image& image, const Frame& frame,
                                   const std::array<const uint8_t*, kMaxComponents>& tables)
    : image_(image), inverted_(frame.inverted), mcuWidth_(frame.mcuWidth()), mcuHeight_(frame.mcuHeight()) {
  for (const Conversion& conversion : kConversions) {
    if (conversion.coding == frame.coding && conversion.mcuWidth == mcuWidth_ && conversion.mcuHeight == mcuHeight_) {
      convert_ = conversion.convert;
    }
  }
  std::vector<size_t> first;
  for (size_t c = 0; c < frame.components.size(); ++c) {
    const Component& component = frame.components[c];
    zoriQuantFwdTableInit_JPEG_8u16u(tables[c], tables_[c].data());
    first.push_back(samples_.size());
    samples_.resize(samples_.size() + static_cast<size_t>(component.horizontal * component.vertical));
  }
  for (const size_t block : first) planes_.push_back(samples_[block].values);
}

// The pixels of an MCU as they are coded; beyond the image's edges the last ones are repeated.
const uint8_t* ForwardTransform::wholeMcu(int32_t mcuColumn, int32_t mcuRow, int32_t& step) {
  const int32_t left = mcuColumn * mcuWidth_;
  const int32_t top = mcuRow * mcuHeight_;
  if (left + mcuWidth_ <= image_.width && top + mcuHeight_ <= image_.height && !inverted_) {
    step = image_.step();
    return image_.at(left, top);
  }
  const size_t pixel = static_cast<size_t>(image_.channels);
  step = mcuWidth_ * image_.channels;
  const int32_t inside = std::min(mcuWidth_, image_.width - left);
  uint8_t* target = tile_.data();
  for (int32_t y = 0; y < mcuHeight_; ++y) {
    const size_t bytes = static_cast<size_t>(inside) * pixel;
    std::memcpy(target, image_.at(left, std::min(top + y, image_.height - 1)), bytes);
    target += bytes;
    for (int32_t x = inside; x < mcuWidth_; ++x, target += pixel) std::memcpy(target, target - pixel, pixel);
  }
  if (inverted_) {
    for (uint8_t& sample : tile_) sample = static_cast<uint8_t>(~sample);
  }
  return tile_.data();
}

// The statuses of the library's functions tell of bad arguments only, and there are none here.
void ForwardTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) {
  for (int32_t i = 0; i < count; ++i) {
    int32_t step = 0;
    const uint8_t* const pixels = wholeMcu(mcuColumn + i, mcuRow, step);
    if (!convert_) {
      zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(pixels, step, mcu[0].ofMcu(i), tables_[0].data());
      continue;
    }
    convert_(pixels, step, planes_.data());
    const Block* source = samples_.data();
    for (const McuBlock& block : mcu) {
      zoriDCTQuantFwd8x8_JPEG_16s_C1(source->values, block.ofMcu(i), tables_[block.component].data());
      ++source;
    }
  }
}

}  // namespace examples::jpeg
