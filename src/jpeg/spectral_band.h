// What one scan of the progressive process codes of a block.
#pragma once

#include <cstdint>

#include "jpeg/zigzag.h"

namespace zorj {

// The point transform of a scan, Al (T.81 G.1.2.1, G.1.2.2).
constexpr bool isPointTransform(int32_t shift) { return shift >= 0 && shift <= 13; }

// Zig-zag positions Ss to Se and the point transform of an AC scan.
struct SpectralBand {
  int32_t first;
  int32_t last;
  int32_t shift;

  constexpr bool isLegal() const { return isPointTransform(shift) && first >= 1 && last >= first && last < kBlockSize; }
  // Bit k for position k.
  constexpr uint64_t mask() const { return ones() << first; }
  // Bit 63 - k for position k.
  constexpr uint64_t reversedMask() const { return ones() << (kBlockSize - 1 - last); }

 private:
  constexpr uint64_t ones() const { return (uint64_t{2} << (last - first)) - 1; }
};

}  // namespace zorj
