// Reads the marker segments of a file (T.81 Annex B) up to each scan's data.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jpeg/coefficients.h"
#include "jpeg/huffman.h"
#include "jpeg/scan.h"

namespace examples {
class ByteReader;
}

namespace examples::jpeg {

class MarkerReader {
 public:
  // Throws Error if the file does not begin as a JPEG file does.
  explicit MarkerReader(std::span<const uint8_t> file);

  // Reads on to the data of the next scan; false at the end of the image. Throws Error for what is damaged or not
  // supported, and where the file ends early.
  bool nextScan();

  // Goes on reading at this byte of the file.
  void resumeAt(size_t position) { position_ = position; }
  size_t position() const { return position_; }

  std::span<const uint8_t> file() const { return file_; }
  const Frame& frame() const { return frame_; }
  int32_t restartInterval() const { return restartInterval_; }
  bool scanHoldsAllComponents() const { return scan_.components.size() == frame_.components.size(); }

  // The scan, and its components' tables as they stand before it. Error for a table that it needs and the file has not
  // defined.
  const Scan& scan() const { return scan_; }
  std::vector<DecodeTables> scanTables() const;
  void takeQuantTables(std::array<QuantTable, kMaxComponents>& tables) const;

 private:
  struct TableNumbers {
    uint8_t dc;  // 0 to 3
    uint8_t ac;
  };

  uint8_t nextMarker();
  ByteReader segment();
  void readTablesOrFrame(uint8_t code);
  void readQuantTables(ByteReader in);
  void readHuffmanTables(ByteReader in);
  void readFrame(uint8_t code, ByteReader in);
  void readScan(ByteReader in);
  void checkSize() const;
  void findColorCoding();

  std::span<const uint8_t> file_;
  size_t position_ = 0;
  Frame frame_;
  Scan scan_;
  std::vector<TableNumbers> scanTables_;
  std::optional<QuantTable> quant_[4];
  DecodeSpec dc_[4];
  DecodeSpec ac_[4];
  int32_t restartInterval_ = 0;
  bool jfif_ = false;
  std::optional<uint8_t> adobeTransform_;
};

}  // namespace examples::jpeg
