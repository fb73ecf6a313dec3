// What the DCT tests share.
#pragma once

#include <cstring>

#include "reference/dct.h"
#include "support/samples.h"

namespace zorj::test {

// The array at a possibly odd address.
template <class Array>
Array loadArray(const Operands& o, size_t operand) {
  Array values;
  std::memcpy(values.data(), o.at<uint8_t>(operand), sizeof values);
  return values;
}

template <class Array>
void storeArray(const Operands& o, size_t operand, const Array& values) {
  std::memcpy(o.at<uint8_t>(operand), values.data(), sizeof values);
}

// Multipliers of the float paths: ordinary ones, and in some rounds such as lead out of every range.
inline void fillMultipliers(float* values, size_t count, Random& random, int round) {
  constexpr float kWild[] = {0.0f, 1e30f, -1e30f, 1e38f, INFINITY, -INFINITY, NAN, 1e-40f};
  for (size_t i = 0; i < count; ++i) {
    const bool wild = round % 4 == 3 && random.oneIn(4);
    values[i] = wild ? kWild[random.between(0, 7)] : static_cast<float>(random.between(1, 1000)) / 64;
  }
}

}  // namespace zorj::test
