// Texture blocks: decoding against libsquish and against writing as many bytes, encoding against stb_dxt's and
// libsquish's fastest modes, with the quality of each beside it.
#include <squish.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "common/image_file.h"
#include "support/compare.h"

#define STB_DXT_STATIC
#define STB_DXT_IMPLEMENTATION
#include <stb/stb_dxt.h>

namespace zorj::bench {
namespace {

using Bytes = std::vector<uint8_t>;
using Decode = StatusCode(ZORJ_CALL*)(const uint8_t*, uint8_t*, int32_t, RoiSize);

struct Format {
  const char* name;
  Decode decode;
  size_t blockBytes;
  int squishFlags;
};
constexpr Format kDxt1 = {"DXT1", &zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, 8, squish::kDxt1};
constexpr Format kDxt3 = {"DXT3", &zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, 16, squish::kDxt3};
constexpr Format kDxt5 = {"DXT5", &zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, 16, squish::kDxt5};

size_t blockCount(RoiSize size) { return static_cast<size_t>(size.width / 4) * static_cast<size_t>(size.height / 4); }

// The blocks of a texture and the pixels they decode to.
struct Texture {
  RoiSize size;
  Bytes blocks;
  Bytes pixels;

  Texture(RoiSize textureSize, size_t blockBytes)
      : size(textureSize), blocks(blockCount(size) * blockBytes), pixels(blockCount(size) * 64, 1) {
    std::mt19937 random(1);
    for (uint8_t& byte : blocks) byte = static_cast<uint8_t>(random());
  }
  double pixelCount() const { return static_cast<double>(pixels.size()) / 4; }
};

void decodeWithSquish(const Texture& texture, size_t blockBytes, int flags) {
  std::array<uint8_t, 64> pixels;
  for (size_t at = 0; at < texture.blocks.size(); at += blockBytes) {
    squish::Decompress(pixels.data(), &texture.blocks[at], flags);
    benchmark::DoNotOptimize(pixels);
  }
}

void compareDecode(const Format& format) {
  for (const auto& [where, side] : {std::pair("L2", 256), std::pair("DRAM", 8192)}) {
    const auto texture = std::make_shared<Texture>(RoiSize{side, side}, format.blockBytes);
    const auto run = [=] { format.decode(texture->blocks.data(), texture->pixels.data(), 4 * side, texture->size); };
    std::vector<Variant> variants = {
        {"AVX2", run, Isa::kAvx2}, {"AVX-512", run, Isa::kAvx512}, {"portable", run, Isa::kPortable}};
    if (side == 256) {
      variants.push_back({"SSE4", run, Isa::kSse4});
      variants.push_back({"libsquish", [=] { decodeWithSquish(*texture, format.blockBytes, format.squishFlags); }});
    }
    variants.push_back({"memset", [=] { std::memset(texture->pixels.data(), 1, texture->pixels.size()); }});
    compare(std::string(format.name) + " decode, " + where, texture->pixelCount(), "pixels", variants);
  }
}

// ---- BC7

// Random blocks of modes that are as frequent as `share` says.
void setModes(Bytes& blocks, const std::array<int, 8>& share) {
  std::mt19937 random(2);
  std::discrete_distribution<int> modes(share.begin(), share.end());
  for (size_t i = 0; i < blocks.size(); i += 16) {
    const int mode = modes(random);
    blocks[i] = static_cast<uint8_t>((blocks[i] >> (mode + 1) << 1 | 1) << mode);
  }
}

// The peer decodes as many DXT1 blocks: no package has a fast BC7 decoder.
void compareBc7() {
  const auto dxt1 = std::make_shared<Texture>(RoiSize{256, 256}, 8);
  const std::pair<const char*, std::array<int, 8>> kinds[] = {
      {"all modes alike", {1, 1, 1, 1, 1, 1, 1, 1}}, {"modes as encoders choose them", {5, 25, 5, 15, 2, 3, 40, 5}}};
  for (const auto& [name, share] : kinds) {
    const auto texture = std::make_shared<Texture>(RoiSize{256, 256}, 16);
    setModes(texture->blocks, share);
    const auto run = [=] {
      zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R(texture->blocks.data(), texture->pixels.data(), 4 * 256, texture->size);
    };
    std::vector<Variant> variants = atEveryLevel(run);
    variants.push_back({"libsquish DXT1", [=] { decodeWithSquish(*dxt1, 8, squish::kDxt1); }});
    compare(std::string("BC7 decode, ") + name, texture->pixelCount(), "pixels", variants);
  }
}

// ---- Encoding a photograph

// Whole blocks of a photograph, with an opacity that has structure, or none: libsquish's DXT1 leaves pixels out by it.
struct Photograph {
  RoiSize size;
  Bytes rows;
  Bytes blocks;  // the same pixels, block by block

