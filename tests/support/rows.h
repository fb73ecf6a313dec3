// The driver for functions on rows of pixels.
#pragma once

#include <zorcore.h>

#include <string>

#include "support/operands.h"

namespace zorj::test {

// Compares a function on an image of width x height with its model: every width from 1 to 130, then an image large
// enough to be shared among threads, with one and with four of them. `operands(width, height)` lists the operands,
// `subject` and `model` take (operands, size).
template <class OperandList, class Subject, class Model>
void expectRowsEqualModel(const std::string& what, const OperandList& operands, const Subject& subject,
                          const Model& model) {
  const auto compare = [&](int width, int height, uint64_t seed, int round) {
    const RoiSize size = {width, height};
    expectEqualsModel(
        what + " of width " + std::to_string(width), operands(width, height), seed, round,
        [&](const Operands& o) { subject(o, size); }, [&](const Operands& o) { model(o, size); });
  };
  for (int width = 1; width <= 130; ++width) compare(width, 1 + width % 3, static_cast<uint64_t>(width), width);
  for (const int threads : {1, 4}) {
    zorSetNumThreads(threads);
    compare(67, 131, 1000, 0);
    compare(1, 8200, 1001, 0);
  }
  zorSetNumThreads(0);
}

}  // namespace zorj::test
