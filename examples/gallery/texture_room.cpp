#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "dds/codec.h"
#include "gallery/gallery.h"
#include "gallery/independent.h"

namespace examples::gallery {
namespace {

constexpr int32_t kSide = 4, kPixels = kSide * kSide;

// Writes fields of a block from its lowest bit on.
class BlockWriter {
 public:
  explicit BlockWriter(uint8_t* block) : block_(block) { std::fill_n(block_, 16, uint8_t{0}); }
  void put(uint32_t value, int bits) {
    for (int i = 0; i < bits; ++i, ++at_) {
      block_[at_ / 8] = static_cast<uint8_t>(block_[at_ / 8] | (value >> i & 1) << at_ % 8);
    }
  }

 private:
  uint8_t* block_;
  int at_ = 0;
};

// A BC7 block in mode 6: the corners of the box of the block's colours in 7 bits and a low bit of 1, and for each pixel
// the nearer of 16 steps between. The library only decodes BC7; this is as plain as an encoder can be.
void encodeMode6(const uint8_t (&pixels)[kPixels][3], uint8_t* block) {
  int low[3], high[3];
  for (int c = 0; c < 3; ++c) {
    low[c] = high[c] = pixels[0][c];
    for (const auto& pixel : pixels) {
      low[c] = std::min<int>(low[c], pixel[c]);
      high[c] = std::max<int>(high[c], pixel[c]);
    }
  }
  int indices[kPixels];
  int64_t length = 0;
  for (int c = 0; c < 3; ++c) length += int64_t{high[c] - low[c]} * (high[c] - low[c]);
  for (int i = 0; i < kPixels; ++i) {
    int64_t along = 0;
    for (int c = 0; c < 3; ++c) along += int64_t{pixels[i][c] - low[c]} * (high[c] - low[c]);
    indices[i] = length == 0 ? 0 : static_cast<int>((along * 15 + length / 2) / length);
  }
  // The first pixel's index has no highest bit.
  if (indices[0] > 7) {
    std::swap(low, high);
    for (int& index : indices) index = 15 - index;
  }
  BlockWriter writer(block);
  writer.put(1U << 6, 7);
  for (int c = 0; c < 3; ++c) {
    writer.put(static_cast<uint32_t>(low[c]) / 2, 7);
    writer.put(static_cast<uint32_t>(high[c]) / 2, 7);
  }
  writer.put(127, 7);
  writer.put(127, 7);
  writer.put(3, 2);
  for (int i = 0; i < kPixels; ++i) writer.put(static_cast<uint32_t>(indices[i]), i == 0 ? 3 : 4);
}

// The texture of a grey picture decodes to three equal channels.
Image likeOriginal(const Image& decoded, int32_t channels) {
  Image image(decoded.width, decoded.height, channels);
  const uint8_t* from = decoded.samples.data();
  for (auto to = image.samples.begin(); to != image.samples.end(); to += channels, from += decoded.channels) {
    std::copy_n(from, channels, to);
  }
  return image;
}

Bytes encodeBc7(const Image& image) {
  dds::Texture texture;
  texture.format = dds::Format::bc7;
  texture.width = image.width;
  texture.height = image.height;
  Bytes file = dds::makeHeaders(texture);
  for (int32_t y = 0; y < image.height; y += kSide) {
    for (int32_t x = 0; x < image.width; x += kSide) {
      uint8_t pixels[kPixels][3];
      for (int32_t i = 0; i < kPixels; ++i) {
        const uint8_t* const from =
            image.at(std::min(x + i % kSide, image.width - 1), std::min(y + i / kSide, image.height - 1));
        for (int32_t c = 0; c < 3; ++c) pixels[i][c] = from[image.channels == 1 ? 0 : c];
      }
      file.resize(file.size() + 16);
      encodeMode6(pixels, file.data() + file.size() - 16);
    }
  }
  return file;
}

// The most by which colours of DXT differ: Pillow repeats their high bits in their low bits, the library leaves these
// 0.
constexpr int kLowBits = 8;

// Pillow gives the scaled Co and Cg, the scale and Y for red, green, blue and opacity. The verdict is on what the low
// bits of Co and Cg do not explain.
Verdict askPillowForYCoCg(const Gallery& gallery, const Exhibit& exhibit) {
  const auto [installed, rgba] = decodeWithPillow(gallery, exhibit.fileName);
  if (!installed) return {};
  Verdict verdict{"Pillow", !rgba.empty(), 0, 1};
  const int32_t channels = exhibit.picture.channels;
  const uint8_t* ours = exhibit.picture.samples.data();
  for (size_t i = 0; i < rgba.size(); i += 4, ours += channels) {
    const int scale = 1 + rgba[i + 2] / 8, y = rgba[i + 3];
    const double co = double(rgba[i] - 128) / scale, cg = double(rgba[i + 1] - 128) / scale;
    const double rgb[] = {y + co - cg, y + cg, y - co - cg};
    for (int32_t c = 0; c < channels; ++c) {
      const double difference = std::abs(ours[c] - std::clamp(rgb[c], 0.0, 255.0)) - 2.0 * kLowBits / scale;
      verdict.difference = std::max(verdict.difference, static_cast<int>(std::lround(difference)));
    }
  }
  return verdict;
}

}  // namespace

void showTextures(Gallery& gallery) {
  using dds::Format;
  const struct {
    const char* name;
    const char* fileName;
    Format format;
    int allowed;
    const char* comment;
  } rows[] = {
      {"DXT1", "dxt1.dds", Format::dxt1, kLowBits, "Two colours in each block of 4 x 4 pixels, and two between them."},
      {"DXT5", "dxt5.dds", Format::dxt5, kLowBits, "DXT1 and opacity, which this picture has no use for."},
      {"YCoCg in DXT5", "ycocg-dxt5.dds", Format::ycocgDxt5, 0,
       "The luminance takes the better coded place of the opacity: for decoders that know."},
      {"BC7", "bc7.dds", Format::bc7, 0,
       "The library decodes all eight modes; it does not encode them, and the demo's own simple encoder uses one."},
  };
  for (const auto& [name, fileName, format, allowed, comment] : rows) {
    Exhibit exhibit;
    exhibit.family = "Texture";
    exhibit.name = name;
    exhibit.fileName = fileName;
    exhibit.comment = comment;
    exhibit.decodedOnly = format == Format::bc7;
    const Exhibit& shown = gallery.show(
        exhibit,
        [format = format](const Image& image) {
          return format == Format::bc7 ? encodeBc7(image) : dds::encode(image, format, false);
        },
        [&](std::span<const uint8_t> file) { return likeOriginal(dds::decode(file), gallery.original().channels); },
        [&, format = format, allowed = allowed](const Exhibit& decoded, const Bytes&) {
          return format == Format::ycocgDxt5 ? askPillowForYCoCg(gallery, decoded)
                                             : askPillow(gallery, decoded, allowed);
        });
    gallery.draw(shown);
  }
}

}  // namespace examples::gallery
