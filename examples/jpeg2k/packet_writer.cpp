#include "jpeg2k/packet_writer.h"

#include <bit>

#include "jpeg2k/byte_writer.h"

namespace examples::jpeg2k {
namespace {

constexpr uint32_t kStartOfPacket = 0xff91, kEndOfPacketHeader = 0xff92;

// T.800 Table B.4.
void writePassCount(int32_t count, BitWriter& bits) {
  const auto value = static_cast<uint32_t>(count);
  if (count == 1) return bits.bits(0, 1);
  if (count == 2) return bits.bits(0b10, 2);
  if (count <= 5) return bits.bits(0b1100 | (value - 3), 4);
  if (count <= 36) return bits.bits(0b1111 << 5 | (value - 6), 9);
  bits.bits(0b111111111 << 7 | (value - 37), 16);
}

int32_t floorLog2(int32_t value) { return std::bit_width(static_cast<uint32_t>(value)) - 1; }

int32_t bytesUpTo(const CodedBlock& block, int32_t passes) {
  return passes == 0 ? 0 : block.rates[static_cast<size_t>(passes) - 1];
}

}  // namespace

int32_t passesAbove(const CodedBlock& block, double slope) {
  if (slope == kEverything) return static_cast<int32_t>(block.rates.size());
  const size_t points = pointsAbove(block.hull, slope);
  return points == 0 ? 0 : block.hull[points - 1].passes;
}

PacketWriter::PacketWriter(const TileBlocks& tile, const TileCoding& coding, std::span<const CodedBlock> blocks)
    : tile_(&tile), coding_(&coding), blocks_(blocks), firstBlock_(tile.firstOf(0, 0)), states_(tile.blockCount) {
  trees_.reserve(tile.first.size());
  for (size_t c = 0; c < tile.tile.components.size(); ++c) {
    const Quantization& quantization = coding.components[c].quantization;
    for (const Resolution& resolution : tile.tile.components[c].resolutions) {
      for (int32_t precinct = 0; precinct < resolution.precincts(); ++precinct) {
        for (int32_t band = 0; band < 3; ++band) {
          const BlockGrid grid = band < resolution.bandCount ? resolution.blocks(precinct, band) : BlockGrid();
          const size_t first = tile.first[trees_.size()];
          trees_.push_back({TagTree(grid.wide, grid.high), TagTree(grid.wide, grid.high)});
          if (grid.count() == 0) continue;
          const int32_t mostPlanes = quantization.guardBits - 1 +
                                     quantization.steps[static_cast<size_t>(resolution.bands[band].number)].exponent;
          TagTree& zeroPlanes = trees_.back().zeroPlanes;
          for (int32_t i = 0; i < grid.count(); ++i) {
            const CodedBlock& block = blocks[first + static_cast<size_t>(i)];
            if (!block.rates.empty()) zeroPlanes.setValue(i, mostPlanes - block.planes);
          }
          zeroPlanes.finishValues();
        }
      }
    }
  }
}

int64_t PacketWriter::write(const Packet& packet, double slope, bool withBody, std::vector<uint8_t>& bytes) {
  ByteWriter writer(bytes);
  if (coding_->sop) {
    writer.u16(kStartOfPacket);
    writer.u16(4);
    writer.u16(packets_);
  }
  ++packets_;
  BitWriter bits(bytes);
  header(packet, slope, bits);
  bits.end();
  if (coding_->eph) writer.u16(kEndOfPacketHeader);

  int64_t length = 0;
  forEachBand(packet, [&](int32_t, const BlockGrid& grid, size_t first) {
    for (size_t b = first; b < first + static_cast<size_t>(grid.count()); ++b)
      length += body(blocks_[b], slope, states_[b - firstBlock_], withBody, bytes);
  });
  return length;
}

template <class Visit>
void PacketWriter::forEachBand(const Packet& packet, const Visit& visit) {
  const Resolution& resolution =
      tile_->tile.components[static_cast<size_t>(packet.component)].resolutions[static_cast<size_t>(packet.resolution)];
  const int64_t precinct = tile_->precincts.of(packet.component, packet.resolution, packet.precinct);
  for (int32_t band = 0; band < resolution.bandCount; ++band)
    visit(static_cast<size_t>(3 * precinct + band), resolution.blocks(packet.precinct, band),
          tile_->firstOf(precinct, band));
}

void PacketWriter::header(const Packet& packet, double slope, BitWriter& bits) {
  bool empty = true;
  forEachBand(packet, [&](size_t, const BlockGrid& grid, size_t first) {
    for (size_t b = first; empty && b < first + static_cast<size_t>(grid.count()); ++b) empty = !adds(b, slope);
  });
  bits.bit(empty ? 0 : 1);
  if (empty) return;
  forEachBand(packet, [&](size_t trees, const BlockGrid& grid, size_t first) {
    bandHeader(grid, first, packet.layer, slope, trees_[trees], bits);
  });
}

void PacketWriter::bandHeader(const BlockGrid& grid, size_t first, int32_t layer, double slope, Trees& trees,
                              BitWriter& bits) {
  const auto writeBit = [&](bool value) { bits.bit(value ? 1 : 0); };
  const auto isNew = [&](size_t b) { return states_[b - firstBlock_].passes == 0; };
  for (int32_t i = 0; i < grid.count(); ++i) {
    const size_t b = first + static_cast<size_t>(i);
    if (isNew(b) && adds(b, slope)) trees.inclusion.setValue(i, layer);
  }
  trees.inclusion.finishValues();
  for (int32_t i = 0; i < grid.count(); ++i) {
    const size_t b = first + static_cast<size_t>(i);
    const bool included = adds(b, slope);
    if (isNew(b)) {
      trees.inclusion.write(i, layer + 1, writeBit);
    } else {
      writeBit(included);
    }
    if (!included) continue;
    if (isNew(b)) trees.zeroPlanes.write(i, trees.zeroPlanes.value(i) + 1, writeBit);
    newPasses(blocks_[b], passesAbove(blocks_[b], slope), states_[b - firstBlock_], bits);
  }
}

// How many passes a layer adds to a block, and how many bytes of each segment.
void PacketWriter::newPasses(const CodedBlock& block, int32_t end, BlockState& state, BitWriter& bits) const {
  const uint32_t style = coding_->components[0].style.blockStyle;
  const auto forEachPart = [&](const auto& visit) {
    for (int32_t from = state.passes, to = from; from < end; from = to) {
      while (to < end && !endsSegment(style, to)) ++to;
      to = std::min(to + 1, end);
      visit(bytesUpTo(block, to) - bytesUpTo(block, from), floorLog2(to - from));
    }
  };
  writePassCount(end - state.passes, bits);
  int32_t lengthBits = state.lengthBits;
  forEachPart([&](int32_t length, int32_t fewer) {
    lengthBits = std::max(lengthBits, length == 0 ? 0 : floorLog2(length) + 1 - fewer);
  });
  for (; state.lengthBits < lengthBits; ++state.lengthBits) bits.bit(1);
  bits.bit(0);
  forEachPart([&](int32_t length, int32_t fewer) { bits.bits(static_cast<uint32_t>(length), lengthBits + fewer); });
}

int64_t PacketWriter::body(const CodedBlock& block, double slope, BlockState& state, bool write,
                           std::vector<uint8_t>& bytes) const {
  const int32_t end = passesAbove(block, slope);
  if (end <= state.passes) return 0;
  const int32_t from = bytesUpTo(block, state.passes), to = bytesUpTo(block, end);
  state.passes = end;
  if (write) bytes.insert(bytes.end(), block.codeword.begin() + from, block.codeword.begin() + to);
  return to - from;
}

}  // namespace examples::jpeg2k
