#include "dds/dds_file.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "common/error.h"

namespace examples::dds {
namespace {

// Offsets in the file and flags, as "Programming Guide for DDS" of the DirectX documentation gives them.
constexpr size_t kHeaderBytes = 128, kDx10Bytes = 20;
constexpr size_t kSize = 4, kFlags = 8, kHeight = 12, kWidth = 16, kLinearSize = 20, kMipMapCount = 28, kReserved = 32,
                 kPixelFormatSize = 76, kPixelFormatFlags = 80, kFourCC = 84, kCaps = 108, kCaps2 = 112;
constexpr size_t kDxgiFormat = 128, kDimension = 132, kMiscFlags = 136, kArraySize = 140;
constexpr uint32_t kRequiredFlags = 0x1007, kHasMipMapCount = 0x20000, kHasLinearSize = 0x80000;
constexpr uint32_t kHasFourCC = 4;
constexpr uint32_t kIsTexture = 0x1000, kIsComplex = 8, kIsMipMap = 0x400000;
constexpr uint32_t kCubeOrVolume = 0x200 | 0x200000, kDx10Cube = 4, kTwoDimensional = 3;

// What this codec puts among the reserved bytes of a DXT5 file whose pixels are scaled Y, Co, Cg.
constexpr char kYCoCgMark[] = "YCoCg-DXT5";

constexpr int32_t kMaxSide = 1 << 20;

uint32_t fourCC(const char (&text)[5]) {
  uint32_t code = 0;
  for (size_t i = 0; i < 4; ++i) code |= uint32_t{static_cast<uint8_t>(text[i])} << 8 * i;
  return code;
}

uint32_t wordAt(std::span<const uint8_t> bytes, size_t at) {
  uint32_t word = 0;
  for (size_t i = 0; i < 4; ++i) word |= uint32_t{bytes[at + i]} << 8 * i;
  return word;
}

void putWord(std::vector<uint8_t>& bytes, size_t at, uint32_t word) {
  for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(word >> 8 * i);
}

int32_t sideAt(std::span<const uint8_t> file, size_t at, const char* what) {
  const uint32_t side = wordAt(file, at);
  if (side < 1 || side > kMaxSide) throw Error("a " + std::string(what) + " of " + std::to_string(side) + " pixels");
  return static_cast<int32_t>(side);
}

Format dx10Format(std::span<const uint8_t> file) {
  const uint32_t dxgi = wordAt(file, kDxgiFormat);
  if (wordAt(file, kDimension) != kTwoDimensional || (wordAt(file, kMiscFlags) & kDx10Cube) != 0 ||
      wordAt(file, kArraySize) > 1) {
    throw Error("cube maps, volumes and arrays are not supported");
  }
  // Typeless, UNORM and UNORM_SRGB of each.
  if (dxgi >= 70 && dxgi <= 72) return Format::dxt1;
  if (dxgi >= 73 && dxgi <= 75) return Format::dxt3;
  if (dxgi >= 76 && dxgi <= 78) return Format::dxt5;
  if (dxgi >= 97 && dxgi <= 99) return Format::bc7;
  throw Error("DXGI format " + std::to_string(dxgi) + " is not supported");
}

Format dx9Format(std::span<const uint8_t> file) {
  const uint32_t code = wordAt(file, kFourCC);
  if ((wordAt(file, kPixelFormatFlags) & kHasFourCC) == 0) throw Error("uncompressed pixels are not supported");
  if (code == fourCC("DXT1")) return Format::dxt1;
  if (code == fourCC("DXT3")) return Format::dxt3;
  if (code != fourCC("DXT5")) throw Error("a compression other than DXT1, DXT3, DXT5 and BC7 is not supported");
  const bool marked = std::memcmp(&file[kReserved], kYCoCgMark, sizeof kYCoCgMark) == 0;
  return marked ? Format::ycocgDxt5 : Format::dxt5;
}

size_t headerBytes(const Texture& texture) { return kHeaderBytes + (texture.dx10 ? kDx10Bytes : 0); }

}  // namespace

const char* nameOf(Format format) {
  static constexpr const char* kNames[] = {"DXT1", "DXT3", "DXT5", "DXT5 of YCoCg", "BC7"};
  return kNames[static_cast<int>(format)];
}

Level Texture::level(int32_t number) const {
  const int32_t w = std::max(1, width >> number), h = std::max(1, height >> number);
  const size_t blocks = static_cast<size_t>((w + 3) / 4) * static_cast<size_t>((h + 3) / 4);
  return {w, h, blocks * (format == Format::dxt1 ? 8 : 16)};
}

int32_t fullChain(int32_t width, int32_t height) {
  return std::bit_width(static_cast<uint32_t>(std::max(width, height)));
}

Texture parse(std::span<const uint8_t> file) {
  if (file.size() < 4 || wordAt(file, 0) != fourCC("DDS ")) throw Error("not a DDS file");
  if (file.size() < kHeaderBytes) throw Error("the file ends in its header");
  if (wordAt(file, kSize) != 124 || wordAt(file, kPixelFormatSize) != 32) throw Error("a header of an unknown size");
  Texture texture;
  texture.width = sideAt(file, kWidth, "width");
  texture.height = sideAt(file, kHeight, "height");
  texture.dx10 = wordAt(file, kFourCC) == fourCC("DX10");
  if (texture.dx10 && file.size() < kHeaderBytes + kDx10Bytes) throw Error("the file ends in its header");
  if ((wordAt(file, kCaps2) & kCubeOrVolume) != 0) throw Error("cube maps, volumes and arrays are not supported");
  texture.format = texture.dx10 ? dx10Format(file) : dx9Format(file);
  const uint32_t levels = (wordAt(file, kFlags) & kHasMipMapCount) != 0 ? wordAt(file, kMipMapCount) : 1;
  const auto most = static_cast<uint32_t>(fullChain(texture.width, texture.height));
  texture.levels = static_cast<int32_t>(std::clamp<uint32_t>(levels, 1, most));
  size_t bytes = headerBytes(texture);
  for (int32_t i = 0; i < texture.levels; ++i) bytes += texture.level(i).bytes;
  if (file.size() < bytes) {
    throw Error("the file has " + std::to_string(file.size()) + " bytes of " + std::to_string(bytes));
  }
  return texture;
}

std::span<const uint8_t> blocksOf(std::span<const uint8_t> file, const Texture& texture, int32_t level) {
  size_t at = headerBytes(texture);
  for (int32_t i = 0; i < level; ++i) at += texture.level(i).bytes;
  return file.subspan(at, texture.level(level).bytes);
}

std::vector<uint8_t> makeHeaders(const Texture& texture) {
  const bool dx10 = texture.dx10 || texture.format == Format::bc7, chain = texture.levels > 1;
  std::vector<uint8_t> file(kHeaderBytes + (dx10 ? kDx10Bytes : 0));
  putWord(file, 0, fourCC("DDS "));
  putWord(file, kSize, 124);
  putWord(file, kFlags, kRequiredFlags | kHasLinearSize | (chain ? kHasMipMapCount : 0));
  putWord(file, kHeight, static_cast<uint32_t>(texture.height));
  putWord(file, kWidth, static_cast<uint32_t>(texture.width));
  putWord(file, kLinearSize, static_cast<uint32_t>(texture.level(0).bytes));
  putWord(file, kMipMapCount, static_cast<uint32_t>(texture.levels));
  putWord(file, kPixelFormatSize, 32);
  putWord(file, kPixelFormatFlags, kHasFourCC);
  putWord(file, kCaps, kIsTexture | (chain ? kIsComplex | kIsMipMap : 0));
  if (texture.format == Format::ycocgDxt5) std::memcpy(&file[kReserved], kYCoCgMark, sizeof kYCoCgMark);
  if (dx10) {
    static constexpr uint32_t kDxgi[] = {71, 74, 77, 77, 98};
    putWord(file, kFourCC, fourCC("DX10"));
    putWord(file, kDxgiFormat, kDxgi[static_cast<int>(texture.format)]);
    putWord(file, kDimension, kTwoDimensional);
    putWord(file, kArraySize, 1);
  } else {
    const bool dxt1 = texture.format == Format::dxt1, dxt3 = texture.format == Format::dxt3;
    putWord(file, kFourCC, fourCC(dxt1 ? "DXT1" : dxt3 ? "DXT3" : "DXT5"));
  }
  return file;
}

}  // namespace examples::dds
