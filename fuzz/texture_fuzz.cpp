// DXT and BC7 blocks to pixels and pixels to DXT blocks: images of every size, step and direction.
#include <zorj.h>

#include "reference/bc7.h"
#include "reference/dxt.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

using reference::BlockPixels;
using reference::Rgba;

struct Decoder {
  StatusCode(ZORJ_CALL* subject)(const uint8_t*, uint8_t*, int32_t, RoiSize);
  size_t blockBytes;
  Rgba (*model)(const uint8_t* block, int x, int y);
};
constexpr Decoder kDecoders[] = {
    {&zoriTextureDecodeBlockToRGBA_DXT1_8u_C1C4R, 8, &reference::dxt1Pixel},
    {&zoriTextureDecodeBlockToRGBA_DXT3_8u_C1C4R, 16, &reference::dxt3Pixel},
    {&zoriTextureDecodeBlockToRGBA_DXT5_8u_C1C4R, 16, &reference::dxt5Pixel},
    {&zoriTextureDecodeBlockToRGBA_BC7_8u_C1C4R, 16, &reference::bc7Pixel},
};

struct Encoder {
  StatusCode(ZORJ_CALL* subject)(const uint8_t*, int32_t, RoiSize, uint8_t*);
  size_t channels;
  size_t blockBytes;
  void (*model)(const BlockPixels& pixels, uint8_t* block);
};
constexpr Encoder kEncoders[] = {
    {&zoriTextureEncodeBlockFromRGBA_DXT1_8u_C4C1R, 4, 8, &reference::encodeDxt1},
    {&zoriTextureEncodeBlockFromRGBA_DXT3_8u_C4C1R, 4, 16, &reference::encodeDxt3},
    {&zoriTextureEncodeBlockFromRGBA_DXT5_8u_C4C1R, 4, 16, &reference::encodeDxt5},
    {&zoriTextureEncodeBlockFromYCoCg_DXT5_8u_C3C1R, 3, 16, &reference::encodeDxt5YCoCg},
};

// Where the pixels of an image lie: the memory ends with the last row's last pixel.
struct Layout {
  RoiSize size;
  size_t pixelBytes;
  size_t distance;  // of the rows
  bool upwards;

  Layout(Input& input, size_t bytes) : size{input.between(1, 37), input.between(1, 21)}, pixelBytes(bytes) {
    distance = rowBytes() + static_cast<size_t>(input.between(0, 5));
    upwards = input.coin();
  }
  size_t rowBytes() const { return static_cast<size_t>(size.width) * pixelBytes; }
  size_t bytes() const { return distance * static_cast<size_t>(size.height - 1) + rowBytes(); }
  size_t blocks() const { return static_cast<size_t>((size.width + 3) / 4 * ((size.height + 3) / 4)); }
  size_t block(int x, int y) const { return static_cast<size_t>(y / 4 * ((size.width + 3) / 4) + x / 4); }
  size_t offset(int x, int y) const {
    return distance * static_cast<size_t>(upwards ? size.height - 1 - y : y) + static_cast<size_t>(x) * pixelBytes;
  }
  int32_t step() const { return static_cast<int32_t>(distance) * (upwards ? -1 : 1); }
};

void decode(Input& input) {
  const Decoder& decoder = kDecoders[input.byte() % std::size(kDecoders)];
  const Layout layout(input, 4);
  const Exact<uint8_t> blocks(layout.blocks() * decoder.blockBytes, input.coin());
  const Exact<uint8_t> pixels(layout.bytes(), input.coin());
  input.fill(blocks.data(), blocks.size());
  Bytes expected = pixels.values();
  for (int y = 0; y < layout.size.height; ++y) {
    for (int x = 0; x < layout.size.width; ++x) {
      const Rgba pixel = decoder.model(blocks.data() + layout.block(x, y) * decoder.blockBytes, x % 4, y % 4);
      std::copy(pixel.begin(), pixel.end(), expected.data() + layout.offset(x, y));
    }
  }
  EXPECT_EQ(decoder.subject(blocks.data(), pixels.data() + layout.offset(0, 0), layout.step(), layout.size), StatusOk);
  EXPECT_EQ(pixels.values(), expected);
}

void encode(Input& input) {
  const Encoder& encoder = kEncoders[input.byte() % std::size(kEncoders)];
  const Layout layout(input, encoder.channels);
  const Exact<uint8_t> pixels(layout.bytes(), input.coin());
  const Exact<uint8_t> blocks(layout.blocks() * encoder.blockBytes, input.coin());
  input.fill(pixels.data(), pixels.size());
  Bytes expected(blocks.size());
  for (int y = 0; y < layout.size.height; y += 4) {
    for (int x = 0; x < layout.size.width; x += 4) {
      BlockPixels block{};
      for (int i = 0; i < 16; ++i) {
        const int column = std::min(x + i % 4, layout.size.width - 1),
                  row = std::min(y + i / 4, layout.size.height - 1);
        std::copy_n(pixels.data() + layout.offset(column, row), encoder.channels,
                    block[static_cast<size_t>(i)].begin());
      }
      encoder.model(block, expected.data() + layout.block(x, y) * encoder.blockBytes);
    }
  }
  EXPECT_EQ(encoder.subject(pixels.data() + layout.offset(0, 0), layout.step(), layout.size, blocks.data()), StatusOk);
  EXPECT_EQ(blocks.values(), expected);
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  input.coin() ? encode(input) : decode(input);
}

}  // namespace zorj::fuzz
