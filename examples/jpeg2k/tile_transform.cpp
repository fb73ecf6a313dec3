#include "jpeg2k/tile_transform.h"

#include <algorithm>

#include "jpeg2k/component_rows.h"
#include "jpeg2k/parallel.h"

namespace examples::jpeg2k {
namespace {

// Parts are large enough that the rows which neighbours transform twice do not matter.
constexpr int32_t kLeastRows = 64;

// Calls task(tile, begin, end) for parts of the rows of all tiles.
template <class Task>
void forEachPart(const std::vector<int32_t>& rows, int32_t threads, const Task& task) {
  struct Part {
    size_t tile;
    int32_t begin, end;
  };
  std::vector<Part> parts;
  for (size_t tile = 0; tile < rows.size(); ++tile) {
    const int32_t count = threads == 1 ? 1 : std::clamp(rows[tile] / kLeastRows, 1, 4 * threads);
    for (int32_t i = 0; i < count; ++i) {
      const auto cut = [&](int32_t part) { return static_cast<int32_t>(int64_t{rows[tile]} * part / count); };
      parts.push_back({tile, cut(i), cut(i + 1)});
    }
  }
  inParallel(static_cast<int64_t>(parts.size()), threads, [&](int64_t i, int32_t) {
    const Part& part = parts[static_cast<size_t>(i)];
    task(part.tile, part.begin, part.end);
  });
}

}  // namespace

template <class T>
template <class Sample>
TileTransform<T>::TileTransform(const BasicImage<Sample>& image, std::span<const Rect> tiles, int32_t levels,
                                bool convertColors, int32_t threads)
    : levels_(levels), channels_(image.channels) {
  for (const Rect& tile : tiles) {
    for (int32_t c = 0; c < channels_; ++c) components_.push_back(makeComponent(tile));
  }
  std::vector<int32_t> rows;
  for (const Rect& tile : tiles) rows.push_back(tile.height());
  if (levels == 0) {
    forEachPart(rows, threads,
                [&](size_t tile, int32_t begin, int32_t end) { copySamples(image, convertColors, tile, begin, end); });
    return;
  }
  for (size_t tile = 0; tile < tiles.size(); ++tile) rows[tile] = at(tile, 0).levels[0].pairs();
  forEachPart(rows, threads,
              [&](size_t tile, int32_t begin, int32_t end) { transformFirst(image, convertColors, tile, begin, end); });
  for (size_t level = 1; level < static_cast<size_t>(levels); ++level) {
    rows.clear();
    for (const Component& component : components_) rows.push_back(component.levels[level].pairs());
    forEachPart(rows, threads, [&](size_t i, int32_t begin, int32_t end) {
      const Component& component = components_[i];
      transformRows(component.levels[level - 1].ll, component.levels[level], begin, end);
    });
  }
}

template <class T>
typename TileTransform<T>::Component TileTransform<T>::makeComponent(const Rect& tile) const {
  Component component;
  TileRect rect = {tile.x0, tile.y0, tile.width(), tile.height()};
  if (levels_ == 0) {
    component.memory = uninitialised<T>(static_cast<size_t>(rect.width) * static_cast<size_t>(rect.height));
    component.levels.push_back({rect, {component.memory.get(), rect.width}, {}, {}, {}});
    return component;
  }
  size_t size = 0;
  for (int32_t level = 0; level < levels_; ++level, rect = halved(rect)) {
    component.levels.push_back({rect, {}, {}, {}, {}});
    size += 4 * static_cast<size_t>((rect.width + 1) / 2) * static_cast<size_t>((rect.height + 1) / 2);
  }
  component.memory = uninitialised<T>(size);
  T* next = component.memory.get();
  for (WaveletLevel<T>& level : component.levels) {
    const ptrdiff_t width = (level.rect.width + 1) / 2, height = (level.rect.height + 1) / 2;
    for (Plane<T>* const plane : {&level.ll, &level.hl, &level.lh, &level.hh}) {
      *plane = {next, width};
      next += width * height;
    }
  }
  return component;
}

template <class T>
template <class Sample>
void TileTransform<T>::transformFirst(const BasicImage<Sample>& image, bool convertColors, size_t tile, int32_t begin,
                                      int32_t end) {
  const TileRect rect = at(tile, 0).levels[0].rect;
  ComponentRows<Sample, T> rows(image, rect, convertColors);
  std::vector<LevelTransform<T>> transforms;
  for (int32_t c = 0; c < channels_; ++c) transforms.emplace_back(at(tile, c).levels[0], begin, end);
  if (rect.height == 1) {
    for (int32_t c = 0; c < channels_; ++c) transforms[static_cast<size_t>(c)].singleRow(rows.row(c, 0));
    return;
  }
  const auto place = [&](int32_t position) { return reflected(position - (rect.y & 1), 0, rect.height - 1); };
  for (int32_t k = transforms[0].firstStep(); k < transforms[0].endStep(); ++k) {
    for (int32_t c = 0; c < channels_; ++c) {
      const T* const even = rows.row(c, place(2 * k));
      const T* const odd = rows.row(c, place(2 * k + 1));
      transforms[static_cast<size_t>(c)].step(k, even, odd, rows.row(c, place(2 * k + 2)));
    }
  }
}

template <class T>
template <class Sample>
void TileTransform<T>::copySamples(const BasicImage<Sample>& image, bool convertColors, size_t tile, int32_t begin,
                                   int32_t end) {
  const TileRect rect = at(tile, 0).levels[0].rect;
  ComponentRows<Sample, T> rows(image, rect, convertColors);
  for (int32_t y = begin; y < end; ++y) {
    for (int32_t c = 0; c < channels_; ++c)
      std::copy_n(rows.row(c, y), static_cast<size_t>(rect.width), at(tile, c).levels[0].ll.row(y));
  }
}

template <class T>
Plane<T> TileTransform<T>::subband(size_t tile, int32_t component, int32_t resolution, SubbandKind kind) const {
  const std::vector<WaveletLevel<T>>& levels =
      components_[tile * static_cast<size_t>(channels_) + static_cast<size_t>(component)].levels;
  if (resolution == 0) return levels.back().ll;
  const WaveletLevel<T>& level = levels[static_cast<size_t>(levels_ - resolution)];
  return kind == SubbandHL ? level.hl : kind == SubbandLH ? level.lh : level.hh;
}

template class TileTransform<int16_t>;
template class TileTransform<int32_t>;
template class TileTransform<float>;
template TileTransform<int16_t>::TileTransform(const Image&, std::span<const Rect>, int32_t, bool, int32_t);
template TileTransform<int32_t>::TileTransform(const Image&, std::span<const Rect>, int32_t, bool, int32_t);
template TileTransform<float>::TileTransform(const Image&, std::span<const Rect>, int32_t, bool, int32_t);
template TileTransform<int16_t>::TileTransform(const DeepImage&, std::span<const Rect>, int32_t, bool, int32_t);
template TileTransform<int32_t>::TileTransform(const DeepImage&, std::span<const Rect>, int32_t, bool, int32_t);
template TileTransform<float>::TileTransform(const DeepImage&, std::span<const Rect>, int32_t, bool, int32_t);

}  // namespace examples::jpeg2k
