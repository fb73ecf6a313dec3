// What coding a block needs to know of its samples' surroundings, kept so that every context is one load away.
//
// The samples are taken in stripes of four rows and, within these, in columns: the order of coding. A word of 32 bits
// per column holds the significance of its samples and their neighbours and the signs of those next to one another.
// Cells hold what is known of many columns at once, a bit per sample in the order of coding: they tell which samples a
// pass visits, so that it never looks at the others.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "zorj/types.h"

namespace zorj {

// Bits of samples in the order of coding: four for a column.
using CellBits = size_t;
inline constexpr int32_t kCellBits = 8 * int32_t{sizeof(CellBits)};
inline constexpr int32_t kCellColumns = kCellBits / 4;
// The first row of every column, and the rows around it.
inline constexpr CellBits kFirstRows = ~CellBits{0} / 15;
inline constexpr CellBits kLastRows = kFirstRows << 3;

struct Cell {
  CellBits significant;
  CellBits visited;  // in the significance propagation pass of this plane
  CellBits refined;  // at least once
};

// A column's word. The significance of the 3 by 6 samples around it stands in raster order in bits 0 to 17, the signs
// of the column and of the samples above and below it in bits 18 to 23, those to the left in bits 24 to 27, those to
// the right in bits 28 to 31.
struct ColumnWord {
  uint32_t bits;

  // The significance around the sample in `row`: the index for zero coding.
  uint32_t neighbours(uint32_t row) const { return bits >> (3 * row) & 0x1FF; }
  // The index for sign coding.
  uint32_t signs(uint32_t row) const {
    return (neighbours(row) & 0xAA) | (bits >> (18 + row) & 0x05) | (bits >> (24 + row) & 0x11) << 4;
  }
};

// The rows of words: the pitch is what the size of a decoder's state is told in.
constexpr int64_t stripeMapPitch(int32_t width) { return ((int64_t{width} + 2) * 4 + 31) / 32 * 32; }
constexpr int64_t stripeMapBytes(RoiSize size) {
  return stripeMapPitch(size.width) * ((int64_t{size.height} + 1) / 2 + 2);
}

// A view of the memory for one block. Rows of words come first: one above the block, one per stripe, and one below
// where the last stripe is full; a column lies on either side. A row of cells per stripe follows, in a row of the same
// pitch.
class StripeMap {
 public:
  StripeMap(uint8_t* memory, RoiSize size)
      : pitch_(static_cast<ptrdiff_t>(stripeMapPitch(size.width))),
        words_(memory + pitch_ + 4),
        stripes_((size.height - 1) / 4 + 1),
        cellsInRow_((size.width - 1) / kCellColumns + 1),
        size_(size) {
    cells_ = memory + pitch_ * (1 + stripes_ + (size.height % 4 == 0));
  }

  int32_t stripes() const { return stripes_; }
  int32_t cellsInRow() const { return cellsInRow_; }
  Cell* cells(int32_t stripe) const { return reinterpret_cast<Cell*>(cells_ + stripe * pitch_); }
  uint32_t* words(int32_t stripe) const { return reinterpret_cast<uint32_t*>(words_ + stripe * pitch_); }
  // To the words of the stripes around, in words. There are none below a last stripe that is not full.
  ptrdiff_t up() const { return pitch_ / 4; }
  ptrdiff_t down(int32_t stripe) const { return isFull(stripe) ? pitch_ / 4 : 0; }
  bool isFull(int32_t stripe) const { return size_.height - 4 * stripe >= 4; }

  // The bits of samples that exist.
  CellBits existing(int32_t stripe, int32_t cell) const {
    const int32_t rows = std::min(size_.height - 4 * stripe, 4);
    const int32_t columns = std::min(size_.width - cell * kCellColumns, kCellColumns);
    return (kFirstRows * ((CellBits{1} << rows) - 1)) & (~CellBits{0} >> (kCellBits - 4 * columns));
  }

  // The bits of samples with a significant neighbour.
  template <bool kCausal>
  CellBits neighbourhood(int32_t stripe, int32_t cell) const {
    const CellBits vertical = verticalNeighbours<kCausal>(stripe, cell);
    const CellBits columns = vertical | cells(stripe)[cell].significant;
    CellBits all = vertical | columns << 4 | columns >> 4;
    if (cell > 0) all |= columnsAround<kCausal>(stripe, cell - 1) >> (kCellBits - 4);
    if (cell + 1 < cellsInRow_) all |= columnsAround<kCausal>(stripe, cell + 1) << (kCellBits - 4);
    return all;
  }

  // Tells the words around a sample that it has become significant; in causal mode the stripe above never learns of it.
  // `up` and `down` are the distances to the stripes around. Where the sample's row has nothing to tell them they get
  // zeros: a branch would be mispredicted half of the time.
  template <bool kCausal>
  static void setSignificant(uint32_t* word, ptrdiff_t up, ptrdiff_t down, uint32_t row, uint32_t negative) {
    const uint32_t position = 3 * row + 3;
    word[-1] |= 4u << position | negative << (28 + row);
    word[0] |= 2u << position | negative << (19 + row);
    word[1] |= 1u << position | negative << (24 + row);
    if constexpr (!kCausal) {
      const uint32_t isFirst = row == 0;
      uint32_t* const above = word - up;
      above[-1] |= isFirst << 17;
      above[0] |= isFirst << 16 | (isFirst & negative) << 23;
      above[1] |= isFirst << 15;
    }
    const uint32_t isLast = row == 3;
    uint32_t* const below = word + down;
    below[-1] |= isLast << 2;
    below[0] |= isLast << 1 | (isLast & negative) << 18;
    below[1] |= isLast;
  }

  // The neighbours of a sample that come after it in its cell; shift it up by the sample's bit.
  static CellBits laterNeighbours(uint32_t row) {
    constexpr uint8_t kLater[4] = {0x32, 0x3A, 0x3A, 0x18};
    return kLater[row];
  }

 private:
  template <bool kCausal>
  CellBits verticalNeighbours(int32_t stripe, int32_t cell) const {
    const CellBits own = cells(stripe)[cell].significant;
    CellBits bits = (own << 1 & ~kFirstRows) | (own >> 1 & ~kLastRows);
    if (stripe > 0) bits |= cells(stripe - 1)[cell].significant >> 3 & kFirstRows;
    if (!kCausal && stripe + 1 < stripes_) bits |= cells(stripe + 1)[cell].significant << 3 & kLastRows;
    return bits;
  }
  template <bool kCausal>
  CellBits columnsAround(int32_t stripe, int32_t cell) const {
    return verticalNeighbours<kCausal>(stripe, cell) | cells(stripe)[cell].significant;
  }

  ptrdiff_t pitch_;
  uint8_t* words_;
  uint8_t* cells_;
  int32_t stripes_;
  int32_t cellsInRow_;
  RoiSize size_;
};

}  // namespace zorj
