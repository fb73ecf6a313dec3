#include "jpeg/scan_encoder.h"

#include <zorj/jpeg_progressive.h>

#include <algorithm>
#include <limits>

#include "common/error.h"
#include "jpeg/markers.h"

namespace examples::jpeg {
namespace {

// 20 bits for the DC difference, 63 times 26 for AC codes and values, every byte stuffed; 12-bit samples have 4 bits
// more.
constexpr size_t kMaxBlockBytes = 2 * ((24 + 63 * 30 + size_t{7}) / 8);
// An end-of-band run with the refinement bits it holds back.
constexpr size_t kMaxRunBytes = 2 * ((30 + 1000 + size_t{7}) / 8);
// A restart marker with the byte it completes, stuffed.
constexpr size_t kMaxRestartBytes = 4;
// The block encoder is quicker while it has room to spare.
constexpr size_t kSpareBytes = 32;

constexpr const char* kTooLarge = "a coefficient is too large to be coded";

template <class Code>
StatusCode codeMcu(std::span<const McuBlock> mcu, int32_t i, const Code& code) {
  for (const McuBlock& block : mcu) {
    if (const StatusCode status = code(block.ofMcu(i), block.component, 0)) return status;
  }
  return StatusOk;
}

}  // namespace

ScanEncoder::ScanEncoder(std::vector<uint8_t>& file, Process process, const Scan& scan,
                         std::vector<EncodeTables> tables, int32_t restartInterval)
    : file_(file),
      coding_(blockCoding(process, scan)),
      scan_(scan),
      tables_(std::move(tables)),
      position_(static_cast<int32_t>(file.size())),
      restartInterval_(restartInterval),
      untilRestart_(restartInterval) {}

void ScanEncoder::makeRoom(size_t bytes) {
  const size_t needed = static_cast<size_t>(position_) + bytes;
  if (needed > std::numeric_limits<int32_t>::max()) throw Error("the file would be larger than 2 GiB");
  if (file_.size() < needed) file_.resize(std::max(needed, file_.size() + file_.size() / 2));
  length_ = static_cast<int32_t>(std::min<size_t>(file_.size(), std::numeric_limits<int32_t>::max()));
}

// Calls run(code): code(block, component, flush) codes a block, or ends what was coded. In between no room may be made,
// which moves the file's bytes.
template <class Run>
StatusCode ScanEncoder::withCoder(const Run& run) {
  uint8_t* const bytes = file_.data();
  const int32_t first = scan_.first, last = scan_.last, lowBit = scan_.lowBit;
  switch (coding_) {
    case BlockCoding::sequential:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        if (block) prefetchBlock(block);
        return zoriEncodeHuffman8x8_JPEG_16s1u_C1(block, bytes, length_, &position_, &lastDc_[c], tables_[c].dc,
                                                  tables_[c].ac, state_.get(), flush);
      });
    case BlockCoding::dcFirst:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        if (block) prefetchDc(block);
        return zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(block, bytes, length_, &position_, &lastDc_[c], lowBit,
                                                          tables_[c].dc, state_.get(), flush);
      });
    case BlockCoding::dcRefine:
      return run([&](const int16_t* block, size_t, int32_t flush) {
        if (block) prefetchDc(block);
        return zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, bytes, length_, &position_, lowBit, state_.get(),
                                                           flush);
      });
    case BlockCoding::acFirst:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        return zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(block, bytes, length_, &position_, first, last, lowBit,
                                                          tables_[c].ac, state_.get(), flush);
      });
    case BlockCoding::acRefine:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        return zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(block, bytes, length_, &position_, first, last, lowBit,
                                                           tables_[c].ac, state_.get(), flush);
      });
  }
  return StatusBadArgument;
}

void ScanEncoder::flush() {
  withCoder([](const auto& code) { return code(nullptr, 0, 1); });
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
  makeRoom(static_cast<size_t>(count) * (mcu.size() * kMaxBlockBytes + kMaxRestartBytes) + kMaxRunBytes + kSpareBytes);
  const StatusCode result = withCoder([&](const auto& code) {
    for (int32_t i = 0; i < count; ++i) {
      if (restartInterval_ > 0) {
        if (untilRestart_ == 0) restart();
        --untilRestart_;
      }
      if (const StatusCode status = codeMcu(mcu, i, code)) return status;
    }
    return StatusOk;
  });
  if (result != StatusOk) throw Error(kTooLarge);
}

void ScanEncoder::finish() {
  makeRoom(kMaxRunBytes + 2);
  flush();
  file_.resize(static_cast<size_t>(position_));
}

ScanCounter::ScanCounter(const Frame& frame, const Scan& scan, int32_t restartInterval)
    : coding_(blockCoding(frame.process, scan)),
      scan_(scan),
      restartInterval_(restartInterval),
      untilRestart_(restartInterval) {
  for (const size_t component : scan.components) tables_.push_back(huffmanTableOf(frame.components[component]));
}

// Calls run(code): code(block, component, flush) counts a block, or what the end of the scan would write.
template <class Run>
StatusCode ScanCounter::withCoder(const Run& run) {
  const int32_t first = scan_.first, last = scan_.last, lowBit = scan_.lowBit;
  switch (coding_) {
    case BlockCoding::sequential:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        return flush ? StatusOk : zoriGetHuffmanStatistics8x8_JPEG_16s_C1(block, dcOf(c), acOf(c), &lastDc_[c]);
      });
    case BlockCoding::dcFirst:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        return flush ? StatusOk : zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(block, dcOf(c), &lastDc_[c], lowBit);
      });
    case BlockCoding::dcRefine:
      return StatusOk;
    case BlockCoding::acFirst:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        return zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(block, acOf(c), first, last, lowBit, state_.get(),
                                                               flush);
      });
    case BlockCoding::acRefine:
      return run([&](const int16_t* block, size_t c, int32_t flush) {
        return zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(block, acOf(c), first, last, lowBit, state_.get(),
                                                                flush);
      });
  }
  return StatusBadArgument;
}

void ScanCounter::count(std::span<const McuBlock> mcu, int32_t count) {
  const StatusCode result = withCoder([&](const auto& code) {
    for (int32_t i = 0; i < count; ++i) {
      if (restartInterval_ > 0) {
        if (untilRestart_ == 0) {
          code(nullptr, 0, 1);
          untilRestart_ = restartInterval_;
          std::fill(std::begin(lastDc_), std::end(lastDc_), int16_t{0});
        }
        --untilRestart_;
      }
      if (const StatusCode status = codeMcu(mcu, i, code)) return status;
    }
    return StatusOk;
  });
  if (result != StatusOk) throw Error(kTooLarge);
}

void ScanCounter::finish() {
  withCoder([](const auto& code) { return code(nullptr, 0, 1); });
}

}  // namespace examples::jpeg
