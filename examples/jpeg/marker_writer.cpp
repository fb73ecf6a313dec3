#include "jpeg/marker_writer.h"

#include "jpeg/markers.h"

namespace examples::jpeg {

void MarkerWriter::marker(uint8_t code) {
  byte(0xff);
  byte(code);
}

void MarkerWriter::word(int32_t value) {
  byte(value >> 8);
  byte(value & 0xff);
}

void MarkerWriter::segment(uint8_t code, size_t payload) {
  marker(code);
  word(static_cast<int32_t>(payload) + 2);
}

void MarkerWriter::jfif() {
  // Version 1.1, square pixels, no thumbnail.
  constexpr uint8_t payload[] = {'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
  segment(marker::APP0, sizeof payload);
  file_.insert(file_.end(), std::begin(payload), std::end(payload));
}

void MarkerWriter::adobe(uint8_t transform) {
  // Version 100, no flags.
  constexpr uint8_t payload[] = {'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0};
  segment(marker::APP14, sizeof payload + 1);
  file_.insert(file_.end(), std::begin(payload), std::end(payload));
  byte(transform);
}

void MarkerWriter::quantTable(uint8_t destination, std::span<const uint8_t, 64> zigzag) {
  segment(marker::DQT, 65);
  byte(destination);
  file_.insert(file_.end(), zigzag.begin(), zigzag.end());
}

void MarkerWriter::baselineFrame(const Frame& frame) {
  segment(marker::SOF0, 6 + 3 * frame.components.size());
  byte(8);
  word(frame.height);
  word(frame.width);
  byte(static_cast<int32_t>(frame.components.size()));
  for (const Component& component : frame.components) {
    byte(component.id);
    byte(component.horizontal << 4 | component.vertical);
    byte(component.quantTable);
  }
}

void MarkerWriter::huffmanTable(bool ac, uint8_t destination, const HuffmanLists& lists) {
  segment(marker::DHT, 17 + lists.values.size());
  byte((ac ? 0x10 : 0) | destination);
  file_.insert(file_.end(), lists.bits.begin(), lists.bits.end());
  file_.insert(file_.end(), lists.values.begin(), lists.values.end());
}

void MarkerWriter::restartInterval(int32_t mcus) {
  segment(marker::DRI, 2);
  word(mcus);
}

void MarkerWriter::scan(const Frame& frame) {
  segment(marker::SOS, 4 + 2 * frame.components.size());
  byte(static_cast<int32_t>(frame.components.size()));
  for (const Component& component : frame.components) {
    byte(component.id);
    byte(component.quantTable << 4 | component.quantTable);
  }
  byte(0);  // the band of coefficients 0 to 63
  byte(63);
  byte(0);  // no successive approximation
}

}  // namespace examples::jpeg
