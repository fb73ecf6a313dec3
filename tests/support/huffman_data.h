// Code lists and blocks for the tests and benchmarks of the Huffman coders.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

#include "reference/huffman.h"
#include "support/random.h"

namespace zorj::test {

using reference::HuffmanLists;
using Block = std::array<int16_t, 64>;

// The typical lists for luminance (T.81 Tables K.3 and K.5).
inline HuffmanLists typicalDcLists() {
  HuffmanLists lists{{0, 1, 5, 1, 1, 1, 1, 1, 1}, std::vector<uint8_t>(12)};
  std::iota(lists.values.begin(), lists.values.end(), uint8_t{0});
  return lists;
}
inline HuffmanLists typicalAcLists() {
  HuffmanLists lists{
      {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 125},
      {0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61, 0x07, 0x22, 0x71, 0x14,
       0x32, 0x81, 0x91, 0xA1, 0x08, 0x23, 0x42, 0xB1, 0xC1, 0x15, 0x52, 0xD1, 0xF0, 0x24, 0x33, 0x62, 0x72, 0x82}};
  // The others, all of 16 bits, in increasing order.
  for (int symbol = 0; symbol < 256; ++symbol) {
    const auto value = static_cast<uint8_t>(symbol);
    const bool listed = std::find(lists.values.begin(), lists.values.end(), value) != lists.values.end();
    if (!listed && symbol % 16 >= 1 && symbol % 16 <= 10) lists.values.push_back(value);
  }
  return lists;
}

// Lists that give each of `symbols` a code, in random order and of random lengths, the code of all ones left unused.
inline HuffmanLists randomLists(Random& random, std::vector<uint8_t> symbols) {
  HuffmanLists lists;
  std::vector<int> lengths(symbols.size(), 16);
  int64_t used = static_cast<int64_t>(symbols.size());  // of the 65536 codes of 16 bits
  for (int i = 0; i < 4000; ++i) {
    int& length = lengths[random.next() % lengths.size()];
    const int other = static_cast<int>(random.between(1, 16));
    const int64_t change = (int64_t{1} << (16 - other)) - (int64_t{1} << (16 - length));
    if (used + change > 65535) continue;
    used += change;
    length = other;
  }
  for (const int length : lengths) ++lists.bits[static_cast<size_t>(length - 1)];
  for (size_t i = symbols.size(); i > 1; --i) std::swap(symbols[i - 1], symbols[random.next() % i]);
  lists.values = symbols;
  return lists;
}
inline std::vector<uint8_t> firstSymbols(size_t count) {
  std::vector<uint8_t> symbols(count);
  std::iota(symbols.begin(), symbols.end(), uint8_t{0});
  return symbols;
}

// A component's table; components without one of their own share the first.
template <class Table>
const Table& tableOf(const std::vector<Table>& tables, size_t component) {
  return tables[component < tables.size() ? component : 0];
}

// A quantised block as photographs give them: amplitudes fall with the frequency; `detail` is about the standard
// deviation of the first AC coefficients.
inline Block photographicBlock(Random& random, double detail) {
  Block block{};
  for (int k = 0; k < 64; ++k) {
    const double uniform = (static_cast<double>(random.next() >> 11) + 0.5) / 9007199254740992.0;
    const double laplacian = (random.oneIn(2) ? 1 : -1) * -std::log(uniform) * 0.7;
    const double deviation = k == 0 ? 8 * detail : detail * std::exp(-0.11 * k);
    block[static_cast<size_t>(reference::naturalIndex(k))] =
        static_cast<int16_t>(std::clamp(std::lround(laplacian * deviation), -1000L, 1000L));
  }
  return block;
}

// A block of one of many kinds: from photographic ones to those no photograph has.
inline Block anyBlock(Random& random) {
  Block block{};
  switch (const auto kind = random.between(0, 6)) {
    case 0:
    case 1:
      return photographicBlock(random, kind == 0 ? 2 : 12);
    case 2:  // long runs of zeros
      for (int i = 0; i < 3; ++i) block[random.next() % 64] = static_cast<int16_t>(random.between(-3, 3));
      return block;
    case 3:  // all of them, up to the last
      for (int16_t& value : block) value = static_cast<int16_t>(random.between(1, 1000) - 500);
      block[63] = 1;
      return block;
    case 4:
      fillSamples(block.data(), block.size(), random, static_cast<int>(random.next() % kFillKinds));
      return block;
    case 5:  // ones: bytes of 0xFF become frequent
      for (int16_t& value : block) value = static_cast<int16_t>((1 << random.between(0, 10)) - 1);
      return block;
    default:
      return block;
  }
}

}  // namespace zorj::test
