#include "jpeg2k/component_decoder.h"

#include <algorithm>
#include <utility>

namespace examples::jpeg2k {
namespace {

// A sample depends on others up to so many positions away; beyond, the edge of what is transformed does not matter.
constexpr int32_t kReach = 4;

Rect widened(const Rect& rect) {
  if (rect.empty()) return rect;
  const auto beyond = [](int32_t end) { return std::min(end, INT32_MAX - kReach) + kReach; };
  return {rect.x0 - kReach, rect.y0 - kReach, beyond(rect.x1), beyond(rect.y1)};
}

}  // namespace

template <class T>
ComponentDecoder<T>::ComponentDecoder(const TileComponent& component, int32_t resolutions, const Rect& wanted)
    : wanted_(wanted), resolutions_(static_cast<size_t>(resolutions)) {
  size_t used = 0;
  std::vector<std::pair<Plane<T>*, size_t>> places;
  const auto place = [&](Plane<T>& plane, const Rect& rect) {
    if (rect.empty()) return;
    plane.step = rect.width();
    places.emplace_back(&plane, used);
    used += static_cast<size_t>(rect.width()) * static_cast<size_t>(rect.height());
  };
  Rect needed = wanted;
  for (size_t r = resolutions_.size(); r-- > 0;) {
    PartOfResolution& part = resolutions_[r];
    const Resolution& resolution = component.resolutions[r];
    part.rect = r == 0 ? needed : intersection(resolution.rect, widened(needed));
    for (int32_t b = 0; b < resolution.bandCount; ++b) {
      part.windows[b].rect = r == 0 ? part.rect : bandRect(resolution.bands[b].kind, part.rect);
      place(part.windows[b].plane, part.windows[b].rect);
    }
    if (r > 0 && r + 1 < resolutions_.size()) place(part.samples, part.rect);
    needed = reduced(part.rect, 1);
  }
  memory_ = ZeroedMemory<T>(used);
  for (const auto& [plane, offset] : places) plane->samples = memory_.get() + offset;
  resolutions_[0].samples = resolutions_[0].windows[0].plane;
}

template <class T>
WaveletLevel<T> ComponentDecoder<T>::level(size_t r) const {
  const PartOfResolution& part = resolutions_[r];
  const PartOfResolution& below = resolutions_[r - 1];
  const Rect lowest = reduced(part.rect, 1);
  Plane<T> low = below.samples;
  if (!lowest.empty()) low.samples += (lowest.y0 - below.rect.y0) * low.step + (lowest.x0 - below.rect.x0);
  return {{part.rect.x0, part.rect.y0, part.rect.width(), part.rect.height()},
          low,
          part.windows[0].plane,
          part.windows[1].plane,
          part.windows[2].plane};
}

template <class T>
void ComponentDecoder<T>::transform(int32_t resolution, int32_t begin, int32_t end) {
  const size_t r = static_cast<size_t>(resolution);
  const Plane<T>& samples = resolutions_[r].samples;
  joinBands(level(r), begin, end, {samples.row(begin), samples.step});
}

template <class T>
void ComponentDecoder<T>::rows(int32_t begin, int32_t end, const Plane<T>& to) const {
  const PartOfResolution& last = resolutions_.back();
  const int32_t above = wanted_.y0 - last.rect.y0;
  if (resolutions_.size() > 1) return joinBands(level(resolutions_.size() - 1), begin + above, end + above, to);
  for (int32_t y = begin; y < end; ++y) {
    const T* const row = last.samples.row(y + above);
    std::copy(row, row + last.rect.width(), to.row(y - begin));
  }
}

template class ComponentDecoder<int16_t>;
template class ComponentDecoder<int32_t>;
template class ComponentDecoder<float>;

}  // namespace examples::jpeg2k
