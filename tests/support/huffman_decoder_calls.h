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

inline DecoderCalls blockCalls(int count, const DecoderTable& dc, const DecoderTable& ac) {
  return statefulCalls(
      count,
      [&](const uint8_t* source, int32_t length, SubjectReader& reader, Trace& trace) {
        Block block;
        block.fill(0x5A5A);
        const StatusCode status =
            zoriDecodeHuffman8x8_JPEG_1u16s_C1(source, length, &reader.position, block.data(), &reader.lastDc,
                                               &reader.marker, &dc.spec, &ac.spec, &reader.state);
        trace.insert(trace.end(), block.begin(), block.end());
        return status;
      },
      [&](ModelReader& reader, Trace& trace) {
        reference::DecodedBlock block;
        const StatusCode status = reference::decodeBlock(reader.bits, block, reader.lastDc, dc.model, ac.model);
        reader.lastPosition = block.lastPosition.value_or(reader.lastPosition);
        trace.insert(trace.end(), block.coefficients, block.coefficients + 64);
        return status;
      });
}

// Blocks at a bit position, which start with bits that were read before.
inline DecoderCalls directCalls(int count, int32_t skipped, uint32_t prefetchedBits, int32_t prefetched,
                                const DecoderTable& dc, const DecoderTable& ac) {
  return {[=, &dc, &ac](const uint8_t* source, int32_t) {
            Trace trace;
            int32_t bitPosition = skipped, held = prefetched, marker = 0;
            uint32_t bits = prefetchedBits;
            int16_t lastDc = 0;
            for (int i = 0; i < count; ++i) {
              Block block;
              block.fill(0x5A5A);
              trace.push_back(zoriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(source, &bitPosition, block.data(), &lastDc,
                                                                        &marker, &bits, &held, &dc.spec, &ac.spec));
              trace.insert(trace.end(), {bitPosition, held, marker, bits, lastDc});
              trace.insert(trace.end(), block.begin(), block.end());
            }
            return trace;
          },
          [=, &dc, &ac](const uint8_t* source, int32_t length) {
            Trace trace;
            reference::HuffmanReader reader(source, length);
            reader.position = skipped / 8;
            reader.prefetch(prefetchedBits, prefetched);
            int16_t lastDc = 0;
            for (int i = 0; i < count; ++i) {
              reference::DecodedBlock block;
              StatusCode status = reference::decodeBlock(reader, block, lastDc, dc.model, ac.model);
              if (block.noBitsBeforeSymbol) status = StatusOk;
              if (block.noExtraBits) status = StatusBufferEnd;
              trace.insert(trace.end(), {status, 8 * reader.position + skipped % 8, reader.held(), reader.marker,
                                         reader.buffer(), lastDc});
              trace.insert(trace.end(), block.coefficients, block.coefficients + 64);
            }
            return trace;
          }};
}

// Rows of differences; of the components at most four are used, each with its table.
inline DecoderCalls rowCalls(int count, size_t samples, int32_t components, const std::vector<DecoderTable>& tables) {
  return statefulCalls(
      count,
      [=, &tables](const uint8_t* source, int32_t length, SubjectReader& reader, Trace& trace) {
        const HuffmanDecodeSpec* specs[4] = {&tableOf(tables, 0).spec, &tableOf(tables, 1).spec,
                                             &tableOf(tables, 2).spec, &tableOf(tables, 3).spec};
        std::vector<int16_t> rows[4];
        int16_t* pointers[4];
        for (size_t c = 0; c < 4; ++c) {
          rows[c].assign(samples, 0x5A5A);
          pointers[c] = rows[c].data();
        }
        const StatusCode status = zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(source, length, &reader.position, pointers,
                                                                       static_cast<int32_t>(samples), components,
                                                                       &reader.marker, specs, &reader.state);
        for (const auto& row : rows) trace.insert(trace.end(), row.begin(), row.end());
        return status;
      },
      [=, &tables](ModelReader& reader, Trace& trace) {
        const size_t used = std::min<size_t>(static_cast<size_t>(components), 4);
        std::vector<int16_t> rows[4];
        for (auto& row : rows) row.assign(samples, 0x5A5A);
        StatusCode status = StatusOk;
        for (size_t i = 0; status == StatusOk && i < samples * used; ++i) {
          status = reference::decodeDifference(reader.bits, tableOf(tables, i % used).model, rows[i % used][i / used]);
        }
        for (const auto& row : rows) trace.insert(trace.end(), row.begin(), row.end());
        return status;
      });
}

inline DecoderCalls valueCalls(int count, const DecoderTable& table) {
  return statefulCalls(
      count,
      [&](const uint8_t* source, int32_t length, SubjectReader& reader, Trace& trace) {
        int16_t value = 0x5A5A;
        const StatusCode status = zoriDecodeHuffmanOne_JPEG_1u16s_C1(source, length, &reader.position, &value,
                                                                     &reader.marker, &table.spec, &reader.state);
        trace.push_back(value);
        return status;
      },
      [&](ModelReader& reader, Trace& trace) {
        int16_t value = 0x5A5A;
        const StatusCode status = reference::decodeDifference(reader.bits, table.model, value);
        trace.push_back(value);
        return status;
      });
}

}  // namespace zorj::test
