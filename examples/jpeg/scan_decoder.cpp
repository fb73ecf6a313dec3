#include "jpeg/scan_decoder.h"

#include <zorj/jpeg_progressive.h>

#include <algorithm>
#include <utility>

namespace examples::jpeg {

ScanDecoder::ScanDecoder(std::span<const uint8_t> file, size_t position, Process process, const Scan& scan,
                         std::vector<DecodeTables> tables, int32_t restartInterval, int64_t segment)
    : data_(file, position, restartInterval, segment),
      coding_(blockCoding(process, scan)),
      scan_(scan),
      tables_(std::move(tables)) {}

void ScanDecoder::decode(std::span<const McuBlock> mcu, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    if (std::exchange(begun_, true) && data_.advance()) std::fill(std::begin(lastDc_), std::end(lastDc_), int16_t{0});
    if (!data_.lost() && decodeMcu(mcu, i)) continue;
    data_.lose();
    ++lostMcus_;
    if (coding_ != BlockCoding::sequential) continue;
    for (const McuBlock& block : mcu) std::fill_n(block.ofMcu(i), 64, int16_t{0});
  }
}

bool ScanDecoder::decodeMcu(std::span<const McuBlock> mcu, int32_t index) {
  for (const McuBlock& block : mcu) {
    if (decodeBlock(block.ofMcu(index), block.component) != StatusOk) return false;
  }
  return true;
}

StatusCode ScanDecoder::decodeBlock(int16_t* block, size_t component) {
  const DecodeTables& tables = tables_[component];
  EntropySegments& d = data_;
  HuffmanDecodeState* const state = d.state.get();
  switch (coding_) {
    case BlockCoding::sequential:
      return zoriDecodeHuffman8x8_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &lastDc_[component], &d.marker,
                                                tables.dc, tables.ac, state);
    case BlockCoding::dcFirst:
      return zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &lastDc_[component],
                                                        &d.marker, scan_.lowBit, tables.dc, state);
    case BlockCoding::dcRefine:
      return zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &d.marker, scan_.lowBit,
                                                         state);
    case BlockCoding::acFirst:
      return zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &d.marker, scan_.first,
                                                        scan_.last, scan_.lowBit, tables.ac, state);
    case BlockCoding::acRefine:
      return zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &d.marker, scan_.first,
                                                         scan_.last, scan_.lowBit, tables.ac, state);
  }
  return StatusBadArgument;
}

}  // namespace examples::jpeg
