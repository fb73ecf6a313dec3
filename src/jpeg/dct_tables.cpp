#include "jpeg/dct_tables.h"

#include "jpeg/dct_constants.h"

namespace zorj {
namespace {

constexpr int kFirstOfPair[kPairCount] = {0, 4, 1, 5};

constexpr DctTables makeTables() {
  DctTables tables{};
  for (int i = 0; i < 2 * 2 * 8 * 8; ++i) {
    const int frequencies = i / 128, exchanged = i / 64 % 2, row = i / 8 % 8, lane = i / 2 % 4;
    const int x = 2 * ((lane / 2) ^ exchanged) + i % 2;
    tables.forwardWeights[frequencies][exchanged][row][i % 8] = dctRowWeight(row, 4 * frequencies + lane, x);
  }
  for (int i = 0; i < kPairCount * 8 * 8; ++i) {
    const int pair = i / 64, row = i / 8 % 8, lane = i % 8;
    tables.inverseWeights[pair][row][lane] = dctRowWeight(row, kFirstOfPair[pair] + 2 * (lane % 2), lane / 2);
  }
  for (int i = 0; i < 8 * 4; ++i) tables.inverseBias[i / 4][i % 4] = kDctRowBias[i / 4];
  for (int i = 0; i < 5 * 8; ++i) tables.factors[i / 8][i % 8] = kDctFactors[i / 8];
  for (int i = 0; i < kPairCount * 16; ++i) {
    const bool second = i / 2 % 2 == 1;
    const int byte = 2 * kFirstOfPair[i / 16] + i % 2 + (second ? 4 : 0);
    tables.pairBytes[0][i / 16][i % 16] = static_cast<uint8_t>(byte);
    tables.pairBytes[1][i / 16][i % 16] = static_cast<uint8_t>(second ? 0x80 : byte);
  }
  for (int i = 0; i < 16; ++i) {
    tables.reversed[i] = static_cast<uint8_t>(14 - i + 2 * (i % 2));
    tables.unfolded16[i] = static_cast<uint8_t>(i < 8 ? i : 22 - i + 2 * (i % 2));
    tables.unfolded8[i] = static_cast<uint8_t>(i % 8 < 4 ? i : i / 8 * 8 + 11 - i % 8);
  }
  return tables;
}

}  // namespace

constinit const DctTables kDctTables = makeTables();

}  // namespace zorj
