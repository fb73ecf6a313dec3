#include "jpeg/marker_writer.h"

#include <algorithm>

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

void MarkerWriter::quantTable(uint8_t destination, const QuantTable& steps) {
  const bool wide = std::any_of(steps.begin(), steps.end(), [](uint16_t step) { return step > 255; });
  segment(marker::DQT, 1 + steps.size() * (wide ? 2 : 1));
  byte((wide ? 0x10 : 0) | destination);
  for (const uint8_t natural : kNaturalOrder) {
    if (wide) byte(steps[natural] >> 8);
    byte(steps[natural] & 0xff);
  }
}

// Files of 8 bits with the tables that this encoder writes are baseline files.
void MarkerWriter::frame(const Frame& frame) {
  const uint8_t code = frame.process == Process::progressive ? marker::SOF2
                       : frame.process == Process::lossless  ? marker::SOF3
                       : frame.precision == 8                ? marker::SOF0
                                                             : marker::SOF1;
  segment(code, 6 + 3 * frame.components.size());
  byte(frame.precision);
  word(frame.height);
  word(frame.width);
  byte(static_cast<int32_t>(frame.components.size()));
  for (const Component& component : frame.components) {
    byte(component.id);
    byte(component.horizontal << 4 | component.vertical);
    byte(frame.process == Process::lossless ? 0 : component.quantTable);
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

void MarkerWriter::scan(const Frame& frame, const Scan& scan) {
  segment(marker::SOS, 4 + 2 * scan.components.size());
  byte(static_cast<int32_t>(scan.components.size()));
  const BlockCoding coding = blockCoding(frame.process, scan);
  const bool lossless = frame.process == Process::lossless;
  for (const size_t c : scan.components) {
    const Component& component = frame.components[c];
    byte(component.id);
    const int32_t dc = lossless || usesDcTable(coding) ? huffmanTableOf(component) : 0;
    const int32_t ac = !lossless && usesAcTable(coding) ? huffmanTableOf(component) : 0;
    byte(dc << 4 | ac);
  }
  byte(scan.first);
  byte(scan.last);
  byte(scan.highBit << 4 | scan.lowBit);
}

}  // namespace examples::jpeg
