#include "dds/codec.h"

#include <zorj.h>

#include <algorithm>
#include <string>

#include "common/error.h"
#include "common/image_file.h"

namespace examples::dds {
namespace {

constexpr int32_t kMaxSide = 1 << 20;

void expectOk(StatusCode status) {
  if (status != StatusOk) throw Error("the library refused the texture: status " + std::to_string(status));
}

uint8_t clampToByte(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

Image toRgba(const Image& image) {
  const bool grey = image.channels < 3, opacity = image.hasOpacity;
  Image rgba(image.width, image.height, 4);
  rgba.hasOpacity = true;
  const uint8_t* from = image.samples.data();
  for (size_t i = 0; i < rgba.samples.size(); i += 4, from += image.channels) {
    for (size_t c = 0; c < 3; ++c) rgba.samples[i + c] = from[grey ? 0 : c];
    rgba.samples[i + 3] = opacity ? from[image.channels - 1] : 255;
  }
  return rgba;
}

// Halves both sides: every pixel is the mean of 2 x 2; a last odd row or column is left out.
Image halve(const Image& image) {
  Image half(std::max(1, image.width / 2), std::max(1, image.height / 2), 4);
  half.hasOpacity = true;
  for (int32_t y = 0; y < half.height; ++y) {
    for (int32_t x = 0; x < half.width; ++x) {
      const int32_t right = std::min(2 * x + 1, image.width - 1), below = std::min(2 * y + 1, image.height - 1);
      for (int32_t c = 0; c < 4; ++c) {
        const int32_t sum = image.at(2 * x, 2 * y)[c] + image.at(right, 2 * y)[c] + image.at(2 * x, below)[c] +
                            image.at(right, below)[c];
        half.at(x, y)[c] = static_cast<uint8_t>((sum + 2) / 4);
      }
    }
  }
  return half;
}

Image toYCoCg(const Image& rgba) {
  Image image(rgba.width, rgba.height, 3);
  for (size_t i = 0; i < rgba.samples.size() / 4; ++i) {
    const int32_t r = rgba.samples[4 * i], g = rgba.samples[4 * i + 1], b = rgba.samples[4 * i + 2];
    image.samples[3 * i] = static_cast<uint8_t>((r + 2 * g + b + 2) / 4);
    image.samples[3 * i + 1] = clampToByte((r - b + 256) / 2);
    image.samples[3 * i + 2] = clampToByte((2 * g - r - b + 514) / 4);
  }
  return image;
}

// DXT5's red, green, blue and alpha are scaled Co, scaled Cg, the scale, and Y.
void fromYCoCg(Image& image) {
  for (size_t i = 0; i < image.samples.size(); i += 4) {
    uint8_t* const pixel = &image.samples[i];
    const int32_t scale = 1 + (pixel[2] >> 3), y = pixel[3];
    const int32_t co = (pixel[0] - 128) / scale, cg = (pixel[1] - 128) / scale;
    pixel[0] = clampToByte(y + co - cg);
    pixel[1] = clampToByte(y + cg);
    pixel[2] = clampToByte(y - co - cg);
    pixel[3] = 255;
  }
}

// The library's DXT3 alphas are 0, 16, ..., 240: full opacity is to be 255.
void widenOpacity(Image& image) {
  for (size_t i = 3; i < image.samples.size(); i += 4) {
    image.samples[i] = static_cast<uint8_t>(image.samples[i] | image.samples[i] >> 4);
  }
}

Image withoutOpacity(const Image& rgba) {
  Image image(rgba.width, rgba.height, 3);
  for (size_t i = 0; i < rgba.samples.size() / 4; ++i) std::copy_n(&rgba.samples[4 * i], 3, &image.samples[3 * i]);
  return image;
}

void appendBlocks(const Image& rgba, Format format, size_t bytes, std::vector<uint8_t>& file) {
  const RoiSize size = {rgba.width, rgba.height};
  const size_t at = file.size();
  file.resize(at + bytes);
  if (format == Format::ycocgDxt5) {
    const Image image = toYCoCg(rgba);
    expectOk(zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R(image.samples.data(), image.step(), size, &file[at]));
    return;
  }
  const auto encodeBlocks = format == Format::dxt1   ? &zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R
                            : format == Format::dxt3 ? &zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R
                                                     : &zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R;
  expectOk(encodeBlocks(rgba.samples.data(), rgba.step(), size, &file[at]));
}

}  // namespace

std::vector<uint8_t> encode(const Image& image, Format format, bool mipmaps) {
  if (format == Format::bc7) throw Error("BC7 is decoded only");
  if (image.width > kMaxSide || image.height > kMaxSide) throw Error("the image is too large");
  Texture texture;
  texture.format = format;
  texture.width = image.width;
  texture.height = image.height;
  texture.levels = mipmaps ? fullChain(image.width, image.height) : 1;
  std::vector<uint8_t> file = makeHeaders(texture);
  Image rgba = toRgba(image.channels == 4 && !image.hasOpacity ? cmykToRgb(image) : image);
  for (int32_t i = 0; i < texture.levels; ++i) {
    if (i > 0) rgba = halve(rgba);
    appendBlocks(rgba, format, texture.level(i).bytes, file);
  }
  return file;
}

Image decode(std::span<const uint8_t> file, int32_t level) {
  const Texture texture = parse(file);
  if (level < 0 || level >= texture.levels) {
    throw Error("no level " + std::to_string(level) + ": there are " + std::to_string(texture.levels));
  }
  const Level size = texture.level(level);
  const std::span<const uint8_t> blocks = blocksOf(file, texture, level);
  const auto decodeBlocks = texture.format == Format::dxt1   ? &zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R
                            : texture.format == Format::dxt3 ? &zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R
                            : texture.format == Format::bc7  ? &zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R
                                                             : &zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R;
  Image image(size.width, size.height, 4);
  image.hasOpacity = true;
  expectOk(decodeBlocks(blocks.data(), image.samples.data(), image.step(), {size.width, size.height}));
  if (texture.format == Format::ycocgDxt5) fromYCoCg(image);
  if (texture.format == Format::dxt3) widenOpacity(image);
  for (size_t i = 3; i < image.samples.size(); i += 4) {
    if (image.samples[i] != 255) return image;
  }
  return withoutOpacity(image);
}

}  // namespace examples::dds
