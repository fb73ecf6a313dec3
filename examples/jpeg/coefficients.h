// Quantised coefficients of a frame, or of a part of it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/frame.h"

namespace examples::jpeg {

constexpr ptrdiff_t kBlockSize = 64;  // coefficients
constexpr size_t kMaxComponents = 4;

// Some of a component's blocks, seen from the first of them: 64 coefficients each in natural order, in raster order.
struct Blocks {
  int16_t* first = nullptr;
  int32_t perRow = 0;

  int16_t* at(int32_t column, int32_t row) const { return first + (ptrdiff_t{row} * perRow + column) * kBlockSize; }
};

// The blocks of a rectangle of whole MCUs, all zero at first.
class McuArray {
 public:
  McuArray() = default;
  McuArray(const Frame& frame, int32_t mcusWide, int32_t mcusHigh);

  // A component's blocks from the given MCU on.
  Blocks blocks(size_t component, int32_t mcuColumn, int32_t mcuRow);

 private:
  struct Plane {
    int32_t horizontal;
    int32_t vertical;
    int32_t blocksPerRow;
    std::vector<int16_t> coefficients;
  };
  std::vector<Plane> planes_;
};

// Step sizes in natural order.
using QuantTable = std::array<uint16_t, 64>;

// All coefficients of an image.
struct CoefficientImage {
  Frame frame;
  std::array<QuantTable, kMaxComponents> quantTables{};  // by component
  McuArray mcus;
};

// The blocks that successive MCUs of a scan consist of, in the order they are coded: block i of the n-th MCU lies
// n * advance coefficients after `first`.
struct McuBlock {
  int16_t* first;
  ptrdiff_t advance;
  size_t scanComponent;
};

// The blocks of an interleaved scan of these components, from the given MCU on.
std::vector<McuBlock> interleavedMcu(const Frame& frame, std::span<const size_t> scanComponents, McuArray& mcus,
                                     int32_t mcuColumn, int32_t mcuRow);

}  // namespace examples::jpeg
