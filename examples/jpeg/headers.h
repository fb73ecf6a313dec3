// What comes before the first scan of a file.
#pragma once

#include <cstdint>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/marker_writer.h"
#include "jpeg/markers.h"

namespace examples::jpeg {

// Writes to an empty file. The tables are those of the components; a lossless file has none.
inline void writeHeaders(const Frame& frame, const std::array<QuantTable, kMaxComponents>& tables,
                         int32_t restartInterval, std::vector<uint8_t>& file) {
  MarkerWriter writer(file);
  writer.marker(marker::SOI);
  const bool isJfif = frame.coding == ColorCoding::grey || frame.coding == ColorCoding::yCbCr;
  if (isJfif) {
    writer.jfif();
  } else {
    writer.adobe(frame.coding == ColorCoding::ycck ? kAdobeYcck : kAdobeUnconverted);
  }
  bool written[4] = {};
  for (size_t c = 0; c < frame.components.size() && frame.process != Process::lossless; ++c) {
    const uint8_t table = frame.components[c].quantTable;
    if (!written[table]) writer.quantTable(table, tables[c]);
    written[table] = true;
  }
  writer.frame(frame);
  if (restartInterval > 0) writer.restartInterval(restartInterval);
}

}  // namespace examples::jpeg
