// PackBits rows, packed and unpacked, and rows of 16-bit samples split and joined.
#include <zorj.h>

#include <numeric>

#include "reference/packbits.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

// A row packed into too little room, or just enough, and unpacked again.
void packRow(Input& input) {
  const int32_t start = input.between(0, 3), lacking = input.between(-2, 40);
  const Exact<uint8_t> row(input.rest());
  if (row.size() == 0) return;
  const std::vector<reference::Packet> packets = reference::packets(row.values());
  int32_t total = start;
  for (const reference::Packet& packet : packets) total += static_cast<int32_t>(packet.size());
  EXPECT_LE(total - start, row.length() + (row.length() + 127) / 128);

  const Exact<uint8_t> packed(static_cast<size_t>(std::max(1, total - lacking)));
  Bytes expected = packed.values();
  int32_t expectedPosition = start;
  bool fits = true;
  for (const reference::Packet& packet : packets) {
    fits = expectedPosition + static_cast<int32_t>(packet.size()) <= packed.length();
    if (!fits) break;
    std::copy(packet.begin(), packet.end(), expected.begin() + expectedPosition);
    expectedPosition += static_cast<int32_t>(packet.size());
  }
  int32_t position = start;
  EXPECT_EQ(zoriPackBitsRow_TIFF_8u_C1(row.data(), row.length(), packed.data(), &position, packed.length()),
            fits ? StatusOk : StatusPackBitsError);
  EXPECT_EQ(position, expectedPosition);
  EXPECT_EQ(packed.values(), expected);
  if (!fits) return;

  const Exact<uint8_t> unpacked(row.size());
  position = start;
  EXPECT_EQ(
      zoriUnpackBitsRow_TIFF_8u_C1(packed.data(), &position, expectedPosition, unpacked.data(), unpacked.length()),
      StatusOk);
  EXPECT_EQ(position, expectedPosition);
  EXPECT_EQ(unpacked.values(), row.values());
}

// Any bytes unpacked; the last of them is the one after the source.
void unpackRows(Input& input) {
  const auto rowLength = static_cast<size_t>(input.between(1, 700));
  const Exact<uint8_t> source(input.rest());
  const int32_t length = source.length() - 1;
  if (length < 1) return;
  int32_t position = 0;
  StatusCode status = StatusOk;
  for (int i = 0; i < 20 && status == StatusOk; ++i) {
    const Exact<uint8_t> row(rowLength);
    Bytes expected = row.values(), unpacked;
    int64_t expectedPosition = position;
    const bool full = reference::unpack(source.data(), length, expectedPosition, rowLength, unpacked);
    std::copy(unpacked.begin(), unpacked.end(), expected.begin());
    status = zoriUnpackBitsRow_TIFF_8u_C1(source.data(), &position, length, row.data(), row.length());
    EXPECT_EQ(status, full ? StatusOk : StatusPackBitsError);
    EXPECT_EQ(position, expectedPosition);
    EXPECT_EQ(row.values(), expected);
  }
}

void splitAndJoin(Input& input) {
  const bool odd = input.coin();
  const size_t width = input.rest().size() / 2;
  if (width == 0) return;
  const Exact<uint8_t> samples(input.take(2 * width), odd), joined(2 * width, !odd);
  const Exact<uint8_t> high(width), low(width);
  uint8_t* const planes[2] = {high.data(), low.data()};
  const int32_t count = static_cast<int32_t>(width);
  EXPECT_EQ(zoriSplitRow_TIFF_16u8u_C1(reinterpret_cast<const uint16_t*>(samples.data()), planes, count), StatusOk);
  for (size_t x = 0; x < width; ++x) {
    EXPECT_EQ(high.data()[x], samples.data()[2 * x + 1]);
    EXPECT_EQ(low.data()[x], samples.data()[2 * x]);
  }
  EXPECT_EQ(zoriJoinRow_TIFF_8u16u_C1(planes, reinterpret_cast<uint16_t*>(joined.data()), count), StatusOk);
  EXPECT_EQ(joined.values(), samples.values());
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  switch (input.byte() % 3) {
    case 0:
      return packRow(input);
    case 1:
      return unpackRows(input);
    default:
      return splitAndJoin(input);
  }
}

}  // namespace zorj::fuzz
