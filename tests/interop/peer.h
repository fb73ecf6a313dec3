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
namespace jpeg = examples::jpeg;

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
  bool convertColors = true;            // else RGB or CMYK as it is
  bool adobeMarker = true;              // where CMYK or RGB calls for it
  std::vector<std::vector<int>> scans;  // the components of each; empty for one scan of all
  std::vector<jpeg::Scan> script;       // progressive scans
};

// CMYK images have 255 for full ink, here as in zorjpeg; in files with Adobe's marker they are inverted.
std::vector<uint8_t> peerEncode(const Image& image, const PeerSettings& settings);

// These throw std::runtime_error with the peer's message, for its warnings too. The inverse DCT is the accurate integer
// one, the triangle up-sampling the peer's "fancy" one.
Image peerDecode(std::span<const uint8_t> file, jpeg::Upsampling upsampling);
std::vector<jpeg::ComponentSamples> peerPlanes(std::span<const uint8_t> file);

// The coefficients of a file, coded anew with the tables, scans and restart interval of the settings.
std::vector<uint8_t> peerTranscode(std::span<const uint8_t> file, const PeerSettings& settings);

// The quantised coefficients and step sizes of a component, in natural order, its blocks in raster order.
struct PeerComponent {
  int32_t blocksWide = 0;
  int32_t blocksHigh = 0;
  std::vector<uint16_t> stepSizes;
  std::vector<int16_t> coefficients;
};
std::vector<PeerComponent> peerCoefficients(std::span<const uint8_t> file);

}  // namespace interop
