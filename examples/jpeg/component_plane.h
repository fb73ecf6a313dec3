// A component's samples on their way from blocks to the image's full resolution.
#pragma once

#include <cstdint>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/decode_options.h"
#include "jpeg/inverse_block.h"

namespace examples::jpeg {

// How the samples of a component become as many as the image has pixels.
enum class Expansion { none, triangleH2V1, triangleH2V2, triangleH1V2, replication };

// The size of a decoded component, which is the image's or smaller. Where the image is to be smaller than it was coded,
// a component that was coded with fewer samples keeps as many of them as are of use: its blocks become larger ones.
struct ComponentShape {
  ComponentShape(const Frame& frame, const Component& component, const DecodeOptions& options);

  int32_t blockSize;  // samples across a decoded block: 8, 4, 2 or 1
  int32_t width;      // in samples
  int32_t height;
  int32_t mcuWidth;  // samples of an MCU
  int32_t mcuHeight;
  int32_t imageMcuWidth;  // pixels of an MCU
  int32_t imageMcuHeight;
  Expansion expansion;
};

// A component of one row of MCUs, and the last row of samples of the row of MCUs above it: the triangle filter reads
// that far.
class ComponentPlane {
 public:
  // Rows are `step` bytes apart.
  ComponentPlane(const ComponentShape& shape, const QuantTable& table, int32_t step, int32_t imageWidth);

  const ComponentShape& shape() const { return shape_; }

  // Decodes a block of the row of MCUs; counted in blocks.
  void putBlock(int32_t column, int32_t row, const int16_t* coefficients);

  // Rows `first` to `end` of the image, at full resolution, until the next call. They may begin with the last row of
  // pixels of the row of MCUs above, and end one row early.
  const uint8_t* expand(int32_t mcuRow, int32_t first, int32_t end);

  // To be called before the next row of MCUs is put.
  void keepLastRow();

 private:
  // The sample row of this number, or the nearest one of the component.
  uint8_t* row(int32_t number);
  const uint8_t* expandH2V1(int32_t first, int32_t end);
  const uint8_t* expandH2V2(int32_t first, int32_t end);
  const uint8_t* expandH1V2(int32_t first, int32_t end);
  const uint8_t* replicate(int32_t first, int32_t end);
  void replicateRow(const uint8_t* source, uint8_t* target) const;

  ComponentShape shape_;
  QuantTable table_;
  InverseBlock inverse_;
  int32_t step_;
  int32_t imageWidth_;
  int32_t firstRow_ = 0;          // the number of the first sample row that is stored
  std::vector<uint8_t> samples_;  // the last row of the MCUs above, then the rows of these
  std::vector<uint8_t> expanded_;
};

}  // namespace examples::jpeg
