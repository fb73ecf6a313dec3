#include "jpeg/marker_reader.h"

#include <algorithm>
#include <limits>
#include <string>

#include "common/byte_reader.h"
#include "common/error.h"
#include "jpeg/markers.h"

namespace examples::jpeg {
namespace {

constexpr const char* kSegment = "a marker segment";

constexpr uint8_t kMaxTable = 3;
constexpr int32_t kMaxFactor = 4;

// Images up to this size are decoded whatever is there of their data; larger ones need a byte of file for so many
// pixels. The plainest complete image takes one for 256.
constexpr int64_t kAlwaysAllowedPixels = 1 << 24;
constexpr int64_t kMaxPixelsPerByte = 1024;

const char* unsupportedProcess(uint8_t sof) {
  switch (sof & 0x0f) {
    case 5:
    case 6:
    case 7:
      return "hierarchical JPEG is not supported";
    default:
      return "arithmetic-coded JPEG is not supported";
  }
}

uint8_t tableNumber(int32_t number) {
  if (number > kMaxTable) throw Error("a table number is out of range");
  return static_cast<uint8_t>(number);
}

}  // namespace

MarkerReader::MarkerReader(std::span<const uint8_t> file) : file_(file) {
  if (file.size() < 3 || file[0] != 0xff || file[1] != marker::SOI || file[2] != 0xff) throw Error("not a JPEG file");
  if (file.size() > std::numeric_limits<int32_t>::max()) throw Error("the file is larger than 2 GiB");
  // Where a file is cut after 0xFF, that byte says nothing, and decoders would stop at it before the bits they hold.
  while (file_.back() == 0xff) file_ = file_.first(file_.size() - 1);
  position_ = 2;
}

// Whatever lies before the marker is skipped: fill bytes, and what decoders are to ignore after a damaged scan.
uint8_t MarkerReader::nextMarker() {
  for (; position_ + 1 < file_.size(); ++position_) {
    if (file_[position_] == 0xff && file_[position_ + 1] != 0x00 && file_[position_ + 1] != 0xff) {
      position_ += 2;
      return file_[position_ - 1];
    }
  }
  throw Error("the file ends before its end-of-image marker");
}

ByteReader MarkerReader::segment() {
  ByteReader in(file_.subspan(position_), kSegment);
  if (in.left() < 2) throw Error("the file ends within its headers");
  const uint16_t length = in.word();
  if (length < 2) throw Error("a marker segment is too short");
  if (in.left() + 2 < length) throw Error("the file ends within its headers");
  position_ += length;
  return ByteReader(in.take(length - 2u), kSegment);
}

bool MarkerReader::nextScan() {
  for (;;) {
    const uint8_t code = nextMarker();
    if (code == marker::EOI) return false;
    if (marker::isRestart(code) || code == marker::TEM || code == marker::SOI) continue;
    if (code == marker::SOS) {
      readScan(segment());
      return true;
    }
    readTablesOrFrame(code);
  }
}

void MarkerReader::readTablesOrFrame(uint8_t code) {
  ByteReader in = segment();
  switch (code) {
    case marker::DQT:
      return readQuantTables(in);
    case marker::DHT:
      return readHuffmanTables(in);
    case marker::SOF0:
    case marker::SOF1:
    case marker::SOF2:
    case marker::SOF3:
      return readFrame(code, in);
    case marker::DRI:
      restartInterval_ = in.word();
      return;
    case marker::APP0:
      jfif_ = jfif_ || in.takeIf("JFIF", 5);
      return;
    case marker::APP14:
      // Adobe: version and two words of flags come before the colour transform.
      if (in.takeIf("Adobe", 5) && in.left() >= 7) adobeTransform_ = in.take(7)[6];
      return;
    default:
      if (code > marker::SOF3 && code <= marker::SOF15 && code != marker::JPG && code != marker::DAC) {
        throw Error(unsupportedProcess(code));
      }
  }
}

void MarkerReader::readQuantTables(ByteReader in) {
  while (in.left() > 0) {
    const uint8_t header = in.byte();
    std::optional<QuantTable>& table = quant_[tableNumber(header & 0x0f)];
    if (header >> 4 > 1) throw Error("a quantisation table has an unknown precision");
    table.emplace();
    for (const uint8_t natural : kNaturalOrder) (*table)[natural] = header >> 4 ? in.word() : in.byte();
  }
}

void MarkerReader::readHuffmanTables(ByteReader in) {
  while (in.left() > 0) {
    const uint8_t header = in.byte();
    DecodeSpec& spec = (header >> 4 ? ac_ : dc_)[tableNumber(header & 0x0f)];
    if (header >> 4 > 1) throw Error("a Huffman table is of an unknown class");
    HuffmanLists lists;
    const std::span<const uint8_t> bits = in.take(16);
    std::copy(bits.begin(), bits.end(), lists.bits.begin());
    size_t count = 0;
    for (const uint8_t ofLength : bits) count += ofLength;
    lists.values = in.take(count);
    spec = makeDecodeSpec(lists);
  }
}

void MarkerReader::readFrame(uint8_t code, ByteReader in) {
  if (!frame_.components.empty()) throw Error("the file has more than one frame");
  frame_.process = code == marker::SOF2   ? Process::progressive
                   : code == marker::SOF3 ? Process::lossless
                                          : Process::sequential;
  frame_.precision = in.byte();
  const bool possible = frame_.process == Process::lossless ? frame_.precision >= 2 && frame_.precision <= 16
                                                            : frame_.precision == 8 || frame_.precision == 12;
  if (!possible) throw Error("samples of " + std::to_string(frame_.precision) + " bits are not supported");
  frame_.height = in.word();
  frame_.width = in.word();
  if (frame_.height == 0) throw Error("the height is missing or given only after the scan, which is not supported");
  if (frame_.width == 0) throw Error("the width is missing");
  const size_t count = in.byte();
  if (count != 1 && count != 3 && count != 4)
    throw Error("images of " + std::to_string(count) + " components are not supported");
  std::vector<Component> components(count);
  for (Component& component : components) {
    component.id = in.byte();
    const uint8_t factors = in.byte();
    component.horizontal = factors >> 4;
    component.vertical = factors & 0x0f;
    component.quantTable = tableNumber(in.byte());
    if (component.horizontal < 1 || component.horizontal > kMaxFactor || component.vertical < 1 ||
        component.vertical > kMaxFactor) {
      throw Error("a sampling factor is out of range");
    }
  }
  // The factors of a lone component say nothing (T.81 A.2.2).
  if (count == 1) components[0].horizontal = components[0].vertical = 1;
  frame_.components = std::move(components);
  checkSize();
}

void MarkerReader::checkSize() const {
  const int64_t pixels = int64_t{frame_.width} * frame_.height;
  if (pixels > kAlwaysAllowedPixels && pixels / kMaxPixelsPerByte > static_cast<int64_t>(file_.size())) {
    throw Error("the file is too small for an image of " + std::to_string(frame_.width) + " x " +
                std::to_string(frame_.height) + " pixels");
  }
}

void MarkerReader::readScan(ByteReader in) {
  if (frame_.components.empty()) throw Error("a scan comes before the frame header");
  const size_t count = in.byte();
  if (count < 1 || count > frame_.components.size()) throw Error("a scan has a wrong number of components");
  scan_ = {};
  scanTables_.clear();
  for (size_t i = 0; i < count; ++i) {
    const uint8_t id = in.byte();
    const uint8_t tables = in.byte();
    const auto found = std::find_if(frame_.components.begin(), frame_.components.end(),
                                    [id](const Component& component) { return component.id == id; });
    const size_t index = static_cast<size_t>(found - frame_.components.begin());
    const bool again = std::find(scan_.components.begin(), scan_.components.end(), index) != scan_.components.end();
    if (found == frame_.components.end() || again) throw Error("a scan names an unknown component");
    scan_.components.push_back(index);
    scanTables_.push_back({tableNumber(tables >> 4), tableNumber(tables & 0x0f)});
  }
  scan_.first = in.byte();
  scan_.last = in.byte();
  const uint8_t bits = in.byte();
  scan_.highBit = bits >> 4;
  scan_.lowBit = bits & 0x0f;
  findColorCoding();
}

// Three components are YCbCr in JFIF files; Adobe's marker says what they are; without either, their names may tell,
// and lossless files hold RGB.
// Four components are CMYK unless Adobe's marker says YCCK, and the programs that write it store all inks inverted.
void MarkerReader::findColorCoding() {
  const std::vector<Component>& components = frame_.components;
  if (components.size() == 3) {
    const bool named = components[0].id == 'R' && components[1].id == 'G' && components[2].id == 'B';
    const bool lossless = frame_.process == Process::lossless;
    const bool rgb = !jfif_ && (adobeTransform_ ? *adobeTransform_ == 0 : named || lossless);
    frame_.coding = rgb ? ColorCoding::rgb : ColorCoding::yCbCr;
  } else if (components.size() == 4) {
    frame_.coding = adobeTransform_.value_or(0) == 0 ? ColorCoding::cmyk : ColorCoding::ycck;
    frame_.inverted = adobeTransform_.has_value();
  }
}

std::vector<DecodeTables> MarkerReader::scanTables() const {
  const BlockCoding coding = blockCoding(frame_.process, scan_);
  const bool lossless = frame_.process == Process::lossless;
  const bool needsDc = lossless || usesDcTable(coding), needsAc = !lossless && usesAcTable(coding);
  std::vector<DecodeTables> tables;
  for (const TableNumbers& numbers : scanTables_) {
    const DecodeTables ofComponent{dc_[numbers.dc].get(), ac_[numbers.ac].get()};
    if ((needsDc && !ofComponent.dc) || (needsAc && !ofComponent.ac)) throw Error("a Huffman table is missing");
    tables.push_back(ofComponent);
  }
  return tables;
}

void MarkerReader::takeQuantTables(std::array<QuantTable, kMaxComponents>& tables) const {
  for (const size_t component : scan_.components) {
    const std::optional<QuantTable>& table = quant_[frame_.components[component].quantTable];
    if (!table) throw Error("a quantisation table is missing");
    tables[component] = *table;
  }
}

}  // namespace examples::jpeg
