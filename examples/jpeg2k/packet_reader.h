// Reads the packets of a tile: which passes of which code-blocks they hold, and where their bytes are (T.800 B.9,
// B.10).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jpeg2k/geometry.h"
#include "jpeg2k/inclusion_tree.h"
#include "jpeg2k/progression.h"
#include "jpeg2k/tag_tree.h"

namespace examples::jpeg2k {

// Passes of a code-block from one packet that belong to one segment. A segment goes on in later packets unless
// something terminates it.
struct Piece {
  const uint8_t* bytes = nullptr;
  int32_t length = 0;
  int32_t passes = 0;
  bool opensSegment = false;
  int32_t next = -1;  // the block's next piece
};

struct PacketBlock {
  int32_t firstPiece = -1;  // -1 if nothing of the block is there
  int32_t lastPiece = -1;
  int32_t zeroPlanes = 0;
  int32_t passes = 0;      // in all packets read
  int32_t lengthBits = 3;  // Lblock of T.800 B.10.7.1
};

struct PrecinctBand {
  explicit PrecinctBand(const BlockGrid& blockGrid)
      : grid(blockGrid),
        inclusion(grid.wide, grid.high),
        zeroPlanes(grid.wide, grid.high),
        blocks(static_cast<size_t>(grid.count())) {}

  BlockGrid grid;
  InclusionTree inclusion;
  TagTree zeroPlanes;
  std::vector<PacketBlock> blocks;
};

// Which packets are kept.
struct PacketLimits {
  int32_t layers = 0;
  int32_t reduce = 0;  // resolutions left out at the top
};

class PacketReader {
 public:
  // What is passed must outlive the reader.
  PacketReader(const ImageSize& size, const Tile& tile, const TileCoding& coding);

  // Reads as many packets as there are. Headers stand in the data, or apart from them if `packed`.
  void read(std::span<const uint8_t> data, bool packed, std::span<const uint8_t> headers, const PacketLimits& limits);

  // The subbands' parts of a precinct; null if no packet told of it.
  const std::vector<PrecinctBand>* bands(int32_t component, int32_t resolution, int32_t precinct) const {
    return precincts_[static_cast<size_t>(index_.of(component, resolution, precinct))].get();
  }
  const Piece& piece(int32_t number) const { return pieces_[static_cast<size_t>(number)]; }
  // What stopped the reader before the last packet; empty if nothing did.
  const std::string& problem() const { return problem_; }

 private:
  class Bits;
  struct Pending {
    PacketBlock* block;
    Piece piece;
  };

  bool readPacket(const Packet& packet, bool keep);
  bool readHeader(const Packet& packet, Bits& bits);
  bool readBlock(PrecinctBand& band, int32_t number, bool isNew, uint32_t style, Bits& bits);
  bool readBody(bool keep);
  std::vector<PrecinctBand>& makeBands(const Packet& packet);
  void append(PacketBlock& block, const Piece& piece);

  const Tile& tile_;
  const TileCoding& coding_;
  PrecinctIndex index_;
  PacketOrder order_;
  std::vector<std::unique_ptr<std::vector<PrecinctBand>>> precincts_;
  std::vector<Piece> pieces_;
  std::vector<Pending> pending_;  // of the packet being read
  std::span<const uint8_t> data_;
  std::span<const uint8_t> headers_;
  bool packed_ = false;
  std::string problem_;
};

}  // namespace examples::jpeg2k
