#include "jpeg/scan_decoder.h"

#include <algorithm>
#include <cstring>

#include "jpeg/markers.h"

namespace examples::jpeg {

std::vector<size_t> restartSegments(std::span<const uint8_t> file, size_t position, int64_t segments) {
  std::vector<size_t> starts = {position};
  for (size_t at = position; at + 1 < file.size() && static_cast<int64_t>(starts.size()) <= segments; ++at) {
    const void* const found = std::memchr(file.data() + at, 0xff, file.size() - 1 - at);
    if (!found) break;
    at = static_cast<size_t>(static_cast<const uint8_t*>(found) - file.data());
    const uint8_t code = file[at + 1];
    if (code == 0x00 || code == 0xff) continue;
    if (code != marker::RST0 + (starts.size() - 1) % 8) break;
    starts.push_back(at + 2);
  }
  if (static_cast<int64_t>(starts.size()) != segments) starts.clear();
  return starts;
}

ScanDecoder::ScanDecoder(std::span<const uint8_t> file, size_t position, std::vector<DecodeTables> tables,
                         int32_t restartInterval, int64_t segment)
    : file_(file),
      tables_(std::move(tables)),
      length_(static_cast<int32_t>(file.size())),
      position_(static_cast<int32_t>(position)),
      restartInterval_(restartInterval),
      untilRestart_(restartInterval),
      restartNumber_(static_cast<int32_t>(segment % 8)) {
  // Where a file is cut after 0xFF, that byte says nothing, but the bits before it are worth decoding.
  while (length_ > position_ && file[static_cast<size_t>(length_ - 1)] == 0xff) --length_;
}

void ScanDecoder::decode(std::span<const McuBlock> mcu, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    if (restartInterval_ > 0) {
      if (untilRestart_ == 0) restart();
      --untilRestart_;
    }
    if (!lost_ && decodeMcu(mcu, i)) continue;
    lost_ = true;
    ++lostMcus_;
    for (const McuBlock& block : mcu) std::fill_n(block.ofMcu(i), 64, int16_t{0});
  }
}

bool ScanDecoder::decodeMcu(std::span<const McuBlock> mcu, int32_t index) {
  for (const McuBlock& block : mcu) {
    const DecodeTables& tables = tables_[block.component];
    const StatusCode status =
        zoriDecodeHuffman8x8_JPEG_1u16s_C1(file_.data(), length_, &position_, block.ofMcu(index),
                                           &lastDc_[block.component], &marker_, tables.dc, tables.ac, state_.get());
    if (status != StatusOk) return false;
  }
  return true;
}

// Goes to the marker that ends this segment. Restart markers count modulo 8: one of the next few numbers means that
// segments in between are lost, and stays until its turn; another is a stray one, and is passed over.
void ScanDecoder::restart() {
  untilRestart_ = restartInterval_;
  const int32_t expected = restartNumber_;
  restartNumber_ = (restartNumber_ + 1) % 8;
  lost_ = true;
  while (marker_ != 0 || findMarker()) {
    if (!marker::isRestart(marker_)) return;
    const int32_t ahead = (marker_ - marker::RST0 - expected + 8) % 8;
    if (ahead == 0) lost_ = false;
    if (ahead < 4) break;
    marker_ = 0;
  }
  if (lost_) return;
  marker_ = 0;
  zoriDecodeHuffmanStateInit_JPEG_8u(state_.get());
  std::fill(std::begin(lastDc_), std::end(lastDc_), int16_t{0});
}

bool ScanDecoder::findMarker() {
  for (; position_ + 1 < length_; ++position_) {
    const uint8_t* const at = file_.data() + position_;
    if (at[0] == 0xff && at[1] != 0x00 && at[1] != 0xff) {
      marker_ = at[1];
      position_ += 2;
      return true;
    }
  }
  return false;
}

size_t ScanDecoder::end() const { return static_cast<size_t>(marker_ != 0 ? position_ - 2 : position_); }

}  // namespace examples::jpeg
