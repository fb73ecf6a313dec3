// Writes the marker segments of a file (T.81 Annex B).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/frame.h"
#include "jpeg/tables.h"

namespace examples::jpeg {

class MarkerWriter {
 public:
  // Appends to `file`.
  explicit MarkerWriter(std::vector<uint8_t>& file) : file_(file) {}

  void marker(uint8_t code);
  void jfif();
  void quantTable(uint8_t destination, std::span<const uint8_t, 64> zigzag);
  void baselineFrame(const Frame& frame);
  void huffmanTable(bool ac, uint8_t destination, const HuffmanLists& lists);
  void restartInterval(int32_t mcus);
  // The sequential scan of all components: the first uses the tables 0, the others the tables 1.
  void scan(const Frame& frame);

 private:
  void segment(uint8_t code, size_t payload);
  void byte(int32_t value) { file_.push_back(static_cast<uint8_t>(value)); }
  void word(int32_t value);

  std::vector<uint8_t>& file_;
};

}  // namespace examples::jpeg
