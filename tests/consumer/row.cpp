// Decodes from C++ what the C program of the README codes, with one thread.
#include <zorcore.h>
#include <zorj.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "failed: %s\n", what);
  std::exit(EXIT_FAILURE);
}

}  // namespace

int main() {
  zorSetNumThreads(1);
  int32_t statistics[257];
  for (int32_t& count : statistics) count = 1;
  uint8_t bits[16], values[256];
  require(zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics, bits, values) == StatusOk, "code lists");
  HuffmanEncodeSpec* encodeSpec = nullptr;
  HuffmanDecodeSpec* decodeSpec = nullptr;
  HuffmanEncodeState* encodeState = nullptr;
  HuffmanDecodeState* decodeState = nullptr;
  require(zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, &encodeSpec) == StatusOk, "encoder table");
  require(zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, &decodeSpec) == StatusOk, "decoder table");
  require(zoriEncodeHuffmanStateInitAlloc_JPEG_8u(&encodeState) == StatusOk, "encoder state");
  require(zoriDecodeHuffmanStateInitAlloc_JPEG_8u(&decodeState) == StatusOk, "decoder state");

  int16_t block[64] = {100, -3, 0, 7}, decoded[64];
  uint8_t coded[512];
  int32_t length = 0, position = 0, marker = 0;
  int16_t lastDc = 0;
  require(zoriEncodeHuffman8x8_JPEG_16s1u_C1(block, coded, sizeof coded, &length, &lastDc, encodeSpec, encodeSpec,
                                             encodeState, 0) == StatusOk,
          "encoding");
  require(zoriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, coded, sizeof coded, &length, nullptr, nullptr, nullptr,
                                             encodeState, 1) == StatusOk,
          "flushing");
  lastDc = 0;
  require(zoriDecodeHuffman8x8_JPEG_1u16s_C1(coded, length, &position, decoded, &lastDc, &marker, decodeSpec,
                                             decodeSpec, decodeState) == StatusOk,
          "decoding");
  for (int i = 0; i < 64; ++i) require(decoded[i] == block[i], "round trip");
  std::printf("version %s: a block in %d bytes\n", zorjGetLibVersion()->version, int{length});

  zoriDecodeHuffmanStateFree_JPEG_8u(decodeState);
  zoriEncodeHuffmanStateFree_JPEG_8u(encodeState);
  zoriDecodeHuffmanSpecFree_JPEG_8u(decodeSpec);
  zoriEncodeHuffmanSpecFree_JPEG_8u(encodeSpec);
}
