#include <algorithm>

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

std::vector<uint8_t> encodeBc7(const Image& image) {
  dds::Texture texture;
  texture.format = dds::Format::bc7;
  texture.width = image.width;
  texture.height = image.height;
  std::vector<uint8_t> file = dds::makeHeaders(texture);
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

// A texture of a grey picture is coloured grey.
Image likeOriginal(const Image& decoded, const Image& original) {
  Image image(decoded.width, decoded.height, original.channels);
  const uint8_t* from = decoded.samples.data();
  for (auto to = image.samples.begin(); to != image.samples.end(); to += image.channels, from += decoded.channels) {
    std::copy_n(from, image.channels, to);
  }
  return image;
}

}  // namespace

void showTextures(Gallery& gallery) {
  using dds::Format;
  const struct {
    const char* name;
    const char* fileName;
    Format format;
    int allowed;  // difference from another decoder
    const char* comment;
  } rows[] = {
      {"DXT1", "dxt1.dds", Format::dxt1, 8, "4 bits a pixel, two colours and two between in each block."},
      {"DXT5", "dxt5.dds", Format::dxt5, 8, "DXT1 and opacity, of which this picture has none."},
      {"YCoCg in DXT5", "ycocg-dxt5.dds", Format::ycocgDxt5, -1, "For decoders that know: light in the opacity."},
      {"BC7", "bc7.dds", Format::bc7, 0, "Decoded by the library; the demo's own encoder knows one mode of eight."},
  };
  for (const auto& row : rows) {
    Exhibit exhibit;
    exhibit.family = "Texture";
    exhibit.name = row.name;
    exhibit.fileName = row.fileName;
    exhibit.comment = row.comment;
    exhibit = gallery.take(
        std::move(exhibit),
        [&] {
          return row.format == Format::bc7 ? encodeBc7(gallery.original())
                                           : dds::encode(gallery.original(), row.format, false);
        },
        [&](const std::vector<uint8_t>& file) { return likeOriginal(dds::decode(file), gallery.original()); });
    if (row.allowed >= 0) {
      checkWithPillow(gallery, row.allowed, exhibit);
    } else {
      exhibit.check = "-";
    }
    gallery.show({exhibit.name, {gallery.point(exhibit.bytes, exhibit.picture)}});
    gallery.show(std::move(exhibit));
  }
}

}  // namespace examples::gallery
