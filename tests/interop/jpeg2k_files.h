// Files by OpenJPEG with everything its encoder can be asked for.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <stdexcept>
#include <string>

#include "interop/openjpeg.h"
#include "support/random.h"

namespace interop {

using openjpeg::PeerImage;
using zorj::test::Random;

inline constexpr int kLargestStyle = 63;

// Waves and edges with a little noise, in the whole range.
inline void paint(PeerImage& image, Random& random) {
  for (size_t c = 0; c < image.components.size(); ++c) {
    PeerImage::Component& component = image.components[c];
    const auto count = [](uint32_t begin, uint32_t end, uint32_t by) {
      return (end + by - 1) / by - (begin + by - 1) / by;
    };
    const uint32_t width = count(image.x0, image.x1, component.dx), height = count(image.y0, image.y1, component.dy);
    const int32_t largest = (1 << component.precision) - 1;
    const int32_t lowest = component.isSigned ? -(1 << (component.precision - 1)) : 0;
    component.samples.clear();
    for (uint32_t y = 0; y < height; ++y) {
      for (uint32_t x = 0; x < width; ++x) {
        const double wave =
            0.5 + 0.3 * std::sin(0.21 * x + 0.13 * y * double(c + 1)) + ((x / 9 + y / 7) % 4 == 0 ? 0.3 : 0);
        const double value = wave * largest + static_cast<double>(random.between(-largest / 16 - 1, largest / 16 + 1));
        component.samples.push_back(lowest + static_cast<int32_t>(std::clamp(value, 0.0, double(largest))));
      }
    }
  }
}

inline PeerImage painting(uint32_t width, uint32_t height, size_t components, uint32_t precision, Random& random) {
  PeerImage image = {0, 0, width, height, {}};
  image.components.resize(components);
  for (PeerImage::Component& component : image.components) component.precision = precision;
  paint(image, random);
  return image;
}

// Sizes, offsets, tiles, precincts, blocks, progressions, layers and everything else at random.
struct RandomFile {
  opj_cparameters_t parameters = openjpeg::defaults();
  PeerImage image;
  std::vector<uint8_t> bytes;
  bool isLossless = false;

  explicit RandomFile(Random& random) {
    const auto oneOf = [&](int32_t low, int32_t high) { return static_cast<int32_t>(random.between(low, high)); };
    const auto length = [&](int32_t low, int32_t high) { return static_cast<uint32_t>(oneOf(low, high)); };
    const bool isSigned = random.oneIn(4), sampled = random.oneIn(3), tiled = random.oneIn(2);
    // The peer's encoder mistakes the places of sub-sampled tiles that do not begin with a sample.
    if (!sampled || !tiled) {
      image.x0 = random.oneIn(2) ? length(0, 40) : 0;
      image.y0 = random.oneIn(2) ? length(0, 40) : 0;
    }
    image.x1 = image.x0 + length(1, 130);
    image.y1 = image.y0 + length(1, 130);
    image.components.resize(length(1, 4));
    parameters.prog_order = static_cast<OPJ_PROG_ORDER>(oneOf(0, 4));
    // In orders by position, the peer forgets packets where distances are no multiples of each other.
    const auto distance = [&] { return parameters.prog_order < OPJ_RPCL ? length(1, 4) : 1u << length(0, 2); };
    const uint32_t precision = length(1, 16);
    for (PeerImage::Component& component : image.components) {
      component.precision = precision;
      component.isSigned = isSigned;
      if (sampled && component.samples.empty()) {
        component.dx = std::min(distance(), image.x1 - image.x0);
        component.dy = std::min(distance(), image.y1 - image.y0);
      }
    }
    paint(image, random);
    parameters.image_offset_x0 = static_cast<int>(image.x0);
    parameters.image_offset_y0 = static_cast<int>(image.y0);
    parameters.tcp_mct = image.components.size() >= 3 && !sampled && random.oneIn(2) ? 1 : 0;
    parameters.irreversible = random.oneIn(2);
    parameters.cblockw_init = 1 << oneOf(2, 6);
    parameters.cblockh_init = 1 << oneOf(2, 6);
    parameters.mode = random.oneIn(2) ? oneOf(0, kLargestStyle) : 0;
    if (tiled) addTiles(random, sampled ? 12 : 1);
    const uint32_t tile = parameters.tile_size_on
                              ? static_cast<uint32_t>(std::min(parameters.cp_tdx, parameters.cp_tdy))
                              : std::min(image.x1 - image.x0, image.y1 - image.y0);
    // The peer has as many resolutions as keep tiles from vanishing; its 9/7 wavelet takes no line of a single sample.
    const int32_t allowed = static_cast<int32_t>(std::bit_width(parameters.irreversible ? shortestSide() / 2 : tile));
    if (allowed == 0) parameters.irreversible = 0;
    parameters.numresolution = oneOf(1, std::clamp(allowed, 1, 7));
    if (random.oneIn(2)) addPrecincts(random);
    if (random.oneIn(2)) parameters.csty |= oneOf(0, 3) << 1;  // SOP, EPH
    if (random.oneIn(4)) {
      parameters.roi_compno = oneOf(0, static_cast<int32_t>(image.components.size()) - 1);
      parameters.roi_shift = oneOf(1, 6);
      parameters.mode &= ~1;  // for bypass, the peer's decoder does not count the planes of the region
    }
    parameters.tcp_numlayers = random.oneIn(2) ? oneOf(1, 5) : 1;
    isLossless = random.oneIn(2);
    for (int layer = parameters.tcp_numlayers, rate = isLossless ? 1 : 3; layer-- > 0; rate *= 2) {
      parameters.tcp_rates[layer] = rate == 1 ? 0 : static_cast<float>(rate);
    }
    // The peer cuts some codewords a little too short for their last pass, which its symbol then tells.
    if (!isLossless && (parameters.mode & 4) == 0) parameters.mode &= ~32;
    // The peer loses something in lines of a single sample at odd positions.
    isLossless = isLossless && !parameters.irreversible && shortestSide() >> parameters.numresolution != 0;
    const char* const lengths[] = {"PLT=YES", "TLM=YES", nullptr};
    try {
      bytes = openjpeg::encode(image, parameters, random.oneIn(2), 1, random.oneIn(3) ? lengths : nullptr);
    } catch (const std::runtime_error&) {  // the peer finds no room for some small images
    }
  }

