// The Huffman coders on blocks like a photograph's at two qualities, and on rows of a lossless image.
#include <zorj.h>

#include <memory>
#include <vector>

#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"
#include "support/compare.h"
#include "support/huffman_data.h"

namespace zorj::bench {
namespace {

using test::Block;

struct Tables {
  HuffmanEncodeSpec encode;
  HuffmanDecodeSpec decode;
  explicit Tables(const test::HuffmanLists& lists) {
    zoriEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &encode);
    zoriDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &decode);
  }
};

// Blocks, and the stream of them.
class BlockStream {
 public:
  BlockStream(size_t count, double detail) : blocks_(count), bytes_(count * 200) {
    test::Random random(1);
    // Some blocks are smooth, some busy.
    for (Block& block : blocks_) {
      block = test::photographicBlock(random, detail * std::exp2(static_cast<double>(random.between(-250, 150)) / 100));
    }
    encode();
    bytes_.resize(static_cast<size_t>(length_));
  }

  double count() const { return static_cast<double>(blocks_.size()); }
  double bytesPerBlock() const { return static_cast<double>(length_) / count(); }
  double symbolsPerBlock() const {
    size_t symbols = 2 * blocks_.size();
    for (const Block& block : blocks_) symbols += 63 - static_cast<size_t>(std::count(block.begin() + 1, block.end(), 0));
    return static_cast<double>(symbols) / count();
  }

  void encode() {
    HuffmanEncodeState state = {};
    int16_t lastDc = 0;
    int32_t position = 0;
    const int32_t room = static_cast<int32_t>(bytes_.size()) + 1000;
    if (bytes_.size() < static_cast<size_t>(room)) bytes_.resize(static_cast<size_t>(room));
    for (const Block& block : blocks_) {
      zoriEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), bytes_.data(), room, &position, &lastDc, &dc_.encode,
                                         &ac_.encode, &state, 0);
    }
    zoriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, bytes_.data(), room, &position, nullptr, nullptr, nullptr, &state, 1);
    length_ = position;
  }

  void decode() const {
    HuffmanDecodeState state = {};
    int16_t lastDc = 0;
    int32_t position = 0, marker = 0;
    Block block;
    for (size_t i = 0; i < blocks_.size(); ++i) {
      zoriDecodeHuffman8x8_JPEG_1u16s_C1(bytes_.data(), length_, &position, block.data(), &lastDc, &marker, &dc_.decode,
                                         &ac_.decode, &state);
      benchmark::DoNotOptimize(block);
    }
  }

 private:
  Tables dc_{test::typicalDcLists()};
  Tables ac_{test::typicalAcLists()};
  std::vector<Block> blocks_;
  std::vector<uint8_t> bytes_;
  int32_t length_ = 0;
};

}  // namespace

void registerComparisons() {
  const std::pair<const char*, double> kinds[] = {{"q90", 6.3}, {"q75", 1.75}};
  for (const auto& [name, detail] : kinds) {
    const auto stream = std::make_shared<BlockStream>(20000, detail);
    std::fprintf(stderr, "%s: %.1f bytes, %.1f symbols a block\n", name, stream->bytesPerBlock(), stream->symbolsPerBlock());
    compare(std::string("huffman decode ") + name, stream->count(), "blocks", atEveryLevel([=] { stream->decode(); }));
    compare(std::string("huffman encode ") + name, stream->count(), "blocks", atEveryLevel([=] { stream->encode(); }));
  }
}

}  // namespace zorj::bench
