// Tries the recipes of the documentation.
#include <zorj.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <vector>

extern "C" {
struct EncoderTables {
  const uint16_t* quantisation[2];
  const HuffmanEncodeSpec *dc[2], *ac[2];
};
struct DecoderTables {
  const uint16_t* quantisation[2];
  const HuffmanDecodeSpec *dc[2], *ac[2];
};
StatusCode encodeRow(const uint8_t*, int32_t, int32_t, const EncoderTables*, HuffmanEncodeState*, uint8_t*, int32_t,
                     int32_t*);
void initDeepTables(const uint16_t*, float*, float*);
StatusCode encodeDeepBlock(const uint16_t*, int32_t, const float*, int16_t*);
StatusCode decodeDeepBlock(const int16_t*, const float*, uint16_t*, int32_t);
StatusCode encodeBand(const int16_t (*)[64], int, uint8_t*, uint8_t*, uint8_t*, int32_t, int32_t*);
StatusCode decodeBand(const uint8_t*, int32_t, const HuffmanDecodeSpec*, HuffmanDecodeState*, int16_t (*)[64], int);
StatusCode encodeLossless(const int16_t*, RoiSize, int, int, const HuffmanEncodeSpec*, HuffmanEncodeState*, int16_t*,
                          uint8_t*, int32_t, int32_t*);
StatusCode decodeLossless(const uint8_t*, int32_t, const HuffmanDecodeSpec*, HuffmanDecodeState*, int, int, int16_t*,
                          int16_t*, RoiSize);
StatusCode packStrip(const uint8_t*, int32_t, int32_t, uint8_t*, int32_t, int32_t*);
StatusCode unpackStrip(const uint8_t*, int32_t, uint8_t*, int32_t, int32_t);
struct CodedBlock {
  int32_t planes, passes, length;
};
StatusCode encodeBlock(const int32_t*, int32_t, RoiSize, int32_t, uint8_t*, int32_t, CodedBlock*);
StatusCode decodeBlock(const uint8_t*, const CodedBlock*, int32_t*, int32_t, RoiSize, int32_t);
StatusCode transformTile(int32_t*, int32_t, TileRect, int, int);
StatusCode transformMacroblock(int32_t (*)[16]);
uint8_t* encodeDxt5(const uint8_t*, int32_t, RoiSize);
StatusCode decodeTexture(const uint8_t*, int, uint8_t*, int32_t, RoiSize);
}
StatusCode decodeRows(const uint8_t*, int32_t, const DecoderTables*, uint8_t*, int32_t, RoiSize, int);

namespace {

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "failed: %s\n", what);
  std::exit(EXIT_FAILURE);
}

void requireOk(StatusCode status, const char* what) { require(status == StatusOk, what); }

// A smooth picture with a little noise.
template <class Sample>
std::vector<Sample> picture(int channels, RoiSize size, int top) {
  std::mt19937 random(1);
  std::vector<Sample> samples;
  for (int y = 0; y < size.height; ++y)
    for (int x = 0; x < size.width; ++x)
      for (int c = 0; c < channels; ++c) {
        const double wave = std::sin(x * 0.07 + c) * std::cos(y * 0.05 - c);
        samples.push_back(static_cast<Sample>(top * (0.5 + 0.4 * wave) + static_cast<double>(random() % 3)));
      }
  return samples;
}

template <class Sample>
double rootMeanSquare(const std::vector<Sample>& a, const std::vector<Sample>& b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += std::pow(double(a[i]) - double(b[i]), 2);
  return std::sqrt(sum / double(a.size()));
}

// Tables with a code for every symbol.
struct Huffman {
  HuffmanEncodeSpec* encode = nullptr;
  HuffmanDecodeSpec* decode = nullptr;
  HuffmanEncodeState* encodeState = nullptr;
  HuffmanDecodeState* decodeState = nullptr;

