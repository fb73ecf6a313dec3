// Code lists and blocks made of an input.
#pragma once

#include <map>
#include <utility>

#include "support/huffman_data.h"
#include "support/input.h"

namespace zorj::fuzz {

using reference::HuffmanLists;
using test::Block;

// Lists by 16 counts and their symbols, the counts lowered to what fits. At least the code of all ones stays unused.
inline HuffmanLists listsOfInput(Input& input) {
  HuffmanLists lists;
  int room = 65535;  // of the codes of 16 bits
  int symbols = 256;
  for (int length = 1; length <= 16; ++length) {
    const int count = std::min({int{input.byte()}, room >> (16 - length), symbols});
    lists.bits[static_cast<size_t>(length - 1)] = static_cast<uint8_t>(count);
    room -= count << (16 - length);
    symbols -= count;
  }
  for (; symbols < 256; ++symbols) lists.values.push_back(input.byte());
  if (lists.values.empty()) lists.values.push_back(0);  // a pointer is needed all the same
  return lists;
}

// Lists of all sorts; those with a code for each of `symbols` among them.
inline HuffmanLists anyLists(Input& input, size_t symbols) {
  const uint8_t kind = input.byte();
  if (kind == 0) return test::typicalDcLists();
  if (kind == 1) return test::typicalAcLists();
  if (kind == 2) return listsOfInput(input);
  static std::map<std::pair<int, size_t>, HuffmanLists> made;
  HuffmanLists& lists = made[{kind % 16, symbols}];
  if (lists.values.empty()) {
    test::Random random(kind % 16);
    lists = test::randomLists(random, test::firstSymbols(symbols));
  }
  return lists;
}

// What is left, as blocks: each of some coefficients with their places, or all of one value.
inline std::vector<Block> blocksOfInput(Input& input, size_t atMost) {
  std::vector<Block> blocks;
  while (!input.empty() && blocks.size() < atMost) {
    Block block{};
    int coefficients = input.byte();
    if (coefficients > 64) {
      block.fill(static_cast<int16_t>(coefficients - 160));
      coefficients %= 3;
    }
    for (; coefficients > 0; --coefficients) {
      const int place = input.byte();
      const int value = place < 128 ? static_cast<int8_t>(input.byte()) : input.word();
      block[static_cast<size_t>(reference::naturalIndex(place % 64))] = static_cast<int16_t>(value);
    }
    blocks.push_back(block);
  }
  return blocks;
}

}  // namespace zorj::fuzz
