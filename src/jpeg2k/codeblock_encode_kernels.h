// The coding passes of the encoder (T.800 Annex D.3): the decisions of each pass, and their coding.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "jpeg2k/codeblock_contexts.h"
#include "jpeg2k/mq_encoder.h"
#include "jpeg2k/stripe_map.h"

namespace zorj {

// Twice the context plus the decision; of raw passes the decision alone.
using Decision = uint8_t;

// The passes may write as many decisions more than they tell.
inline constexpr size_t kDecisionSlack = 64;

// By how much the squared error falls when a sample becomes significant or is refined in a plane of weight 1, in units
// of 1/8192. The index has the bits of the magnitude from the one below the plane, or from the plane's own, down to the
// sixth below it.
struct DistortionTable {
  std::array<int16_t, 64> significance;
  std::array<int16_t, 128> refinement;
};

// Before, a sample was taken for 0, or for the middle of the interval left open; now it is for the middle of what is
// left now, or, where no bit is left to come (`exact`), for itself.
constexpr DistortionTable distortionTable(bool exact) {
  DistortionTable table{};
  // In 64ths. All values are whole numbers: 8192 / 64^2 is 2.
  for (int i = 0; i < 64; ++i) {
    const int error = exact ? 0 : 64 + i - 96;
    table.significance[static_cast<size_t>(i)] = static_cast<int16_t>(2 * ((64 + i) * (64 + i) - error * error));
  }
  for (int j = 0; j < 128; ++j) {
    const int error = exact ? 0 : j < 64 ? j - 32 : j - 96;
    table.refinement[static_cast<size_t>(j)] = static_cast<int16_t>(2 * ((j - 64) * (j - 64) - error * error));
  }
  return table;
}
inline constexpr DistortionTable kMidpointDistortions = distortionTable(false);
inline constexpr DistortionTable kExactDistortions = distortionTable(true);

// A block that is being encoded. Its samples stand in the order of the map's cells, those that do not exist as zeros.
struct ModelledBlock {
  StripeMap map;
  const ZeroCodingTable& zeroCoding;
  const uint32_t* samples;  // words with sign and magnitude
  const CellBits* signs;    // a word per cell: where samples are negative
  const CellBits* bits;     // the same for the bits of the plane to code
  int32_t plane;            // its number
  const DistortionTable& distortions;
  uint32_t distortion;  // receives the pass's sum

  size_t cellIndex(int32_t stripe, int32_t index) const {
    return static_cast<size_t>(stripe) * static_cast<size_t>(map.cellsInRow()) + static_cast<size_t>(index);
  }
};

// The elements of index 1 are for vertically causal contexts.
struct CodeBlockEncodeKernels {
  // Copies the block's samples into the order of the map's cells. Returns all of them, or-ed.
  uint32_t (*load)(const uint8_t* source, int32_t step, RoiSize size, const StripeMap& map, uint32_t* samples);
  // Collects the bits of samples: `planes` planes of `cells` words, and behind them the signs.
  void (*splitPlanes)(const uint32_t* samples, size_t cells, int32_t planes, CellBits* bits);

  // Each finds the decisions of one pass and returns their end.
  using Pass = Decision* (*)(ModelledBlock& block, Decision* decisions);
  Pass significance[2];
  Pass refinement[2];
  Pass cleanup[2];
  Pass rawSignificance[2];
  Pass rawRefinement;

  // Looks at the byte behind the last decision, which must be one too.
  void (*encode)(const Decision* decisions, const Decision* end, MqContexts& contexts, MqEncoder& encoder);
};

const CodeBlockEncodeKernels& codeBlockEncodeKernels();

}  // namespace zorj
