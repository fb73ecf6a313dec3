#include "support/arguments.h"
#include "support/progressive_decoder_calls.h"

namespace zorj::test {
namespace {

using Table = DecoderTable;
using reference::Band;

TEST(ProgressiveDecoder, ScansEqualModel) {
  Random random(1);
  for (int round = 0; round < 120; ++round) {
    const auto kind = static_cast<ScanKind>(round % 4);
    const Band band = anyBand(random);
    const Table table(randomLists(random, firstSymbols(256)));
    const std::vector<Block> blocks = anyScanBlocks(random, static_cast<size_t>(random.between(1, 24)), band);
    const Bytes stream = streamOf([&](reference::HuffmanWriter& writer) {
      int16_t lastDc = 0;
      reference::EobRun run;
      for (const Block& block : blocks) putModelScan(kind, writer, table.encoder, block.data(), band, lastDc, run);
      reference::SymbolSink sink(writer, table.encoder);
      putRun(sink, run);
    });
    // At times the blocks are not those that the stream was made from.
    const std::vector<Block> before =
        round % 5 == 4 ? anyScanBlocks(random, blocks.size(), band) : coarser(blocks, band.shift);
    const DecoderCalls calls = scanCalls(kind, before, static_cast<int>(blocks.size()) + 3, band, table);
    expectReadsEqualModelOnVariants(scanName(kind, round), stream, calls.subject, calls.model, round < 16 ? 120 : 12,
                                    30);
  }
}

// Random bytes: every failure there is, at every place, and runs that lead beyond bands and blocks.
TEST(ProgressiveDecoder, NoiseEqualsModel) {
  Random random(2);
  for (int round = 0; round < 400; ++round) {
    const auto kind = static_cast<ScanKind>(round % 4);
    const Band band = anyBand(random);
    const Table table(round % 3 == 0 ? typicalAcLists() : randomLists(random, firstSymbols(256)));
    Bytes noise(static_cast<size_t>(random.between(1, 400)));
    for (uint8_t& byte : noise) {
      byte = static_cast<uint8_t>(random.oneIn(round % 7 == 0 ? 2 : 30) ? 0xFF * random.between(0, 1) : random.next());
    }
    std::vector<Block> blocks = anyScanBlocks(random, 40, band);
    blocks[2].fill(-32768);
    const DecoderCalls calls = scanCalls(kind, blocks, 60, band, table);
    expectReadsEqualModel(scanName(kind, round), noise, calls.subject, calls.model);
  }
}

// Counts, makes a table, encodes and decodes.
class ScanCoder {
 public:
  explicit ScanCoder(const std::vector<Block>& original) : original_(original), decoded_(original.size()) {}

  const std::vector<Block>& decoded() const { return decoded_; }

  void dcFirst(int32_t shift) {
    Coded coded(counted([&](int32_t* statistics, HuffmanEncodeState&) {
      int16_t lastDc = 0;
      for (const Block& block : original_) {
        zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(block.data(), statistics, &lastDc, shift);
      }
    }));
    int16_t lastDc = 0;
    encode([&](const int16_t* block, bool flush) {
      return zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(block, coded.bytes.data(), coded.length(), &coded.position,
                                                        &lastDc, shift, &coded.encodeSpec, &coded.state, flush);
    });
    decode(coded, ScanKind::kDcFirst, {0, 0, shift});
  }
  void dcRefine(int32_t shift) {
    Coded coded(typicalAcLists());
    encode([&](const int16_t* block, bool flush) {
      return zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, coded.bytes.data(), coded.length(), &coded.position,
                                                         shift, &coded.state, flush);
    });
    decode(coded, ScanKind::kDcRefine, {0, 0, shift});
  }
  void ac(ScanKind kind, Band band) {
    const bool first = kind == ScanKind::kAcFirst;
    const auto count =
        first ? zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1 : zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
    const auto put = first ? zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 : zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1;
    Coded coded(counted([&](int32_t* statistics, HuffmanEncodeState& state) {
      for (const Block& block : original_) {
        EXPECT_EQ(count(block.data(), statistics, band.first, band.last, band.shift, &state, 0), StatusOk);
      }
      EXPECT_EQ(count(nullptr, statistics, 0, 0, 0, &state, 1), StatusOk);
    }));
    encode([&](const int16_t* block, bool flush) {
      return put(block, coded.bytes.data(), coded.length(), &coded.position, band.first, band.last, band.shift,
                 &coded.encodeSpec, &coded.state, flush);
    });
    decode(coded, kind, band);
  }

 private:
  struct Coded {
    HuffmanEncodeSpec encodeSpec;
    HuffmanDecodeSpec decodeSpec;
    HuffmanEncodeState state = {};
    Bytes bytes = Bytes(1 << 18);
    int32_t position = 0;

