#include "jpeg/inverse_transform.h"

#include <zorj/jpeg_dct.h>

#include <algorithm>
#include <cstring>

namespace examples::jpeg {
namespace {

uint8_t levelShifted(int16_t sample) { return static_cast<uint8_t>(std::clamp(sample + 128, 0, 255)); }

// The 444 conversion's counterpart for components that are red, green and blue already.
StatusCode ZORJ_CALL interleave(const int16_t* const planes[3], uint8_t* pixels, int32_t step) {
  for (int32_t y = 0; y < 8; ++y, pixels += step) {
    for (int32_t x = 0; x < 8; ++x) {
      for (int32_t c = 0; c < 3; ++c) pixels[3 * x + c] = levelShifted(planes[c][8 * y + x]);
    }
  }
  return StatusOk;
}

bool hasFactors(const Component& component, int32_t horizontal, int32_t vertical) {
  return component.horizontal == horizontal && component.vertical == vertical;
}

}  // namespace

InverseTransform::InverseTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables,
                                   Image& image)
    : frame_(frame), tables_(tables), image_(image), mcuWidth_(frame.mcuWidth()), mcuHeight_(frame.mcuHeight()) {
  const std::vector<Component>& components = frame.components;
  image.reshape(frame.width, frame.height, components.size() == 1 ? 1 : 3);
  if (components.size() == 1) return;
  size_t count = 0;
  size_t first[3];
  for (size_t c = 0; c < 3; ++c) {
    first[c] = count;
    count += static_cast<size_t>(components[c].horizontal * components[c].vertical);
  }
  samples_.resize(count);
  for (size_t c = 0; c < 3; ++c) planes_[c] = samples_[first[c]].values;
  const bool plainChroma = hasFactors(components[1], 1, 1) && hasFactors(components[2], 1, 1);
  if (plainChroma && hasFactors(components[0], 1, 1)) {
    convert_ = frame.rgbCoded ? interleave : zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R;
  } else if (plainChroma && hasFactors(components[0], 2, 2) && !frame.rgbCoded) {
    convert_ = zoriYCbCr411ToRGBLS_MCU_16s8u_P3C3R;
  } else {
    planPixelReplication();
  }
}

void InverseTransform::planPixelReplication() {
  const int32_t maxHorizontal = frame_.maxHorizontal();
  const int32_t maxVertical = frame_.maxVertical();
  for (size_t c = 0; c < 3; ++c) {
    const Component& component = frame_.components[c];
    for (int32_t i = 0; i < mcuWidth_ * mcuHeight_; ++i) {
      const int32_t tile = i / 64;
      const int32_t x = tile % maxHorizontal * 8 + i % 8;
      const int32_t y = tile / maxHorizontal * 8 + i / 8 % 8;
      const int32_t column = x * component.horizontal / maxHorizontal;
      const int32_t row = y * component.vertical / maxVertical;
      const int32_t block = row / 8 * component.horizontal + column / 8;
      positions_[c].push_back(static_cast<uint16_t>(block * 64 + row % 8 * 8 + column % 8));
    }
  }
}

// The statuses of the block functions tell of bad arguments only, and there are none here.
void InverseTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) {
  const int32_t top = mcuRow * mcuHeight_;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t left = (mcuColumn + i) * mcuWidth_;
    if (frame_.components.size() == 1) {
      greyMcu(mcu[0].ofMcu(i), left, top);
      continue;
    }
    Block* target = samples_.data();
    for (const McuBlock& block : mcu) {
      zoriDCTQuantInv8x8_JPEG_16s_C1(block.ofMcu(i), target->values, tables_[block.component].data());
      ++target;
    }
    convertMcu(left, top);
  }
}

void InverseTransform::greyMcu(const int16_t* block, int32_t left, int32_t top) {
  const uint16_t* const table = tables_[0].data();
  if (left + 8 <= image_.width && top + 8 <= image_.height) {
    zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, image_.at(left, top), image_.step(), table);
  } else {
    zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, edge_.data(), 8, table);
    copyVisible(edge_.data(), 8, left, top, 8, 8);
  }
}

void InverseTransform::convertMcu(int32_t left, int32_t top) {
  if (!convert_) {
    for (int32_t tile = 0; tile < (mcuWidth_ / 8) * (mcuHeight_ / 8); ++tile) convertTile(tile, left, top);
    return;
  }
  if (left + mcuWidth_ <= image_.width && top + mcuHeight_ <= image_.height) {
    convert_(planes_, image_.at(left, top), image_.step());
  } else {
    convert_(planes_, edge_.data(), mcuWidth_ * 3);
    copyVisible(edge_.data(), mcuWidth_ * 3, left, top, mcuWidth_, mcuHeight_);
  }
}

// 8 x 8 pixels of an MCU: every component's samples are replicated to full resolution first.
void InverseTransform::convertTile(int32_t tile, int32_t left, int32_t top) {
  const int32_t tilesWide = mcuWidth_ / 8;
  const int32_t tileLeft = left + tile % tilesWide * 8;
  const int32_t tileTop = top + tile / tilesWide * 8;
  if (tileLeft >= image_.width || tileTop >= image_.height) return;
  Block replicated[3];
  for (size_t c = 0; c < 3; ++c) {
    const uint16_t* const positions = positions_[c].data() + ptrdiff_t{64} * tile;
    for (int32_t i = 0; i < 64; ++i) replicated[c].values[i] = planes_[c][positions[i]];
  }
  const int16_t* const planes[3] = {replicated[0].values, replicated[1].values, replicated[2].values};
  (frame_.rgbCoded ? interleave : zoriYCbCr444ToRGBLS_MCU_16s8u_P3C3R)(planes, edge_.data(), 8 * 3);
  copyVisible(edge_.data(), 8 * 3, tileLeft, tileTop, 8, 8);
}

void InverseTransform::copyVisible(const uint8_t* pixels, int32_t step, int32_t left, int32_t top, int32_t width,
                                   int32_t height) {
  const size_t bytes = static_cast<size_t>(std::min(width, image_.width - left) * image_.channels);
  for (int32_t y = 0; y < std::min(height, image_.height - top); ++y) {
    std::memcpy(image_.at(left, top + y), pixels + ptrdiff_t{y} * step, bytes);
  }
}

}  // namespace examples::jpeg
