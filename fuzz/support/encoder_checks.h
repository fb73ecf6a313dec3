// Encoders with room and without, and what they wrote.
#pragma once

#include "support/coder_checks.h"
#include "support/huffman_encoder_calls.h"

namespace zorj::fuzz {

constexpr int32_t kAmple = 1 << 15;

inline HuffmanDecodeSpec decodeSpec(const reference::HuffmanLists& lists) {
  HuffmanDecodeSpec spec;
  EXPECT_EQ(zoriDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &spec), StatusOk);
  return spec;
}

// What a series of stateful calls came to.
struct Written {
  Bytes bytes;
  bool complete;
};
inline Written expectSameWithAndWithoutRoom(const test::EncoderCalls& calls, int32_t lacking) {
  Bytes scratch(kAmple);
  const Trace trace = calls.model(scratch.data(), kAmple);
  const auto status = trace[trace.size() - 8], total = trace[trace.size() - 7];
  expectSameWrites(std::max(1, static_cast<int32_t>(total) - lacking), calls.subject, calls.model);
  Bytes bytes = expectSameWrites(static_cast<int32_t>(total) + 1 + lacking, calls.subject, calls.model);
  bytes.resize(static_cast<size_t>(total));
  return {bytes, status == StatusOk};
}

}  // namespace zorj::fuzz
