#include "jpeg/mcu_transform.h"

#include <zorj/jpeg_color.h>
#include <zorj/jpeg_sampling.h>

#include <algorithm>
#include <cstring>

namespace examples::jpeg {
namespace {

// Copies what of a tile of pixels lies within the image.
void copyVisible(const uint8_t* pixels, int32_t step, int32_t left, int32_t top, int32_t width, int32_t height,
                 Image& image) {
  const size_t bytes = static_cast<size_t>(std::min(width, image.width - left) * image.channels);
  for (int32_t y = 0; y < std::min(height, image.height - top); ++y) {
    std::memcpy(image.at(left, top + y), pixels + ptrdiff_t{y} * step, bytes);
  }
}

struct Conversion {
  ColorCoding coding;
  int32_t horizontal;  // the first component's factors; the others' are 1
  int32_t vertical;
  McuToPixels convert;
};

constexpr Conversion kConversions[] = {
    {ColorCoding::yCbCr, 1, 1, zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R},
    {ColorCoding::yCbCr, 2, 2, zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R},
    {ColorCoding::rgb, 1, 1, zoriSampleUp444LS_MCU_16s8u_P3C3R},
    {ColorCoding::rgb, 2, 1, zoriSampleUp422LS_MCU_16s8u_P3C3R},
    {ColorCoding::rgb, 2, 2, zoriSampleUp411LS_MCU_16s8u_P3C3R},
};

bool hasFactors(const Component& component, int32_t horizontal, int32_t vertical) {
  return component.horizontal == horizontal && component.vertical == vertical;
}

}  // namespace

McuToPixels mcuConversion(const Frame& frame) {
  const std::vector<Component>& components = frame.components;
  for (const Conversion& conversion : kConversions) {
    if (frame.coding == conversion.coding && hasFactors(components[0], conversion.horizontal, conversion.vertical) &&
        hasFactors(components[1], 1, 1) && hasFactors(components[2], 1, 1)) {
      return conversion.convert;
    }
  }
  return nullptr;
}

McuTransform::McuTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables, Image& image)
    : tables_(tables),
      image_(image),
      convert_(mcuConversion(frame)),
      mcuWidth_(frame.mcuWidth()),
      mcuHeight_(frame.mcuHeight()) {
  std::vector<size_t> first;
  size_t count = 0;
  for (const Component& component : frame.components) {
    first.push_back(count);
    count += static_cast<size_t>(component.horizontal * component.vertical);
  }
  samples_.resize(count);
  for (const size_t block : first) planes_.push_back(samples_[block].values);
}

// The statuses of the library's functions tell of bad arguments only, and there are none here.
void McuTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) {
  for (int32_t i = 0; i < count; ++i) {
    Block* target = samples_.data();
    for (const McuBlock& block : mcu) {
      zoriDCTQuantInv8x8_JPEG_16s_C1(block.ofMcu(i), target->values, tables_[block.component].data());
      ++target;
    }
    convert((mcuColumn + i) * mcuWidth_, mcuRow * mcuHeight_);
  }
}

void McuTransform::convert(int32_t left, int32_t top) {
  if (left + mcuWidth_ <= image_.width && top + mcuHeight_ <= image_.height) {
    convert_(planes_.data(), image_.at(left, top), image_.step());
  } else {
    convert_(planes_.data(), edge_.data(), mcuWidth_ * 3);
    copyVisible(edge_.data(), mcuWidth_ * 3, left, top, mcuWidth_, mcuHeight_, image_);
  }
}

GreyTransform::GreyTransform(const QuantTable& table, int32_t blockSize, Image& image)
    : table_(table), image_(image), blockSize_(blockSize), inverse_(inverseBlockTo(blockSize)) {}

void GreyTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) {
  const int32_t top = mcuRow * blockSize_;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t left = (mcuColumn + i) * blockSize_;
    const int16_t* const coefficients = mcu[0].ofMcu(i);
    if (left + blockSize_ <= image_.width && top + blockSize_ <= image_.height) {
      inverse_(coefficients, image_.at(left, top), image_.step(), table_.data());
    } else {
      uint8_t edge[64];
      inverse_(coefficients, edge, 8, table_.data());
      copyVisible(edge, 8, left, top, blockSize_, blockSize_, image_);
    }
  }
}

}  // namespace examples::jpeg
