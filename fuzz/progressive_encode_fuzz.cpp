// The encoders of progressive scans beside the model, with room and without, the statistics, and what they led to
// decoded again.
#include "support/encoder_checks.h"
#include "support/huffman_input.h"
#include "support/progressive_decoder_calls.h"
#include "support/progressive_encoder_calls.h"

namespace zorj::fuzz {
namespace {

using reference::Band;
using test::ScanKind;

struct Scan {
  ScanKind kind;
  Band band;
  std::vector<Block> blocks;
};

using Counters = std::array<uint32_t, 256>;

// Counts the symbols of a scan of AC coefficients, beside the model.
Counters countedSymbols(const Scan& scan) {
  const auto count = scan.kind == ScanKind::kAcFirst ? &zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1
                                                     : &zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
  const auto model = scan.kind == ScanKind::kAcFirst ? &reference::codeAcFirst : &reference::codeAcRefine;
  const Exact<uint32_t> counters(256);
  std::fill_n(counters.data(), 256, 0u);
  auto* const statistics = reinterpret_cast<int32_t*>(counters.data());
  Counters expected{};
  reference::EobRun run;
  HuffmanEncodeState state = test::freshState();
  for (const Block& block : scan.blocks) {
    EXPECT_EQ(count(block.data(), statistics, scan.band.first, scan.band.last, scan.band.shift, &state, 0),
              model(reference::SymbolSink(expected), block.data(), scan.band, run));
  }
  EXPECT_EQ(count(nullptr, statistics, 0, 0, 0, &state, 1), StatusOk);
  reference::SymbolSink sink(expected);
  reference::putRun(sink, run);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), counters.data()));
  return expected;
}

// And those of the DC values.
Counters countedCategories(const Scan& scan) {
  Counters counters{}, expected{};
  int16_t lastDc = 0, expectedDc = 0;
  for (const Block& block : scan.blocks) {
    EXPECT_EQ(zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(block.data(), reinterpret_cast<int32_t*>(counters.data()),
                                                              &lastDc, scan.band.shift),
              reference::codeDcFirst(reference::SymbolSink(expected), block.data(), scan.band.shift, expectedDc));
  }
  EXPECT_EQ(counters, expected);
  return counters;
}

// The list for the scan's symbols; all of them have a code then. None if nothing was counted.
bool optimisedLists(const Scan& scan, HuffmanLists& lists) {
  const bool dc = scan.kind == ScanKind::kDcFirst || scan.kind == ScanKind::kDcRefine;
  const Counters counters = dc ? countedCategories(scan) : countedSymbols(scan);
  int32_t statistics[256];
  std::memcpy(statistics, counters.data(), sizeof statistics);
  lists = {{}, Bytes(256)};
  return zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics, lists.bits.data(), lists.values.data()) == StatusOk;
}

// What a decoder has of a value once the bits from `shift` on are there.
int16_t seen(int16_t value, int shift, bool isDc) {
  const int kept = isDc ? value >> shift << shift : reference::magnitude(value, shift) << shift;
  return static_cast<int16_t>(isDc || value > 0 ? kept : -kept);
}

void expectSameWhenDecoded(const Scan& scan, const HuffmanLists& lists, const Bytes& written) {
  const bool dc = scan.kind == ScanKind::kDcFirst || scan.kind == ScanKind::kDcRefine;
  const bool refines = scan.kind == ScanKind::kDcRefine || scan.kind == ScanKind::kAcRefine;
  const HuffmanDecodeSpec spec = decodeSpec(lists);
  const Exact<uint8_t> bytes{std::span<const uint8_t>(written)};
  test::SubjectReader reader;
  for (const Block& block : scan.blocks) {
    Block expected{}, decoded{};
    const Band band = dc ? Band{0, 0, scan.band.shift} : scan.band;
    for (int k = band.first; k <= band.last; ++k) {
      const auto i = static_cast<size_t>(reference::naturalIndex(k));
      expected[i] = seen(block[i], band.shift, dc);
      if (refines) decoded[i] = seen(block[i], band.shift + 1, dc);
    }
    EXPECT_EQ(test::decodeScan(scan.kind, bytes.data(), bytes.length(), reader, decoded.data(), scan.band, &spec),
              StatusOk);
    EXPECT_EQ(decoded, expected);
  }
  EXPECT_EQ(reader.state.eobRun, 0u);
  EXPECT_EQ(reader.position, bytes.length());
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  const auto kind = static_cast<ScanKind>(input.byte() % 4);
  const int first = input.between(1, 63), last = input.between(first, 63), shift = input.between(0, 13);
  const int32_t lacking = input.between(0, 40);
  const bool optimised = input.coin();
  HuffmanLists lists = optimised ? HuffmanLists{} : anyLists(input, 256);
  const Scan scan = {kind, {first, last, shift}, blocksOfInput(input, 60)};
  if (scan.blocks.empty()) return;
  if (optimised && !optimisedLists(scan, lists)) return;
  const test::EncoderTable table(lists);
  const Written written = expectSameWithAndWithoutRoom(test::scanCalls(kind, scan.blocks, scan.band, table), lacking);
  // A caller that does not heed failures breaks the stream, nothing else.
  const test::EncoderCalls heedless = test::scanCalls(kind, scan.blocks, scan.band, table, test::AfterFailure::kGoOn);
  expectSameWrites(1 + lacking, heedless.subject, heedless.model);
  const bool extreme = std::any_of(scan.blocks.begin(), scan.blocks.end(), [](const Block& block) {
    return std::find(block.begin(), block.end(), -32768) != block.end();
  });
  if (written.complete && !extreme) expectSameWhenDecoded(scan, lists, written.bytes);
}

}  // namespace zorj::fuzz
