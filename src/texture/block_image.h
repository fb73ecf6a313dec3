// Images of 4 x 4 blocks: the checks and the walk over whole and partial blocks that all texture functions share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/checks.h"
#include "core/row_address.h"

namespace zorj {

inline constexpr int32_t kBlockSide = 4;
inline constexpr size_t kRgbaBytes = 4;

// Decodes `count` blocks that lie side by side: block i gives columns 4i to 4i + 3 of four rows of RGBA pixels.
using DecodeBlocks = void (*)(const uint8_t* blocks, size_t count, uint8_t* pixels, ptrdiff_t step);
// Encodes `count` blocks that lie side by side, of columns 4i to 4i + 3 of four rows.
using EncodeBlocks = void (*)(const uint8_t* pixels, ptrdiff_t step, size_t count, uint8_t* blocks);

inline StatusCode checkBlockImage(const void* src, const void* dst, int32_t step, RoiSize size) {
  if (anyNull(src, dst)) return StatusNullPointer;
  if (step == 0) return StatusBadStep;
  return isEmpty(size) ? StatusBadSize : StatusOk;
}

// A row of blocks of an image.
struct BlockRow {
  int32_t rows;  // rows of pixels inside the image
  size_t count;  // blocks
  size_t whole;  // blocks that lie inside the image with all their pixels, from the left
  size_t width;  // pixels inside the image

  BlockRow(RoiSize size, int32_t y)
      : rows(std::min(size.height - y, kBlockSide)),
        count((static_cast<size_t>(size.width) + kBlockSide - 1) / kBlockSide),
        whole(rows == kBlockSide ? static_cast<size_t>(size.width) / kBlockSide : 0),
        width(static_cast<size_t>(size.width)) {}
  // Columns of block i inside the image.
  size_t columns(size_t i) const { return std::min<size_t>(width - kBlockSide * i, kBlockSide); }
};

inline StatusCode decodeBlockImage(const uint8_t* blocks, size_t blockBytes, uint8_t* pixels, int32_t step,
                                   RoiSize size, DecodeBlocks decode) {
  constexpr size_t kRowBytes = kBlockSide * kRgbaBytes;
  if (const StatusCode status = checkBlockImage(blocks, pixels, step, size); status != StatusOk) return status;
  for (int32_t y = 0; y < size.height; y += kBlockSide) {
    const BlockRow row(size, y);
    uint8_t* const top = rowAt(pixels, step, y);
    decode(blocks, row.whole, top, step);
    for (size_t i = row.whole; i < row.count; ++i) {
      uint8_t block[kBlockSide * kRowBytes];
      decode(blocks + i * blockBytes, 1, block, kRowBytes);
      for (int32_t r = 0; r < row.rows; ++r) {
        std::memcpy(rowAt(top, step, r) + i * kRowBytes, block + static_cast<size_t>(r) * kRowBytes,
                    row.columns(i) * kRgbaBytes);
      }
    }
    blocks += row.count * blockBytes;
    if (size.height - y <= kBlockSide) break;  // y + 4 may not be a number of 32 bits
  }
  return StatusOk;
}

}  // namespace zorj
