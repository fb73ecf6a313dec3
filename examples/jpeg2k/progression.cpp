#include "jpeg2k/progression.h"

#include <algorithm>
#include <array>

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

}  // namespace

PacketOrder::PacketOrder(const ImageSize& size, const Tile& tile, const TileCoding& coding)
    : size_(size), tile_(tile), volumes_(coding.packetVolumes()), layers_(coding.layers), precincts_(tile) {
  layersDone_.resize(static_cast<size_t>(precincts_.count()));
  beginVolume();
}

void PacketOrder::beginVolume() {
  places_.clear();
  const PacketVolume& volume = volumes_[volume_];
  layerEnd_ = std::min(volume.layerEnd, layers_);
  const int32_t componentEnd = std::min(volume.componentEnd, static_cast<int32_t>(tile_.components.size()));
  for (int32_t c = volume.componentBegin; c < componentEnd; ++c) {
    const TileComponent& component = tile_.components[static_cast<size_t>(c)];
    const int32_t resolutionEnd = std::min(volume.resolutionEnd, component.levels() + 1);
    for (int32_t r = volume.resolutionBegin; r < resolutionEnd; ++r) addPlaces(c, r);
  }
  sortPlaces(volume.order);
  groupEnd_ = 0;
  beginGroup();
}

void PacketOrder::addPlaces(int32_t c, int32_t r) {
  const TileComponent& component = tile_.components[static_cast<size_t>(c)];
  const ComponentSize& distances = size_.components[static_cast<size_t>(c)];
  const Resolution& resolution = component.resolutions[static_cast<size_t>(r)];
  const int32_t levelsAbove = component.levels() - r;
  int32_t precinct = 0;
  for (int32_t row = 0; row < resolution.precinctsHigh; ++row) {
    const int32_t y =
        startOnGrid(row, resolution.rect.y0, resolution.precinctHeight, levelsAbove, distances.dy, tile_.rect.y0);
    for (int32_t column = 0; column < resolution.precinctsWide; ++column, ++precinct) {
      const int64_t index = precincts_.of(c, r, precinct);
      if (layersDone_[static_cast<size_t>(index)] >= layerEnd_) continue;
      const int32_t x =
          startOnGrid(column, resolution.rect.x0, resolution.precinctWidth, levelsAbove, distances.dx, tile_.rect.x0);
      places_.push_back({c, r, precinct, x, y, index});
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
  layer_ = 0;
  if (groupBegin_ == places_.size()) return;
  switch (volumes_[volume_].order) {
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
        int32_t& done = layersDone_[static_cast<size_t>(place.index)];
        if (done > layer_) continue;
        packet = {place.component, place.resolution, place.precinct, done++};
        return true;
      }
    }
    beginGroup();
  }
}

}  // namespace examples::jpeg2k
