// How far each quality layer goes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg2k/packet_writer.h"

namespace examples::jpeg2k {

struct LayerTarget {
  enum class Kind { everything, bytes, gain };
  Kind kind = Kind::everything;
  int64_t bytes = 0;       // of the whole file
  double gain = 0;         // by how much the squared error is to be reduced
  int64_t otherBytes = 0;  // those of the file that are not packets
};

// The slopes of all layers. The last one reaches the target; it has no more bytes than asked for, unless packets
// without any passes have more. Each layer before has half of the bytes of the next one,
// as long as they are not less than a 256th of all.
LayerSlopes allocateLayers(std::span<const TileBlocks> tiles, const TileCoding& coding,
                           std::span<const CodedBlock> blocks, const LayerTarget& target);

}  // namespace examples::jpeg2k