    explicit Coded(const HuffmanLists& lists) {
      EXPECT_EQ(zoriEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &encodeSpec), StatusOk);
      EXPECT_EQ(zoriDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &decodeSpec), StatusOk);
    }
    int32_t length() const { return static_cast<int32_t>(bytes.size()); }
  };

  template <class Count>
  static HuffmanLists counted(const Count& count) {
    int32_t statistics[257] = {};
    HuffmanEncodeState state = {};
    count(statistics, state);
    HuffmanLists lists{{}, std::vector<uint8_t>(256)};
    EXPECT_EQ(zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics, lists.bits.data(), lists.values.data()), StatusOk);
    return lists;
  }
  // Every symbol has a code if all of them were counted.
  template <class Encode>
  void encode(const Encode& encodeBlock) const {
    for (const Block& block : original_) ASSERT_EQ(encodeBlock(block.data(), false), StatusOk);
    ASSERT_EQ(encodeBlock(nullptr, true), StatusOk);
  }
  void decode(const Coded& coded, ScanKind kind, Band band) {
    SubjectReader reader;
    for (Block& block : decoded_) {
      ASSERT_EQ(decodeScan(kind, coded.bytes.data(), coded.position, reader, block.data(), band, &coded.decodeSpec),
                StatusOk);
    }
    EXPECT_EQ(reader.position, coded.position);
    EXPECT_EQ(reader.state.eobRun, 0u);
  }

  const std::vector<Block>& original_;
  std::vector<Block> decoded_;
};

TEST(ProgressiveDecoder, RestoresWhatWasEncoded) {
  Random random(3);
  std::vector<Block> blocks(700);
  for (Block& block : blocks) block = photographicBlock(random, 0.2 * static_cast<double>(random.between(0, 40)));
  ScanCoder coder(blocks);
  coder.dcFirst(1);
  coder.ac(ScanKind::kAcFirst, {1, 5, 2});
  coder.ac(ScanKind::kAcFirst, {6, 63, 2});
  coder.ac(ScanKind::kAcRefine, {1, 63, 1});
  coder.dcRefine(0);
  coder.ac(ScanKind::kAcRefine, {1, 63, 0});
  EXPECT_EQ(coder.decoded(), blocks);
}

TEST(ProgressiveDecoder, ArgumentOrder) {
  const HuffmanDecodeSpec spec = {};
  const uint8_t source[64] = {};
  int32_t position = 0, marker = 0;
  int16_t lastDc = 0, block[64] = {1};
  HuffmanDecodeState state = {};
  const auto written = [&] {
    return block[0] != 1 || position != 0 || marker != 0 || lastDc != 0 || state.bitCount != 0;
  };
  constexpr StatusCode kNull = StatusNullPointer, kSize = StatusBadSize, kArgument = StatusBadArgument;

  for (const int32_t badAl : {-1, 14}) {
    expectArgumentOrder(
        "zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1",
        {kNull, kSize, kNull, kNull, kNull, kNull, kArgument, kNull, kNull},
        [&](const Faults& f) {
          return zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(
              f.pointer(0, source), f.value(1, 64, 0), f.pointer(2, &position), f.pointer(3, block),
              f.pointer(4, &lastDc), f.pointer(5, &marker), f.value(6, 0, badAl), f.pointer(7, &spec),
              f.pointer(8, &state));
        },
        written);
    expectArgumentOrder(
        "zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1", {kNull, kSize, kNull, kNull, kNull, kArgument, kNull},
        [&](const Faults& f) {
          return zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(
              f.pointer(0, source), f.value(1, 64, 0), f.pointer(2, &position), f.pointer(3, block),
              f.pointer(4, &marker), f.value(5, 0, badAl), f.pointer(6, &state));
        },
        written);
  }
  for (const auto decode : {zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1, zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1}) {
    for (const Band bad :
         {Band{0, 63, 0}, Band{64, 64, 0}, Band{1, 64, 0}, Band{6, 5, 0}, Band{1, 63, -1}, Band{1, 63, 14}}) {
      expectArgumentOrder(
          "AC decoder", {kNull, kSize, kNull, kNull, kNull, kArgument, kNull, kNull},
          [&](const Faults& f) {
            return decode(f.pointer(0, source), f.value(1, 64, 0), f.pointer(2, &position), f.pointer(3, block),
                          f.pointer(4, &marker), f.value(5, 1, bad.first), f.value(5, 63, bad.last),
                          f.value(5, 0, bad.shift), f.pointer(6, &spec), f.pointer(7, &state));
          },
          written);
    }
  }
}

}  // namespace
}  // namespace zorj::test
