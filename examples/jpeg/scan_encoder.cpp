#include "jpeg/scan_encoder.h"

#include <algorithm>
#include <limits>

#include "common/error.h"
#include "jpeg/markers.h"

namespace examples::jpeg {
namespace {

// 20 bits for the DC difference, 63 times 26 for AC codes and values, every byte stuffed.
constexpr size_t kMaxBlockBytes = 2 * ((20 + 63 * 26 + size_t{7}) / 8);
// A restart marker with the byte it completes, stuffed.
constexpr size_t kMaxRestartBytes = 4;
// The block encoder is quicker while it has room to spare.
constexpr size_t kSpareBytes = 32;

}  // namespace

ScanEncoder::ScanEncoder(std::vector<uint8_t>& file, std::vector<EncodeTables> tables, int32_t restartInterval)
    : file_(file),
      tables_(std::move(tables)),
      position_(static_cast<int32_t>(file.size())),
      restartInterval_(restartInterval),
      untilRestart_(restartInterval) {}

void ScanEncoder::makeRoom(size_t bytes) {
  const size_t needed = static_cast<size_t>(position_) + bytes;
  if (needed > std::numeric_limits<int32_t>::max()) throw Error("the file would be larger than 2 GiB");
  if (file_.size() < needed) file_.resize(std::max(needed, file_.size() + file_.size() / 2));
}

void ScanEncoder::flush() {
  zoriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, file_.data(), static_cast<int32_t>(file_.size()), &position_, nullptr,
                                     nullptr, nullptr, state_.get(), 1);
}

void ScanEncoder::restart() {
  flush();
  file_[static_cast<size_t>(position_++)] = 0xff;
  file_[static_cast<size_t>(position_++)] = static_cast<uint8_t>(marker::RST0 + restartNumber_);
  restartNumber_ = (restartNumber_ + 1) % 8;
  untilRestart_ = restartInterval_;
  std::fill(std::begin(lastDc_), std::end(lastDc_), int16_t{0});
}

void ScanEncoder::encode(std::span<const McuBlock> mcu, int32_t count) {
  makeRoom(static_cast<size_t>(count) * (mcu.size() * kMaxBlockBytes + kMaxRestartBytes) + kSpareBytes);
  uint8_t* const bytes = file_.data();
  const int32_t length = static_cast<int32_t>(std::min<size_t>(file_.size(), std::numeric_limits<int32_t>::max()));
  for (int32_t i = 0; i < count; ++i) {
    if (restartInterval_ > 0) {
      if (untilRestart_ == 0) restart();
      --untilRestart_;
    }
    for (const McuBlock& block : mcu) {
      const EncodeTables& tables = tables_[block.component];
      const StatusCode status = zoriEncodeHuffman8x8_JPEG_16s1u_C1(
          block.ofMcu(i), bytes, length, &position_, &lastDc_[block.component], tables.dc, tables.ac, state_.get(), 0);
      if (status != StatusOk) throw Error("a coefficient is too large to be coded");
    }
  }
}

void ScanEncoder::finish() {
  makeRoom(2);
  flush();
  file_.resize(static_cast<size_t>(position_));
}

}  // namespace examples::jpeg
