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

}  // namespace

void registerComparisons() {
  for (const Format& format : {kDxt1, kDxt3, kDxt5}) compareDecode(format);
}

}  // namespace zorj::bench
