#include "jpeg2k/forward_wavelet.h"

#include <algorithm>
#include <utility>

namespace examples::jpeg2k {
namespace {

void splitIntoBands(const int16_t* row, int16_t* low, int16_t* high, int32_t pairs, int32_t phase) {
  zoriWTFwdRow_B53_JPEG2K_16s_C1R(row, 1, low, 1, high, 1, {pairs, 1}, phase);
}
void splitIntoBands(const int32_t* row, int32_t* low, int32_t* high, int32_t pairs, int32_t phase) {
  zoriWTFwdRow_B53_JPEG2K_32s_C1R(row, 1, low, 1, high, 1, {pairs, 1}, phase);
}
void splitIntoBands(const float* row, float* low, float* high, int32_t pairs, int32_t phase) {
  zoriWTFwdRow_D97_JPEG2K_32f_C1R(row, 1, low, 1, high, 1, {pairs, 1}, phase);
}

void liftColumns(const int16_t* even, const int16_t* odd, const int16_t* next, int16_t* low,
                 const int16_t* previousHigh, int16_t* high, int32_t width) {
  zoriWTFwdColLift_B53_JPEG2K_16s_C1(even, odd, next, low, previousHigh, high, width);
}
void liftColumns(const int32_t* even, const int32_t* odd, const int32_t* next, int32_t* low,
                 const int32_t* previousHigh, int32_t* high, int32_t width) {
  zoriWTFwdColLift_B53_JPEG2K_32s_C1(even, odd, next, low, previousHigh, high, width);
}

// A step of the 9/7 wavelet finishes the low row of the step before it and the high row of the one before that, and
// takes three steps to fill up; one of the 5/3 wavelet needs the high row of the step before.
template <class T>
constexpr bool kIs97 = std::is_same_v<T, float>;

}  // namespace

template <class T>
LevelTransform<T>::LevelTransform(const WaveletLevel<T>& level, int32_t begin, int32_t end)
    : level_(level), begin_(begin), end_(end) {
  const size_t length = static_cast<size_t>(level.rect.width) + 2 * kMargin;
  memory_ = std::make_unique<T[]>(length * kStateRows);
  for (int i = 0; i < kStateRows; ++i) rows_[i] = memory_.get() + static_cast<size_t>(i) * length + kMargin;
}

template <class T>
int32_t LevelTransform<T>::firstStep() const {
  return begin_ - (kIs97<T> ? 2 : 1);
}

template <class T>
int32_t LevelTransform<T>::endStep() const {
  return end_ + (kIs97<T> ? 2 : 0);
}

template <class T>
void LevelTransform<T>::step(int32_t k, const T* even, const T* odd, const T* next) {
  if constexpr (kIs97<T>) {
    auto& [a, b, c, d, e] = rows_;
    zoriWTFwdColLift_D97_JPEG2K_32f_C1(even, odd, next, a, b, c, d, e, level_.rect.width);
    finishLow(k - 1, a);
    finishHigh(k - 2, c);
    std::swap(a, b);
    std::swap(c, d);
    std::swap(d, e);
  } else {
    auto& [low, high, previousHigh, unused, unusedToo] = rows_;
    std::swap(high, previousHigh);
    liftColumns(even, odd, next, low, previousHigh, high, level_.rect.width);
    finishLow(k, low);
    finishHigh(k, high);
  }
}

template <class T>
void LevelTransform<T>::singleRow(const T* row) {
  T* const copy = rows_[0];
  const bool isHigh = (level_.rect.y & 1) != 0;
  for (int32_t x = 0; x < level_.rect.width; ++x) copy[x] = static_cast<T>(isHigh ? 2 * row[x] : row[x]);
  if (isHigh) {
    finishHigh(0, copy);
  } else {
    finishLow(0, copy);
  }
}

template <class T>
void LevelTransform<T>::finishLow(int32_t k, T* row) {
  const int32_t parity = level_.rect.y & 1;
  if (k < std::max(begin_, parity) || k >= end_ || 2 * k - parity >= level_.rect.height) return;
  splitRow(row, level_.ll.row(k - parity), level_.hl.row(k - parity));
}

template <class T>
void LevelTransform<T>::finishHigh(int32_t k, T* row) {
  if (k < begin_ || k >= end_ || 2 * k + 1 - (level_.rect.y & 1) >= level_.rect.height) return;
  splitRow(row, level_.lh.row(k), level_.hh.row(k));
}

template <class T>
void LevelTransform<T>::splitRow(T* row, T* low, T* high) {
  const int32_t width = level_.rect.width, parity = level_.rect.x & 1;
  if (width == 1) {
    (parity != 0 ? high : low)[0] = static_cast<T>(parity != 0 ? 2 * row[0] : row[0]);
    return;
  }
  for (int32_t i = 1; i < kMargin; ++i) {
    row[-i] = row[reflected(-i, 0, width - 1)];
    row[width - 1 + i] = row[reflected(width - 1 + i, 0, width - 1)];
  }
  splitIntoBands(row, low, high, (width + 1) / 2, parity);
}

template class LevelTransform<int16_t>;
template class LevelTransform<int32_t>;
template class LevelTransform<float>;

template <class T>
void transformRows(const Plane<T>& source, const WaveletLevel<T>& level, int32_t begin, int32_t end) {
  if (level.rect.width == 0 || level.rect.height == 0) return;
  LevelTransform<T> transform(level, begin, end);
  if (level.rect.height == 1) return transform.singleRow(source.row(0));
  const int32_t parity = level.rect.y & 1;
  const auto row = [&](int32_t position) { return source.row(reflected(position - parity, 0, level.rect.height - 1)); };
  for (int32_t k = transform.firstStep(); k < transform.endStep(); ++k)
    transform.step(k, row(2 * k), row(2 * k + 1), row(2 * k + 2));
}

template void transformRows(const Plane<int16_t>&, const WaveletLevel<int16_t>&, int32_t, int32_t);
template void transformRows(const Plane<int32_t>&, const WaveletLevel<int32_t>&, int32_t, int32_t);
template void transformRows(const Plane<float>&, const WaveletLevel<float>&, int32_t, int32_t);

}  // namespace examples::jpeg2k
