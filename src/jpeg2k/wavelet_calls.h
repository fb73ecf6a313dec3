// The wavelet exports' argument checks and calls, for any wavelet and sample type.
#pragma once

#include <algorithm>

#include "core/checks.h"
#include "jpeg2k/wavelet_kernels.h"

namespace zorj {

template <class T>
StatusCode forwardBands(const T* src, int32_t srcStep, T* low, int32_t lowStep, T* high, int32_t highStep, RoiSize band,
                        int32_t phase, typename WaveletKernels<T>::Forward transform) {
  if (anyNull(src, low, high)) return StatusNullPointer;
  if (srcStep < 1 || lowStep < 1 || highStep < 1) return StatusBadStep;
  if (isEmpty(band)) return StatusBadSize;
  transform({src, srcStep}, {low, lowStep}, {high, highStep}, band, phase != 0 ? 1 : 0);
  return StatusOk;
}

template <class T>
StatusCode inverseBands(const T* low, int32_t lowStep, const T* high, int32_t highStep, RoiSize band, T* dst,
                        int32_t dstStep, int32_t phase, typename WaveletKernels<T>::Inverse transform) {
  if (anyNull(low, high, dst)) return StatusNullPointer;
  if (lowStep < 1 || highStep < 1 || dstStep < 1) return StatusBadStep;
  if (isEmpty(band)) return StatusBadSize;
  transform({low, lowStep}, {high, highStep}, {dst, dstStep}, band, phase != 0 ? 1 : 0);
  return StatusOk;
}

template <class... Row>
StatusCode checkRows(int32_t width, const Row*... rows) {
  if (anyNull(rows...)) return StatusNullPointer;
  return width < 1 ? StatusBadSize : StatusOk;
}

inline bool isEmpty(const TileRect& tile) { return tile.width < 1 || tile.height < 1; }

// Rows of the buffer for a whole tile start 32 bytes or a multiple of it apart.
template <class T>
uint32_t bufferStep(const TileRect& tile) {
  return (static_cast<uint32_t>(tile.width) * sizeof(T) + 31) & ~uint32_t{31};
}

enum class Buffer { kLine, kTileAndLine };

// The bytes of a line of the longer side and `border` samples around it, and of a tile before it if there is to be one.
// Sums wrap at 32 bits and are compared without sign.
template <class T, Buffer kBuffer>
StatusCode bufferSize(const TileRect* tile, int32_t* size, uint32_t border) {
  if (anyNull(tile) || anyNull(size)) return StatusNullPointer;
  const auto width = static_cast<uint32_t>(tile->width), height = static_cast<uint32_t>(tile->height);
  constexpr uint32_t kBytes = sizeof(T);
  uint32_t bytes = kBuffer == Buffer::kTileAndLine ? bufferStep<T>(*tile) * height : 0;
  if (width >= 3 || height >= 3) bytes += std::max((width + border) * kBytes, (height + border) * kBytes);
  *size = static_cast<int32_t>(bytes);
  return StatusOk;
}

// Whether the buffer of a tile with samples is larger than can be told.
template <class T, Buffer kBuffer>
bool isBufferTooLarge(const TileRect& tile, uint32_t border) {
  const int64_t line = (int64_t{std::max(tile.width, tile.height)} + border) * int64_t{sizeof(T)};
  const int64_t left = INT32_MAX - line;
  const int64_t step = (int64_t{tile.width} * int64_t{sizeof(T)} + 31) / 32 * 32;
  return left < 0 || (kBuffer == Buffer::kTileAndLine && step > left / tile.height);
}

// The level of a tile with its line of samples. Lines of one or two samples have their own, as a level of them alone
// comes without a buffer.
template <class T>
class TileLevel {
 public:
  TileLevel(const TileRect& tile, void* line)
      : level_{
            {tile.width, tile.x & 1}, {tile.height, tile.y & 1}, tile.width < 3 ? shortLine_ : static_cast<T*>(line)} {}
  TileLevel(const TileLevel&) = delete;
  TileLevel& operator=(const TileLevel&) = delete;

  const Level<T>& operator*() const { return level_; }

 private:
  T shortLine_[2];
  Level<T> level_;
};

template <class T>
StatusCode transformInPlace(T* image, int32_t step, const TileRect* tile, void* buffer, uint32_t border,
                            void (*transform)(Image<T>, const Level<T>&)) {
  if (anyNull(image)) return StatusNullPointer;
  if (step < 1) return StatusBadStep;
  if (anyNull(tile) || buffer == nullptr) return StatusNullPointer;
  if (isEmpty(*tile)) return StatusOk;
  if (isBufferTooLarge<T, Buffer::kLine>(*tile, border)) return StatusBadSize;
  transform({image, step}, *TileLevel<T>(*tile, buffer));
  return StatusOk;
}

template <class T>
Image<T> tileBuffer(void* buffer, const TileRect& tile) {
  return {static_cast<T*>(buffer), static_cast<ptrdiff_t>(bufferStep<T>(tile))};
}

template <class Pointer>
bool anySubbandNull(const Pointer* subbands) {
  return anyNull(subbands[kLL], subbands[kLH], subbands[kHL], subbands[kHH]);
}

inline bool anyStepBad(const int32_t* steps) {
  return std::any_of(steps, steps + kSubbands, [](int32_t step) { return step < 1; });
}

template <class T>
StatusCode forwardApart(const T* src, int32_t srcStep, const TileRect* tile, T* const* dst, const int32_t* dstSteps,
                        void* buffer, uint32_t border, const WaveletKernels<T>& kernels) {
  if (anyNull(src, dst, dstSteps, tile) || buffer == nullptr) return StatusNullPointer;
  if (srcStep < 1) return StatusBadStep;
  if (anySubbandNull(dst)) return StatusNullPointer;
  if (anyStepBad(dstSteps)) return StatusBadStep;
  if (isEmpty(*tile) || isBufferTooLarge<T, Buffer::kTileAndLine>(*tile, border)) return StatusBadSize;
  const Image<T> rows = tileBuffer<T>(buffer, *tile);
  const Image<T> subbands[kSubbands] = {
      {dst[kLL], dstSteps[kLL]}, {dst[kLH], dstSteps[kLH]}, {dst[kHL], dstSteps[kHL]}, {dst[kHH], dstSteps[kHH]}};
  kernels.forwardApart({src, srcStep}, subbands, rows, *TileLevel<T>(*tile, rows.row(tile->height)));
  return StatusOk;
}

template <class T>
StatusCode inverseApart(const T* const* src, const int32_t* srcSteps, T* dst, int32_t dstStep, const TileRect* tile,
                        void* buffer, uint32_t border, const WaveletKernels<T>& kernels) {
  if (anyNull(src, dst, srcSteps, tile) || buffer == nullptr) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  if (anySubbandNull(src)) return StatusNullPointer;
  if (anyStepBad(srcSteps)) return StatusBadStep;
  if (isEmpty(*tile) || isBufferTooLarge<T, Buffer::kTileAndLine>(*tile, border)) return StatusBadSize;
  const Image<T> rows = tileBuffer<T>(buffer, *tile);
  const Image<const T> subbands[kSubbands] = {
      {src[kLL], srcSteps[kLL]}, {src[kLH], srcSteps[kLH]}, {src[kHL], srcSteps[kHL]}, {src[kHH], srcSteps[kHH]}};
  kernels.inverseApart(subbands, {dst, dstStep}, rows, *TileLevel<T>(*tile, rows.row(tile->height)));
  return StatusOk;
}

}  // namespace zorj
