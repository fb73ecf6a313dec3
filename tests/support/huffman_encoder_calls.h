// Series of calls of the Huffman encoders, beside those of their models.
#pragma once

#include <gtest/gtest.h>
#include <zorj.h>

#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"
#include "reference/progressive.h"
#include "support/coders.h"
#include "support/huffman_data.h"

namespace zorj::test {

struct EncoderTable {
  HuffmanLists lists;
  HuffmanEncodeSpec spec;
  reference::HuffmanEncoder model;
  explicit EncoderTable(const HuffmanLists& from) : lists(from), model(from) {
    EXPECT_EQ(zoriEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &spec), StatusOk);
  }
};

inline HuffmanEncodeState freshState() {
  HuffmanEncodeState state;
  std::memset(static_cast<void*>(&state), 0xA5, sizeof state);
  zoriEncodeHuffmanStateInit_JPEG_8u(&state);
  return state;
}

inline void note(Trace& trace, StatusCode status, int position, const HuffmanEncodeState& state) {
  trace.insert(trace.end(), {status, position, state.accumulator, state.reserved, state.bitCount, state.eobRun,
                             state.correctionCount, state.unused});
}
inline void note(Trace& trace, StatusCode status, const reference::HuffmanWriter& writer,
                 const reference::EobRun& run) {
  trace.insert(trace.end(),
               {status, writer.position, writer.accumulator(), 0, static_cast<int64_t>(writer.pending.size()),
                run.blocks, static_cast<int64_t>(run.corrections.size()), 0xA5A5A5A5});
}

// Calls that the subject makes on the exports and the model makes on its writer.
struct EncoderCalls {
  WriteCalls subject;
  WriteCalls model;
};

// What the models of the encoders work with.
struct ModelEncoder {
  reference::HuffmanWriter writer;
  reference::EobRun run = {};
  int16_t lastDc = 0;
};

// `count` calls of subject(i, ...) and model(i, encoder), up to the first failure, and a flush.
template <class Subject, class Model>
EncoderCalls statefulCalls(size_t count, const Subject& subject, const Model& model) {
  return {[=](uint8_t* destination, int32_t length) {
            Trace trace;
            HuffmanEncodeState state = freshState();
            int32_t position = 0;
            int16_t lastDc = 0;
            for (size_t i = 0; i <= count; ++i) {
              const StatusCode status = subject(i, destination, length, &position, lastDc, &state);
              trace.push_back(lastDc);
              note(trace, status, position, state);
              if (status != StatusOk) break;
            }
            return trace;
          },
          [=](uint8_t* destination, int32_t length) {
            Trace trace;
            ModelEncoder encoder = {reference::HuffmanWriter(destination, length)};
            for (size_t i = 0; i <= count; ++i) {
              const StatusCode status = model(i, encoder);
              trace.push_back(encoder.lastDc);
              note(trace, status, encoder.writer, encoder.run);
              if (status != StatusOk) break;
            }
            return trace;
          }};
}

// Room for all, and every length around where that ends; where it is little, every length there is.
inline std::vector<int32_t> lengthsToTry(const EncoderCalls& calls) {
  std::vector<uint8_t> bytes(1 << 16);
  const Trace trace = calls.model(bytes.data(), 1 << 16);
  const int32_t total = static_cast<int32_t>(trace[trace.size() - 7]);
  std::vector<int32_t> lengths = {total + 5000};
  for (int32_t length = std::max(1, total - 40); length < total + 40; ++length) lengths.push_back(length);
  for (int32_t length = 1; length < std::min(total - 40, 150); ++length) lengths.push_back(length);
  return lengths;
}

}  // namespace zorj::test
