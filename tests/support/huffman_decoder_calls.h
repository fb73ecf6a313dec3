// Series of calls of the Huffman decoders, beside those of their models.
#pragma once

#include <gtest/gtest.h>
#include <zorj.h>

#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"
#include "reference/progressive.h"
#include "support/coders.h"
#include "support/huffman_data.h"

namespace zorj::test {

struct DecoderTable {
  HuffmanLists lists;
  HuffmanDecodeSpec spec;
  reference::HuffmanDecoder model;
  reference::HuffmanEncoder encoder;
  explicit DecoderTable(const HuffmanLists& from) : lists(from), model(from), encoder(from) {
    EXPECT_EQ(zoriDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &spec), StatusOk);
  }
};

// A stream: what `write` puts, padded with ones, then a marker and some bytes that are not to be read.
template <class Write>
Bytes streamOf(const Write& write) {
  Bytes bytes(1 << 16);
  reference::HuffmanWriter writer(bytes.data(), static_cast<int>(bytes.size()));
  write(writer);
  writer.flush();
  bytes.resize(static_cast<size_t>(writer.position));
  bytes.insert(bytes.end(), {0xFF, 0xD9, 0x12, 0x34});
  return bytes;
}

// What a series of calls works with. After a marker the series goes on with what follows it, as a caller does at a
// restart marker.
struct SubjectReader {
  int32_t position = 0;
  int32_t marker = 0;
  int16_t lastDc = 0;
  HuffmanDecodeState state;

  SubjectReader() { restart(); }
  void restart() {
    std::memset(static_cast<void*>(&state), 0xA5, sizeof state);
    zoriDecodeHuffmanStateInit_JPEG_8u(&state);
    state.lastPosition = 77;
    marker = 0;
  }
  void note(Trace& trace, StatusCode status) const {
    trace.insert(trace.end(), {status, position, marker, lastDc, state.bitBuffer, state.reserved, state.bitCount,
                               state.eobRun, state.lastPosition, state.unused});
  }
};
struct ModelReader {
  reference::HuffmanReader bits;
  int lastPosition = 77;
  int eobRun = 0;
  int16_t lastDc = 0;

  ModelReader(const uint8_t* source, int32_t length) : bits(source, length) {}
  void restart(const uint8_t* source, int32_t length) {
    const int position = bits.position;
    bits = reference::HuffmanReader(source, length);
    bits.position = position;
    lastPosition = 77;
    eobRun = 0;
  }
  void note(Trace& trace, StatusCode status) const {
    trace.insert(trace.end(), {status, bits.position, bits.marker, lastDc, bits.buffer(), 0, bits.held(), eobRun,
                               lastPosition, 0xA5A5A5A5});
  }
};

struct DecoderCalls {
  ReadCalls subject;
  ReadCalls model;
};

// Up to `count` calls; the first failure at which no marker is pending ends them.
template <class Subject, class Model>
DecoderCalls statefulCalls(int count, const Subject& subject, const Model& model) {
  return {[=](const uint8_t* source, int32_t length) {
            Trace trace;
            SubjectReader reader;
            for (int i = 0; i < count; ++i) {
              const StatusCode status = subject(source, length, reader, trace);
              reader.note(trace, status);
              if (status != StatusOk && reader.marker == 0) break;
              if (status != StatusOk) reader.restart();
            }
            return trace;
          },
          [=](const uint8_t* source, int32_t length) {
            Trace trace;
            ModelReader reader(source, length);
            for (int i = 0; i < count; ++i) {
              const StatusCode status = model(reader, trace);
              reader.note(trace, status);
              if (status != StatusOk && reader.bits.marker == 0) break;
              if (status != StatusOk) reader.restart(source, length);
            }
            return trace;
          }};
}

}  // namespace zorj::test
