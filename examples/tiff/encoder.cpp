#include <zorj.h>

#include <algorithm>

#include "common/error.h"
#include "common/image_file.h"
#include "tiff/codec.h"
#include "tiff/directory.h"

namespace examples::tiff {
namespace {

// Readers keep a strip in memory; TIFF 6.0 suggests about 8 kilobytes, today's readers are happier with more.
constexpr size_t kStripBytes = 1 << 16;

// A little-endian file that grows.
class Writer {
 public:
  explicit Writer(std::vector<uint8_t>& bytes) : bytes_(bytes) {}

  uint32_t size() const {
    if (bytes_.size() > UINT32_MAX) throw Error("the image is too large for a TIFF file");
    return static_cast<uint32_t>(bytes_.size());
  }
  void put(uint32_t value, size_t count) {
    for (size_t i = 0; i < count; ++i) bytes_.push_back(static_cast<uint8_t>(value >> (8 * i)));
  }
  void alignToWords() {
    if (bytes_.size() % 2 != 0) bytes_.push_back(0);
  }
  void patch32(size_t offset, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) bytes_[offset + i] = static_cast<uint8_t>(value >> (8 * i));
  }

 private:
  std::vector<uint8_t>& bytes_;
};

struct Field {
  Tag tag;
  FieldType type;
  std::vector<uint32_t> values;

  size_t valueBytes() const { return type == kShort ? 2 : 4; }
  size_t bytes() const { return values.size() * valueBytes(); }
};

void putValues(Writer& writer, const Field& field) {
  for (const uint32_t value : field.values) writer.put(value, field.valueBytes());
}

// Writes the values that do not fit into their entries first, then the directory, and points the header to it.
void writeDirectory(Writer& writer, const std::vector<Field>& fields) {
  std::vector<uint32_t> places;
  for (const Field& field : fields) {
    writer.alignToWords();
    places.push_back(writer.size());
    if (field.bytes() > 4) putValues(writer, field);
  }
  writer.alignToWords();
  writer.patch32(4, writer.size());
  writer.put(static_cast<uint32_t>(fields.size()), 2);
  for (size_t i = 0; i < fields.size(); ++i) {
    const Field& field = fields[i];
    const size_t count = field.type == kRational ? field.values.size() / 2 : field.values.size();
    writer.put(field.tag, 2);
    writer.put(field.type, 2);
    writer.put(static_cast<uint32_t>(count), 4);
    if (field.bytes() > 4) {
      writer.put(places[i], 4);
    } else {
      putValues(writer, field);
      writer.put(0, 4 - field.bytes());
    }
  }
  writer.put(0, 4);  // no further directory
}

void appendRow(const std::vector<uint8_t>& row, Compression compression, std::vector<uint8_t>& tiff) {
  if (compression == Compression::none) {
    tiff.insert(tiff.end(), row.begin(), row.end());
    return;
  }
  // Nothing grows by more than a byte in 128.
  const size_t start = tiff.size(), room = row.size() + row.size() / 128 + 2;
  tiff.resize(start + room);
  int32_t position = 0;
  if (zoriPackBitsRow_TIFF_8u_C1(row.data(), static_cast<int32_t>(row.size()), tiff.data() + start, &position,
                                 static_cast<int32_t>(room)) != StatusOk) {
    throw Error("a row could not be packed");
  }
  tiff.resize(start + static_cast<size_t>(position));
}

// Little-endian.
void toBytes(const uint16_t* samples, int32_t precision, std::vector<uint8_t>& row) {
  if (precision == 8) {
    std::copy_n(samples, row.size(), row.begin());
    return;
  }
  for (size_t i = 0; i < row.size(); i += 2, ++samples) {
    row[i] = static_cast<uint8_t>(*samples);
    row[i + 1] = static_cast<uint8_t>(*samples >> 8);
  }
}

}  // namespace

void encode(const DeepImage& image, Compression compression, std::vector<uint8_t>& tiff) {
  const int32_t precision = image.precision <= 8 ? 8 : 16;
  if (image.precision != precision) return encode(withPrecision<uint16_t>(image, precision), compression, tiff);
  tiff.assign({'I', 'I', 42, 0, 0, 0, 0, 0});
  Writer writer(tiff);
  std::vector<uint8_t> row(size_t(image.width) * size_t(image.channels) * size_t(precision) / 8);
  const auto rowsPerStrip = static_cast<int32_t>(std::clamp<size_t>(kStripBytes / row.size(), 1, size_t(image.height)));
  std::vector<uint32_t> offsets, byteCounts;
  for (int32_t y = 0; y < image.height; ++y) {
    if (y % rowsPerStrip == 0) {
      writer.alignToWords();
      offsets.push_back(writer.size());
      byteCounts.push_back(0);
    }
    toBytes(image.at(0, y), precision, row);
    appendRow(row, compression, tiff);
    byteCounts.back() = writer.size() - offsets.back();
  }
  const auto channels = static_cast<uint32_t>(image.channels);
  const uint32_t photometric = channels == 1 ? kBlackIsZero : channels == 3 ? kRgb : kSeparated;
  writeDirectory(writer, {{kImageWidth, kLong, {uint32_t(image.width)}},
                          {kImageLength, kLong, {uint32_t(image.height)}},
                          {kBitsPerSample, kShort, std::vector<uint32_t>(channels, uint32_t(precision))},
                          {kCompression, kShort, {uint32_t(compression)}},
                          {kPhotometric, kShort, {photometric}},
                          {kStripOffsets, kLong, offsets},
                          {kSamplesPerPixel, kShort, {channels}},
                          {kRowsPerStrip, kLong, {uint32_t(rowsPerStrip)}},
                          {kStripByteCounts, kLong, byteCounts},
                          {kXResolution, kRational, {72, 1}},
                          {kYResolution, kRational, {72, 1}},
                          {kPlanarConfiguration, kShort, {1}},
                          {kResolutionUnit, kShort, {2}}});
}

}  // namespace examples::tiff
