#include "jpeg/inverse_transform.h"

#include <zorj/jpeg_color.h>

#include <algorithm>

namespace examples::jpeg {
namespace {

// Rows are an odd number of cache lines apart, so that those of a block do not compete for the same lines.
int32_t stepFor(int32_t samples) {
  constexpr int32_t kLine = 64;
  constexpr int32_t kMargins = 2 * kLine;
  return (divideUp(samples + kMargins, kLine) | 1) * kLine;
}

// The pixels of samples that need no conversion.
template <int32_t channels>
void interleave(const uint8_t* const* planes, int32_t step, uint8_t* pixels, RoiSize size) {
  for (int32_t y = 0; y < size.height; ++y, pixels += channels * size.width) {
    const uint8_t* rows[channels];
    for (int32_t c = 0; c < channels; ++c) rows[c] = planes[c] + ptrdiff_t{y} * step;
    for (int32_t x = 0; x < size.width; ++x) {
      for (int32_t c = 0; c < channels; ++c) pixels[channels * x + c] = rows[c][x];
    }
  }
}

void invert(uint8_t* samples, size_t count) {
  for (size_t i = 0; i < count; ++i) samples[i] = static_cast<uint8_t>(~samples[i]);
}

bool interpolatesDownwards(const ComponentShape& shape) {
  return shape.expansion == Expansion::triangleH1V2 || shape.expansion == Expansion::triangleH2V2;
}

}  // namespace

void shapeImage(const Frame& frame, const DecodeOptions& options, Image& image) {
  image.reshape(divideUp(frame.width, options.scale), divideUp(frame.height, options.scale),
                static_cast<int32_t>(frame.components.size()));
}

InverseTransform::InverseTransform(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables,
                                   const DecodeOptions& options, int32_t firstMcuRow, Image& image)
    : image_(image),
      coding_(frame.coding),
      inverted_(frame.inverted),
      mcusWide_(frame.mcusWide()),
      mcusHigh_(frame.mcusHigh()),
      mcuHeight_(frame.mcuHeight() / options.scale),
      firstMcuRow_(firstMcuRow) {
  std::vector<ComponentShape> shapes;
  for (const Component& component : frame.components) {
    shapes.emplace_back(frame, component, options);
    step_ = std::max(step_, stepFor(mcusWide_ * shapes.back().mcuWidth));
    if (interpolatesDownwards(shapes.back())) delay_ = 1;
  }
  step_ = std::max(step_, stepFor(image.width));
  for (size_t c = 0; c < shapes.size(); ++c) planes_.emplace_back(shapes[c], tables[c], step_, image.width);
}

void InverseTransform::run(int32_t mcuColumn, int32_t mcuRow, int32_t count, std::span<const McuBlock> mcu) {
  const McuBlock* block = mcu.data();
  for (ComponentPlane& plane : planes_) {
    const int32_t wide = plane.shape().mcuWidth / plane.shape().blockSize;
    const int32_t high = plane.shape().mcuHeight / plane.shape().blockSize;
    for (int32_t y = 0; y < high; ++y) {
      for (int32_t x = 0; x < wide; ++x, ++block) {
        for (int32_t i = 0; i < count; ++i) plane.putBlock((mcuColumn + i) * wide + x, y, block->ofMcu(i));
      }
    }
  }
  if (mcuColumn + count == mcusWide_) finishRow(mcuRow);
}

void InverseTransform::finishRow(int32_t mcuRow) {
  if (mcuRow >= firstMcuRow_) {
    const int32_t first = mcuRow == 0 ? 0 : mcuRow * mcuHeight_ - delay_;
    const int32_t end = mcuRow + 1 == mcusHigh_ ? image_.height : (mcuRow + 1) * mcuHeight_ - delay_;
    std::array<const uint8_t*, kMaxComponents> rows{};
    for (size_t c = 0; c < planes_.size(); ++c) rows[c] = planes_[c].expand(mcuRow, first, end);
    convert(rows.data(), first, end - first);
  }
  if (delay_ != 0) {
    for (ComponentPlane& plane : planes_) plane.keepLastRow();
  }
}

void InverseTransform::convert(const uint8_t* const* planes, int32_t firstRow, int32_t rows) {
  uint8_t* const pixels = image_.at(0, firstRow);
  const RoiSize size{image_.width, rows};
  switch (coding_) {
    case ColorCoding::yCbCr:
      zoriYCbCrToRGB_JPEG_8u_P3C3R(planes, step_, pixels, image_.step(), size);
      break;
    case ColorCoding::ycck:
      zoriYCCKToCMYK_JPEG_8u_P4C4R(planes, step_, pixels, image_.step(), size);
      break;
    case ColorCoding::cmyk:
      interleave<4>(planes, step_, pixels, size);
      break;
    case ColorCoding::rgb:
      interleave<3>(planes, step_, pixels, size);
      break;
    case ColorCoding::grey:
      interleave<1>(planes, step_, pixels, size);
      break;
  }
  if (inverted_) invert(pixels, static_cast<size_t>(rows) * static_cast<size_t>(image_.step()));
}

}  // namespace examples::jpeg
