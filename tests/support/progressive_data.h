// Scans and blocks for the tests of the progressive Huffman coders.
#pragma once

#include <string>

#include "reference/progressive.h"
#include "support/huffman_data.h"

namespace zorj::test {

enum class ScanKind { kDcFirst, kDcRefine, kAcFirst, kAcRefine };

inline std::string scanName(ScanKind kind, int round) {
  constexpr const char* kNames[] = {"DC first", "DC refinement", "AC first", "AC refinement"};
  return std::string(kNames[static_cast<int>(kind)]) + ", round " + std::to_string(round);
}

// Bands as scripts have them, and others.
inline reference::Band anyBand(Random& random) {
  const int shift = static_cast<int>(random.oneIn(4) ? random.between(0, 13) : random.between(0, 2));
  const int first = static_cast<int>(random.oneIn(2) ? 1 : random.between(1, 63));
  const int last = static_cast<int>(random.oneIn(2) ? 63 : random.between(first, 63));
  return {first, last, shift};
}

// A block of few symbols, as most are in a scan of a photograph.
inline Block sparseBlock(Random& random, reference::Band band) {
  Block block{};
  const int64_t coefficients = random.between(0, 4);
  for (int64_t i = 0; i < coefficients; ++i) {
    const int k = static_cast<int>(random.between(band.first, band.last));
    const int value = static_cast<int>(random.between(-5, 5)) * (1 << band.shift);
    block[static_cast<size_t>(reference::naturalIndex(k))] = static_cast<int16_t>(value);
  }
  block[0] = static_cast<int16_t>(random.between(-1024, 1023));
  return block;
}

inline std::vector<Block> anyScanBlocks(Random& random, size_t count, reference::Band band) {
  std::vector<Block> blocks(count);
  const int64_t kind = random.between(0, 3);
  for (Block& block : blocks) {
    if (kind == 0) block = photographicBlock(random, 12);
    if (kind == 1) block = anyBlock(random);
    if (kind >= 2 && !random.oneIn(4)) block = sparseBlock(random, band);
  }
  return blocks;
}

// A block of a scan, by the models.
inline StatusCode putModelScan(ScanKind kind, reference::HuffmanWriter& writer,
                               const reference::HuffmanEncoder& encoder, const int16_t* block, reference::Band band,
                               int16_t& lastDc, reference::EobRun& run) {
  const reference::SymbolSink sink(writer, encoder);
  switch (kind) {
    case ScanKind::kDcFirst:
      return reference::codeDcFirst(sink, block, band.shift, lastDc);
    case ScanKind::kDcRefine:
      return writer.put(block[0] >> band.shift & 1, 1);
    case ScanKind::kAcFirst:
      return reference::codeAcFirst(sink, block, band, run);
    default:
      return reference::codeAcRefine(sink, block, band, run);
  }
}

}  // namespace zorj::test
