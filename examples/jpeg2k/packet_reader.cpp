#include "jpeg2k/packet_reader.h"

#include <algorithm>
#include <bit>

#include "jpeg2k/markers.h"

namespace examples::jpeg2k {
namespace {

constexpr int32_t kMaxPlanes = 74;  // more than any subband has, with a region of interest
constexpr int32_t kMaxPasses = 3 * kMaxPlanes;
constexpr int32_t kFirstRawPass = 10;
constexpr size_t kSopLength = 6;
constexpr size_t kEphLength = 2;

bool startsWith(std::span<const uint8_t> bytes, uint16_t code) {
  return bytes.size() >= 2 && bytes[0] == code >> 8 && bytes[1] == (code & 0xff);
}

// Where a pass stands among those of a plane that is coded with raw bits: 0 and 1 share a segment.
int32_t passOfRawPlane(int32_t pass) { return (pass - kFirstRawPass) % 3; }

bool opensSegment(int32_t pass, uint32_t style) {
  if (pass == 0 || (style & block_style::termall) != 0) return true;
  return (style & block_style::bypass) != 0 && pass >= kFirstRawPass && passOfRawPlane(pass) != 1;
}

// The first pass behind the segment that holds this one.
int32_t endOfSegment(int32_t pass, uint32_t style) {
  if ((style & block_style::termall) != 0) return pass + 1;
  if ((style & block_style::bypass) == 0) return INT32_MAX;
  if (pass < kFirstRawPass) return kFirstRawPass;
  return passOfRawPlane(pass) == 0 ? pass + 2 : pass + 1;
}

}  // namespace

// Bits of packet headers, with a zero bit after each byte 0xFF.
class PacketReader::Bits {
 public:
  explicit Bits(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  uint32_t bit() {
    if (left_ == 0) {
      if (position_ == bytes_.size()) {
        ended_ = true;
        return 0;
      }
      left_ = byte_ == 0xff ? 7 : 8;
      byte_ = bytes_[position_++];
    }
    return byte_ >> --left_ & 1u;
  }
  uint32_t bits(int32_t count) {
    uint32_t value = 0;
    while (count-- > 0) value = value << 1 | bit();
    return value;
  }
  // Whether bits were asked for beyond the end.
  bool ended() const { return ended_; }
  // The bytes behind those that bits were taken from.
  std::span<const uint8_t> rest() const {
    const size_t stuffed = byte_ == 0xff && position_ < bytes_.size() ? 1 : 0;
    return bytes_.subspan(position_ + stuffed);
  }

 private:
  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
  uint8_t byte_ = 0;
  int32_t left_ = 0;
  bool ended_ = false;
};

namespace {

// T.800 Table B.4.
template <class Bits>
int32_t readPassCount(Bits& bits) {
  if (bits.bit() == 0) return 1;
  if (bits.bit() == 0) return 2;
  if (const uint32_t more = bits.bits(2); more < 3) return static_cast<int32_t>(3 + more);
  if (const uint32_t more = bits.bits(5); more < 31) return static_cast<int32_t>(6 + more);
  return static_cast<int32_t>(37 + bits.bits(7));
}

}  // namespace

PacketReader::PacketReader(const ImageSize& size, const Tile& tile, const TileCoding& coding)
    : tile_(tile), coding_(coding), index_(tile), order_(size, tile, coding) {
  precincts_.resize(static_cast<size_t>(index_.count()));
}

void PacketReader::read(std::span<const uint8_t> data, bool packed, std::span<const uint8_t> headers,
                        const PacketLimits& limits) {
  data_ = data;
  headers_ = headers;
  packed_ = packed;
  Packet packet;
  while (order_.next(packet)) {
    const int32_t levels = tile_.components[static_cast<size_t>(packet.component)].levels();
    const bool keep = packet.layer < limits.layers && packet.resolution <= std::max(levels - limits.reduce, 0);
    if (!keep && coding_.volumes.empty() && coding_.order == Progression::lrcp && packet.layer >= limits.layers) return;
    if (!readPacket(packet, keep)) return;
  }
}

bool PacketReader::readPacket(const Packet& packet, bool keep) {
  if (startsWith(data_, marker::SOP)) data_ = data_.subspan(std::min(kSopLength, data_.size()));
  std::span<const uint8_t>& source = packed_ ? headers_ : data_;
  if (source.empty()) {
    problem_ = "ends early";
    return false;
  }
  Bits bits(source);
  pending_.clear();
  if (!readHeader(packet, bits)) {
    problem_ = bits.ended() ? "ends early" : "is damaged";
    return false;
  }
  source = bits.rest();
  if (startsWith(source, marker::EPH)) source = source.subspan(kEphLength);
  return readBody(keep);
}

bool PacketReader::readHeader(const Packet& packet, Bits& bits) {
  if (bits.bit() == 0) return !bits.ended();
  const uint32_t style = coding_.components[static_cast<size_t>(packet.component)].style.blockStyle;
  for (PrecinctBand& band : makeBands(packet)) {
    const auto read = [&](int32_t number, bool isNew) { return readBlock(band, number, isNew, style, bits); };
    if (!band.inclusion.read(packet.layer, bits, read)) return false;
  }
  return true;
}

std::vector<PrecinctBand>& PacketReader::makeBands(const Packet& packet) {
  auto& bands = precincts_[static_cast<size_t>(index_.of(packet.component, packet.resolution, packet.precinct))];
  if (!bands) {
    const Resolution& resolution =
        tile_.components[static_cast<size_t>(packet.component)].resolutions[static_cast<size_t>(packet.resolution)];
    bands = std::make_unique<std::vector<PrecinctBand>>();
    for (int32_t b = 0; b < resolution.bandCount; ++b) bands->emplace_back(resolution.blocks(packet.precinct, b));
  }
  return *bands;
}

// What a packet's header says of one block. The passes go to pending_. False for what cannot be.
bool PacketReader::readBlock(PrecinctBand& band, int32_t number, bool isNew, uint32_t style, Bits& bits) {
  PacketBlock& block = band.blocks[static_cast<size_t>(number)];
  if (isNew) {
    if (!band.zeroPlanes.read(number, kMaxPlanes, [&] { return bits.bit() != 0; })) return false;
    block.zeroPlanes = band.zeroPlanes.value(number);
  } else if (bits.bit() == 0) {
    return !bits.ended();
  }
  const int32_t passEnd = block.passes + readPassCount(bits);
  while (bits.bit() != 0) ++block.lengthBits;
  while (block.passes < passEnd) {
    Piece piece;
    piece.opensSegment = opensSegment(block.passes, style);
    piece.passes = std::min(passEnd, endOfSegment(block.passes, style)) - block.passes;
    const int32_t lengthBits = block.lengthBits + std::bit_width(static_cast<uint32_t>(piece.passes)) - 1;
    if (lengthBits > 31) return false;
    piece.length = static_cast<int32_t>(bits.bits(lengthBits));
    block.passes += piece.passes;
    pending_.push_back({&block, piece});
  }
  return !bits.ended() && block.passes <= kMaxPasses;
}

// Of a piece that is cut, so many passes are taken as its bytes suffice for: the first ones are the shortest.
bool PacketReader::readBody(bool keep) {
  for (Pending& pending : pending_) {
    Piece& piece = pending.piece;
    const size_t length = static_cast<size_t>(piece.length);
    const bool whole = length <= data_.size();
    if (!whole) {
      piece.passes = static_cast<int32_t>(int64_t{piece.passes} * static_cast<int64_t>(data_.size()) / piece.length);
      piece.length = static_cast<int32_t>(data_.size());
      problem_ = "ends early";
    }
    piece.bytes = data_.data();
    if (keep && piece.passes > 0) append(*pending.block, piece);
    if (!whole) return false;
    data_ = data_.subspan(length);
  }
  return true;
}

void PacketReader::append(PacketBlock& block, const Piece& piece) {
  const int32_t number = static_cast<int32_t>(pieces_.size());
  pieces_.push_back(piece);
  if (block.lastPiece < 0) {
    block.firstPiece = number;
  } else {
    pieces_[static_cast<size_t>(block.lastPiece)].next = number;
  }
  block.lastPiece = number;
}

}  // namespace examples::jpeg2k
