// The coefficients of a file that belong to its image, in order.
#pragma once

#include "jpeg/coefficients.h"

namespace zorj::fuzz {

inline std::vector<int16_t> coefficientsOf(examples::jpeg::CoefficientImage& image) {
  std::vector<int16_t> all;
  const examples::jpeg::Frame& frame = image.frame;
  for (size_t c = 0; c < frame.components.size(); ++c) {
    const examples::jpeg::Blocks blocks = image.mcus.blocks(c, 0, 0);
    for (int32_t y = 0; y < frame.blocksHigh(frame.components[c]); ++y) {
      for (int32_t x = 0; x < frame.blocksWide(frame.components[c]); ++x) {
        const int16_t* const values = blocks.at(x, y).values;
        all.insert(all.end(), values, values + 64);
      }
    }
  }
  return all;
}

}  // namespace zorj::fuzz
