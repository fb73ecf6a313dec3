#include "jpeg2k/geometry.h"

#include <algorithm>

namespace examples::jpeg2k {
namespace {

// Where the interval that starts here starts in the low or the high subband of a wavelet level.
int32_t inBand(int32_t position, bool high) { return high ? position / 2 : ceilShift(position, 1); }

int32_t cells(int32_t begin, int32_t end, int32_t exponent) {
  return ceilShift(end, exponent) - floorShift(begin, exponent);
}

// The part of [begin, end) in a cell of 2^exponent, counted from the one that holds `begin`.
void cutToCell(int32_t& begin, int32_t& end, int64_t cell, int32_t exponent) {
  const int64_t from = cell << exponent;
  begin = static_cast<int32_t>(std::max<int64_t>(begin, from));
  end = static_cast<int32_t>(std::min<int64_t>(end, from + (int64_t{1} << exponent)));
}

Resolution makeResolution(const CodingStyle& style, const Rect& component, int32_t number) {
  Resolution resolution;
  resolution.rect = reduced(component, style.levels - number);
  const CodingStyle::Precinct precinct = style.precincts[static_cast<size_t>(number)];
  resolution.precinctWidth = precinct.width;
  resolution.precinctHeight = precinct.height;
  if (!resolution.rect.empty()) {
    resolution.precinctsWide = cells(resolution.rect.x0, resolution.rect.x1, precinct.width);
    resolution.precinctsHigh = cells(resolution.rect.y0, resolution.rect.y1, precinct.height);
  }
  const int32_t halves = number > 0 ? 1 : 0;
  resolution.blockWidth = std::clamp(precinct.width - halves, 0, style.blockWidth);
  resolution.blockHeight = std::clamp(precinct.height - halves, 0, style.blockHeight);
  if (number == 0) {
    resolution.bandCount = 1;
    resolution.bands[0].rect = resolution.rect;
  } else {
    resolution.bandCount = 3;
    constexpr SubbandKind kKinds[] = {SubbandHL, SubbandLH, SubbandHH};
    for (int32_t b = 0; b < resolution.bandCount; ++b) {
      resolution.bands[b] = {kKinds[b], bandRect(kKinds[b], resolution.rect), 3 * number - 2 + b};
    }
  }
  return resolution;
}

}  // namespace

Rect reduced(const Rect& rect, int32_t exponent) {
  return {ceilShift(rect.x0, exponent), ceilShift(rect.y0, exponent), ceilShift(rect.x1, exponent),
          ceilShift(rect.y1, exponent)};
}

Rect intersection(const Rect& a, const Rect& b) {
  return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}

Rect bandRect(SubbandKind kind, const Rect& resolution) {
  const bool right = kind == SubbandHL || kind == SubbandHH, below = kind == SubbandLH || kind == SubbandHH;
  return {inBand(resolution.x0, right), inBand(resolution.y0, below), inBand(resolution.x1, right),
          inBand(resolution.y1, below)};
}

Rect BlockGrid::block(int32_t number) const {
  Rect block = rect;
  cutToCell(block.x0, block.x1, (rect.x0 >> blockWidth) + number % wide, blockWidth);
  cutToCell(block.y0, block.y1, (rect.y0 >> blockHeight) + number / wide, blockHeight);
  return block;
}

BlockGrid Resolution::blocks(int32_t precinct, int32_t band) const {
  BlockGrid grid;
  grid.rect = bands[band].rect;
  grid.blockWidth = blockWidth;
  grid.blockHeight = blockHeight;
  const int32_t halves = bandCount > 1 ? 1 : 0;
  cutToCell(grid.rect.x0, grid.rect.x1, (rect.x0 >> precinctWidth) + precinct % precinctsWide, precinctWidth - halves);
  cutToCell(grid.rect.y0, grid.rect.y1, (rect.y0 >> precinctHeight) + precinct / precinctsWide,
            precinctHeight - halves);
  if (!grid.rect.empty()) {
    grid.wide = cells(grid.rect.x0, grid.rect.x1, blockWidth);
    grid.high = cells(grid.rect.y0, grid.rect.y1, blockHeight);
  }
  return grid;
}

int32_t tilesWide(const ImageSize& size) {
  return static_cast<int32_t>(ceilDivide(int64_t{size.image.x1} - size.tileX, size.tileWidth));
}

int32_t tilesHigh(const ImageSize& size) {
  return static_cast<int32_t>(ceilDivide(int64_t{size.image.y1} - size.tileY, size.tileHeight));
}

Rect tileRect(const ImageSize& size, int32_t number) {
  const int64_t x = size.tileX + int64_t{number % tilesWide(size)} * size.tileWidth;
  const int64_t y = size.tileY + int64_t{number / tilesWide(size)} * size.tileHeight;
  return {static_cast<int32_t>(std::max<int64_t>(size.image.x0, x)),
          static_cast<int32_t>(std::max<int64_t>(size.image.y0, y)),
          static_cast<int32_t>(std::min<int64_t>(size.image.x1, x + size.tileWidth)),
          static_cast<int32_t>(std::min<int64_t>(size.image.y1, y + size.tileHeight))};
}

Rect componentRect(const ComponentSize& component, const Rect& rect) {
  return {
      static_cast<int32_t>(ceilDivide(rect.x0, component.dx)), static_cast<int32_t>(ceilDivide(rect.y0, component.dy)),
      static_cast<int32_t>(ceilDivide(rect.x1, component.dx)), static_cast<int32_t>(ceilDivide(rect.y1, component.dy))};
}

ComponentSize pixelSize(const ImageSize& size) {
  ComponentSize pixel = size.components[0];
  for (const ComponentSize& component : size.components) {
    pixel.dx = std::min(pixel.dx, component.dx);
    pixel.dy = std::min(pixel.dy, component.dy);
  }
  return pixel;
}

Tile makeTile(const ImageSize& size, const TileCoding& coding, int32_t number) {
  Tile tile;
  tile.number = number;
  tile.rect = tileRect(size, number);
  for (size_t c = 0; c < size.components.size(); ++c) {
    TileComponent component;
    component.rect = componentRect(size.components[c], tile.rect);
    const CodingStyle& style = coding.components[c].style;
    for (int32_t r = 0; r <= style.levels; ++r) {
      component.resolutions.push_back(makeResolution(style, component.rect, r));
    }
    tile.components.push_back(std::move(component));
  }
  return tile;
}

PrecinctIndex::PrecinctIndex(const Tile& tile) {
  for (const TileComponent& component : tile.components) {
    std::vector<int64_t>& first = first_.emplace_back();
    for (const Resolution& resolution : component.resolutions) {
      first.push_back(count_);
      count_ += resolution.precincts();
    }
  }
}

}  // namespace examples::jpeg2k
