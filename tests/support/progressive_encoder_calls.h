// Series of calls of the progressive encoders, beside those of their models.
#pragma once

#include "support/huffman_encoder_calls.h"
#include "support/progressive_data.h"

namespace zorj::test {

inline EncoderCalls scanCalls(ScanKind kind, const std::vector<Block>& blocks, reference::Band band,
                              const EncoderTable& table, AfterFailure afterFailure = AfterFailure::kEnd) {
  return statefulCalls(
      blocks.size(),
      [=, &blocks, &table](size_t i, uint8_t* dst, int32_t length, int32_t* position, int16_t& lastDc,
                           HuffmanEncodeState* state) {
        const bool flush = i == blocks.size();
        const int16_t* block = flush ? nullptr : blocks[i].data();
        switch (kind) {
          case ScanKind::kDcFirst:
            return zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(block, dst, length, position, &lastDc, band.shift,
                                                              &table.spec, state, flush);
          case ScanKind::kDcRefine:
            return zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, dst, length, position, band.shift, state, flush);
          case ScanKind::kAcFirst:
            return zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(block, dst, length, position, band.first, band.last,
                                                              band.shift, &table.spec, state, flush);
          default:
            return zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(block, dst, length, position, band.first, band.last,
                                                               band.shift, &table.spec, state, flush);
        }
      },
      [=, &blocks, &table](size_t i, ModelEncoder& encoder) {
        if (i == blocks.size()) return reference::flushScan(encoder.writer, table.model, encoder.run);
        return putModelScan(kind, encoder.writer, table.model, blocks[i].data(), band, encoder.lastDc, encoder.run);
      },
      afterFailure);
}

}  // namespace zorj::test
