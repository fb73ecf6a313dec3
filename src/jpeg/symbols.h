// Where the encoders of the progressive process and the statistics put symbols.
#pragma once

#include "jpeg/bit_writer.h"

namespace zorj {

// A symbol has the extra bits of its category behind it, up to 16, or the correction bits of coefficients that it
// passes: up to 63 and a sign bit. Correction bits also come alone, up to 64.

// To the destination, step by step.
class SymbolWriter {
 public:
  SymbolWriter(Destination dst, const HuffmanEncodeSpec& spec, HuffmanEncodeState& state)
      : writer_(dst, state), codes_(spec.codes) {}

  StatusCode putSymbol(uint32_t symbol, uint32_t bits = 0, uint32_t count = 0) {
    if (const StatusCode status = writer_.putCode(codes_[symbol])) return status;
    return count == 0 ? StatusOk : writer_.put(bits, count);
  }
  StatusCode putSymbolAndCorrections(uint32_t symbol, uint64_t bits, uint32_t count) {
    if (const StatusCode status = writer_.putCode(codes_[symbol])) return status;
    return putCorrections(bits, count);
  }
  StatusCode putCorrections(uint64_t bits, uint32_t count) {
    while (count > 0) {
      if (const StatusCode status = writer_.put(static_cast<uint32_t>(bits >> --count & 1), 1)) return status;
    }
    return StatusOk;
  }

 private:
  BitWriter writer_;
  const TableEntry* codes_;
};

// Into statistics.
class SymbolCounter {
 public:
  explicit SymbolCounter(uint32_t* counters) : counters_(counters) {}

  StatusCode putSymbol(uint32_t symbol, uint32_t = 0, uint32_t = 0) {
    ++counters_[symbol];
    return StatusOk;
  }
  StatusCode putSymbolAndCorrections(uint32_t symbol, uint64_t, uint32_t) { return putSymbol(symbol); }
  StatusCode putCorrections(uint64_t, uint32_t) { return StatusOk; }

 private:
  uint32_t* counters_;
};

}  // namespace zorj
