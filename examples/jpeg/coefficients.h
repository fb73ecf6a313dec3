// Quantised coefficients of a frame, or of a part of it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "jpeg/frame.h"

namespace examples::jpeg {

// 64 coefficients, or samples, in natural order.
struct alignas(64) Block {
  int16_t values[64];
};

constexpr size_t kMaxComponents = 4;

// Some of a component's blocks in raster order, seen from the first of them.
struct Blocks {
  Block* first = nullptr;
  int32_t perRow = 0;

  Block& at(int32_t column, int32_t row) const { return first[ptrdiff_t{row} * perRow + column]; }
};

enum class FirstValues { zero, any };

// The blocks of a rectangle of whole MCUs.
class McuArray {
 public:
  McuArray() = default;
  McuArray(const Frame& frame, int32_t mcusWide, int32_t mcusHigh, FirstValues values = FirstValues::zero);

  // A component's blocks from the given MCU on.
  Blocks blocks(size_t component, int32_t mcuColumn, int32_t mcuRow);

 private:
  struct Plane {
    int32_t horizontal;
    int32_t vertical;
    int32_t blocksPerRow;
    std::unique_ptr<Block[]> blocks;
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

// One of the blocks that successive MCUs of a scan consist of, in the order they are coded.
struct McuBlock {
  Block* first;       // the first MCU's
  ptrdiff_t advance;  // to the next MCU's
  size_t component;   // in the scan

  int16_t* ofMcu(int32_t mcu) const { return first[mcu * advance].values; }
};

// Interleaved scans read several streams, which processors foresee badly: these bring a block further on in the row to
// the caches, all of it or what a DC scan reads. The baseline encoder has its few blocks there, and loses nothing.
constexpr ptrdiff_t kBlocksAhead = 16;
inline void prefetchDc(const int16_t* block) { __builtin_prefetch(block + 64 * kBlocksAhead); }
inline void prefetchBlock(const int16_t* block) {
  prefetchDc(block);
  __builtin_prefetch(block + 64 * kBlocksAhead + 32);
}

// The blocks of an interleaved scan of these components, from the given MCU on.
std::vector<McuBlock> interleavedMcu(const Frame& frame, std::span<const size_t> components, McuArray& mcus,
                                     int32_t mcuColumn, int32_t mcuRow);

// Calls run(mcu, count) for the part of a scan of these components that lies in a row of the frame's MCUs: `count` MCUs
// of the scan, each of these blocks. The MCU of a lone component is one block: there may be several rows of these, and
// the image has no more of them than it needs (T.81 A.2.2).
template <class Run>
void inMcuRow(CoefficientImage& image, const std::vector<size_t>& components, int32_t row, const Run& run) {
  const Frame& frame = image.frame;
  if (components.size() > 1) {
    run(std::span<const McuBlock>(interleavedMcu(frame, components, image.mcus, 0, row)), frame.mcusWide());
    return;
  }
  const Component& component = frame.components[components[0]];
  const Blocks blocks = image.mcus.blocks(components[0], 0, row);
  const int32_t rows = std::min(component.vertical, frame.blocksHigh(component) - row * component.vertical);
  for (int32_t y = 0; y < rows; ++y) {
    const McuBlock block{&blocks.at(0, y), 1, 0};
    run(std::span(&block, 1), frame.blocksWide(component));
  }
}

}  // namespace examples::jpeg
