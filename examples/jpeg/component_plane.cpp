#include "jpeg/component_plane.h"

#include <zorj/jpeg_sampling.h>

#include <algorithm>
#include <cstring>

namespace examples::jpeg {
namespace {

// Room before every row: the horizontal triangle filter reads one sample before the first.
constexpr ptrdiff_t kMargin = 64;

// Triangles for the ratios that are usual; all others are replicated. That planes of fewer than three columns and
// images scaled to one sample a block are replicated too is libjpeg-turbo's custom.
Expansion expansionOf(int32_t horizontalRatio, int32_t verticalRatio, bool triangle, int32_t width) {
  if (horizontalRatio == 1 && verticalRatio == 1) return Expansion::none;
  if (triangle && horizontalRatio == 1 && verticalRatio == 2) return Expansion::triangleH1V2;
  if (triangle && horizontalRatio == 2 && verticalRatio == 1 && width > 2) return Expansion::triangleH2V1;
  if (triangle && horizontalRatio == 2 && verticalRatio == 2 && width > 2) return Expansion::triangleH2V2;
  return Expansion::replication;
}

// 0 if it is not a whole number.
int32_t ratio(int32_t whole, int32_t part) { return whole % part == 0 ? whole / part : 0; }

}  // namespace

ComponentShape::ComponentShape(const Frame& frame, const Component& component, const DecodeOptions& options) {
  const int32_t imageBlock = 8 / options.scale;
  const int32_t horizontal = component.horizontal, vertical = component.vertical;
  imageMcuWidth = frame.maxHorizontal() * imageBlock;
  imageMcuHeight = frame.maxVertical() * imageBlock;
  blockSize = imageBlock;
  while (blockSize < 8 && imageMcuWidth % (horizontal * blockSize * 2) == 0 &&
         imageMcuHeight % (vertical * blockSize * 2) == 0) {
    blockSize *= 2;
  }
  mcuWidth = horizontal * blockSize;
  mcuHeight = vertical * blockSize;
  width = divideUp(frame.width * mcuWidth, frame.mcuWidth());
  height = divideUp(frame.height * mcuHeight, frame.mcuHeight());
  expansion = expansionOf(ratio(imageMcuWidth, mcuWidth), ratio(imageMcuHeight, mcuHeight),
                          options.upsampling == Upsampling::triangle && imageBlock > 1, width);
}

ComponentPlane::ComponentPlane(const ComponentShape& shape, const QuantTable& table, int32_t step, int32_t imageWidth)
    : shape_(shape),
      table_(table),
      inverse_(inverseBlockTo(shape.blockSize)),
      step_(step),
      imageWidth_(imageWidth),
      samples_(size_t(kMargin + ptrdiff_t{1 + shape.mcuHeight} * step)) {
  // The filter in both directions also gives the row before those that are wanted.
  if (shape.expansion != Expansion::none) expanded_.resize(size_t(ptrdiff_t{2 + shape.imageMcuHeight} * step));
}

uint8_t* ComponentPlane::row(int32_t number) {
  const int32_t nearest = std::clamp(number, 0, shape_.height - 1);
  return samples_.data() + kMargin + ptrdiff_t{nearest - firstRow_} * step_;
}

// The statuses of the library's functions tell of bad arguments only, and there are none here.
void ComponentPlane::putBlock(int32_t column, int32_t row, const int16_t* coefficients) {
  uint8_t* const rows = samples_.data() + kMargin + ptrdiff_t{1 + row * shape_.blockSize} * step_;
  inverse_(coefficients, rows + ptrdiff_t{column} * shape_.blockSize, step_, table_.data());
}

void ComponentPlane::keepLastRow() {
  uint8_t* const rows = samples_.data() + kMargin;
  std::memcpy(rows, rows + ptrdiff_t{shape_.mcuHeight} * step_, static_cast<size_t>(shape_.width));
}

const uint8_t* ComponentPlane::expand(int32_t mcuRow, int32_t first, int32_t end) {
  firstRow_ = mcuRow * shape_.mcuHeight - 1;
  switch (shape_.expansion) {
    case Expansion::none:
      return row(first);
    case Expansion::triangleH2V1:
      return expandH2V1(first, end);
    case Expansion::triangleH2V2:
      return expandH2V2(first, end);
    case Expansion::triangleH1V2:
      return expandH1V2(first, end);
    case Expansion::replication:
      break;
  }
  return replicate(first, end);
}

const uint8_t* ComponentPlane::expandH2V1(int32_t first, int32_t end) {
  uint8_t* const source = row(first);
  for (int32_t y = 0; y < end - first; ++y) {
    uint8_t* const samples = source + ptrdiff_t{y} * step_;
    samples[-1] = samples[0];
    samples[shape_.width] = samples[shape_.width - 1];
  }
  zoriSampleUpH2V1_JPEG_8u_C1R(source, step_, {shape_.width, end - first}, expanded_.data(), step_,
                               {imageWidth_, end - first});
  return expanded_.data();
}

// An odd row needs the source row below it too, an even one that above it. The library's function repeats the rows at
// the edges of what it is given: below the component's last row, where that is right, and above the first one it gets,
// where the even row that it spoils is not wanted but at the top of the image.
const uint8_t* ComponentPlane::expandH2V2(int32_t first, int32_t end) {
  const int32_t source = first / 2;
  const int32_t sourceEnd = std::min(firstRow_ + 1 + shape_.mcuHeight, shape_.height);
  zoriSampleUpH2V2_JPEG_8u_C1R(row(source), step_, {shape_.width, sourceEnd - source}, expanded_.data(), step_,
                               {imageWidth_, end - 2 * source});
  return expanded_.data() + ptrdiff_t{first - 2 * source} * step_;
}

const uint8_t* ComponentPlane::expandH1V2(int32_t first, int32_t end) {
  const int32_t width = imageWidth_;
  uint8_t* target = expanded_.data();
  for (int32_t y = first; y < end; ++y, target += step_) {
    const uint8_t* const near = row(y / 2);
    const uint8_t* const far = row(y % 2 == 0 ? y / 2 - 1 : y / 2 + 1);
    const int32_t bias = y % 2 == 0 ? 1 : 2;
    for (int32_t x = 0; x < width; ++x) target[x] = static_cast<uint8_t>((3 * near[x] + far[x] + bias) >> 2);
  }
  return expanded_.data();
}

const uint8_t* ComponentPlane::replicate(int32_t first, int32_t end) {
  uint8_t* target = expanded_.data();
  const uint8_t* previous = nullptr;
  for (int32_t y = first; y < end; ++y, target += step_) {
    const uint8_t* const source = row(y * shape_.mcuHeight / shape_.imageMcuHeight);
    if (source == previous) {
      std::memcpy(target, target - step_, static_cast<size_t>(imageWidth_));
    } else {
      replicateRow(source, target);
    }
    previous = source;
  }
  return expanded_.data();
}

void ComponentPlane::replicateRow(const uint8_t* source, uint8_t* target) const {
  const int32_t whole = shape_.imageMcuWidth, part = shape_.mcuWidth, width = imageWidth_;
  const int32_t pairs = whole == 2 * part ? width / 2 : 0;
  for (int32_t i = 0; i < pairs; ++i) target[2 * i] = target[2 * i + 1] = source[i];
  for (int32_t x = 2 * pairs; x < width; ++x) target[x] = source[x * part / whole];
}

}  // namespace examples::jpeg
