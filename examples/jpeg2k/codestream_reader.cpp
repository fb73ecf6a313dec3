#include "jpeg2k/codestream_reader.h"

#include <algorithm>

#include "common/error.h"
#include "jpeg2k/markers.h"

namespace examples::jpeg2k {
namespace {

constexpr size_t kMaxComponents = 4;
constexpr int32_t kMaxPrecision = 16;
constexpr int64_t kMaxTiles = 65535;
// Steps between rows, of up to 8 bytes a pixel, are to be told by an int.
constexpr int32_t kMaxSide = INT32_MAX / 8;

// Images up to this size are decoded whatever is there of their data; larger ones need a byte of file for so many
// pixels.
constexpr int64_t kAlwaysAllowedPixels = 1 << 24;
constexpr int64_t kMaxPixelsPerByte = 4096;
// Every precinct takes a byte, unless the file is cut. Tiles with more than this are not decoded.
constexpr int64_t kAlwaysAllowedPrecincts = 1 << 18;

int32_t coordinate(ByteReader& in) {
  const uint32_t value = in.doubleWord();
  if (value > INT32_MAX) throw Error("the image is too large");
  return static_cast<int32_t>(value);
}

// A tile may be larger than what its coordinates can tell.
int32_t tileExtent(ByteReader& in) { return static_cast<int32_t>(std::min<uint32_t>(in.doubleWord(), INT32_MAX)); }

std::vector<uint8_t> joined(const std::map<int32_t, std::span<const uint8_t>>& segments) {
  std::vector<uint8_t> bytes;
  for (const auto& [number, segment] : segments) bytes.insert(bytes.end(), segment.begin(), segment.end());
  return bytes;
}

}  // namespace

CodestreamReader::CodestreamReader(std::span<const uint8_t> codestream) : bytes_(codestream) {
  if (bytes_.size() < 4 || nextMarker() != marker::SOC || nextMarker() != marker::SIZ) {
    throw Error("not a JPEG 2000 codestream");
  }
  if (bytes_.size() > INT32_MAX) throw Error("the file is larger than 2 GiB");
  readSize(segment());
  checkMemory();
  main_ = std::make_unique<CodingHeaders>(size_);
  for (;;) {
    const uint16_t code = nextMarker();
    if (code == marker::SOT) break;
    ByteReader in = segment();
    if (code == marker::PPM) {
      const int32_t number = in.byte();
      packedSegments_[number] = in.rest();
    } else {
      main_->read(code, in);
    }
  }
  position_ -= 2;
  main_->check();
  packed_ = joined(packedSegments_);
}

std::unique_ptr<CodingHeaders> CodestreamReader::ownHeaders(const TileData& tile) const {
  if (tile.headers.empty()) return nullptr;
  auto headers = std::make_unique<CodingHeaders>(*main_);
  headers->beginTile();
  for (const TileData::Header& header : tile.headers) headers->read(header.marker, ByteReader(header.content));
  return headers;
}

void CodestreamReader::addPrecincts(const Tile& tile) {
  const int64_t count = precincts_ + PrecinctIndex(tile).count();
  if (count > kAlwaysAllowedPrecincts + static_cast<int64_t>(bytes_.size())) {
    throw Error("the file is too small for as many precincts");
  }
  precincts_ = count;
}

uint16_t CodestreamReader::nextMarker() {
  ByteReader in(bytes_.subspan(position_));
  if (in.left() < 2) throw Error("the file ends within its headers");
  position_ += 2;
  return in.word();
}

ByteReader CodestreamReader::segment() {
  ByteReader in(bytes_.subspan(position_));
  if (in.left() < 2) throw Error("the file ends within its headers");
  const uint16_t length = in.word();
  if (length < 2) throw Error("a header is too short");
  if (in.left() + 2 < length) throw Error("the file ends within its headers");
  position_ += length;
  return ByteReader(in.take(length - 2u));
}

void CodestreamReader::readSize(ByteReader in) {
  in.word();  // capabilities
  size_.image.x1 = coordinate(in);
  size_.image.y1 = coordinate(in);
  size_.image.x0 = coordinate(in);
  size_.image.y0 = coordinate(in);
  size_.tileWidth = tileExtent(in);
  size_.tileHeight = tileExtent(in);
  size_.tileX = coordinate(in);
  size_.tileY = coordinate(in);
  const uint16_t count = in.word();
  if (size_.image.empty() || size_.tileWidth == 0 || size_.tileHeight == 0 || size_.tileX > size_.image.x0 ||
      size_.tileY > size_.image.y0 || int64_t{size_.tileX} + size_.tileWidth <= size_.image.x0 ||
      int64_t{size_.tileY} + size_.tileHeight <= size_.image.y0 || count == 0) {
    throw Error("the size of the image or its tiles is out of range");
  }
  if (size_.image.width() > kMaxSide || size_.image.height() > kMaxSide) throw Error("the image is too large");
  if (tileCount(size_) > kMaxTiles) throw Error("there are too many tiles");
  if (count > kMaxComponents) throw Error("more than 4 components are not supported");
  for (int i = 0; i < count; ++i) {
    const uint8_t depth = in.byte();
    const ComponentSize component = {(depth & 0x7f) + 1, (depth & 0x80) != 0, in.byte(), in.byte()};
    if (component.precision > kMaxPrecision) throw Error("more than 16 bits a sample are not supported");
    if (component.dx == 0 || component.dy == 0) throw Error("a component's sampling is out of range");
    if (componentRect(component, size_.image).empty()) throw Error("a component has no samples");
    size_.components.push_back(component);
  }
}

void CodestreamReader::checkMemory() const {
  const Rect rect = componentRect(pixelSize(size_), size_.image);
  const int64_t pixels = int64_t{rect.width()} * rect.height();
  if (pixels > kAlwaysAllowedPixels + kMaxPixelsPerByte * static_cast<int64_t>(bytes_.size())) {
    throw Error("the file is too small for an image of this size");
  }
}

void CodestreamReader::readTiles() {
  tiles_.resize(static_cast<size_t>(tileCount(size_)));
  try {
    for (;;) {
      const uint16_t code = nextMarker();
      if (code == marker::EOC) return;
      if (code != marker::SOT) throw Error("a tile does not begin where it should");
      readTilePart();
    }
  } catch (const Error& error) {
    problem_ = error.what();
  }
}

void CodestreamReader::readTilePart() {
  const size_t start = position_ - 2;
  ByteReader in = segment();
  const int32_t number = in.word();
  const uint32_t length = in.doubleWord();
  if (number >= tileCount(size_)) throw Error("a tile's number is out of range");
  TileData& tile = tiles_[static_cast<size_t>(number)];
  readTilePartHeader(tile);
  takePackedHeaders(tile);
  // A length of 0 stands for all the rest (T.800 A.4.2).
  size_t end = length == 0 ? bytes_.size() : start + length;
  const bool cut = end > bytes_.size();
  end = std::clamp(end, position_, bytes_.size());
  if (length == 0 && end - position_ >= 2 && bytes_[end - 2] == 0xff && bytes_[end - 1] == (marker::EOC & 0xff)) {
    end -= 2;
  }
  tile.parts.push_back(bytes_.subspan(position_, end - position_));
  position_ = end;
  if (cut) throw Error("the file ends before its last tile does");
}

void CodestreamReader::readTilePartHeader(TileData& tile) {
  std::map<int32_t, std::span<const uint8_t>> packed;
  for (;;) {
    const uint16_t code = nextMarker();
    if (code == marker::SOD) break;
    ByteReader in = segment();
    if (code == marker::PPT) {
      const int32_t index = in.byte();
      packed[index] = in.rest();
    } else if (code == marker::COD || code == marker::COC || code == marker::QCD || code == marker::QCC ||
               code == marker::RGN || code == marker::POC) {
      tile.headers.push_back({code, in.rest()});
    }
  }
  if (!packed.empty()) {
    const std::vector<uint8_t> bytes = joined(packed);
    tile.packed = true;
    tile.packetHeaders.insert(tile.packetHeaders.end(), bytes.begin(), bytes.end());
  }
}

// The main header's packet headers of one tile-part after the other, each with its length before it.
void CodestreamReader::takePackedHeaders(TileData& tile) {
  if (packed_.empty()) return;
  ByteReader in(std::span<const uint8_t>(packed_).subspan(packedPosition_));
  const size_t all = in.left();
  if (all < 4) throw Error("packet headers are missing");
  const uint32_t length = in.doubleWord();
  const std::span<const uint8_t> bytes = in.take(std::min<size_t>(length, in.left()));
  tile.packed = true;
  tile.packetHeaders.insert(tile.packetHeaders.end(), bytes.begin(), bytes.end());
  packedPosition_ += all - in.left();
}

}  // namespace examples::jpeg2k
