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
  for (size_t c = 0; c < 3; ++c) {
    samples_[c].values.resize(static_cast<size_t>(kBlockSize * components[c].horizontal * components[c].vertical));
  }
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
    samples_[c].positions.resize(static_cast<size_t>(mcuWidth_) * static_cast<size_t>(mcuHeight_));
    for (int32_t y = 0; y < mcuHeight_; ++y) {
      for (int32_t x = 0; x < mcuWidth_; ++x) {
        const int32_t column = x * component.horizontal / maxHorizontal;
        const int32_t row = y * component.vertical / maxVertical;
        const int32_t block = row / 8 * component.horizontal + column / 8;
        const int32_t tile = y / 8 * maxHorizontal + x / 8;
        samples_[c].positions[static_cast<size_t>(kBlockSize * tile + ptrdiff_t{8} * (y % 8) + x % 8)] =
            static_cast<uint16_t>(kBlockSize * block + ptrdiff_t{8} * (row % 8) + column % 8);
      }
    }
  }
}

void InverseTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, McuArray& mcus, int32_t sourceColumn,
                           int32_t sourceRow) {
  Blocks sources[kMaxComponents];
  for (size_t c = 0; c < frame_.components.size(); ++c) sources[c] = mcus.blocks(c, sourceColumn, sourceRow);
  const int32_t top = mcuRow * mcuHeight_;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t left = (mcuColumn + i) * mcuWidth_;
    if (frame_.components.size() == 1) {
      greyMcu({sources[0].at(i, 0), 0}, left, top);
    } else {
      transformMcu(sources, i);
      convertMcu(left, top);
    }
  }
}

// The statuses of the block functions tell of bad arguments only, and there are none here.
void InverseTransform::greyMcu(const Blocks& source, int32_t left, int32_t top) {
  const uint16_t* const table = tables_[0].data();
  if (left + 8 <= image_.width && top + 8 <= image_.height) {
    zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(source.first, image_.at(left, top), image_.step(), table);
  } else {
    zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(source.first, edge_.data(), 8, table);
    copyVisible(edge_.data(), 8, left, top, 8, 8);
  }
}

void InverseTransform::transformMcu(const Blocks* sources, int32_t index) {
  for (size_t c = 0; c < 3; ++c) {
    const Component& component = frame_.components[c];
    int16_t* target = samples_[c].values.data();
    for (int32_t y = 0; y < component.vertical; ++y) {
      for (int32_t x = 0; x < component.horizontal; ++x, target += kBlockSize) {
        const int16_t* const block = sources[c].at(index * component.horizontal + x, y);
        zoriDCTQuantInv8x8_JPEG_16s_C1(block, target, tables_[c].data());
      }
    }
  }
}

void InverseTransform::convertMcu(int32_t left, int32_t top) {
  if (!convert_) {
    for (int32_t tile = 0; tile < (mcuWidth_ / 8) * (mcuHeight_ / 8); ++tile) convertTile(tile, left, top);
    return;
  }
  const int16_t* const planes[3] = {samples_[0].values.data(), samples_[1].values.data(), samples_[2].values.data()};
  if (left + mcuWidth_ <= image_.width && top + mcuHeight_ <= image_.height) {
    convert_(planes, image_.at(left, top), image_.step());
  } else {
    convert_(planes, edge_.data(), mcuWidth_ * 3);
    copyVisible(edge_.data(), mcuWidth_ * 3, left, top, mcuWidth_, mcuHeight_);
  }
}

// 8 x 8 pixels of an MCU: every component's samples are replicated to full resolution first.
void InverseTransform::convertTile(int32_t tile, int32_t left, int32_t top) {
  const int32_t tilesWide = mcuWidth_ / 8;
  const int32_t tileLeft = left + tile % tilesWide * 8;
  const int32_t tileTop = top + tile / tilesWide * 8;
  if (tileLeft >= image_.width || tileTop >= image_.height) return;
  alignas(64) int16_t replicated[3][kBlockSize];
  for (size_t c = 0; c < 3; ++c) {
    const uint16_t* const positions = samples_[c].positions.data() + tile * kBlockSize;
    for (int32_t i = 0; i < kBlockSize; ++i) replicated[c][i] = samples_[c].values[positions[i]];
  }
  const int16_t* const planes[3] = {replicated[0], replicated[1], replicated[2]};
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
