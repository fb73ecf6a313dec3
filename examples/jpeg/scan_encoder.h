// The entropy-coded data of a scan of blocks.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/huffman.h"
#include "jpeg/scan.h"

namespace examples::jpeg {

// The tables that one component of a scan is coded with. The scan may not need both.
struct EncodeTables {
  const HuffmanEncodeSpec* dc;
  const HuffmanEncodeSpec* ac;
};

class ScanEncoder {
 public:
  // Appends to `file`. One entry of `tables` for each component of the scan.
  ScanEncoder(std::vector<uint8_t>& file, Process process, const Scan& scan, std::vector<EncodeTables> tables,
              int32_t restartInterval);

  // Codes the next `count` MCUs, each of these blocks.
  void encode(std::span<const McuBlock> mcu, int32_t count);

  // Completes the last byte and gives back the room that was not used.
  void finish();

 private:
  void makeRoom(size_t bytes);
  template <class Run>
  StatusCode withCoder(const Run& run);
  void flush();
  void restart();

  std::vector<uint8_t>& file_;
  BlockCoding coding_;
  Scan scan_;
  std::vector<EncodeTables> tables_;
  int32_t length_ = 0;
  int32_t position_;
  int32_t restartInterval_;
  int32_t untilRestart_;
  int32_t restartNumber_ = 0;
  EncodeState state_ = makeEncodeState();
  int16_t lastDc_[kMaxComponents] = {};
};

// Counts the symbols that a ScanEncoder would write.
class ScanCounter {
 public:
  ScanCounter(const Frame& frame, const Scan& scan, int32_t restartInterval);

  void count(std::span<const McuBlock> mcu, int32_t count);
  // Counts what is left to be written at the end of the scan.
  void finish();

  // By the number of the component's tables.
  const SymbolCounts& dc(size_t table) const { return dc_[table]; }
  const SymbolCounts& ac(size_t table) const { return ac_[table]; }

 private:
  template <class Run>
  StatusCode withCoder(const Run& run);
  int32_t* dcOf(size_t component) { return dc_[tables_[component]].data(); }
  int32_t* acOf(size_t component) { return ac_[tables_[component]].data(); }

  BlockCoding coding_;
  Scan scan_;
  std::vector<uint8_t> tables_;  // by component of the scan
  int32_t restartInterval_;
  int32_t untilRestart_;
  EncodeState state_ = makeEncodeState();
  int16_t lastDc_[kMaxComponents] = {};
  SymbolCounts dc_[2] = {}, ac_[2] = {};
};

}  // namespace examples::jpeg