  explicit Photograph(bool opaque) {
    const examples::Image image = examples::readImage(ZORJ_PHOTOGRAPH);
    size = {image.width & ~3, image.height & ~3};
    for (int32_t y = 0; y < size.height; ++y) {
      for (int32_t x = 0; x < size.width; ++x) {
        const uint8_t* const pixel = image.at(x, y);
        const int opacity = opaque ? 255 : (pixel[0] + 3 * pixel[1]) / 4;
        rows.insert(rows.end(), {pixel[0], pixel[1], pixel[2], static_cast<uint8_t>(opacity)});
      }
    }
    for (size_t i = 0; i < rows.size(); i += 16) {
      const size_t block = i / 64, row = i / 16 % 4, across = static_cast<size_t>(size.width) / 4;
      const uint8_t* const from = &rows[((block / across * 4 + row) * across + block % across) * 16];
      blocks.insert(blocks.end(), from, from + 16);
    }
  }
  double pixelCount() const { return static_cast<double>(rows.size()) / 4; }
};

Bytes decodedWithSquish(const Bytes& encoded, const Format& format) {
  Bytes decoded(encoded.size() / format.blockBytes * 64);
  for (size_t i = 0; i < decoded.size() / 64; ++i) {
    squish::Decompress(&decoded[64 * i], &encoded[format.blockBytes * i], format.squishFlags);
  }
  return decoded;
}

// Of the photograph's first channels, as text.
std::string quality(const Photograph& photograph, const Bytes& decoded, size_t channels) {
  double sum = 0;
  for (size_t i = 0; i < decoded.size(); ++i) {
    if (i % 4 < channels) sum += std::pow(decoded[i] - photograph.blocks[i], 2);
  }
  char text[20];
  const double count = photograph.pixelCount() * static_cast<double>(channels);
  std::snprintf(text, sizeof text, "%.2f dB", 10 * std::log10(255.0 * 255.0 * count / sum));
  return text;
}

using EncodeBlock = void (*)(uint8_t* block, const uint8_t* pixels);

template <int kAlpha>
void encodeWithStb(uint8_t* block, const uint8_t* pixels) {
  stb_compress_dxt_block(block, pixels, kAlpha, STB_DXT_NORMAL);
}
template <int kFormat>
void encodeWithSquish(uint8_t* block, const uint8_t* pixels) {
  squish::Compress(pixels, block, kFormat | squish::kColourRangeFit);
}

void compareEncode(const Format& format, StatusCode(ZORJ_CALL* encode)(const uint8_t*, int32_t, RoiSize, uint8_t*),
                   const std::vector<std::pair<std::string, EncodeBlock>>& peers) {
  const size_t channels = format.blockBytes == 8 ? 3 : 4;
  const auto photograph = std::make_shared<Photograph>(channels == 3);
  const auto encoded = std::make_shared<Bytes>(photograph->blocks.size() / 64 * format.blockBytes);
  std::vector<Variant> variants = atEveryLevel(
      [=] { encode(photograph->rows.data(), 4 * photograph->size.width, photograph->size, encoded->data()); });
  for (const auto& [name, encodeBlock] : peers) {
    variants.push_back({name, [=, encodeBlock = encodeBlock] {
                          for (size_t i = 0; i < photograph->blocks.size() / 64; ++i) {
                            encodeBlock(&(*encoded)[format.blockBytes * i], &photograph->blocks[64 * i]);
                          }
                        }});
  }
  std::string row = std::string(format.name) + " encode";
  for (size_t i = 0; i <= peers.size(); ++i) {
    const Variant& variant = i == 0 ? variants[0] : variants[variants.size() - peers.size() + i - 1];
    variant.run();
    row += (i == 0 ? ", " : ", " + variant.name + " ") +
           quality(*photograph, decodedWithSquish(*encoded, format), channels);
  }
  compare(row, photograph->pixelCount(), "pixels", variants);
}

void compareYCoCg() {
  const auto photograph = std::make_shared<Photograph>(true);
  const auto encoded = std::make_shared<Bytes>(photograph->blocks.size() / 4);
  const auto source = std::make_shared<Bytes>();
  for (size_t i = 0; i < photograph->rows.size(); i += 4) {
    const int r = photograph->rows[i], g = photograph->rows[i + 1], b = photograph->rows[i + 2];
    for (const int value : {(r + 2 * g + b + 2) / 4, (r - b + 256) / 2, (2 * g - r - b + 514) / 4}) {
      source->push_back(static_cast<uint8_t>(std::min(value, 255)));
    }
  }
  const auto run = [=] {
    zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(source->data(), 3 * photograph->size.width, photograph->size,
                                                  encoded->data());
  };
  run();
  Bytes decoded = decodedWithSquish(*encoded, kDxt5);
  for (size_t i = 0; i < decoded.size(); i += 4) {
    const int scale = 1 + (decoded[i + 2] >> 3), y = decoded[i + 3];
    const int co = (decoded[i] - 128) / scale, cg = (decoded[i + 1] - 128) / scale;
    const int colour[3] = {y + co - cg, y + cg, y - co - cg};
    for (size_t c = 0; c < 3; ++c) decoded[i + c] = static_cast<uint8_t>(std::clamp(colour[c], 0, 255));
  }
  compare("YCoCg-DXT5 encode, " + quality(*photograph, decoded, 3), photograph->pixelCount(), "pixels",
          atEveryLevel(run));
}

}  // namespace

void registerComparisons() {
  for (const Format& format : {kDxt1, kDxt3, kDxt5}) compareDecode(format);
  compareBc7();
  compareEncode(kDxt1, &zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R,
                {{"stb_dxt", &encodeWithStb<0>}, {"libsquish range fit", &encodeWithSquish<squish::kDxt1>}});
  compareEncode(kDxt3, &zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R,
                {{"libsquish range fit", &encodeWithSquish<squish::kDxt3>}});
  compareEncode(kDxt5, &zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R,
                {{"stb_dxt", &encodeWithStb<1>}, {"libsquish range fit", &encodeWithSquish<squish::kDxt5>}});
  compareYCoCg();
}

}  // namespace zorj::bench
