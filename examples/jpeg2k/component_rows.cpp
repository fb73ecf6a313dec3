#include "jpeg2k/component_rows.h"

#include <type_traits>

namespace examples::jpeg2k {
namespace {

void decorrelate(const int16_t* pixels, int16_t* const planes[3], int32_t width) {
  zoriRCTFwd_JPEG2K_16s_C3P3R(pixels, 1, planes, 1, {width, 1});
}
void decorrelate(const int32_t* pixels, int32_t* const planes[3], int32_t width) {
  zoriRCTFwd_JPEG2K_32s_C3P3R(pixels, 1, planes, 1, {width, 1});
}
void decorrelate(const float* pixels, float* const planes[3], int32_t width) {
  zoriICTFwd_JPEG2K_32f_C3P3R(pixels, 1, planes, 1, {width, 1});
}

}  // namespace

template <class Sample, class T>
ComponentRows<Sample, T>::ComponentRows(const BasicImage<Sample>& image, const TileRect& rect, bool convertColors)
    : image_(image), rect_(rect), convertColors_(convertColors), length_(static_cast<size_t>(rect.width)) {
  const size_t channels = static_cast<size_t>(image.channels);
  wide_ = uninitialised<T>(length_ * channels);
  rows_ = uninitialised<T>(length_ * channels * kRows);
  made_.fill(-1);
}

template <class Sample, class T>
T* ComponentRows<Sample, T>::slot(int32_t component, int32_t y) const {
  return rows_.get() + static_cast<size_t>(component * kRows + y % kRows) * length_;
}

template <class Sample, class T>
const T* ComponentRows<Sample, T>::row(int32_t component, int32_t y) {
  int32_t& made = made_[static_cast<size_t>(y % kRows)];
  if (made != y) make(y);
  made = y;
  return slot(component, y);
}

template <class Sample, class T>
void ComponentRows<Sample, T>::make(int32_t y) {
  using Arithmetic = std::conditional_t<std::is_same_v<T, float>, float, int32_t>;
  const Sample* const pixels = image_.at(rect_.x, rect_.y + y);
  const size_t channels = static_cast<size_t>(image_.channels);
  const auto middle = static_cast<Arithmetic>(1 << (image_.precision - 1));
  if (convertColors_) {
    for (size_t i = 0; i < 3 * length_; ++i) wide_[i] = static_cast<T>(static_cast<Arithmetic>(pixels[i]) - middle);
    T* const planes[3] = {slot(0, y), slot(1, y), slot(2, y)};
    decorrelate(wide_.get(), planes, rect_.width);
    return;
  }
  for (size_t c = 0; c < channels; ++c) {
    T* const plane = slot(static_cast<int32_t>(c), y);
    for (size_t x = 0; x < length_; ++x)
      plane[x] = static_cast<T>(static_cast<Arithmetic>(pixels[x * channels + c]) - middle);
  }
}

template class ComponentRows<uint8_t, int16_t>;
template class ComponentRows<uint8_t, int32_t>;
template class ComponentRows<uint8_t, float>;
template class ComponentRows<uint16_t, int16_t>;
template class ComponentRows<uint16_t, int32_t>;
template class ComponentRows<uint16_t, float>;

}  // namespace examples::jpeg2k
