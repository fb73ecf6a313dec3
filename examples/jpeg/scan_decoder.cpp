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
  EntropySegments& d = data_;
  HuffmanDecodeState* const state = d.state.get();
  switch (coding_) {
    case BlockCoding::sequential:
      return decodeMcus(mcu, count, [&](int16_t* block, size_t c) {
        return zoriDecodeHuffman8x8_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &lastDc_[c], &d.marker,
                                                  tables_[c].dc, tables_[c].ac, state);
      });
    case BlockCoding::dcFirst:
      return decodeMcus(mcu, count, [&](int16_t* block, size_t c) {
        prefetchDc(block);
        return zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &lastDc_[c], &d.marker,
                                                          scan_.lowBit, tables_[c].dc, state);
      });
    case BlockCoding::dcRefine:
      return decodeMcus(mcu, count, [&](int16_t* block, size_t) {
        prefetchDc(block);
        return zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &d.marker,
                                                           scan_.lowBit, state);
      });
    case BlockCoding::acFirst:
      return decodeMcus(mcu, count, [&](int16_t* block, size_t c) {
        return zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &d.marker, scan_.first,
                                                          scan_.last, scan_.lowBit, tables_[c].ac, state);
      });
    case BlockCoding::acRefine:
      return decodeMcus(mcu, count, [&](int16_t* block, size_t c) {
        return zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(d.bytes, d.length, &d.position, block, &d.marker,
                                                           scan_.first, scan_.last, scan_.lowBit, tables_[c].ac, state);
      });
  }
}

template <class DecodeBlock>
void ScanDecoder::decodeMcus(std::span<const McuBlock> mcu, int32_t count, const DecodeBlock& decodeBlock) {
  for (int32_t i = 0; i < count; ++i) {
    if (std::exchange(begun_, true) && data_.advance()) std::fill(std::begin(lastDc_), std::end(lastDc_), int16_t{0});
    const auto decode = [&](const McuBlock& block) { return decodeBlock(block.ofMcu(i), block.component) == StatusOk; };
    if (!data_.lost() && std::all_of(mcu.begin(), mcu.end(), decode)) continue;
    data_.lose();
    ++lostMcus_;
    if (coding_ != BlockCoding::sequential) continue;
    for (const McuBlock& block : mcu) std::fill_n(block.ofMcu(i), 64, int16_t{0});
  }
}

}  // namespace examples::jpeg
