// The entropy-coded data of a sequential scan.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/huffman.h"

namespace examples::jpeg {

// The tables that one component of a scan is coded with.
struct EncodeTables {
  const HuffmanEncodeSpec* dc;
  const HuffmanEncodeSpec* ac;
};

class ScanEncoder {
 public:
  // Appends to `file`. One entry of `tables` for each component of the scan.
  ScanEncoder(std::vector<uint8_t>& file, std::vector<EncodeTables> tables, int32_t restartInterval);

  // Codes the next `count` MCUs, each of these blocks.
  void encode(std::span<const McuBlock> mcu, int32_t count);

  // Completes the last byte and gives back the room that was not used.
  void finish();

 private:
  void makeRoom(size_t bytes);
  void flush();
  void restart();

  std::vector<uint8_t>& file_;
  std::vector<EncodeTables> tables_;
  int32_t position_;
  int32_t restartInterval_;
  int32_t untilRestart_;
  int32_t restartNumber_ = 0;
  EncodeState state_ = makeEncodeState();
  int16_t lastDc_[kMaxComponents] = {};
};

}  // namespace examples::jpeg
