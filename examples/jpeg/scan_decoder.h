// The entropy-coded data of a scan of blocks.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/entropy_segments.h"
#include "jpeg/huffman.h"
#include "jpeg/scan.h"

namespace examples::jpeg {

class ScanDecoder {
 public:
  // The scan's data, or its restart segment of this number, starts at this byte of the file. One entry of `tables` for
  // each component of the scan.
  ScanDecoder(std::span<const uint8_t> file, size_t position, Process process, const Scan& scan,
              std::vector<DecodeTables> tables, int32_t restartInterval, int64_t segment = 0);

  // Decodes the next `count` MCUs, each of these blocks. What is lost to damage, up to the next restart marker that
  // fits, becomes zero in a sequential scan and stays as it was in a progressive one.
  void decode(std::span<const McuBlock> mcu, int32_t count);

  int64_t lostMcus() const { return lostMcus_; }

  // The first byte after the data, where a marker begins if the data is whole.
  size_t end() const { return data_.end(); }

 private:
  // decodeBlock(block, component) decodes one.
  template <class DecodeBlock>
  void decodeMcus(std::span<const McuBlock> mcu, int32_t count, const DecodeBlock& decodeBlock);

  EntropySegments data_;
  BlockCoding coding_;
  Scan scan_;
  std::vector<DecodeTables> tables_;
  bool begun_ = false;
  int64_t lostMcus_ = 0;
  int16_t lastDc_[kMaxComponents] = {};
};

}  // namespace examples::jpeg
