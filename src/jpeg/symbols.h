// Where the encoders of the progressive process and the statistics put symbols.
#pragma once

#include "jpeg/bit_writer.h"

namespace zorj {

// Symbols may have the extra bits of their category behind them, or up to 64 single bits, which also come alone.

// To the destination, step by step.
class SymbolWriter {
 public:
  SymbolWriter(Destination dst, const HuffmanEncodeSpec& spec, HuffmanEncodeState& state)
      : writer_(dst, state), codes_(spec.codes) {}

  StatusCode putSymbol(uint32_t symbol, uint32_t bits = 0, uint32_t count = 0) {
    if (const StatusCode status = writer_.putCode(codes_[symbol])) return status;
    return count == 0 ? StatusOk : writer_.put(bits, count);
  }
  StatusCode putSymbolAndBits(uint32_t symbol, uint64_t bits, uint32_t count) {
    if (const StatusCode status = writer_.putCode(codes_[symbol])) return status;
    return putBits(bits, count);
  }
  StatusCode putBits(uint64_t bits, uint32_t count) {
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
  StatusCode putSymbolAndBits(uint32_t symbol, uint64_t, uint32_t) { return putSymbol(symbol); }
  StatusCode putBits(uint64_t, uint32_t) { return StatusOk; }

 private:
  uint32_t* counters_;
};

}  // namespace zorj
