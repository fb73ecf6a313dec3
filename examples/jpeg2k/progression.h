// The order of the packets of a tile (T.800 B.12).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "jpeg2k/geometry.h"

namespace examples::jpeg2k {

struct Packet {
  int32_t component = 0;
  int32_t resolution = 0;
  int32_t precinct = 0;  // of the resolution
  int32_t layer = 0;
};

// Goes through the packets of a tile, each once. What is passed must outlive it.
class PacketOrder {
 public:
  PacketOrder(const ImageSize& size, const Tile& tile, const TileCoding& coding);

  // The next packet; false at the end.
  bool next(Packet& packet);

 private:
  struct Place {
    int32_t component;
    int32_t resolution;
    int32_t precinct;
    int32_t x, y;        // where the precinct starts on the reference grid
    int32_t layerBegin;  // the layers before have been gone through
  };
  // Of a component; volumes hold all precincts of a resolution or none.
  struct Progress {
    uint64_t unfinished = 0;  // a bit for each resolution of which there are packets left
    std::array<int32_t, kMaxLevels + 1> layersDone{};
  };

  const PacketVolume& volume() const { return volumes_.empty() ? everything_ : volumes_[volume_]; }
  void beginVolume();
  void addPlaces(int32_t component, int32_t resolution, int32_t layerBegin);
  void sortPlaces(Progression order);
  void beginGroup();

  const ImageSize& size_;
  const Tile& tile_;
  const std::vector<PacketVolume>& volumes_;
  PacketVolume everything_;
  int32_t layers_;
  std::vector<Progress> components_;  // as it is at the end of the volume
  size_t volume_ = 0;
  int32_t layerEnd_ = 0;  // of the volume
  // The precincts of the volume in their order. They form groups, inside of which each layer goes through all of them.
  std::vector<Place> places_;
  size_t groupBegin_ = 0;
  size_t groupEnd_ = 0;
  size_t place_ = 0;
  int32_t layer_ = 0;
};

}  // namespace examples::jpeg2k