  Huffman() {
    int32_t statistics[256];
    for (int i = 0; i < 256; ++i) statistics[i] = 1 + 4096 / (i + 1);
    uint8_t bits[16], values[256];
    requireOk(zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics, bits, values), "code list");
    requireOk(zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, &encode), "encoder table");
    requireOk(zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, &decode), "decoder table");
    requireOk(zoriEncodeHuffmanStateInitAlloc_JPEG_8u(&encodeState), "encoder state");
    requireOk(zoriDecodeHuffmanStateInitAlloc_JPEG_8u(&decodeState), "decoder state");
  }
  ~Huffman() {
    zoriEncodeHuffmanSpecFree_JPEG_8u(encode);
    zoriDecodeHuffmanSpecFree_JPEG_8u(decode);
    zoriEncodeHuffmanStateFree_JPEG_8u(encodeState);
    zoriDecodeHuffmanStateFree_JPEG_8u(decodeState);
  }
};

void tryBaseline(const Huffman& huffman) {
  const RoiSize size = {160, 96};
  const int32_t step = 3 * size.width;
  const auto image = picture<uint8_t>(3, size, 250);
  std::vector<uint8_t> steps(64, 4), scan(image.size() * 2), decoded(image.size());
  uint16_t forward[64], inverse[64];
  requireOk(zoriQuantFwdTableInit_JPEG_8u16u(steps.data(), forward), "forward table");
  requireOk(zoriQuantInvTableInit_JPEG_8u16u(steps.data(), inverse), "inverse table");
  const EncoderTables encoder = {
      {forward, forward}, {huffman.encode, huffman.encode}, {huffman.encode, huffman.encode}};
  const DecoderTables decoder = {
      {inverse, inverse}, {huffman.decode, huffman.decode}, {huffman.decode, huffman.decode}};
  int32_t length = 0;
  for (int row = 0; row < size.height / 16; ++row) {
    if (row > 0) {
      scan[size_t(length++)] = 0xFF;
      scan[size_t(length++)] = uint8_t(0xD0 + (row - 1) % 8);
    }
    requireOk(encodeRow(&image[size_t(row) * 16 * size_t(step)], step, size.width, &encoder, huffman.encodeState,
                        scan.data(), int32_t(scan.size()), &length),
              "encodeRow");
  }
  for (const int threads : {1, 4}) {
    std::fill(decoded.begin(), decoded.end(), uint8_t{0});
    requireOk(decodeRows(scan.data(), length, &decoder, decoded.data(), step, size, threads), "decodeRows");
    require(rootMeanSquare(image, decoded) < 2.5, "baseline picture");
  }
  require(decodeRows(scan.data(), length / 2, &decoder, decoded.data(), step, size, 2) != StatusOk, "half a scan");
  std::printf("baseline: %d bytes for %zu\n", int(length), image.size());
}

void tryDeep() {
  const auto samples = picture<uint16_t>(1, {8, 8}, 4000);
  std::vector<uint16_t> decoded(64);
  std::vector<uint16_t> steps(64, 2);
  float forward[64], inverse[64];
  int16_t coefficients[64];
  initDeepTables(steps.data(), forward, inverse);
  requireOk(encodeDeepBlock(samples.data(), 16, forward, coefficients), "encodeDeepBlock");
  requireOk(decodeDeepBlock(coefficients, inverse, decoded.data(), 16), "decodeDeepBlock");
  require(rootMeanSquare(samples, decoded) < 1.5, "12-bit block");
}

void tryProgressive(const Huffman& huffman) {
  constexpr int kBlocks = 50;
  std::mt19937 random(2);
  static int16_t blocks[kBlocks][64], decoded[kBlocks][64];
  for (auto& block : blocks)
    for (int k = 1; k < 64; ++k) block[k] = int16_t(random() % 9 == 0 ? int(random() % 41) - 20 : 0);
  uint8_t bits[16], values[256], bytes[8192];
  int32_t length = 0;
  requireOk(encodeBand(blocks, kBlocks, bits, values, bytes, sizeof bytes, &length), "encodeBand");
  HuffmanDecodeSpec* spec = nullptr;
  requireOk(zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, &spec), "optimised table");
  requireOk(decodeBand(bytes, length, spec, huffman.decodeState, decoded, kBlocks), "decodeBand");
  zoriDecodeHuffmanSpecFree_JPEG_8u(spec);
  for (int i = 0; i < kBlocks; ++i)
    for (int k = 1; k < 64; ++k) require(decoded[i][k] == blocks[i][k] / 2 * 2, "progressive coefficients");
  std::printf("progressive: %d blocks in %d bytes\n", kBlocks, int(length));
}

