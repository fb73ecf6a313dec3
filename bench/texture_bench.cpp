// Texture blocks: decoding against libsquish and against writing as many bytes, encoding against stb_dxt's and
// libsquish's fastest modes, with the quality of each beside it.
#include <squish.h>
#include <zorj.h>

#include <array>
#include <cmath>
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

using EncodeBlock = void (*)(uint8_t* block, const uint8_t* pixels);

// Pixels of a photograph, whole blocks of it, as rows and as blocks one after the other.
struct Photograph {
  RoiSize size;
  Bytes rows;
  Bytes blocks;

  Photograph() {
    const examples::Image image = examples::readImage(ZORJ_PHOTOGRAPH);
    size = {image.width & ~3, image.height & ~3};
    for (int32_t y = 0; y < size.height; ++y) {
      for (int32_t x = 0; x < size.width; ++x) {
        const uint8_t* const pixel = image.at(x, y);
        // An alpha with some structure.
        rows.insert(rows.end(), {pixel[0], pixel[1], pixel[2], static_cast<uint8_t>((pixel[0] + 3 * pixel[1]) / 4)});
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

double psnr(const Bytes& a, const Bytes& b, size_t channels) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    if (i % 4 < channels) sum += (a[i] - b[i]) * (a[i] - b[i]);
  }
  return 10 * std::log10(255.0 * 255 * static_cast<double>(a.size() / 4 * channels) / sum);
}

// Of the photograph and what libsquish decodes of the blocks.
std::string quality(const Photograph& photograph, const Bytes& encoded, const Format& format) {
  Bytes decoded(photograph.blocks.size());
  for (size_t i = 0; i < decoded.size() / 64; ++i) {
    squish::Decompress(&decoded[64 * i], &encoded[format.blockBytes * i], format.squishFlags);
  }
  char text[20];
  std::snprintf(text, sizeof text, "%.2f dB", psnr(photograph.blocks, decoded, format.blockBytes == 8 ? 3 : 4));
  return text;
}

void compareEncode(const std::shared_ptr<Photograph>& photograph, const Format& format,
                   StatusCode(ZORJ_CALL* encode)(const uint8_t*, int32_t, RoiSize, uint8_t*), bool withStb) {
  const auto encoded = std::make_shared<Bytes>(photograph->blocks.size() / 64 * format.blockBytes);
  const auto run = [=] {
    encode(photograph->rows.data(), 4 * photograph->size.width, photograph->size, encoded->data());
  };
  const auto peer = [=](const EncodeBlock encodeBlock) {
    return [=] {
      for (size_t i = 0; i < photograph->blocks.size() / 64; ++i) {
        encodeBlock(&(*encoded)[format.blockBytes * i], &photograph->blocks[64 * i]);
      }
    };
  };
  const bool alpha = format.blockBytes == 16;
  const auto stb = peer(alpha ? EncodeBlock{[](uint8_t* block, const uint8_t* pixels) {
    stb_compress_dxt_block(block, pixels, 1, STB_DXT_NORMAL);
  }}
                              : EncodeBlock{[](uint8_t* block, const uint8_t* pixels) {
                                  stb_compress_dxt_block(block, pixels, 0, STB_DXT_NORMAL);
                                }});
  static constexpr auto kFlags = squish::kColourRangeFit;
  const auto rangeFit =
      peer(format.squishFlags == squish::kDxt1   ? EncodeBlock{[](uint8_t* block, const uint8_t* pixels) {
        squish::Compress(pixels, block, squish::kDxt1 | kFlags);
      }}
           : format.squishFlags == squish::kDxt3 ? EncodeBlock{[](uint8_t* block, const uint8_t* pixels) {
               squish::Compress(pixels, block, squish::kDxt3 | kFlags);
             }}
                                                 : EncodeBlock{[](uint8_t* block, const uint8_t* pixels) {
                                                     squish::Compress(pixels, block, squish::kDxt5 | kFlags);
                                                   }});
  run();
  std::string row = std::string(format.name) + " encode (" + quality(*photograph, *encoded, format);
  std::vector<Variant> variants = {{"AVX2", run, Isa::kAvx2},
                                   {"AVX-512", run, Isa::kAvx512},
                                   {"SSE4", run, Isa::kSse4},
                                   {"portable", run, Isa::kPortable},
                                   {"libsquish range fit", rangeFit}};
  if (withStb) {
    stb();
    row += ", stb_dxt " + quality(*photograph, *encoded, format);
    variants.push_back({"stb_dxt", stb});
  }
  rangeFit();
  row += ", libsquish " + quality(*photograph, *encoded, format) + ")";
  compare(row, photograph->pixelCount(), "pixels", variants);
}

}  // namespace

void registerComparisons() {
  for (const Format& format : {kDxt1, kDxt3, kDxt5}) compareDecode(format);
  compareBc7();
  const auto photograph = std::make_shared<Photograph>();
  compareEncode(photograph, kDxt1, &zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, true);
  compareEncode(photograph, kDxt3, &zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, false);
  compareEncode(photograph, kDxt5, &zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, true);
}

}  // namespace zorj::bench
