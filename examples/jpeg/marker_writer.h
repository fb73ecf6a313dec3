// Writes the marker segments of a file (T.81 Annex B).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/frame.h"
#include "jpeg/scan.h"
#include "jpeg/tables.h"

namespace examples::jpeg {

// What Adobe's marker says of the components.
constexpr uint8_t kAdobeUnconverted = 0;  // RGB or CMYK
constexpr uint8_t kAdobeYcck = 2;

class MarkerWriter {
 public:
  // Appends to `file`.
  explicit MarkerWriter(std::vector<uint8_t>& file) : file_(file) {}

  void marker(uint8_t code);
  void jfif();
  void adobe(uint8_t transform);
  // Step sizes in natural order.
  void quantTable(uint8_t destination, const QuantTable& steps);
  void frame(const Frame& frame);
  void huffmanTable(bool ac, uint8_t destination, const HuffmanLists& lists);
  void restartInterval(int32_t mcus);
  void scan(const Frame& frame, const Scan& scan);

 private:
  void segment(uint8_t code, size_t payload);
  void byte(int32_t value) { file_.push_back(static_cast<uint8_t>(value)); }
  void word(int32_t value);

  std::vector<uint8_t>& file_;
};

}  // namespace examples::jpeg
