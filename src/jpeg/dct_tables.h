// What the vector kernels of the fixed-point DCT read: weights, factors and byte orders as they lie in registers.
// Defined in a file of their own, where the compiler cannot see through them: it would otherwise build many of the
// vectors anew in every call, from immediate values.
#pragma once

#include <cstdint>

namespace zorj {

// A pair of coefficients or samples of a row that meet in one 16x16-bit multiply-add.
enum DctPair { kPair02, kPair46, kPair13, kPair57, kPairCount };

struct alignas(64) DctTables {
  // For a row of sums and differences s01 d01 s23 d23: by frequencies (0..3, 4..7), by whether the row's halves
  // are exchanged, and by row.
  int16_t forwardWeights[2][2][8][8];
  // For samples 0..3, by pair of coefficients and row.
  int16_t inverseWeights[kPairCount][8][8];
  int32_t inverseBias[8][4];
  // By DctFactor.
  int16_t factors[5][8];
  // The bytes of a row of 16-bit values that fill it with one of its pairs: of both values, of the first and zeros.
  uint8_t pairBytes[2][kPairCount][16];
  // The bytes of a reversed row.
  uint8_t reversed[16];
  // The bytes that put samples in the order 0 1 2 3 7 6 5 4 right: of one row of 16 bits, of two of 8 bits.
  uint8_t unfolded16[16];
  uint8_t unfolded8[16];
};

extern const DctTables kDctTables;

}  // namespace zorj
