// Coders beside their models on memory that is exactly as large as promised, at the level in force.
#pragma once

#include "support/fuzzer.h"

namespace zorj::fuzz {

inline void expectSameReads(std::span<const uint8_t> stream, const test::ReadCalls& subject,
                            const test::ReadCalls& model) {
  const Exact<uint8_t> source(stream);
  test::expectEqualTraces("reading", subject(source.data(), source.length()), model(source.data(), source.length()));
}

// Gives back what was written.
inline Bytes expectSameWrites(int32_t room, const test::WriteCalls& subject, const test::WriteCalls& model) {
  const Exact<uint8_t> destination(static_cast<size_t>(room));
  Bytes expected = destination.values();
  test::expectEqualTraces("writing", subject(destination.data(), room), model(expected.data(), room));
  EXPECT_EQ(destination.values(), expected);
  return expected;
}

}  // namespace zorj::fuzz
