// libjpeg-turbo, the independent encoder and decoder that zorjpeg is held against.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/image.h"
#include "jpeg/codec.h"

namespace interop {

using examples::Image;

struct Factors {
  int horizontal;
  int vertical;
};

struct PeerSettings {
  int quality = 75;
  std::vector<Factors> factors = {{1, 1}, {1, 1}, {1, 1}};
  int restartInterval = 0;
  bool optimise = false;
  bool wideQuantTables = false;         // step sizes above 255 stay
  bool rgbCoded = false;                // no colour conversion, Adobe marker
  std::vector<std::vector<int>> scans;  // the components of each; empty for one scan of all
};

std::vector<uint8_t> peerEncode(const Image& image, const PeerSettings& settings);

// These throw std::runtime_error with the peer's message, for its warnings too.
Image peerDecode(std::span<const uint8_t> jpeg);  // chroma replicated, accurate integer inverse DCT
std::vector<examples::jpeg::ComponentSamples> peerPlanes(std::span<const uint8_t> jpeg);

// The quantised coefficients and step sizes of a component, in natural order, its blocks in raster order.
struct PeerComponent {
  int32_t blocksWide = 0;
  int32_t blocksHigh = 0;
  std::vector<uint16_t> stepSizes;
  std::vector<int16_t> coefficients;
};
std::vector<PeerComponent> peerCoefficients(std::span<const uint8_t> jpeg);

}  // namespace interop
