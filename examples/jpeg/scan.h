// What a scan codes (T.81 B.2.3, G.1.1.1): some components, a band of their coefficients, and how much of these.
#pragma once

#include <cstdint>
#include <vector>

#include "jpeg/frame.h"

namespace examples::jpeg {

struct Scan {
  std::vector<size_t> components;  // places in the frame
  int32_t first = 0;               // zig-zag positions of the band; the predictor in a lossless scan
  int32_t last = 63;
  int32_t highBit = 0;  // the low bit of the scan before, or 0 if this is the first one of these coefficients
  int32_t lowBit = 0;   // coefficients are coded down to this bit; the point transform in a lossless scan
};

enum class BlockCoding { sequential, dcFirst, dcRefine, acFirst, acRefine };

inline BlockCoding blockCoding(Process process, const Scan& scan) {
  if (process == Process::sequential) return BlockCoding::sequential;
  if (scan.first == 0) return scan.highBit == 0 ? BlockCoding::dcFirst : BlockCoding::dcRefine;
  return scan.highBit == 0 ? BlockCoding::acFirst : BlockCoding::acRefine;
}

inline bool usesDcTable(BlockCoding coding) {
  return coding == BlockCoding::sequential || coding == BlockCoding::dcFirst;
}
inline bool usesAcTable(BlockCoding coding) {
  return coding != BlockCoding::dcFirst && coding != BlockCoding::dcRefine;
}

// The number of the Huffman tables that the encoder gives a component: one for luminance, another for chrominance.
inline uint8_t huffmanTableOf(const Component& component) { return component.quantTable == 0 ? 0 : 1; }

// Watches over the scans of a progressive image: which bits of which coefficients are known.
class Progress {
 public:
  explicit Progress(size_t components) : lowBits_(components * 64, kUnknown) {}

  // Takes in a scan. False if it does not follow those before: some are missing or out of order. Throws Error if it
  // codes what no scan can.
  bool add(const Scan& scan);

  // Whether every bit of every coefficient is known.
  bool complete() const;

 private:
  static constexpr int8_t kUnknown = -1;

  std::vector<int8_t> lowBits_;  // by component and zig-zag position
};

}  // namespace examples::jpeg
