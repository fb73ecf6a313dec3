// Images of 4 x 4 blocks: the checks and the walk over whole and partial blocks that all texture functions share.
#pragma once

#include <zorcore.h>

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
// The decoder of a block format.
struct BlockDecoder {
  size_t blockBytes;
  DecodeBlocks cached;
  // The same for pixels that are not read again soon: past the caches. Rows are aligned to 16 bytes.
  DecodeBlocks streaming;
};
enum class Stores { cached, streaming };

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

// Pixels that do not fit in any cache are written without being read first, which saves half the traffic.
inline bool passesCaches(const uint8_t* pixels, int32_t step, RoiSize size) {
  constexpr uintptr_t kAlignment = 16;
  if ((reinterpret_cast<uintptr_t>(pixels) | static_cast<uintptr_t>(step)) % kAlignment != 0) return false;
  int32_t cacheBytes = 0;
  const uint64_t bytes = uint64_t{kRgbaBytes} * static_cast<uint64_t>(size.width) * static_cast<uint64_t>(size.height);
  return zorGetMaxCacheSizeB(&cacheBytes) == 0 && bytes > static_cast<uint64_t>(cacheBytes);
}

inline StatusCode decodeBlockImage(const uint8_t* blocks, uint8_t* pixels, int32_t step, RoiSize size,
                                   const BlockDecoder& decoder) {
  constexpr size_t kRowBytes = kBlockSide * kRgbaBytes;
  if (const StatusCode status = checkBlockImage(blocks, pixels, step, size); status != StatusOk) return status;
  const DecodeBlocks decodeWhole = passesCaches(pixels, step, size) ? decoder.streaming : decoder.cached;
  for (int32_t y = 0;; y += kBlockSide) {
    const BlockRow row(size, y);
    uint8_t* const top = rowAt(pixels, step, y);
    decodeWhole(blocks, row.whole, top, step);
    for (size_t i = row.whole; i < row.count; ++i) {
      uint8_t block[kBlockSide * kRowBytes];
      decoder.cached(blocks + i * decoder.blockBytes, 1, block, kRowBytes);
      for (int32_t r = 0; r < row.rows; ++r) {
        std::memcpy(rowAt(top, step, r) + i * kRowBytes, block + static_cast<size_t>(r) * kRowBytes,
                    row.columns(i) * kRgbaBytes);
      }
    }
    if (size.height - y <= kBlockSide) return StatusOk;
    blocks += row.count * decoder.blockBytes;
  }
}

template <size_t kPixelBytes>
StatusCode encodeBlockImage(const uint8_t* pixels, int32_t step, RoiSize size, uint8_t* blocks, size_t blockBytes,
                            EncodeBlocks encode) {
  constexpr size_t kRowBytes = kBlockSide * kPixelBytes;
  if (const StatusCode status = checkBlockImage(pixels, blocks, step, size); status != StatusOk) return status;
  for (int32_t y = 0;; y += kBlockSide) {
    const BlockRow row(size, y);
    const uint8_t* const top = rowAt(pixels, step, y);
    encode(top, step, row.whole, blocks);
    for (size_t i = row.whole; i < row.count; ++i) {
      // Repeats the last pixel of every row and the last row.
      uint8_t block[kBlockSide * kRowBytes];
      for (size_t r = 0; r < kBlockSide; ++r) {
        const uint8_t* const from = rowAt(top, step, std::min(static_cast<int32_t>(r), row.rows - 1)) + i * kRowBytes;
        for (size_t c = 0; c < kBlockSide; ++c) {
          std::memcpy(block + r * kRowBytes + c * kPixelBytes, from + std::min(c, row.columns(i) - 1) * kPixelBytes,
                      kPixelBytes);
        }
      }
      encode(block, kRowBytes, 1, blocks + i * blockBytes);
    }
    if (size.height - y <= kBlockSide) return StatusOk;
    blocks += row.count * blockBytes;
  }
}

}  // namespace zorj
