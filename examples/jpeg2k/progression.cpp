#include "jpeg2k/progression.h"

#include <algorithm>
#include <array>
#include <bit>

namespace examples::jpeg2k {
namespace {

// Where the precincts of a row or column start on the reference grid (the conditions of T.800 B.12.1.3, solved).
// The resolution starts at `begin` and is 2^levelsAbove times as coarse as its component, which has a sample for every
// `distance` positions of the grid.
int32_t startOnGrid(int32_t index, int32_t begin, int32_t precinctExponent, int32_t levelsAbove, int32_t distance,
                    int32_t tileBegin) {
  const int64_t cell = (int64_t{begin} >> precinctExponent) + index;
  const int64_t start = cell << precinctExponent;
  if (start < begin) return tileBegin;
  return static_cast<int32_t>((start << levelsAbove) * distance);
}

// A bit for each resolution before this one.
uint64_t below(int32_t resolution) { return (uint64_t{1} << std::min(resolution, kMaxLevels + 1)) - 1; }

}  // namespace

PacketOrder::PacketOrder(const ImageSize& size, const Tile& tile, const TileCoding& coding)
    : size_(size), tile_(tile), volumes_(coding.volumes), layers_(coding.layers), components_(tile.components.size()) {
  everything_ = {layers_, 0, kMaxLevels + 1, 0, static_cast<int32_t>(components_.size()), coding.order};
  for (size_t c = 0; c < components_.size(); ++c) {
    const std::vector<Resolution>& resolutions = tile.components[c].resolutions;
    for (size_t r = 0; r < resolutions.size(); ++r) {
      if (resolutions[r].precincts() > 0) components_[c].unfinished |= uint64_t{1} << r;
    }
  }
  beginVolume();
}

// There may be many volumes, and in many tiles most of them may be empty: such a one takes no time that matters.
void PacketOrder::beginVolume() {
  places_.clear();
  layerEnd_ = std::min(volume().layerEnd, layers_);
  const uint64_t wanted = below(volume().resolutionEnd) & ~below(volume().resolutionBegin);
  const int32_t componentEnd = std::min(volume().componentEnd, static_cast<int32_t>(components_.size()));
  for (int32_t c = volume().componentBegin; c < componentEnd; ++c) {
    Progress& progress = components_[static_cast<size_t>(c)];
    for (uint64_t left = progress.unfinished & wanted; left != 0; left &= left - 1) {
      const int32_t r = std::countr_zero(left);
      int32_t& done = progress.layersDone[static_cast<size_t>(r)];
      if (done >= layerEnd_) continue;
      addPlaces(c, r, done);
      done = layerEnd_;
      if (done == layers_) progress.unfinished ^= uint64_t{1} << r;
    }
  }
  sortPlaces(volume().order);
  groupEnd_ = 0;
  beginGroup();
}

void PacketOrder::addPlaces(int32_t c, int32_t r, int32_t layerBegin) {
  const TileComponent& component = tile_.components[static_cast<size_t>(c)];
  const ComponentSize& distances = size_.components[static_cast<size_t>(c)];
  const Resolution& resolution = component.resolutions[static_cast<size_t>(r)];
  const int32_t levelsAbove = component.levels() - r;
  int32_t precinct = 0;
  for (int32_t row = 0; row < resolution.precinctsHigh; ++row) {
    const int32_t y =
        startOnGrid(row, resolution.rect.y0, resolution.precinctHeight, levelsAbove, distances.dy, tile_.rect.y0);
    for (int32_t column = 0; column < resolution.precinctsWide; ++column, ++precinct) {
      const int32_t x =
          startOnGrid(column, resolution.rect.x0, resolution.precinctWidth, levelsAbove, distances.dx, tile_.rect.x0);
      places_.push_back({c, r, precinct, x, y, layerBegin});
    }
  }
}

void PacketOrder::sortPlaces(Progression order) {
  const auto key = [order](const Place& p) -> std::array<int32_t, 5> {
    switch (order) {
      case Progression::rpcl:
        return {p.resolution, p.y, p.x, p.component, p.precinct};
      case Progression::pcrl:
        return {p.y, p.x, p.component, p.resolution, p.precinct};
      case Progression::cprl:
        return {p.component, p.y, p.x, p.resolution, p.precinct};
      case Progression::lrcp:
      case Progression::rlcp:
        break;
    }
    return {p.resolution, p.component, p.precinct, 0, 0};
  };
  std::sort(places_.begin(), places_.end(), [&](const Place& a, const Place& b) { return key(a) < key(b); });
}

void PacketOrder::beginGroup() {
  groupBegin_ = groupEnd_;
  place_ = groupBegin_;
  if (groupBegin_ == places_.size()) return;
  switch (volume().order) {
    case Progression::lrcp:
      groupEnd_ = places_.size();
      break;
    case Progression::rlcp:
      while (groupEnd_ < places_.size() && places_[groupEnd_].resolution == places_[groupBegin_].resolution) {
        ++groupEnd_;
      }
      break;
    default:
      ++groupEnd_;
  }
  layer_ = places_[groupBegin_].layerBegin;
  for (size_t i = groupBegin_; i < groupEnd_; ++i) layer_ = std::min(layer_, places_[i].layerBegin);
}

bool PacketOrder::next(Packet& packet) {
  for (;;) {
    while (groupBegin_ == places_.size()) {
      if (++volume_ >= volumes_.size()) return false;
      beginVolume();
    }
    for (; layer_ < layerEnd_; ++layer_, place_ = groupBegin_) {
      while (place_ < groupEnd_) {
        const Place& place = places_[place_++];
        if (place.layerBegin > layer_) continue;
        packet = {place.component, place.resolution, place.precinct, layer_};
        return true;
      }
    }
    beginGroup();
  }
}

}  // namespace examples::jpeg2k
