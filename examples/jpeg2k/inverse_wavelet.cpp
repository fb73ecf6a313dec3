#include "jpeg2k/inverse_wavelet.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace examples::jpeg2k {
namespace {

void joinHalves(const int16_t* low, const int16_t* high, int16_t* row, int32_t pairs, int32_t phase) {
  zoriWTInvRow_B53_JPEG2K_16s_C1R(low, 1, high, 1, {pairs, 1}, row, 1, phase);
}
void joinHalves(const int32_t* low, const int32_t* high, int32_t* row, int32_t pairs, int32_t phase) {
  zoriWTInvRow_B53_JPEG2K_32s_C1R(low, 1, high, 1, {pairs, 1}, row, 1, phase);
}
void joinHalves(const float* low, const float* high, float* row, int32_t pairs, int32_t phase) {
  zoriWTInvRow_D97_JPEG2K_32f_C1R(low, 1, high, 1, {pairs, 1}, row, 1, phase);
}

void liftColumns(const int16_t* low, const int16_t* previousHigh, const int16_t* high, const int16_t* previousEven,
                 int16_t* odd, int16_t* even, int32_t width) {
  zoriWTInvColLift_B53_JPEG2K_16s_C1(low, previousHigh, high, previousEven, odd, even, width);
}
void liftColumns(const int32_t* low, const int32_t* previousHigh, const int32_t* high, const int32_t* previousEven,
                 int32_t* odd, int32_t* even, int32_t width) {
  zoriWTInvColLift_B53_JPEG2K_32s_C1(low, previousHigh, high, previousEven, odd, even, width);
}

template <class T>
class Strip {
 public:
  Strip(const WaveletLevel<T>& level, int32_t begin, int32_t end, const Plane<T>& destination)
      : level_(level),
        begin_(begin),
        end_(end),
        destination_(destination),
        parityX_(level.rect.x & 1),
        parityY_(level.rect.y & 1),
        length_(static_cast<size_t>(level.rect.width) + 2 * kMargin),
        memory_(std::make_unique<T[]>(kRows * length_)) {}

  void join() {
    if (level_.rect.height == 1) return joinSingleRow();
    const int32_t firstPair = (begin_ + parityY_) / 2;
    const int32_t lastStep = (end_ + parityY_ + 1) / 2 + (kIs97 ? 1 : 0);
    int32_t k = firstPair - (kIs97 ? 1 : 0);
    T* const low = buffer(kLow);
    T *previousHigh = buffer(kHigh), *high = buffer(kOtherHigh);
    joinHighRow(k - 1, previousHigh);
    for (; k <= lastStep; ++k, std::swap(previousHigh, high)) {
      joinLowRow(k, low);
      joinHighRow(k, high);
      step(k, low, previousHigh, high);
    }
  }

 private:
  static constexpr bool kIs97 = std::is_same_v<T, float>;
  static constexpr int kMargin = 8;  // samples around a row that the row filters may read
  // Rows of the buffer: halves of a row with their margins, joined rows, and rows the strip does not want.
  static constexpr size_t kHalves = 0, kLow = 1, kHigh = 2, kOtherHigh = 3, kOutside = 4, kRows = kOutside + 8;

  T* buffer(size_t number) const { return memory_.get() + number * length_; }

  // Where the row at a position goes: positions are those of the canvas, from the even one at or before the level's
  // first row.
  T* at(int32_t position) const {
    const int32_t row = position - parityY_;
    if (row >= begin_ && row < end_) return destination_.row(row - begin_);
    return buffer(kOutside + (static_cast<size_t>(position) & 7));
  }

  void step(int32_t k, const T* low, const T* previousHigh, const T* high) const {
    const int32_t width = level_.rect.width, even = 2 * k;
    if constexpr (kIs97) {
      zoriWTInvColLift_D97_JPEG2K_32f_C1(low, previousHigh, high, at(even - 2), at(even), at(even - 3), at(even - 1),
                                         at(even - 4), width);
    } else {
      liftColumns(low, previousHigh, high, at(even - 2), at(even - 1), at(even), width);
    }
  }

  // Outside of the level, rows are reflected about its first and last.
  void joinLowRow(int32_t k, T* row) const {
    const int32_t index = (reflected(2 * k - parityY_, 0, level_.rect.height - 1) - parityY_) / 2;
    joinRow(level_.ll.row(index), level_.hl.row(index), row);
  }
  void joinHighRow(int32_t k, T* row) const {
    const int32_t index = reflected(2 * k + 1 - parityY_, 0, level_.rect.height - 1) / 2;
    joinRow(level_.lh.row(index), level_.hh.row(index), row);
  }

  void joinRow(const T* low, const T* high, T* row) const {
    const int32_t width = level_.rect.width;
    if (width == 1) {
      row[0] = parityX_ != 0 ? static_cast<T>(high[0] / 2) : low[0];
      return;
    }
    const int32_t pairs = (width + 1) / 2;
    T* const lowHalf = buffer(kHalves) + kMargin / 2;
    T* const highHalf = lowHalf + pairs + kMargin / 2 + 1;
    extend(low, parityX_, pairs, lowHalf);
    extend(high, 1 - parityX_, pairs, highHalf);
    joinHalves(lowHalf, highHalf, row, pairs, parityX_);
  }

  // Every second sample of a row from the first or second one, with what the row filters read around them.
  void extend(const T* samples, int32_t first, int32_t pairs, T* to) const {
    const int32_t width = level_.rect.width;
    const int32_t count = (width + 1 - first) / 2;
    std::copy(samples, samples + count, to);
    for (int32_t k : {-2, -1}) to[k] = samples[reflected(2 * k + first, 0, width - 1) / 2];
    for (int32_t k = count; k <= pairs + 1; ++k) to[k] = samples[reflected(2 * k + first, 0, width - 1) / 2];
  }

  void joinSingleRow() {
    T* const row = buffer(kLow);
    if (parityY_ == 0) {
      joinRow(level_.ll.row(0), level_.hl.row(0), row);
    } else {
      joinRow(level_.lh.row(0), level_.hh.row(0), row);
      for (int32_t x = 0; x < level_.rect.width; ++x) row[x] = static_cast<T>(row[x] / 2);
    }
    std::copy(row, row + level_.rect.width, destination_.row(0));
  }

  const WaveletLevel<T>& level_;
  int32_t begin_;
  int32_t end_;
  const Plane<T>& destination_;
  int32_t parityX_;
  int32_t parityY_;
  size_t length_;
  std::unique_ptr<T[]> memory_;
};

}  // namespace

template <class T>
void joinBands(const WaveletLevel<T>& level, int32_t begin, int32_t end, const Plane<T>& destination) {
  Strip<T>(level, begin, end, destination).join();
}

template void joinBands(const WaveletLevel<int16_t>&, int32_t, int32_t, const Plane<int16_t>&);
template void joinBands(const WaveletLevel<int32_t>&, int32_t, int32_t, const Plane<int32_t>&);
template void joinBands(const WaveletLevel<float>&, int32_t, int32_t, const Plane<float>&);

}  // namespace examples::jpeg2k
