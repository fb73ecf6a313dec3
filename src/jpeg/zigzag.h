// The order in which the coefficients of a block are coded (T.81 Figure A.6).
#pragma once

#include <array>
#include <cstdint>

namespace zorj {

inline constexpr int kBlockSize = 64;
inline constexpr uint8_t kOutsideBlock = 0xFF;

// The row-major index of each zig-zag position. A run of zeros may lead up to 15 positions past the end of the block:
// the first eight of these lead to the last coefficient, the others nowhere.
inline constexpr std::array<uint8_t, kBlockSize + 16> kNaturalOrder = [] {
  std::array<uint8_t, kBlockSize + 16> order{};
  int row = 0, column = 0;
  for (int k = 0; k < kBlockSize; ++k) {
    order[static_cast<size_t>(k)] = static_cast<uint8_t>(8 * row + column);
    const bool upwards = (row + column) % 2 == 0;
    int& ahead = upwards ? column : row;  // grows along the diagonal
    int& behind = upwards ? row : column;
    if (ahead == 7) {
      ++behind;
    } else {
      ++ahead;
      if (behind > 0) --behind;
    }
  }
  for (size_t k = kBlockSize; k < order.size(); ++k) order[k] = k < kBlockSize + 8 ? kBlockSize - 1 : kOutsideBlock;
  return order;
}();

}  // namespace zorj
