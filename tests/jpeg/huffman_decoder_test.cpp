#include "support/arguments.h"
#include "support/huffman_decoder_calls.h"

namespace zorj::test {
namespace {

using Table = DecoderTable;

struct Tables {
  Table dc;
  Table ac;
};
Tables anyTables(Random& random, int round) {
  if (round % 3 == 0) return {Table(typicalDcLists()), Table(typicalAcLists())};
  return {Table(randomLists(random, firstSymbols(17))), Table(randomLists(random, firstSymbols(256)))};
}

Bytes streamOfBlocks(Random& random, int count, const Tables& tables, bool photographic) {
  return streamOf([&](reference::HuffmanWriter& writer) {
    int16_t lastDc = 0;
    for (int i = 0; i < count; ++i) {
      const Block block = photographic ? photographicBlock(random, 6) : anyBlock(random);
      reference::encodeBlock(writer, block.data(), lastDc, tables.dc.encoder, tables.ac.encoder);
    }
  });
}

TEST(HuffmanDecoder, BlocksEqualModel) {
  Random random(1);
  for (int round = 0; round < 60; ++round) {
    const Tables tables = anyTables(random, round);
    const int count = static_cast<int>(random.between(1, 12));
    const Bytes stream = streamOfBlocks(random, count, tables, round % 3 == 0);
    const DecoderCalls calls = blockCalls(count + 2, tables.dc, tables.ac);
    expectReadsEqualModelOnVariants("blocks, round " + std::to_string(round), stream, calls.subject, calls.model,
                                    round < 6 ? 150 : 20, 40);
  }
}

// Random bytes: every failure there is, at every place.
TEST(HuffmanDecoder, NoiseEqualsModel) {
  Random random(2);
  for (int round = 0; round < 300; ++round) {
    const Tables tables = anyTables(random, round);
    Bytes noise(static_cast<size_t>(random.between(0, 400)));
    for (uint8_t& byte : noise) {
      byte = static_cast<uint8_t>(random.oneIn(round % 4 == 0 ? 2 : 30) ? 0xFF * random.between(0, 1) : random.next());
    }
    const DecoderCalls calls = blockCalls(40, tables.dc, tables.ac);
    expectReadsEqualModel("noise, round " + std::to_string(round), noise, calls.subject, calls.model);
  }
}

TEST(HuffmanDecoder, ReportsMarkersAndFillBytes) {
  const Tables tables = {Table(typicalDcLists()), Table(typicalAcLists())};
  const DecoderCalls calls = blockCalls(3, tables.dc, tables.ac);
  const std::vector<Bytes> streams = {{},
                                      {0xFF},
                                      {0xFF, 0xFF},
                                      {0xFF, 0xD0},
                                      {0xFF, 0xFF, 0xFF, 0x00},
                                      {0x28, 0xFF, 0xD0},
                                      {0x28, 0xA2, 0x8A, 0x28, 0xFF, 0xD0, 0x28, 0xA2},
                                      {0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00}};
  for (const Bytes& stream : streams) expectReadsEqualModel("marker", stream, calls.subject, calls.model);
  const Trace marker = calls.subject(streams[3].data(), 2);
  EXPECT_EQ(marker[64], StatusHuffmanDataError);
  EXPECT_EQ(marker[65], 2) << "position";
  EXPECT_EQ(marker[66], 0xD0) << "marker";
}

TEST(HuffmanDecoder, DirectBlocksEqualModel) {
  Random random(3);
  for (int round = 0; round < 200; ++round) {
    const Tables tables = anyTables(random, round);
    const int count = static_cast<int>(random.between(1, 8));
    const int32_t skipped = static_cast<int32_t>(random.between(0, 20));  // bits before the stream
    const auto prefetched = static_cast<int32_t>(random.between(0, 32));
    const auto prefetchedBits = static_cast<uint32_t>(random.next());
    Bytes stream = streamOfBlocks(random, count, tables, round % 2 == 0);
    stream.erase(stream.end() - 4, stream.end());
    if (round % 4 > 1 && !stream.empty()) stream = disturbed(stream, random);
    // However damaged, the stream ends with a marker, and the memory with it: there is no length to stop at.
    stream.insert(stream.end(), {0x00, 0xFF, 0xD9});
    stream.insert(stream.begin(), static_cast<size_t>(skipped) / 8, 0xFF);

    const DecoderCalls calls = directCalls(count + 2, skipped, prefetchedBits, prefetched, tables.dc, tables.ac);
    expectReadsEqualModel("direct, round " + std::to_string(round), stream, calls.subject, calls.model);
  }
}

TEST(HuffmanDecoder, LosslessRowsAndValuesEqualModel) {
  Random random(4);
  for (int round = 0; round < 40; ++round) {
    const int32_t components = static_cast<int32_t>(random.between(1, 6));  // four of them are used
    const int32_t used = std::min(components, 4);
    const auto samples = static_cast<size_t>(random.between(1, round % 5 == 0 ? 150 : 30));
    std::vector<Table> tables;
    for (int c = 0; c < 4; ++c) tables.emplace_back(randomLists(random, firstSymbols(round % 6 == 5 ? 256 : 17)));
    std::vector<int16_t> values(samples * 2 * static_cast<size_t>(used));
    fillSamples(values.data(), values.size(), random, round % 3 == 0 ? 2 : round);
    const Bytes stream = streamOf([&](reference::HuffmanWriter& writer) {
      for (size_t i = 0; i < values.size(); ++i) {
        tables[i % static_cast<size_t>(used)].encoder.putDifference(writer, values[i]);
      }
    });
    const DecoderCalls rows = rowCalls(4, samples, components, tables);
    expectReadsEqualModelOnVariants("rows, round " + std::to_string(round), stream, rows.subject, rows.model, 30, 10);

    const DecoderCalls single = valueCalls(static_cast<int>(values.size()) + 9, tables[0]);
    expectReadsEqualModelOnVariants("values, round " + std::to_string(round), stream, single.subject, single.model, 20,
                                    5);
  }
}

// Rows long enough for differences to be decoded two at a time, ending anywhere.
TEST(HuffmanDecoder, LongLosslessRowsOfOneTableEqualModel) {
  Random random(5);
  for (int round = 0; round < 60; ++round) {
    const auto components = static_cast<int32_t>(random.between(1, 4));
    const auto samples = static_cast<size_t>(random.between(500, 800) / components + 1);
    const HuffmanLists lists = round % 3 == 0   ? randomLists(random, firstSymbols(17))
                               : round % 3 == 1 ? typicalDcLists()
                                                : HuffmanLists{{0, 0, 0, 0, 0, 0, 0, 17}, firstSymbols(17)};
    const std::vector<Table> tables(1, Table(lists));
    std::vector<int16_t> values(samples * static_cast<size_t>(components) * 3);
    const int64_t largest = std::array{3, 20, 3, 32767}[static_cast<size_t>(round) % 4];
    for (int16_t& value : values) {
      value = static_cast<int16_t>(random.between(-largest, largest) * (random.oneIn(50) ? 100 : 1));
    }
    const Bytes stream = streamOf([&](reference::HuffmanWriter& writer) {
      for (const int16_t value : values) tables[0].encoder.putDifference(writer, value);
    });
    const DecoderCalls rows = rowCalls(4, samples, components, tables);
    expectReadsEqualModelOnVariants("long rows, round " + std::to_string(round), stream, rows.subject, rows.model, 0,
                                    3);
    // A 0xFF in the end tells nothing yet, neither a byte nor a marker.
    for (size_t i = 0; i < 40; ++i) {
      Bytes cut(stream.begin(), stream.begin() + random.between(0, static_cast<int64_t>(stream.size())));
      cut.insert(cut.end(), 1 + i / 20, 0xFF);
      expectReadsEqualModel("long rows before 0xFF, round " + std::to_string(round), cut, rows.subject, rows.model);
    }
  }
}

// Four rows as long as they get, of which the data hold but the first few; all four in one place.
TEST(HuffmanDecoder, RowsOfMoreThanTwoToThe31DifferencesEndWithTheirData) {
  const Table table({{1}, {0}});
  const HuffmanDecodeSpec* specs[4] = {&table.spec, &table.spec, &table.spec, &table.spec};
  const Bytes source(1000);
  std::vector<int16_t> row(8 * source.size() / 4);
  int16_t* rows[4] = {row.data(), row.data(), row.data(), row.data()};
  forEachIsa([&](Isa isa) {
    for (const int32_t samples : {(1 << 29) + 1, (1 << 29) + 200, (1 << 30) + 1000, INT32_MAX}) {
      HuffmanDecodeState state = {};
      int32_t position = 0, marker = 0;
      EXPECT_EQ(zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(source.data(), 1000, &position, rows, samples, 4, &marker, specs,
                                                     &state),
                StatusBufferEnd)
          << isaName(isa) << ", " << samples;
      EXPECT_EQ(position, 1000) << isaName(isa) << ", " << samples;
    }
  });
}

// Lists with more codes than fit are accepted where the excess is of more than 8 bits. Whatever such tables decode to,
// it is the same at every level, and inside the list of symbols.
TEST(HuffmanDecoder, OversubscribedTablesAreSafe) {
  Random random(5);
  for (int round = 0; round < 200; ++round) {
    HuffmanLists lists{{1, 1, 1, 1, 1, 1, 1, static_cast<uint8_t>(random.between(0, 3))}, {}};
    for (size_t length = 8; length < 16; ++length) lists.bits[length] = static_cast<uint8_t>(random.between(0, 28));
    for (int i = 0; i < 256; ++i) lists.values.push_back(static_cast<uint8_t>(random.next()));
    const Table table(lists);
    Bytes noise(300);
    for (uint8_t& byte : noise) byte = static_cast<uint8_t>(random.next() | (random.oneIn(2) ? 0xF0 : 0));
    const DecoderCalls calls = blockCalls(40, table, table);
    setIsa(Isa::kPortable);
    const Trace portable = calls.subject(noise.data(), 300);
    expectReadsEqualModel("oversubscribed, round " + std::to_string(round), noise, calls.subject,
                          [&](const uint8_t*, int32_t) { return portable; });
  }
}

TEST(HuffmanDecoder, ArgumentOrder) {
  const HuffmanDecodeSpec spec = {};
  const uint8_t source[64] = {};
  int32_t position = 0, marker = 0, prefetchedCount = 0;
  uint32_t prefetchedBits = 0;
  int16_t lastDc = 0, block[64] = {1};
  HuffmanDecodeState state = {};
  const auto written = [&] {
    return block[0] != 1 || position > 0 || marker != 0 || lastDc != 0 || state.bitCount != 0;
  };
  constexpr StatusCode kNull = StatusNullPointer, kSize = StatusBadSize, kArgument = StatusBadArgument;

  expectArgumentOrder(
      "zoriDecodeHuffman8x8_JPEG_1u16s_C1", {kNull, kArgument, kNull, kNull, kNull, kNull, kNull, kNull, kNull},
      [&](const Faults& f) {
        return zoriDecodeHuffman8x8_JPEG_1u16s_C1(f.pointer(0, source), f.value(1, 64, -1), f.pointer(2, &position),
                                                  f.pointer(3, block), f.pointer(4, &lastDc), f.pointer(5, &marker),
                                                  f.pointer(6, &spec), f.pointer(7, &spec), f.pointer(8, &state));
      },
      written);
  expectArgumentOrder(
      "zoriDecodeHuffman8x8_Direct_JPEG_1u16s_C1",
      {kNull, kNull, kArgument, kNull, kNull, kNull, kNull, kNull, kArgument, kNull, kNull},
      [&](const Faults& f) {
        position = f.value(2, 0, -8);
        prefetchedCount = f.value(8, 0, -1);
        return zoriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
            f.pointer(0, source), f.pointer(1, &position), f.pointer(3, block), f.pointer(4, &lastDc),
            f.pointer(5, &marker), f.pointer(6, &prefetchedBits), f.pointer(7, &prefetchedCount), f.pointer(9, &spec),
            f.pointer(10, &spec));
      },
      written);
  position = 0;
  expectArgumentOrder(
      "zoriDecodeHuffmanOne_JPEG_1u16s_C1", {kNull, kSize, kNull, kNull, kNull, kNull, kNull},
      [&](const Faults& f) {
        return zoriDecodeHuffmanOne_JPEG_1u16s_C1(f.pointer(0, source), f.value(1, 64, 0), f.pointer(2, &position),
                                                  f.pointer(3, block), f.pointer(4, &marker), f.pointer(5, &spec),
                                                  f.pointer(6, &state));
      },
      written);
  expectArgumentOrder(
      "zoriDecodeHuffmanRow_JPEG_1u16s_C1P4",
      {kNull, kSize, kNull, kNull, kSize, kSize, kNull, kNull, kNull, kNull, kNull},
      [&](const Faults& f) {
        int16_t* const rows[2] = {block, f.pointer(9, block)};
        const HuffmanDecodeSpec* const specs[2] = {&spec, f.pointer(10, &spec)};
        return zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(
            f.pointer(0, source), f.value(1, 64, 0), f.pointer(2, &position), f.pointer(3, &rows[0]), f.value(4, 32, 0),
            f.value(5, 2, -1), f.pointer(6, &marker), f.pointer(7, &specs[0]), f.pointer(8, &state));
      },
      written);
}

}  // namespace
}  // namespace zorj::test
