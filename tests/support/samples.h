// Samples of operands at any byte address.
#pragma once

#include <cstddef>
#include <cstring>

#include "support/operands.h"

namespace zorj::test {

template <class T>
T sampleAt(const Operands& o, size_t operand, int x, int y) {
  T sample;
  const ptrdiff_t offset = ptrdiff_t{y} * o.step(operand) + x * static_cast<ptrdiff_t>(sizeof(T));
  std::memcpy(&sample, o.at<uint8_t>(operand) + offset, sizeof sample);
  return sample;
}

template <class T>
void storeSample(const Operands& o, size_t operand, int x, int y, T sample) {
  const ptrdiff_t offset = ptrdiff_t{y} * o.step(operand) + x * static_cast<ptrdiff_t>(sizeof(T));
  std::memcpy(o.at<uint8_t>(operand) + offset, &sample, sizeof sample);
}

}  // namespace zorj::test
