// Reads the directories of a file.
#include <algorithm>

#include "common/error.h"
#include "tiff/codec.h"
#include "tiff/directory.h"

namespace examples::tiff {
namespace {

// Numbers in the file's byte order, at offsets that need not be in the file.
class Numbers {
 public:
  explicit Numbers(std::span<const uint8_t> bytes) : bytes_(bytes) {
    if (bytes.size() < kHeaderBytes) throw Error("not a TIFF file");
    littleEndian_ = bytes[0] == 'I';
    const uint8_t order = littleEndian_ ? 'I' : 'M';
    if (bytes[0] != order || bytes[1] != order) throw Error("not a TIFF file");
    if (at16(2) == 43) throw Error("BigTIFF files are not supported");
    if (at16(2) != 42) throw Error("not a TIFF file");
  }

  size_t fileBytes() const { return bytes_.size(); }
  bool littleEndian() const { return littleEndian_; }
  uint32_t at16(size_t offset) const { return at(offset, 2); }
  uint32_t at32(size_t offset) const { return at(offset, 4); }
  uint32_t at(size_t offset, size_t size) const {
    if (offset > bytes_.size() || bytes_.size() - offset < size) throw Error("the file ends inside its directory");
    uint32_t result = 0;
    for (size_t i = 0; i < size; ++i) result = result << 8 | bytes_[offset + (littleEndian_ ? size - 1 - i : i)];
    return result;
  }

 private:
  std::span<const uint8_t> bytes_;
  bool littleEndian_ = true;
};

class Directory {
 public:
  Directory(const Numbers& numbers, size_t offset)
      : numbers_(numbers), first_(offset + kCountBytes), end_(first_ + kEntryBytes * numbers.at16(offset)) {
    next_ = numbers.at32(end_);
  }

  // The offset of the next directory; 0 after the last.
  uint32_t next() const { return next_; }

  bool has(Tag tag) const { return find(tag) != end_; }

  // The whole numbers of a field, of which there is at least one; none if there is no such field.
  std::vector<uint32_t> values(Tag tag) const {
    const size_t entry = find(tag);
    if (entry == end_) return {};
    const uint32_t type = numbers_.at16(entry + 2), count = numbers_.at32(entry + 4);
    if (type != kByte && type != kShort && type != kLong) throw Error("field " + std::to_string(tag) + " is no number");
    const size_t size = type == kByte ? 1 : type == kShort ? 2 : 4;
    if (count == 0 || count > numbers_.fileBytes() / size) throw Error("the directory is damaged");
    const size_t place = count * size <= 4 ? entry + 8 : numbers_.at32(entry + 8);
    std::vector<uint32_t> result(count);
    for (size_t i = 0; i < count; ++i) result[i] = numbers_.at(place + i * size, size);
    return result;
  }

  // The value of a field, which all samples of a pixel must share.
  uint32_t value(Tag tag, uint32_t ifMissing) const {
    const std::vector<uint32_t> all = values(tag);
    if (all.empty()) return ifMissing;
    if (std::any_of(all.begin(), all.end(), [&](uint32_t each) { return each != all[0]; })) {
      throw Error("samples of different kinds are not supported");
    }
    return all[0];
  }

  uint32_t required(Tag tag) const {
    if (!has(tag)) throw Error("the directory lacks field " + std::to_string(tag));
    return value(tag, 0);
  }

 private:
  size_t find(Tag tag) const {
    size_t entry = first_;
    while (entry != end_ && numbers_.at16(entry) != tag) entry += kEntryBytes;
    return entry;
  }

  const Numbers& numbers_;
  size_t first_, end_;
  uint32_t next_;
};

}  // namespace

Description describe(std::span<const uint8_t> tiff) {
  const Numbers numbers(tiff);
  const Directory directory(numbers, numbers.at32(4));
  if (directory.has(kTileWidth)) throw Error("tiles are not supported, only strips");
  if (directory.value(kSampleFormat, 1) != 1) throw Error("only unsigned samples are supported");
  if (directory.value(kFillOrder, 1) != 1) throw Error("reversed bits are not supported");
  if (directory.value(kInkSet, 1) != 1) throw Error("other inks than CMYK are not supported");
  if (directory.value(kPredictor, 1) != 1) throw Error("predictors are not supported");

  Description description;
  description.littleEndian = numbers.littleEndian();
  description.width = directory.required(kImageWidth);
  description.height = directory.required(kImageLength);
  description.samplesPerPixel = directory.value(kSamplesPerPixel, 1);
  description.bitsPerSample = directory.value(kBitsPerSample, 1);
  description.compression = directory.value(kCompression, 1);
  description.photometric = directory.required(kPhotometric);
  description.separatePlanes = directory.value(kPlanarConfiguration, 1) == 2;
  description.stripOffsets = directory.values(kStripOffsets);
  description.stripByteCounts = directory.values(kStripByteCounts);
  const uint32_t rowsPerStrip = directory.value(kRowsPerStrip, description.height);
  description.rowsPerStrip = rowsPerStrip == 0 ? description.height : std::min(rowsPerStrip, description.height);
  return description;
}

size_t countImages(std::span<const uint8_t> tiff) {
  const Numbers numbers(tiff);
  const size_t most = tiff.size() / (kCountBytes + kNextBytes);
  size_t count = 0;
  for (uint32_t offset = numbers.at32(4); offset != 0; offset = Directory(numbers, offset).next()) {
    if (++count > most) throw Error("the directories run in a circle");
  }
  return count;
}

}  // namespace examples::tiff
