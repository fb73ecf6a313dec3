// The driver for functions on blocks of fixed size.
#pragma once

#include <string>
#include <vector>

#include "support/operands.h"

namespace zorj::test {

// Compares a block function with its model on `rounds` sets of data of all kinds.
inline void expectBlocksEqualModel(const std::string& what, const std::vector<OperandSpec>& operands,
                                   const Call& subject, const Call& model, int rounds = 50 * kFillKinds) {
  for (int round = 0; round < rounds; ++round) {
    expectEqualsModel(what, operands, static_cast<uint64_t>(round), round, subject, model);
  }
}

}  // namespace zorj::test
