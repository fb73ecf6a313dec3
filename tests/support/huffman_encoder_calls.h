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

enum class AfterFailure { kEnd, kGoOn };

// `count` calls of subject(i, ...) and model(i, encoder), up to the first failure or in spite of any, and a flush.
template <class Subject, class Model>
EncoderCalls statefulCalls(size_t count, const Subject& subject, const Model& model,
                           AfterFailure afterFailure = AfterFailure::kEnd) {
  return {[=](uint8_t* destination, int32_t length) {
            Trace trace;
            HuffmanEncodeState state = freshState();
            int32_t position = 0;
            int16_t lastDc = 0;
            for (size_t i = 0; i <= count; ++i) {
              const StatusCode status = subject(i, destination, length, &position, lastDc, &state);
              trace.push_back(lastDc);
              note(trace, status, position, state);
              if (status != StatusOk && afterFailure == AfterFailure::kEnd) break;
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
              if (status != StatusOk && afterFailure == AfterFailure::kEnd) break;
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

inline EncoderCalls blockCalls(const std::vector<Block>& blocks, const EncoderTable& dc, const EncoderTable& ac) {
  return statefulCalls(
      blocks.size(),
      [&](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t& lastDc, HuffmanEncodeState* state) {
        const bool flush = i == blocks.size();
        return zoriEncodeHuffman8x8_JPEG_16s1u_C1(flush ? nullptr : blocks[i].data(), dst, length, position, &lastDc,
                                                  &dc.spec, &ac.spec, state, flush);
      },
      [&](size_t i, ModelEncoder& encoder) {
        if (i == blocks.size()) return encoder.writer.flush();
        return reference::encodeBlock(encoder.writer, blocks[i].data(), encoder.lastDc, dc.model, ac.model);
      });
}

// Blocks at a bit position. Both sides write to as much room as they need.
inline EncoderCalls directCalls(const std::vector<Block>& blocks, int32_t start, const EncoderTable& dc,
                                const EncoderTable& ac) {
  return {[=, &blocks, &dc, &ac](uint8_t* dst, int32_t) {
            Trace trace;
            int32_t bitPosition = start;
            int16_t lastDc = 7;
            for (const Block& block : blocks) {
              trace.push_back(zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst, &bitPosition, &lastDc,
                                                                        &dc.spec, &ac.spec));
              trace.insert(trace.end(), {bitPosition, lastDc});
            }
            return trace;
          },
          [=, &blocks, &dc, &ac](uint8_t* dst, int32_t length) {
            Trace trace;
            reference::HuffmanWriter writer(dst, length);
            writer.position = start / 8;
            for (int i = 0; i < start % 8; ++i) writer.pending.push_back((dst[start / 8] >> (7 - i) & 1) != 0);
            int16_t lastDc = 7;
            reference::HuffmanEncoder lenientDc = dc.model, lenientAc = ac.model;
            lenientDc.ignoreMissingCodes = lenientAc.ignoreMissingCodes = true;
            for (const Block& block : blocks) {
              reference::encodeBlock(writer, block.data(), lastDc, lenientDc, lenientAc);
              const int pending = static_cast<int>(writer.pending.size());
              trace.insert(trace.end(), {StatusOk, 8 * writer.position + pending, lastDc});
              if (pending > 0) dst[writer.position] = static_cast<uint8_t>(writer.accumulator() >> 16);
            }
            return trace;
          }};
}

// The same rows of differences `count` times; of the components at most four are used, each with its table.
inline EncoderCalls rowCalls(size_t count, const std::vector<std::vector<int16_t>>& rows, int32_t components,
                             const std::vector<EncoderTable>& tables) {
  const auto samples = static_cast<int32_t>(rows[0].size());
  return statefulCalls(
      count,
      [=, &rows, &tables](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t&,
                          HuffmanEncodeState* state) {
        const int16_t* const pointers[4] = {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data()};
        const HuffmanEncodeSpec* const specs[4] = {&tableOf(tables, 0).spec, &tableOf(tables, 1).spec,
                                                   &tableOf(tables, 2).spec, &tableOf(tables, 3).spec};
        return zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(i == count ? nullptr : pointers, samples, components, dst, length,
                                                    position, specs, state, i == count);
      },
      [=, &rows, &tables](size_t call, ModelEncoder& encoder) {
        if (call == count) return encoder.writer.flush();
        const auto used = std::min<size_t>(static_cast<size_t>(components), 4);
        for (size_t i = 0; i < rows[0].size() * used; ++i) {
          const StatusCode status =
              tableOf(tables, i % used).model.putDifference(encoder.writer, rows[i % used][i / used]);
          if (status != StatusOk) return status;
        }
        return StatusOk;
      });
}

inline EncoderCalls valueCalls(const std::vector<int16_t>& values, const EncoderTable& table) {
  const size_t count = values.size();
  return statefulCalls(
      count,
      [=, &values, &table](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t&,
                           HuffmanEncodeState* state) {
        return zoriEncodeHuffmanOne_JPEG_16s1u_C1(i == count ? nullptr : &values[i], dst, length, position, &table.spec,
                                                  state, i == count);
      },
      [=, &values, &table](size_t i, ModelEncoder& encoder) {
        return i == count ? encoder.writer.flush() : table.model.putDifference(encoder.writer, values[i]);
      });
}

}  // namespace zorj::test
