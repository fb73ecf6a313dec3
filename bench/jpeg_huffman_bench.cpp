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
  }

  double count() const { return static_cast<double>(blocks_.size()); }

  void encode() {
    HuffmanEncodeState state = {};
    int16_t lastDc = 0;
    int32_t position = 0;
    const int32_t room = static_cast<int32_t>(bytes_.size());
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

// Rows of differences as predictor 1 leaves them of a photograph, three components, and the stream of them.
class RowStream {
 public:
  static constexpr int32_t kSamples = 2000, kRows = 10;
  static constexpr double kDifferences = 3.0 * kSamples * kRows;

  RowStream() : bytes_(1 << 18) {
    test::Random random(2);
    for (auto& row : differences_) {
      row.resize(kSamples);
      for (int16_t& difference : row) difference = test::photographicBlock(random, 0.8)[0];
    }
    encode();
  }

  void encode() {
    HuffmanEncodeState state = {};
    const int16_t* const rows[] = {differences_[0].data(), differences_[1].data(), differences_[2].data()};
    const HuffmanEncodeSpec* const specs[] = {&tables_.encode, &tables_.encode, &tables_.encode};
    const int32_t room = static_cast<int32_t>(bytes_.size());
    length_ = 0;
    for (int32_t y = 0; y < kRows; ++y) {
      zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(rows, kSamples, 3, bytes_.data(), room, &length_, specs, &state, 0);
    }
    zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(nullptr, 0, 0, bytes_.data(), room, &length_, nullptr, &state, 1);
  }

  void decode() {
    HuffmanDecodeState state = {};
    int16_t* const rows[] = {decoded_[0].data(), decoded_[1].data(), decoded_[2].data()};
    const HuffmanDecodeSpec* const specs[] = {&tables_.decode, &tables_.decode, &tables_.decode};
    int32_t position = 0, marker = 0;
    for (int32_t y = 0; y < kRows; ++y) {
      zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(bytes_.data(), length_, &position, rows, kSamples, 3, &marker, specs,
                                           &state);
    }
  }

  void decodeOneByOne() {
    HuffmanDecodeState state = {};
    int32_t position = 0, marker = 0;
    for (int32_t i = 0; i < 3 * kSamples * kRows; ++i) {
      zoriDecodeHuffmanOne_JPEG_1u16s_C1(bytes_.data(), length_, &position,
                                         &decoded_[0][static_cast<size_t>(i % kSamples)], &marker, &tables_.decode,
                                         &state);
    }
  }
  void encodeOneByOne() {
    HuffmanEncodeState state = {};
    const int32_t room = static_cast<int32_t>(bytes_.size());
    length_ = 0;
    for (size_t i = 0; i < 3 * kSamples * kRows; ++i) {
      zoriEncodeHuffmanOne_JPEG_16s1u_C1(&differences_[i % 3][i / 3 % kSamples], bytes_.data(), room, &length_,
                                         &tables_.encode, &state, 0);
    }
  }

 private:
  Tables tables_{test::typicalDcLists()};
  std::array<std::vector<int16_t>, 3> differences_;
  std::array<std::array<int16_t, kSamples>, 3> decoded_;
  std::vector<uint8_t> bytes_;
  int32_t length_ = 0;
};

}  // namespace

void registerComparisons() {
  const std::pair<const char*, double> kinds[] = {{"q90", 6.3}, {"q75", 1.75}};
  for (const auto& [name, detail] : kinds) {
    const auto stream = std::make_shared<BlockStream>(20000, detail);
    compare(std::string("huffman decode ") + name, stream->count(), "blocks", atEveryLevel([=] { stream->decode(); }));
    compare(std::string("huffman encode ") + name, stream->count(), "blocks", atEveryLevel([=] { stream->encode(); }));
  }
  const auto rows = std::make_shared<RowStream>();
  const double differences = RowStream::kDifferences;
  compare("huffman decode lossless rows", differences, "differences", atEveryLevel([=] { rows->decode(); }));
  compare("huffman encode lossless rows", differences, "differences", atEveryLevel([=] { rows->encode(); }));
  compare("huffman decode lossless values", differences, "differences", atEveryLevel([=] { rows->decodeOneByOne(); }));
  compare("huffman encode lossless values", differences, "differences", atEveryLevel([=] { rows->encodeOneByOne(); }));
}

}  // namespace zorj::bench
