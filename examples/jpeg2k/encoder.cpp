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

// The squared error of a picture with this quality.
double errorOf(const ImageSize& size, double psnr) {
  const double peak = (1 << size.components[0].precision) - 1;
  return peak * peak / std::pow(10, psnr / 10) * sampleCount(size);
}

// The squared error that rounding the samples adds.
double roundingError(const ImageSize& size) { return sampleCount(size) / 12; }

template <class Sample>
double errorOf(const BasicImage<Sample>& image, std::span<const uint8_t> file, int32_t threads) {
  DecodeOptions options;
  options.threads = threads;
  std::vector<ComponentSamples> components;
  decodeComponents(file, options, components);
  const size_t channels = components.size();
  double sum = 0;
  for (size_t c = 0; c < channels; ++c) {
    const std::vector<uint16_t>& samples = components[c].samples;
    for (size_t i = 0; i < samples.size(); ++i) {
      const double error = int32_t{samples[i]} - int32_t{image.samples[i * channels + c]};
      sum += error * error;
    }
  }
  return sum;
}

template <class T>
class ImageEncoder {
 public:
  template <class Sample>
  ImageEncoder(const BasicImage<Sample>& image, EncodeSettings& settings, const EncodeOptions& options)
      : settings_(settings),
        options_(options),
        tiles_(makeTiles(settings)),
        transform_(image, rects(), options.levels, settings.coding.colorTransform, options.threads),
        list_(settings, tiles_, transform_, options),
        frame_(settings, options.codestreamOnly) {}

  void encodeAll(std::vector<uint8_t>& bytes) {
    list_.codeEverything();
    writeFile(slopes({}), bytes);
  }

  void encodeToBytes(int64_t most, std::vector<uint8_t>& bytes) {
    list_.codeForBytes(most);
    writeFile(slopesOfNeededPasses([&] { return LayerTarget{LayerTarget::Kind::bytes, most, 0, 0}; }), bytes);
  }

  // The norms of the subbands tell of the picture's error as if those of coefficients had nothing in common: decoding
  // tells how far that is wrong. Of the files that are good enough the smallest is taken.
  template <class Sample>
  void encodeToError(double wanted, const BasicImage<Sample>& image, std::vector<uint8_t>& bytes) {
    constexpr int kAttempts = 4, kMostAttempts = 16;
    constexpr double kNear = 0.99, kAim = 0.997;
    const double rounding = roundingError(settings_.size);
    double allowed = std::max(kAim * wanted - rounding, 0.0), tooMuch = INFINITY, best = -1;
    list_.codeForError(allowed);
    std::vector<uint8_t> attempted;
    for (int attempt = 1; attempt <= kAttempts || (best < 0 && attempt <= kMostAttempts); ++attempt) {
      const auto target = [&] { return LayerTarget{LayerTarget::Kind::gain, 0, list_.error() - allowed, 0}; };
      writeFile(slopesOfNeededPasses(target), attempted);
      const double error = errorOf(image, attempted, options_.threads);
      if (error > wanted) tooMuch = allowed;
      if (error <= wanted ? error > best : best < 0) bytes.swap(attempted);
      if (error <= wanted) best = std::max(best, error);
      if (best >= kNear * wanted || allowed == 0 || error <= rounding) return;
      allowed *= std::max(kAim * wanted - rounding, 0.0) / (error - rounding);
      if (allowed >= tooMuch) allowed = 0.995 * tooMuch;
    }
  }

 private:
  std::vector<Rect> rects() const {
    std::vector<Rect> rects;
    for (const TileBlocks& tile : tiles_) rects.push_back(tile.tile.rect);
    return rects;
  }

  LayerSlopes slopes(LayerTarget target) {
    const int32_t guardBits = list_.guardBits(settings_.coding.components[0].quantization);
    for (ComponentCoding& coding : settings_.coding.components) coding.quantization.guardBits = guardBits;
    target.otherBytes = frame_.bytes(tiles_.size());
    return allocateLayers(tiles_, settings_.coding, list_.blocks(), target);
  }

  // Where passes turn out to be needed that have been left out, the blocks are coded again.
  template <class MakeTarget>
  LayerSlopes slopesOfNeededPasses(const MakeTarget& makeTarget) {
    LayerSlopes found = slopes(makeTarget());
    while (list_.codeFurther(found.back())) found = slopes(makeTarget());
    return found;
  }

  void writeFile(const LayerSlopes& slopes, std::vector<uint8_t>& bytes) const {
    size_t codewords = 0;
    for (const CodedBlock& block : list_.blocks()) codewords += block.codeword.size();
    bytes.clear();
    bytes.reserve(codewords);
    ByteWriter file(bytes);
    const size_t start = frame_.begin(file);
    for (const TileBlocks& tile : tiles_) {
      const size_t part = beginTilePart(tile.tile.number, file);
      PacketWriter writer(tile, settings_.coding, list_.blocks());
      PacketOrder order(settings_.size, tile.tile, settings_.coding);
      Packet packet;
      while (order.next(packet)) writer.write(packet, slopes[static_cast<size_t>(packet.layer)], true, bytes);
      endTilePart(part, file);
    }
    frame_.end(start, file);
  }

  EncodeSettings& settings_;
  const EncodeOptions& options_;
  std::vector<TileBlocks> tiles_;
  TileTransform<T> transform_;
  BlockList<T> list_;
  FileFrame frame_;
};

template <class Sample>
void encodeImage(const BasicImage<Sample>& image, const EncodeOptions& options, std::vector<uint8_t>& file) {
  // The coefficients of samples of so many bits stay small enough for words of 16 bits.
  constexpr int32_t kSmallPrecision = 10;
  EncodeSettings settings = makeSettings(image.width, image.height, image.channels, image.precision, options);
  if (options.ratio > 0) {
    ImageEncoder<float>(image, settings, options).encodeToBytes(targetBytes(settings.size, options.ratio), file);
  } else if (options.psnr > 0) {
    ImageEncoder<float>(image, settings, options).encodeToError(errorOf(settings.size, options.psnr), image, file);
  } else if (image.precision <= kSmallPrecision) {
    ImageEncoder<int16_t>(image, settings, options).encodeAll(file);
  } else {
    ImageEncoder<int32_t>(image, settings, options).encodeAll(file);
  }
}

}  // namespace

void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& file) {
  encodeImage(image, options, file);
}

void encode(const DeepImage& image, const EncodeOptions& options, std::vector<uint8_t>& file) {
  encodeImage(image, options, file);
}

}  // namespace examples::jpeg2k
