// The entropy-coded data of a sequential scan.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/huffman.h"

namespace examples::jpeg {

// Where each restart segment of a scan's data starts; empty unless they are as many as there should be, and their
// markers all in order. Such segments can be decoded independently, however damaged their inside is.
std::vector<size_t> restartSegments(std::span<const uint8_t> file, size_t position, int64_t segments);

class ScanDecoder {
 public:
  // The scan's data, or its restart segment of this number, starts at this byte of the file. One entry of `tables` for
  // each component of the scan.
  ScanDecoder(std::span<const uint8_t> file, size_t position, std::vector<DecodeTables> tables, int32_t restartInterval,
              int64_t segment = 0);

  // Decodes the next `count` MCUs, each of these blocks. What is lost to damage becomes zero, up to the next restart
  // marker that fits.
  void decode(std::span<const McuBlock> mcu, int32_t count);

  int64_t lostMcus() const { return lostMcus_; }

  // The first byte after the data, where a marker begins if the data is whole.
  size_t end() const;

 private:
  bool decodeMcu(std::span<const McuBlock> mcu, int32_t index);
  void restart();
  bool findMarker();

  std::span<const uint8_t> file_;
  std::vector<DecodeTables> tables_;
  int32_t length_;
  int32_t position_;
  int32_t marker_ = 0;
  int32_t restartInterval_;
  int32_t untilRestart_;
  int32_t restartNumber_;  // of the marker that comes next
  bool lost_ = false;      // the rest up to the next restart marker cannot be decoded
  int64_t lostMcus_ = 0;
  DecodeState state_ = makeDecodeState();
  int16_t lastDc_[kMaxComponents] = {};
};

}  // namespace examples::jpeg