  int reductions() const { return parameters.numresolution; }

 private:
  // Of a component of a tile.
  uint32_t shortestSide() const {
    uint32_t shortest = UINT32_MAX;
    const auto add = [&](uint32_t begin, uint32_t end, int tileBegin, int tileSize, uint32_t distance) {
      const uint32_t first = parameters.tile_size_on ? static_cast<uint32_t>(tileBegin) : begin;
      const uint32_t size = parameters.tile_size_on ? static_cast<uint32_t>(tileSize) : end - begin;
      for (uint32_t at = first; at < end; at += size) {
        const uint32_t low = std::max(at, begin), high = std::min(at + size, end);
        shortest = std::min(shortest, (high + distance - 1) / distance - (low + distance - 1) / distance);
      }
    };
    for (const PeerImage::Component& component : image.components) {
      add(image.x0, image.x1, parameters.cp_tx0, parameters.cp_tdx, component.dx);
      add(image.y0, image.y1, parameters.cp_ty0, parameters.cp_tdy, component.dy);
    }
    return shortest;
  }
  void addTiles(Random& random, int multiple) {
    parameters.tile_size_on = OPJ_TRUE;
    parameters.cp_tx0 = static_cast<int>(random.between(0, image.x0));
    parameters.cp_ty0 = static_cast<int>(random.between(0, image.y0));
    // The first tile must hold a part of the image.
    parameters.cp_tdx = static_cast<int>(image.x0) - parameters.cp_tx0 +
                        multiple * static_cast<int>(random.between(12 / multiple, 90 / multiple));
    parameters.cp_tdy = static_cast<int>(image.y0) - parameters.cp_ty0 +
                        multiple * static_cast<int>(random.between(12 / multiple, 90 / multiple));
  }
  void addPrecincts(Random& random) {
    parameters.csty |= 1;
    parameters.res_spec = static_cast<int>(random.between(1, parameters.numresolution));
    for (int i = 0; i < parameters.res_spec; ++i) {
      parameters.prcw_init[i] = 1 << random.between(3, 7);
      parameters.prch_init[i] = 1 << random.between(3, 7);
    }
  }
};

inline std::string describe(const RandomFile& file) {
  const opj_cparameters_t& p = file.parameters;
  std::string text =
      std::to_string(file.image.x0) + "," + std::to_string(file.image.y0) + " to " + std::to_string(file.image.x1) +
      "," + std::to_string(file.image.y1) + ", blocks " + std::to_string(p.cblockw_init) + "x" +
      std::to_string(p.cblockh_init) + ", mode " + std::to_string(p.mode) + ", order " + std::to_string(p.prog_order) +
      ", tiles " + std::to_string(p.cp_tx0) + "," + std::to_string(p.cp_ty0) + " " + std::to_string(p.cp_tdx) + "x" +
      std::to_string(p.cp_tdy) + ", layers " + std::to_string(p.tcp_numlayers) + ", levels " +
      std::to_string(p.numresolution - 1) + ", csty " + std::to_string(p.csty) + ", 9/7 " +
      std::to_string(p.irreversible) + ", roi " + std::to_string(p.roi_shift) + ", mct " + std::to_string(p.tcp_mct);
  for (const auto& c : file.image.components)
    text += ", " + std::to_string(c.precision) + " bits 1/" + std::to_string(c.dx) + "x1/" + std::to_string(c.dy);
  return text;
}

}  // namespace interop
