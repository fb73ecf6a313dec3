// Decodes one tile.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "jpeg2k/codestream_reader.h"
#include "jpeg2k/geometry.h"

namespace examples::jpeg2k {

// Takes decoded rows, from several threads at once.
class SampleSink {
 public:
  virtual ~SampleSink() = default;
  // Row y from column x, on the canvas of the components, of one or more components from `first` on. Samples are raised
  // to start at 0.
  virtual void take(int32_t first, std::span<const uint16_t* const> rows, int32_t x, int32_t y, int32_t width) = 0;
};

// What is wanted of the image.
struct Selection {
  int32_t reduce = 0;
  int32_t layers = 0;
  std::vector<Rect> components;  // the wanted part of each, on its canvas reduced

  // The wanted part of a component of a tile.
  Rect inTile(const ImageSize& size, int32_t tile, size_t component) const;
  // Whether any of a tile is wanted.
  bool holds(const ImageSize& size, int32_t tile) const;
};

struct TileReport {
  std::string problem;  // why packets are missing; empty if none are
  int64_t damagedBlocks = 0;
};

// Gives the sink the wanted part of a tile of which nothing is there, in the middle of the samples' range.
void storeGreyTile(const ImageSize& size, int32_t number, const Selection& selection, SampleSink& sink);

// Throws Error if nothing of the tile can be decoded.
TileReport decodeTile(CodestreamReader& codestream, int32_t number, const TileData& data, const Selection& selection,
                      int32_t threads, SampleSink& sink);

}  // namespace examples::jpeg2k
