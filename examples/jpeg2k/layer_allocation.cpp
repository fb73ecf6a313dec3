#include "jpeg2k/layer_allocation.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace examples::jpeg2k {
namespace {

// No block gains as much.
constexpr double kNothing = std::numeric_limits<double>::infinity();

// Settles one layer after the other.
class LayerAllocator {
 public:
  LayerAllocator(std::span<const TileBlocks> tiles, const TileCoding& coding, std::span<const CodedBlock> blocks,
                 int64_t otherBytes)
      : tiles_(tiles), blocks_(blocks), headerBytes_(otherBytes) {
    for (const CodedBlock& block : blocks) hulls_.push_back(block.hull);
    for (const TileBlocks& tile : tiles) settled_.emplace_back(tile, coding, blocks);
  }

  std::span<const Hull> hulls() const { return hulls_; }

  int64_t bodyBytes(double slope) const {
    if (slope != kEverything) return yieldAt(hulls_, slope).bytes;
    int64_t bytes = 0;
    for (const CodedBlock& block : blocks_) bytes += static_cast<int64_t>(block.codeword.size());
    return bytes;
  }

  // The least slope, but none below `least`, with which the file has at most `bytes` up to the end of the next layer.
  double slopeForFile(int64_t bytes, double least) {
    constexpr int kAttempts = 8;
    double best = kNothing;
    int64_t budget = bytes - headerBytes_;
    for (int i = 0; i < kAttempts && budget > 0; ++i) {
      const double slope = std::max(slopeForBytes(hulls_, budget), least);
      const int64_t room = bytes - headerBytes_ - bodyBytes(slope) - measureHeaders(slope);
      if (room >= 0) best = std::min(best, slope);
      if (room >= 0 && (slope == least || room < bytes / 512)) break;
      budget += room;
    }
    return best;
  }

  void settle(double slope) {
    headerBytes_ += writeHeaders(settled_, slope);
    ++layer_;
  }

 private:
  int64_t measureHeaders(double slope) {
    trial_ = settled_;
    return writeHeaders(trial_, slope);
  }

  int64_t writeHeaders(std::vector<PacketWriter>& writers, double slope) {
    int64_t bytes = 0;
    for (size_t t = 0; t < tiles_.size(); ++t) {
      headers_.clear();
      const Tile& tile = tiles_[t].tile;
      for (size_t c = 0; c < tile.components.size(); ++c) {
        for (size_t r = 0; r < tile.components[c].resolutions.size(); ++r) {
          const auto precincts = static_cast<int32_t>(tile.components[c].resolutions[r].precincts());
          for (int32_t p = 0; p < precincts; ++p)
            writers[t].write({static_cast<int32_t>(c), static_cast<int32_t>(r), p, layer_}, slope, false, headers_);
        }
      }
      bytes += static_cast<int64_t>(headers_.size());
    }
    return bytes;
  }

  std::span<const TileBlocks> tiles_;
  std::span<const CodedBlock> blocks_;
  std::vector<Hull> hulls_;
  std::vector<PacketWriter> settled_, trial_;
  std::vector<uint8_t> headers_;
  int64_t headerBytes_;  // of the file without bodies, up to the layers that are settled
  int32_t layer_ = 0;
};

// What part of the file ends with a layer.
double layerShare(int32_t layer, int32_t layers) {
  constexpr double kHalvings = 8;
  const double span = std::min<double>(layers - 1, kHalvings);
  return layers == 1 ? 1 : std::exp2(-span * (layers - 1 - layer) / (layers - 1));
}

}  // namespace

LayerSlopes allocateLayers(std::span<const TileBlocks> tiles, const TileCoding& coding,
                           std::span<const CodedBlock> blocks, const LayerTarget& target) {
  using Kind = LayerTarget::Kind;
  const bool everything = target.kind == Kind::everything;
  if (everything && coding.layers == 1) return {kEverything};
  LayerAllocator allocator(tiles, coding, blocks, target.otherBytes);
  // Without a size for the file, the sizes of layers leave out the packet headers of the last one.
  double last = everything ? kEverything : 0;
  if (target.kind == Kind::gain) last = target.gain > 0 ? slopeForGain(allocator.hulls(), target.gain) : kNothing;
  const int64_t all = target.kind == Kind::bytes ? target.bytes : target.otherBytes + allocator.bodyBytes(last);
  LayerSlopes slopes;
  for (int32_t layer = 0; layer + 1 < coding.layers; ++layer) {
    const auto share = static_cast<int64_t>(static_cast<double>(all) * layerShare(layer, coding.layers));
    slopes.push_back(allocator.slopeForFile(share, std::max(last, 0.0)));
    if (layer > 0) slopes.back() = std::min(slopes.back(), slopes[slopes.size() - 2]);
    allocator.settle(slopes.back());
  }
  if (target.kind == Kind::bytes) last = allocator.slopeForFile(target.bytes, 0);
  slopes.push_back(slopes.empty() || everything ? last : std::min(last, slopes.back()));
  return slopes;
}

}  // namespace examples::jpeg2k
