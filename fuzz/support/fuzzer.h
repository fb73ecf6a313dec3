// A fuzzer is one file that defines fuzz(). It states what must hold by GoogleTest's expectations; a failed one ends
// the program, which makes the input a finding.
#pragma once

#include <gtest/gtest.h>

#include "core/isa.h"
#include "support/coders.h"
#include "support/input.h"

namespace zorj::fuzz {

void fuzz(Input& input);

using test::Bytes;
using test::Trace;

// Brings a level of the processor into force.
Isa chooseLevel(Input& input);

// What `calls` returns at the level in force, which must be what it returns at the portable one.
template <class Calls>
auto sameAtPortableLevel(const Calls& calls) {
  const uint8_t level = g_isa.load();
  const auto result = calls();
  g_isa.store(static_cast<uint8_t>(Isa::kPortable));
  const auto expected = calls();
  g_isa.store(level);
  EXPECT_TRUE(result == expected) << "other at " << test::isaName(static_cast<Isa>(level))
                                  << " than at the portable level";
  return result;
}

}  // namespace zorj::fuzz
