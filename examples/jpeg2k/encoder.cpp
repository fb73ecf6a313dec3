#include <algorithm>
#include <cmath>

#include "jpeg2k/block_list.h"
#include "jpeg2k/codec.h"
#include "jpeg2k/codestream_writer.h"
#include "jpeg2k/encode_settings.h"
#include "jpeg2k/jp2_writer.h"
#include "jpeg2k/layer_allocation.h"
#include "jpeg2k/tile_transform.h"

namespace examples::jpeg2k {
namespace {

std::vector<TileBlocks> makeTiles(const EncodeSettings& settings) {
  std::vector<TileBlocks> tiles;
  const auto count = static_cast<int32_t>(tileCount(settings.size));
  for (int32_t i = 0; i < count; ++i) tiles.emplace_back(makeTile(settings.size, settings.coding, i));
  return tiles;
}

// What a file has before its codestream, and how long the codestream's own headers and end are.
class FileFrame {
 public:
  FileFrame(const EncodeSettings& settings, bool codestreamOnly) : settings_(settings), boxes_(!codestreamOnly) {}

  size_t begin(ByteWriter& file) const {
    const ImageSize& size = settings_.size;
    const auto channels = static_cast<int32_t>(size.components.size());
    const size_t start =
        boxes_ ? beginFile({size.image.width(), size.image.height(), channels, size.components[0].precision}, file)
               : file.size();
    writeMainHeader(size, settings_.coding, file);
    return start;
  }

  void end(size_t start, ByteWriter& file) const {
    writeEndOfCodestream(file);
    if (boxes_) endFile(start, file);
  }

  int64_t bytes(size_t tiles) const {
    std::vector<uint8_t> headers;
    ByteWriter writer(headers);
    begin(writer);
    return static_cast<int64_t>(headers.size()) + static_cast<int64_t>(tiles) * kTilePartHeader + kEndOfCodestream;
  }

 private:
  const EncodeSettings& settings_;
  bool boxes_;
};

double sampleCount(const ImageSize& size) {
  return static_cast<double>(size.image.width()) * size.image.height() * static_cast<double>(size.components.size());
}

int64_t targetBytes(const ImageSize& size, double ratio) {
  return std::max(static_cast<int64_t>(sampleCount(size) * size.components[0].precision / 8 / ratio), int64_t{1});
}

// The squared error of the picture before its samples are rounded, which adds a twelfth to each; where that is more
// than what is allowed in all, no quality will do.
double targetError(const ImageSize& size, double psnr) {
  const double peak = (1 << size.components[0].precision) - 1;
  const double mean = peak * peak / std::pow(10, psnr / 10);
  constexpr double kCommonErrors = 1.025;
  return std::max(mean - 1.0 / 12, 0.0) / kCommonErrors * sampleCount(size);
}

// Codes blocks as far as a target needs, and finds the slopes of all layers.
template <class T>
LayerSlopes codeBlocks(BlockList<T>& list, std::span<const TileBlocks> tiles, EncodeSettings& settings,
                       const EncodeOptions& options, int64_t otherBytes) {
  LayerTarget target;
  target.otherBytes = otherBytes;
  const double allowedError = options.psnr > 0 ? targetError(settings.size, options.psnr) : 0;
  Quantization& quantization = settings.coding.components[0].quantization;
  if (options.ratio > 0) {
    target.bytes = targetBytes(settings.size, options.ratio);
    list.codeForBytes(target.bytes);
  } else if (options.psnr > 0) {
    list.codeForError(allowedError);
  } else {
    list.codeEverything();
  }
  LayerSlopes slopes;
  do {
    if (options.psnr > 0) target.gain = std::max(list.error() - allowedError, 0.0);
    quantization.guardBits = list.guardBits(quantization);
    for (ComponentCoding& coding : settings.coding.components) coding.quantization = quantization;
    slopes = allocateLayers(tiles, settings.coding, list.blocks(), target);
  } while (slopes.back() != kEverything && list.codeFurther(slopes.back()));
  return slopes;
}

void writePackets(const ImageSize& size, const TileBlocks& tile, const TileCoding& coding,
                  std::span<const CodedBlock> blocks, const LayerSlopes& slopes, std::vector<uint8_t>& bytes) {
  PacketWriter writer(tile, coding, blocks);
  PacketOrder order(size, tile.tile, coding);
  Packet packet;
  while (order.next(packet)) writer.write(packet, slopes[static_cast<size_t>(packet.layer)], true, bytes);
}

template <class T, class Sample>
void encodeAs(const BasicImage<Sample>& image, EncodeSettings& settings, const EncodeOptions& options,
              std::vector<uint8_t>& bytes) {
  std::vector<TileBlocks> tiles = makeTiles(settings);
  std::vector<Rect> rects;
  for (const TileBlocks& tile : tiles) rects.push_back(tile.tile.rect);
  const TileTransform<T> transform(image, rects, options.levels, settings.coding.colorTransform, options.threads);
  BlockList<T> list(settings, tiles, transform, options);
  const FileFrame frame(settings, options.codestreamOnly);
  const LayerSlopes slopes = codeBlocks(list, tiles, settings, options, frame.bytes(tiles.size()));

  bytes.clear();
  ByteWriter file(bytes);
  const size_t start = frame.begin(file);
  for (const TileBlocks& tile : tiles) {
    const size_t part = beginTilePart(tile.tile.number, file);
    writePackets(settings.size, tile, settings.coding, list.blocks(), slopes, bytes);
    endTilePart(part, file);
  }
  frame.end(start, file);
}

template <class Sample>
void encodeImage(const BasicImage<Sample>& image, const EncodeOptions& options, std::vector<uint8_t>& file) {
  // The coefficients of samples of so many bits stay small enough for words of 16 bits.
  constexpr int32_t kSmallPrecision = 10;
  EncodeSettings settings = makeSettings(image.width, image.height, image.channels, image.precision, options);
  if (!settings.coding.components[0].style.reversible) return encodeAs<float>(image, settings, options, file);
  if (image.precision > kSmallPrecision) return encodeAs<int32_t>(image, settings, options, file);
  encodeAs<int16_t>(image, settings, options, file);
}

}  // namespace

void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& file) {
  encodeImage(image, options, file);
}

void encode(const DeepImage& image, const EncodeOptions& options, std::vector<uint8_t>& file) {
  encodeImage(image, options, file);
}

}  // namespace examples::jpeg2k
