// The driver for functions that write or read coded data, one call after the other.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/guarded_memory.h"
#include "support/isa_levels.h"
#include "support/random.h"

namespace zorj::test {

// All that a series of calls left behind, in order: statuses, positions, words of the state, decoded values.
using Trace = std::vector<int64_t>;

using Bytes = std::vector<uint8_t>;
using ReadCalls = std::function<Trace(const uint8_t* source, int32_t length)>;
using WriteCalls = std::function<Trace(uint8_t* destination, int32_t length)>;

inline void expectEqualTraces(const std::string& what, const Trace& actual, const Trace& expected) {
  if (actual == expected) return;
  const auto [a, e] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
  ADD_FAILURE() << what << ": entry " << a - actual.begin() << " of " << expected.size() << " is "
                << (a == actual.end() ? std::string("missing") : std::to_string(*a)) << " instead of "
                << (e == expected.end() ? std::string("missing") : std::to_string(*e));
}

// Compares decoder calls with their model on one stream that ends at a guard page.
inline void expectReadsEqualModel(const std::string& what, const Bytes& stream, const ReadCalls& subject,
                                  const ReadCalls& model) {
  const int32_t length = static_cast<int32_t>(stream.size());
  const Trace expected = model(stream.data(), length);
  for (const Placement placement : {Placement::kAtEnd, Placement::kAtStart}) {
    const GuardedMemory memory(stream.size(), placement);
    if (!stream.empty()) std::memcpy(memory.data(), stream.data(), stream.size());
    forEachIsa([&](Isa isa) {
      expectEqualTraces(what + " at " + isaName(isa) + ", " + std::to_string(length) + " bytes",
                        subject(memory.data(), length), expected);
    });
  }
}

// The stream with one thing done to it that damage or a writer's liberties may bring.
inline Bytes disturbed(Bytes stream, Random& random) {
  const auto at = stream.begin() + random.between(0, static_cast<int64_t>(stream.size()) - 1);
  const uint8_t any = static_cast<uint8_t>(random.next());
  switch (random.between(0, 6)) {
    case 0:
      *at = any;
      break;
    case 1:
      *at = 0xFF;
      break;
    case 2:
      stream.insert(at, {0xFF, 0x00});
      break;
    case 3:
      stream.insert(at, {0xFF, 0xFF, 0xFF, 0x00});
      break;
    case 4:
      stream.insert(at, {0xFF, static_cast<uint8_t>(0xD0 | (any & 7))});
      break;
    case 5:
      stream.erase(at);
      break;
    default:
      stream.insert(at, 9, 0xFF);
      break;
  }
  return stream;
}

// Compares decoder calls with their model on the stream as it is, cut at every length up to `cuts`, and disturbed in
// `disturbances` ways.
inline void expectReadsEqualModelOnVariants(const std::string& what, const Bytes& stream, const ReadCalls& subject,
                                            const ReadCalls& model, size_t cuts, int disturbances) {
  expectReadsEqualModel(what, stream, subject, model);
  for (size_t length = 1; length < std::min(cuts, stream.size()); ++length) {
    const auto begin = stream.begin();
    expectReadsEqualModel(what + ", cut", Bytes(begin, begin + static_cast<ptrdiff_t>(length)), subject, model);
  }
  Random random(stream.size());
  for (int i = 0; i < disturbances && !stream.empty(); ++i) {
    expectReadsEqualModel(what + ", disturbed", disturbed(stream, random), subject, model);
  }
}

// Compares encoder calls with their model on destinations of the given lengths, which end at a guard page. All their
// bytes must agree, those that were not to be written too.
inline void expectWritesEqualModel(const std::string& what, const std::vector<int32_t>& lengths,
                                   const WriteCalls& subject, const WriteCalls& model) {
  constexpr uint8_t kCanary = 0xA5;
  for (const int32_t length : lengths) {
    Bytes expectedBytes(static_cast<size_t>(length), kCanary);
    const Trace expected = model(expectedBytes.data(), length);
    forEachIsa([&](Isa isa) {
      const GuardedMemory memory(static_cast<size_t>(length), Placement::kAtEnd);
      std::fill_n(memory.data(), length, kCanary);
      const std::string where = what + " at " + isaName(isa) + ", room for " + std::to_string(length) + " bytes";
      expectEqualTraces(where, subject(memory.data(), length), expected);
      const auto [byte, expectedByte] =
          std::mismatch(memory.data(), memory.data() + length, expectedBytes.begin(), expectedBytes.end());
      EXPECT_EQ(byte - memory.data(), length) << where << ": this byte is the first that differs";
    });
  }
}

}  // namespace zorj::test
