#include <gtest/gtest.h>
#include <zorj.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <vector>

#include "reference/packbits.h"
#include "support/arguments.h"
#include "support/coders.h"
#include "support/isa_levels.h"
#include "support/rows.h"
#include "support/samples.h"

namespace zorj::test {
namespace {

// Runs and unequal bytes in turn, of lengths around `typical`, so that pairs and triples meet every packet boundary.
Bytes anyRow(Random& random, int64_t length, int64_t typical) {
  Bytes row;
  const int values = random.oneIn(3) ? 2 : 256;
  while (static_cast<int64_t>(row.size()) < length) {
    const auto any = [&] { return static_cast<uint8_t>(random.next() % static_cast<unsigned>(values)); };
    const int64_t count = random.between(1, 2 * typical);
    if (random.oneIn(2)) {
      row.insert(row.end(), static_cast<size_t>(count), any());
    } else {
      for (int64_t i = 0; i < count; ++i) row.push_back(any());
    }
  }
  row.resize(static_cast<size_t>(length));
  return row;
}

std::vector<Bytes> anyRows() {
  std::vector<Bytes> rows;
  Random random(3);
  for (int i = 0; i < 180; ++i) {
    const int64_t typical = std::array{1, 2, 5, 40, 70, 130}[static_cast<size_t>(i) % 6];
    rows.push_back(anyRow(random, i < 140 ? i + 1 : random.between(1, i % 7 == 0 ? 12000 : 1500), typical));
  }
  return rows;
}

Bytes packed(const Bytes& row) {
  Bytes all;
  for (const reference::Packet& packet : reference::packets(row)) all.insert(all.end(), packet.begin(), packet.end());
  return all;
}

TEST(PackBits, PacksLikeModelIntoAnyRoom) {
  for (const Bytes& row : anyRows()) {
    const auto size = static_cast<int32_t>(packed(row).size());
    const GuardedMemory source(row.size(), Placement::kAtEnd);
    std::copy(row.begin(), row.end(), source.data());
    for (const int32_t start : {0, 3}) {
      expectWritesEqualModel(
          "zoriPackBitsRow_TIFF_8u_C1 of " + std::to_string(row.size()) + " bytes",
          {start + size, start + size + 70, std::max(1, start + size - 1), start + size / 2 + 1, 1},
          [&](uint8_t* destination, int32_t length) {
            int32_t position = start;
            const StatusCode status = zoriPackBitsRow_TIFF_8u_C1(source.data(), static_cast<int32_t>(row.size()),
                                                                 destination, &position, length);
            return Trace{status, position};
          },
          [&](uint8_t* destination, int32_t length) {
            int32_t position = start;
            for (const reference::Packet& packet : reference::packets(row)) {
              if (position + static_cast<int32_t>(packet.size()) > length) return Trace{StatusPackBitsError, position};
              std::copy(packet.begin(), packet.end(), destination + position);
              position += static_cast<int32_t>(packet.size());
            }
            return Trace{StatusOk, position};
          });
    }
  }
}

// Rows of `rowLength` bytes from one source, until one fails: statuses, positions, and every byte of the row, those
// not to be written too. The byte after the source is readable and belongs to the stream handed in.
ReadCalls unpackRows(int32_t rowLength,
                     const std::function<StatusCode(const uint8_t*, int32_t*, int32_t, uint8_t*)>& unpack) {
  return [=](const uint8_t* source, int32_t readable) {
    Trace trace;
    if (readable < 2) return trace;
    int32_t position = 0;
    StatusCode status = StatusOk;
    for (int row = 0; row < 40 && status == StatusOk; ++row) {
      const GuardedMemory memory(static_cast<size_t>(rowLength),
                                 row % 2 != 0 ? Placement::kAtStart : Placement::kAtEnd);
      std::iota(memory.data(), memory.data() + rowLength, uint8_t{1});
      status = unpack(source, &position, readable - 1, memory.data());
      trace.insert(trace.end(), {status, position});
      trace.insert(trace.end(), memory.data(), memory.data() + rowLength);
    }
    return trace;
  };
}

TEST(PackBits, UnpacksLikeModelWhateverTheStream) {
  Random random(11);
  int seed = 0;
  for (const Bytes& row : anyRows()) {
    Bytes stream = packed(row);
    // Headers that say nothing, where the next packet begins: also in long sequences.
    if (random.oneIn(4)) stream.insert(stream.begin(), random.oneIn(4) ? 200 : 1, 0x80);
    stream.push_back(0x77);
    const auto length = static_cast<int32_t>(row.size());
    for (const int32_t rowLength : {length, std::max(1, length - 1), length + 1, 1 + length / 3}) {
      const auto subject =
          unpackRows(rowLength, [=](const uint8_t* source, int32_t* position, int32_t end, uint8_t* out) {
            return zoriUnpackBitsRow_TIFF_8u_C1(source, position, end, out, rowLength);
          });
      const auto model =
          unpackRows(rowLength, [=](const uint8_t* source, int32_t* position, int32_t end, uint8_t* out) {
            int64_t at = *position;
            Bytes bytes;
            const bool full = reference::unpack(source, end, at, static_cast<size_t>(rowLength), bytes);
            std::copy(bytes.begin(), bytes.end(), out);
            *position = static_cast<int32_t>(at);
            return full ? StatusOk : StatusPackBitsError;
          });
      const bool variants = ++seed % 40 == 0;
      expectReadsEqualModelOnVariants("zoriUnpackBitsRow_TIFF_8u_C1 of " + std::to_string(rowLength) + " bytes", stream,
                                      subject, model, variants ? 300 : 1, variants ? 30 : 2);
    }
  }
}

// Short packets in their thousands, then nothing more: whatever was written behind them in passing is gone again.
TEST(PackBits, LeavesTheRestOfLongRowsAsItWas) {
  for (int32_t runs = 1900; runs < 2100; runs += 3) {
    Bytes stream, expected(6000, 0xEE);
    for (int32_t i = 0; i < runs; ++i) {
      const auto value = static_cast<uint8_t>(i);
      stream.insert(stream.end(), {0xFF, value});
      std::fill_n(expected.begin() + 2 * i, 2, value);
    }
    stream.insert(stream.end(), 300, 0x80);
    forEachIsa([&](Isa isa) {
      Bytes row(6000, 0xEE);
      int32_t position = 0;
      EXPECT_EQ(zoriUnpackBitsRow_TIFF_8u_C1(stream.data(), &position, static_cast<int32_t>(stream.size()), row.data(),
                                             static_cast<int32_t>(row.size())),
                StatusPackBitsError);
      EXPECT_EQ(row, expected) << isaName(isa) << ", " << runs << " runs";
    });
  }
}

// Where adding the length of a packet to the position overflows 32 bits.
TEST(PackBits, UnpacksUpToTheLastPosition) {
  const auto statusOf = [](const Bytes& end, int32_t& position, Bytes& row) {
    const GuardedMemory memory(end.size(), Placement::kAtEnd);
    std::copy(end.begin(), end.end(), memory.data());
    const auto before = static_cast<ptrdiff_t>(INT32_MAX - end.size());
    position = static_cast<int32_t>(before);
    return zoriUnpackBitsRow_TIFF_8u_C1(memory.data() - before, &position, INT32_MAX, row.data(),
                                        static_cast<int32_t>(row.size()));
  };
  forEachIsa([&](Isa isa) {
    int32_t position = 0;
    Bytes row(2, 7);
    EXPECT_EQ(statusOf({0xFF, 5}, position, row), StatusOk) << isaName(isa);
    EXPECT_EQ(position, INT32_MAX);
    EXPECT_EQ(row, (Bytes{5, 5}));
    for (const uint8_t header : {0x01, 0x7F, 0x81, 0xFF}) {
      row.assign(200, 7);
      EXPECT_EQ(statusOf({header}, position, row), StatusPackBitsError) << isaName(isa) << ", " << int{header};
      EXPECT_EQ(position, INT32_MAX);
      EXPECT_EQ(row, Bytes(200, 7));
    }
  });
}

TEST(SplitAndJoin, EqualModel) {
  expectRowsEqualModel(
      "zoriSplitRow_TIFF_16u8u_C1",
      [](int width, int) {
        return std::vector{sourceArray<uint16_t>(width), destinationArray<uint8_t>(width),
                           destinationArray<uint8_t>(width)};
      },
      [](const Operands& o, RoiSize size) {
        uint8_t* const planes[2] = {o.at<uint8_t>(1), o.at<uint8_t>(2)};
        EXPECT_EQ(zoriSplitRow_TIFF_16u8u_C1(o.at<uint16_t>(0), planes, size.width), StatusOk);
      },
      [](const Operands& o, RoiSize size) {
        for (int x = 0; x < size.width; ++x) {
          const auto sample = sampleAt<uint16_t>(o, 0, x, 0);
          o.at<uint8_t>(1)[x] = static_cast<uint8_t>(sample / 256);
          o.at<uint8_t>(2)[x] = static_cast<uint8_t>(sample % 256);
        }
      });
  expectRowsEqualModel(
      "zoriJoinRow_TIFF_8u16u_C1",
      [](int width, int) {
        return std::vector{sourceArray<uint8_t>(width), sourceArray<uint8_t>(width), destinationArray<uint16_t>(width)};
      },
      [](const Operands& o, RoiSize size) {
        const uint8_t* const planes[2] = {o.at<uint8_t>(0), o.at<uint8_t>(1)};
        EXPECT_EQ(zoriJoinRow_TIFF_8u16u_C1(planes, o.at<uint16_t>(2), size.width), StatusOk);
      },
      [](const Operands& o, RoiSize size) {
        for (int x = 0; x < size.width; ++x) {
          storeSample(o, 2, x, 0, static_cast<uint16_t>(o.at<uint8_t>(0)[x] * 256 + o.at<uint8_t>(1)[x]));
        }
      });
}

TEST(TiffRows, CheckArgumentsInOrder) {
  const std::array<uint8_t, 4> source = {1, 1, 1, 1}, packets = {3, 1, 2, 3};
  std::array<uint8_t, 4> destination = {}, second = {};
  int32_t position = 0;
  const auto written = [&] {
    return position != 0 || destination != std::array<uint8_t, 4>{} || second != std::array<uint8_t, 4>{};
  };
  expectArgumentOrder(
      "zoriPackBitsRow_TIFF_8u_C1",
      {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadSize, StatusBadSize},
      [&](const Faults& f) {
        return zoriPackBitsRow_TIFF_8u_C1(f.pointer(0, source.data()), f.value(3, 4, 0),
                                          f.pointer(1, destination.data()), f.pointer(2, &position), f.value(4, 4, -1));
      },
      written);
  expectArgumentOrder(
      "zoriUnpackBitsRow_TIFF_8u_C1",
      {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadSize, StatusBadSize},
      [&](const Faults& f) {
        return zoriUnpackBitsRow_TIFF_8u_C1(f.pointer(0, packets.data()), f.pointer(1, &position), f.value(3, 4, -4),
                                            f.pointer(2, destination.data()), f.value(4, 4, 0));
      },
      written);
  const std::vector<StatusCode> order = {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusNullPointer,
                                         StatusBadStep};
  expectArgumentOrder(
      "zoriSplitRow_TIFF_16u8u_C1", order,
      [&](const Faults& f) {
        uint8_t* const planes[2] = {f.pointer(2, destination.data()), f.pointer(3, second.data())};
        return zoriSplitRow_TIFF_16u8u_C1(f.pointer(0, reinterpret_cast<const uint16_t*>(source.data())),
                                          f.pointer(1, &planes[0]), f.value(4, 2, 0));
      },
      written);
  expectArgumentOrder(
      "zoriJoinRow_TIFF_8u16u_C1", order,
      [&](const Faults& f) {
        const uint8_t* const planes[2] = {f.pointer(2, source.data()), f.pointer(3, packets.data())};
        return zoriJoinRow_TIFF_8u16u_C1(
            f.pointer(1, &planes[0]), f.pointer(0, reinterpret_cast<uint16_t*>(destination.data())), f.value(4, 2, -2));
      },
      written);
}

// Worked by hand, so that the model has something to answer to.
TEST(PackBits, PacksAsDocumented) {
  EXPECT_EQ(packed({7, 7, 8}), (Bytes{0xFF, 7, 0, 8}));
  EXPECT_EQ(packed({7, 8, 8, 9}), (Bytes{3, 7, 8, 8, 9}));
  EXPECT_EQ(packed({7, 8, 8, 8, 9}), (Bytes{0, 7, 0xFE, 8, 0, 9}));
  EXPECT_EQ(packed(Bytes(300, 7)), (Bytes{0x81, 7, 0x81, 7, 213, 7}));
}

}  // namespace
}  // namespace zorj::test
