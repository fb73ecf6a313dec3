// Series of calls of the progressive decoders, beside those of their models.
#pragma once

#include "support/huffman_decoder_calls.h"
#include "support/progressive_data.h"

namespace zorj::test {

inline StatusCode decodeScan(ScanKind kind, const uint8_t* source, int32_t length, SubjectReader& reader,
                             int16_t* block, reference::Band band, const HuffmanDecodeSpec* spec) {
  switch (kind) {
    case ScanKind::kDcFirst:
      return zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(source, length, &reader.position, block, &reader.lastDc,
                                                        &reader.marker, band.shift, spec, &reader.state);
    case ScanKind::kDcRefine:
      return zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(source, length, &reader.position, block, &reader.marker,
                                                         band.shift, &reader.state);
    case ScanKind::kAcFirst:
      return zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(source, length, &reader.position, block, &reader.marker,
                                                        band.first, band.last, band.shift, spec, &reader.state);
    default:
      return zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(source, length, &reader.position, block, &reader.marker,
                                                         band.first, band.last, band.shift, spec, &reader.state);
  }
}
inline StatusCode decodeScan(ScanKind kind, ModelReader& reader, int16_t* block, reference::Band band,
                             const reference::HuffmanDecoder& decoder) {
  switch (kind) {
    case ScanKind::kDcFirst:
      return reference::decodeDcFirst(reader.bits, block, reader.lastDc, band.shift, decoder);
    case ScanKind::kDcRefine:
      return reference::decodeDcRefine(reader.bits, block, band.shift);
    case ScanKind::kAcFirst:
      return reference::decodeAcFirst(reader.bits, block, band, reader.eobRun, decoder);
    default:
      return reference::decodeAcRefine(reader.bits, block, band, reader.eobRun, decoder);
  }
}

// Decodes a scan on top of `blocks`, which the scans before have left, in turn.
inline DecoderCalls scanCalls(ScanKind kind, const std::vector<Block>& blocks, int count, reference::Band band,
                              const DecoderTable& table) {
  const auto call = [&blocks](auto& reader, Trace& trace, const auto& decode) {
    Block block = blocks[trace.size() / 74 % blocks.size()];
    const StatusCode status = decode(reader, block.data());
    trace.insert(trace.end(), block.begin(), block.end());
    return status;
  };
  return statefulCalls(
      count,
      [=, &table](const uint8_t* source, int32_t length, SubjectReader& reader, Trace& trace) {
        return call(reader, trace, [&](SubjectReader& from, int16_t* block) {
          return decodeScan(kind, source, length, from, block, band, &table.spec);
        });
      },
      [=, &table](ModelReader& reader, Trace& trace) {
        return call(reader, trace, [&](ModelReader& from, int16_t* block) {
          return decodeScan(kind, from, block, band, table.model);
        });
      });
}

// What the scans before a refinement have left of the blocks.
inline std::vector<Block> coarser(std::vector<Block> blocks, int shift) {
  for (Block& block : blocks) {
    for (int16_t& value : block) {
      const int magnitude = std::abs(value) >> (shift + 1) << (shift + 1);
      value = static_cast<int16_t>(value < 0 ? -magnitude : magnitude);
    }
  }
  return blocks;
}

}  // namespace zorj::test
