// Writes the packets of a tile: headers and the parts of codewords that a layer adds (T.800 B.9, B.10).
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "jpeg2k/bit_writer.h"
#include "jpeg2k/block_coder.h"
#include "jpeg2k/geometry.h"
#include "jpeg2k/progression.h"
#include "jpeg2k/tag_tree.h"

namespace examples::jpeg2k {

// A tile and where in the list of all blocks those of its precincts begin.
struct TileBlocks {
  explicit TileBlocks(Tile madeTile) : tile(std::move(madeTile)), precincts(tile) {}

  Tile tile;
  PrecinctIndex precincts;
  std::vector<size_t> first;  // of each precinct, three subbands
  size_t blockCount = 0;

  size_t firstOf(int64_t precinct, int32_t band) const { return first[static_cast<size_t>(3 * precinct + band)]; }
};

// How far each layer goes: up to which slope of the hulls.
using LayerSlopes = std::vector<double>;
// A slope of the last layer, which then has all passes.
inline constexpr double kEverything = -1;

// The passes of a block that layers down to this slope have.
int32_t passesAbove(const CodedBlock& block, double slope);

// What is known of a tile to who has read its packets up to some layer, and the packets of the next layers. Layers of a
// precinct are to be written in their order. Copies go on from the same point.
class PacketWriter {
 public:
  PacketWriter(const TileBlocks& tile, const TileCoding& coding, std::span<const CodedBlock> blocks);

  // Appends a packet, or only what is in front of its body; returns the length of the body.
  int64_t write(const Packet& packet, double slope, bool withBody, std::vector<uint8_t>& bytes);

 private:
  static constexpr int32_t kFirstLengthBits = 3;

  struct BlockState {
    int32_t passes = 0;  // in the layers before
    int32_t lengthBits = kFirstLengthBits;
  };
  struct Trees {
    TagTree inclusion;   // first layers
    TagTree zeroPlanes;  // planes above the most significant one
  };

  bool adds(size_t block, double slope) const {
    return passesAbove(blocks_[block], slope) > states_[block - firstBlock_].passes;
  }
  // Calls visit(number of its trees, grid, first block) for each subband of a packet.
  template <class Visit>
  void forEachBand(const Packet& packet, const Visit& visit);
  void header(const Packet& packet, double slope, BitWriter& bits);
  void bandHeader(const BlockGrid& grid, size_t first, int32_t layer, double slope, Trees& trees, BitWriter& bits);
  void newPasses(const CodedBlock& block, int32_t end, BlockState& state, BitWriter& bits) const;
  int64_t body(const CodedBlock& block, double slope, BlockState& state, bool write, std::vector<uint8_t>& bytes) const;

  const TileBlocks* tile_;
  const TileCoding* coding_;
  std::span<const CodedBlock> blocks_;
  size_t firstBlock_ = 0;
  std::vector<BlockState> states_;
  std::vector<Trees> trees_;  // of each precinct, three subbands
  uint32_t packets_ = 0;
};

}  // namespace examples::jpeg2k
