// What the headers of a codestream say (T.800 Annex A).
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "jpeg2k/encode_options.h"

namespace examples::jpeg2k {

inline constexpr int32_t kMaxLevels = 32;
inline constexpr int32_t kMaxPrecinctExponent = 15;

// Columns [x0, x1) of rows [y0, y1), on a canvas that all the rectangles of one resolution share.
struct Rect {
  int32_t x0 = 0;
  int32_t y0 = 0;
  int32_t x1 = 0;
  int32_t y1 = 0;

  int32_t width() const { return x1 - x0; }
  int32_t height() const { return y1 - y0; }
  bool empty() const { return x1 <= x0 || y1 <= y0; }
  bool operator==(const Rect&) const = default;
};

struct ComponentSize {
  int32_t precision = 8;  // bits a sample, 1 to 38
  bool isSigned = false;
  int32_t dx = 1;  // columns of the reference grid from sample to sample, 1 to 255
  int32_t dy = 1;
};

// SIZ: the image and its tiles on the reference grid.
struct ImageSize {
  Rect image;
  int32_t tileX = 0;  // where the first tile starts: at or before the image
  int32_t tileY = 0;
  int32_t tileWidth = 0;
  int32_t tileHeight = 0;
  std::vector<ComponentSize> components;
};

// COD and COC: how a component of a tile is transformed and divided.
struct CodingStyle {
  int32_t levels = 5;       // of the wavelet, 0 to 32
  int32_t blockWidth = 6;   // as exponents of 2, 2 to 10; together at most 12
  int32_t blockHeight = 6;  //
  uint32_t blockStyle = 0;  // of block_style
  bool reversible = true;   // the 5/3 wavelet instead of the 9/7
  struct Precinct {
    uint8_t width = kMaxPrecinctExponent;  // as exponents of 2, 0 to 15
    uint8_t height = kMaxPrecinctExponent;
  };
  std::array<Precinct, kMaxLevels + 1> precincts{};  // of each resolution from the lowest
};

enum class QuantizationStyle : uint8_t { none, derived, expounded };

// QCD and QCC. Subbands are numbered from LL, then HL, LH and HH of each resolution. A step is
// 2^(precision + log2 of the subband's gain - exponent) (1 + mantissa / 2048).
struct Quantization {
  struct Step {
    uint8_t exponent = 0;   // 0 to 31
    uint16_t mantissa = 0;  // 0 to 2047
  };
  QuantizationStyle style = QuantizationStyle::none;
  int32_t guardBits = 2;  // 0 to 7
  std::array<Step, 3 * kMaxLevels + 1> steps{};
};

struct ComponentCoding {
  CodingStyle style;
  Quantization quantization;
  int32_t roiShift = 0;  // RGN: by how many planes the region of interest stands above the rest
};

// One entry of POC, or all packets of a tile: the packets of these layers, resolutions and components that no entry
// before has had, in one order.
struct PacketVolume {
  int32_t layerEnd = 0;
  int32_t resolutionBegin = 0;
  int32_t resolutionEnd = kMaxLevels + 1;
  int32_t componentBegin = 0;
  int32_t componentEnd = 0;
  Progression order = Progression::lrcp;
};

// What holds for a tile, or for all tiles where the main header says it.
struct TileCoding {
  Progression order = Progression::lrcp;
  int32_t layers = 1;
  bool colorTransform = false;  // of the first three components
  bool sop = false;             // markers may stand before packets and behind their headers
  bool eph = false;
  std::vector<ComponentCoding> components;
  std::vector<PacketVolume> volumes;  // POC; empty for all packets in `order`
};

}  // namespace examples::jpeg2k
