// The contexts of code-block decisions (T.800 Annex D.3), found by one load from a table each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "jpeg2k/mq_states.h"

namespace zorj {

// Indices of the contexts.
inline constexpr uint8_t kUniformContext = 0;
inline constexpr uint8_t kRunLengthContext = 1;
inline constexpr uint8_t kFirstZeroCodingContext = 2;
inline constexpr uint8_t kFirstSignContext = 11;
inline constexpr uint8_t kFirstRefinementContext = 16;
inline constexpr size_t kContextCount = 19;

using MqContexts = std::array<MqContext, kContextCount>;

// T.800 Table D.7.
inline constexpr MqContexts kInitialContexts = [] {
  MqContexts contexts{};
  contexts.fill(MqContext(0, 0));
  contexts[kUniformContext] = MqContext(46, 0);
  contexts[kRunLengthContext] = MqContext(3, 0);
  contexts[kFirstZeroCodingContext] = MqContext(4, 0);
  return contexts;
}();

// Zero coding: by the significance of three by three samples, in raster order from bit 0; the sample's own bit, 4, is
// that of an insignificant one.
using ZeroCodingTable = std::array<uint8_t, 512>;

enum class ZeroCoding { kVerticalHighPass, kHorizontalHighPass, kDiagonal };

// T.800 Table D.1.
constexpr uint32_t zeroCodingLabel(ZeroCoding kind, uint32_t horizontal, uint32_t vertical, uint32_t diagonal) {
  if (kind == ZeroCoding::kDiagonal) {
    const uint32_t direct = horizontal + vertical;
    if (diagonal >= 3) return 8;
    if (diagonal == 2) return direct >= 1 ? 7 : 6;
    if (diagonal == 1) return direct >= 2 ? 5 : 3 + direct;
    return direct >= 2 ? 2 : direct;
  }
  const bool swapped = kind == ZeroCoding::kHorizontalHighPass;
  const uint32_t along = swapped ? vertical : horizontal, across = swapped ? horizontal : vertical;
  if (along == 2) return 8;
  if (along == 1) return across >= 1 ? 7 : diagonal >= 1 ? 6 : 5;
  if (across >= 1) return 2 + across;
  return diagonal >= 2 ? 2 : diagonal;
}

constexpr ZeroCodingTable zeroCodingTable(ZeroCoding kind) {
  ZeroCodingTable table{};
  for (uint32_t window = 0; window < table.size(); ++window) {
    const auto bit = [window](uint32_t i) { return window >> i & 1; };
    table[window] =
        static_cast<uint8_t>(kFirstZeroCodingContext + zeroCodingLabel(kind, bit(3) + bit(5), bit(1) + bit(7),
                                                                       bit(0) + bit(2) + bit(6) + bit(8)));
  }
  return table;
}

inline constexpr ZeroCodingTable kZeroCodingTables[] = {zeroCodingTable(ZeroCoding::kVerticalHighPass),
                                                        zeroCodingTable(ZeroCoding::kHorizontalHighPass),
                                                        zeroCodingTable(ZeroCoding::kDiagonal)};

// Any number that is no sub-band is taken for LL.
constexpr const ZeroCodingTable& zeroCodingTableOf(int32_t subband) {
  constexpr int32_t kHl = 2, kHh = 3;
  return kZeroCodingTables[subband == kHl ? 1 : subband == kHh ? 2 : 0];
}

// Sign coding: the context, and in bit 7 what the decision is to be combined with to give the sign. The index has
// the neighbours' significance (up in bit 1, left in 3, right in 5, down in 7) and, where significant, their signs (up
// in bit 0, down in 2, left in 4, right in 8). T.800 Tables D.2 and D.3.
inline constexpr auto kSignCodingTable = [] {
  std::array<uint8_t, 512> table{};
  for (uint32_t index = 0; index < table.size(); ++index) {
    const auto contribution = [index](uint32_t significance, uint32_t sign) {
      return static_cast<int>(index >> significance & 1) * (1 - 2 * static_cast<int>(index >> sign & 1));
    };
    const auto signum = [](int sum) { return (sum > 0) - (sum < 0); };
    int horizontal = signum(contribution(3, 4) + contribution(5, 8));
    int vertical = signum(contribution(1, 0) + contribution(7, 2));
    const bool inverted = horizontal < 0 || (horizontal == 0 && vertical < 0);
    if (inverted) {
      horizontal = -horizontal;
      vertical = -vertical;
    }
    const int label = horizontal == 0 ? vertical : 3 + vertical;
    table[index] = static_cast<uint8_t>((kFirstSignContext + label) | inverted << 7);
  }
  return table;
}();

}  // namespace zorj