void tryLossless(const Huffman& huffman) {
  const RoiSize size = {61, 40};
  const auto image = picture<int16_t>(1, size, 4000);
  std::vector<int16_t> row(size_t(size.width)), decoded(image.size());
  std::vector<uint8_t> bytes(image.size() * 4);
  for (int predictor = 1; predictor <= 7; ++predictor) {
    int32_t length = 0;
    requireOk(encodeLossless(image.data(), size, 12, predictor, huffman.encode, huffman.encodeState, row.data(),
                             bytes.data(), int32_t(bytes.size()), &length),
              "encodeLossless");
    requireOk(decodeLossless(bytes.data(), length, huffman.decode, huffman.decodeState, 12, predictor, row.data(),
                             decoded.data(), size),
              "decodeLossless");
    require(decoded == image, "lossless image");
  }
}

void tryPackBits() {
  std::vector<uint8_t> pixels(70 * 20);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint8_t(i % 100 < 50 ? 9 : i);
  const int32_t room = 20 * (70 + (70 + 127) / 128);
  std::vector<uint8_t> strip(size_t(room) + 1), unpacked(pixels.size());
  int32_t length = 0;
  requireOk(packStrip(pixels.data(), 70, 20, strip.data(), room, &length), "packStrip");
  requireOk(unpackStrip(strip.data(), length, unpacked.data(), 70, 20), "unpackStrip");
  require(pixels == unpacked, "strip");
}

// A tile through the wavelet, its coefficients through the block coder, and all the way back.
void tryJpeg2000() {
  const RoiSize size = {53, 47};
  const TileRect tile = {5, 2, size.width, size.height};
  const int32_t step = 4 * size.width;
  const auto image = picture<int32_t>(1, size, 4000);
  std::vector<int32_t> samples = image, coded(image.size());
  requireOk(transformTile(samples.data(), step, tile, 4, 0), "wavelet levels");
  require(samples != image, "subbands");

  std::vector<int32_t> block = samples;
  for (int32_t& sample : block)
    if (sample < 0) sample = int32_t(uint32_t(-sample) | 0x80000000u);
  std::vector<uint8_t> bytes(image.size() * 8);
  CodedBlock result;
  requireOk(encodeBlock(block.data(), step, size, SubbandLL, bytes.data(), int32_t(bytes.size()), &result),
            "encodeBlock");
  requireOk(decodeBlock(bytes.data(), &result, coded.data(), step, size, SubbandLL), "decodeBlock");
  require(coded == block, "code-block");

  requireOk(transformTile(samples.data(), step, tile, 4, 1), "inverse levels");
  require(samples == image, "tile");
  std::printf("JPEG 2000: %d planes of %zu samples in %d bytes\n", int(result.planes), image.size(),
              int(result.length));
}

void tryMacroblock() {
  int32_t flat[16][16];
  for (auto& row : flat) std::fill(std::begin(row), std::end(row), 3);
  requireOk(transformMacroblock(flat), "transformMacroblock");
  require(flat[0][0] == 3 * 16, "DC value of both stages");
  int others = 0;
  for (const auto& row : flat)
    for (const int32_t coefficient : row) others += coefficient != 0;
  require(others == 1, "a flat macroblock has a DC value alone");
}

void tryTexture() {
  const RoiSize size = {30, 21};
  const auto image = picture<uint8_t>(4, size, 240);
  std::vector<uint8_t> decoded(image.size());
  uint8_t* const blocks = encodeDxt5(image.data(), 4 * size.width, size);
  require(blocks != nullptr, "encodeDxt5");
  requireOk(decodeTexture(blocks, 0, decoded.data(), 4 * size.width, size), "DXT5");
  require(rootMeanSquare(image, decoded) < 12, "DXT5 picture");
  std::free(blocks);

  // BC7, mode 5 with end points of 0: a black block without alpha.
  uint8_t black[16] = {0x20}, pixels[64];
  requireOk(decodeTexture(black, 1, pixels, 16, {4, 4}), "BC7");
  for (const uint8_t byte : pixels) require(byte == 0, "BC7 block");
}

}  // namespace

int main() {
  const Huffman huffman;
  tryBaseline(huffman);
  tryDeep();
  tryProgressive(huffman);
  tryLossless(huffman);
  tryJpeg2000();
  tryMacroblock();
  tryPackBits();
  tryTexture();
  std::puts("all recipes work");
}
