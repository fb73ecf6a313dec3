// How an image is divided: tiles, components of tiles, resolutions, subbands, precincts and code-blocks (T.800 Annex
// B). All of it follows from the headers; nothing here is stored per precinct or block.
#pragma once

#include <zorj/jpeg2k_codeblock.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "jpeg2k/parameters.h"

namespace examples::jpeg2k {

inline int64_t ceilDivide(int64_t value, int64_t by) { return (value + by - 1) / by; }
// value / 2^exponent, rounded up or down; values are not negative.
inline int32_t ceilShift(int64_t value, int32_t exponent) {
  return static_cast<int32_t>((value + (int64_t{1} << exponent) - 1) >> exponent);
}
inline int32_t floorShift(int64_t value, int32_t exponent) { return static_cast<int32_t>(value >> exponent); }

// Every coordinate divided by 2^exponent, rounded up: the rectangle on the canvas of a lower resolution.
Rect reduced(const Rect& rect, int32_t exponent);
Rect intersection(const Rect& a, const Rect& b);

struct Subband {
  SubbandKind kind = SubbandLL;
  Rect rect;           // on the subband's own canvas
  int32_t number = 0;  // as Quantization counts them

  // log2 of the gain of the wavelet, which adds to the samples' precision (T.800 Table E.1).
  int32_t gain() const { return kind == SubbandLL ? 0 : kind == SubbandHH ? 2 : 1; }
};

// The code-blocks of a precinct in one subband, numbered in rows from the top left one.
struct BlockGrid {
  Rect rect;                // the precinct's part of the subband, on the subband's canvas
  int32_t blockWidth = 0;   // as exponents of 2
  int32_t blockHeight = 0;  //
  int32_t wide = 0;         // blocks; 0 x 0 for an empty rectangle
  int32_t high = 0;

  int32_t count() const { return wide * high; }
  Rect block(int32_t number) const;
};

struct Resolution {
  Rect rect;
  int32_t precinctWidth = 0;   // as exponents of 2
  int32_t precinctHeight = 0;  //
  int32_t precinctsWide = 0;   // 0 x 0 for an empty rectangle
  int32_t precinctsHigh = 0;
  int32_t blockWidth = 0;  // of code-blocks no precinct cuts; as exponents of 2
  int32_t blockHeight = 0;
  int32_t bandCount = 0;  // LL alone, or HL, LH and HH
  Subband bands[3];

  int64_t precincts() const { return int64_t{precinctsWide} * precinctsHigh; }
  BlockGrid blocks(int32_t precinct, int32_t band) const;
};

struct TileComponent {
  Rect rect;  // on the component's canvas
  std::vector<Resolution> resolutions;

  int32_t levels() const { return static_cast<int32_t>(resolutions.size()) - 1; }
};

struct Tile {
  int32_t number = 0;
  Rect rect;  // on the reference grid
  std::vector<TileComponent> components;
};

// The part of a subband that a rectangle of the resolution it belongs to is made of.
Rect bandRect(SubbandKind kind, const Rect& resolution);

// Tiles of the image, in rows.
int32_t tilesWide(const ImageSize& size);
int32_t tilesHigh(const ImageSize& size);
inline int64_t tileCount(const ImageSize& size) { return int64_t{tilesWide(size)} * tilesHigh(size); }
// A tile's part of the image, on the reference grid.
Rect tileRect(const ImageSize& size, int32_t number);
// A rectangle of the reference grid on the canvas of a component.
Rect componentRect(const ComponentSize& component, const Rect& rect);
// The pixels of the picture that all components make, as a component: in either direction as close as those of any.
ComponentSize pixelSize(const ImageSize& size);

Tile makeTile(const ImageSize& size, const TileCoding& coding, int32_t number);

// Precincts are numbered through all components and resolutions of a tile: this is the first one of each resolution.
class PrecinctIndex {
 public:
  explicit PrecinctIndex(const Tile& tile);

  int64_t count() const { return count_; }
  int64_t of(int32_t component, int32_t resolution, int32_t precinct) const {
    return first_[static_cast<size_t>(component)][static_cast<size_t>(resolution)] + precinct;
  }

 private:
  std::vector<std::vector<int64_t>> first_;
  int64_t count_ = 0;
};

}  // namespace examples::jpeg2k
