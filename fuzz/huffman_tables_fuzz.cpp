// The builders of tables: lists from any statistics, tables from any lists, and decoding with any table that is
// accepted, though it promise nothing.
#include "support/coder_checks.h"
#include "support/huffman_decoder_calls.h"
#include "support/huffman_encoder_calls.h"
#include "support/huffman_input.h"

namespace zorj::fuzz {
namespace {

// Symbols that occur more often have no longer codes, and tables can be built of the list.
void listsFromStatistics(Input& input) {
  const Exact<int32_t> statistics(256);
  std::fill_n(statistics.data(), 256, 0);
  const int pairs = input.byte();
  for (int i = 0; i < pairs; ++i) {
    const uint8_t symbol = input.byte();
    statistics.data()[symbol] = static_cast<int32_t>((1u << (input.byte() % 32)) + input.byte());
  }
  int64_t total = 0;
  for (int symbol = 0; symbol < 256; ++symbol) total += static_cast<uint32_t>(statistics.data()[symbol]);
  const Exact<uint8_t> bits(16), values(256);
  const StatusCode status = zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics.data(), bits.data(), values.data());
  if (status != StatusOk) {
    EXPECT_EQ(status, StatusBadHuffmanTable);
    EXPECT_EQ(bits.values(), Bytes(16, 0xA5));
    EXPECT_EQ(values.values(), Bytes(256, 0xA5));
    return;
  }
  const int codes = std::accumulate(bits.data(), bits.data() + 16, 0);
  EXPECT_LE(codes, 256);
  EXPECT_TRUE(std::all_of(values.data() + codes, values.data() + 256, [](uint8_t value) { return value == 0xA5; }));
  if (total > 1'000'000'000) return;

  HuffmanEncodeSpec spec;
  EXPECT_EQ(zoriEncodeHuffmanSpecInit_JPEG_8u(bits.data(), values.data(), &spec), StatusOk);
  for (int symbol = 0; symbol < 256; ++symbol) {
    EXPECT_EQ(spec.codes[symbol].length != 0, statistics.data()[symbol] != 0) << symbol;
  }
  // Among codes of 16 bits may be some that were to be longer, and moved others down.
  if (bits.data()[15] != 0) return;
  int32_t rarestOfShorter = std::numeric_limits<int32_t>::max(), rarest = rarestOfShorter;
  int length = 0;
  for (int i = 0; i < codes; ++i) {
    const uint8_t symbol = values.data()[i];
    if (spec.codes[symbol].length != length) rarestOfShorter = rarest;
    length = spec.codes[symbol].length;
    EXPECT_LE(statistics.data()[symbol], rarestOfShorter) << int{symbol};
    rarest = std::min(rarest, statistics.data()[symbol]);
  }
}

struct Lists {
  Exact<uint8_t> bits;
  Exact<uint8_t> values;
  int codes;
};
Lists anyCounts(Input& input) {
  const bool small = input.coin();
  Lists lists{Exact<uint8_t>(16), Exact<uint8_t>(0), 0};
  for (size_t i = 0; i < 16; ++i) {
    lists.bits.data()[i] = small ? input.byte() % 8 : input.byte();
    lists.codes += lists.bits.data()[i];
  }
  lists.values = Exact<uint8_t>(static_cast<size_t>(lists.codes));
  for (size_t i = 0; i < lists.values.size(); ++i) lists.values.data()[i] = input.byte();
  return lists;
}

void tablesFromLists(Input& input) {
  const Lists lists = anyCounts(input);
  // How many codes of each length up to 16, all of them and the one of all ones, go beyond what there is.
  bool fits = lists.codes <= 256;
  int64_t used = 0;
  for (int length = 1; length <= 16 && fits; ++length) {
    const int count = lists.bits.data()[length - 1];
    used = 2 * used + count;
    fits = count == 0 || used < int64_t{1} << length;
  }
  const Exact<HuffmanEncodeSpec> encode(1);
  EXPECT_EQ(zoriEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), encode.data()),
            fits ? StatusOk : StatusBadHuffmanTable);
  const Exact<HuffmanDecodeSpec> decode(1);
  const StatusCode status = zoriDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), decode.data());
  EXPECT_TRUE(status == StatusBadHuffmanTable || (status == StatusOk && lists.codes <= 256));
  if (fits) EXPECT_EQ(status, StatusOk);
  if (status != StatusOk) return;

  const Exact<uint8_t> source(input.rest());
  sameAtPortableLevel([&] {
    Trace trace;
    test::SubjectReader reader;
    for (int i = 0; i < 20; ++i) {
      const Exact<int16_t> block(64);
      const StatusCode decoded = zoriDecodeHuffman8x8_JPEG_1u16s_C1(source.data(), source.length(), &reader.position,
                                                                    block.data(), &reader.lastDc, &reader.marker,
                                                                    decode.data(), decode.data(), &reader.state);
      EXPECT_LE(reader.position, source.length());
      reader.note(trace, decoded);
      trace.insert(trace.end(), block.data(), block.data() + 64);
    }
    return trace;
  });
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  input.coin() ? tablesFromLists(input) : listsFromStatistics(input);
}

}  // namespace zorj::fuzz
