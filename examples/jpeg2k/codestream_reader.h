// Reads the headers of a codestream and finds the data of each tile (T.800 Annex A).
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/byte_reader.h"
#include "jpeg2k/geometry.h"
#include "jpeg2k/parameters.h"

namespace examples::jpeg2k {

// Parameters as headers give them, one segment overriding another (T.800 A.6).
class CodingHeaders {
 public:
  explicit CodingHeaders(const ImageSize& size);

  // False if the segment is not one of COD, COC, QCD, QCC, RGN and POC. Throws Error for what is damaged.
  bool read(uint16_t marker, ByteReader in);
  // The main header's parameters become the defaults of a tile's.
  void beginTile();
  // Throws Error if parameters are missing or contradict each other.
  void check() const;

  const TileCoding& coding() const { return coding_; }

 private:
  int32_t componentNumber(ByteReader& in) const;
  void readCodingDefault(ByteReader in);
  void readCodingComponent(ByteReader in);
  void readQuantizationDefault(ByteReader in);
  void readQuantizationComponent(ByteReader in);
  void readRegion(ByteReader in);
  void readProgressionChanges(ByteReader in);

  TileCoding coding_;
  bool hasCoding_ = false;
  bool hasQuantization_ = false;
  bool ownVolumes_ = false;            // POC of this header
  std::vector<bool> ownStyle_;         // COC of this header
  std::vector<bool> ownQuantization_;  // QCC of this header
};

// What the tile-parts of a tile hold.
struct TileData {
  struct Header {
    uint16_t marker;
    std::span<const uint8_t> content;
  };
  std::vector<Header> headers;  // those that override the main header's
  std::vector<std::span<const uint8_t>> parts;
  // Packet headers that stand apart from their packets (PPM, PPT).
  bool packed = false;
  std::vector<uint8_t> packetHeaders;
};

class CodestreamReader {
 public:
  // Reads the main header. Throws Error if the codestream is not one that is supported.
  explicit CodestreamReader(std::span<const uint8_t> codestream);

  // Goes through all tile-parts.
  void readTiles();

  const ImageSize& size() const { return size_; }
  const TileCoding& mainCoding() const { return main_->coding(); }
  // By their numbers; those without any data have no parts.
  std::vector<TileData>& tiles() { return tiles_; }
  // What holds for a tile that has headers of its own, null for others. Throws Error for what is damaged.
  std::unique_ptr<CodingHeaders> ownHeaders(const TileData& tile) const;
  // Counts the precincts of a tile to be decoded. Throws Error if they are more than the file can hold.
  void addPrecincts(const Tile& tile);
  // What stopped readTiles() before the end; empty if nothing did.
  const std::string& problem() const { return problem_; }

 private:
  uint16_t nextMarker();
  ByteReader segment();
  void readSize(ByteReader in);
  void checkMemory() const;
  void readTilePart();
  void readTilePartHeader(TileData& tile);
  void takePackedHeaders(TileData& tile);

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
  ImageSize size_;
  std::unique_ptr<CodingHeaders> main_;
  std::map<int32_t, std::span<const uint8_t>> packedSegments_;  // PPM, by their numbers
  std::vector<uint8_t> packed_;                                 // joined
  size_t packedPosition_ = 0;
  std::vector<TileData> tiles_;
  int64_t precincts_ = 0;  // of the tiles decoded
  std::string problem_;
};

}  // namespace examples::jpeg2k
