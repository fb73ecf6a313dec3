#include "jpeg/lone_scan.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <memory>
#include <semaphore>

#include "jpeg/inverse_transform.h"
#include "jpeg/parallel.h"
#include "jpeg/scan_decoder.h"

namespace examples::jpeg {
namespace {

// As many MCUs go through entropy decoding and transform at a time as stay in the nearest caches.
constexpr int32_t kRunMcus = 32;

using QuantTables = std::array<QuantTable, kMaxComponents>;

// The rows of MCUs from `first` to `end`.
class Strip {
 public:
  // The restart segments begin at these bytes of the file. A strip that begins with the image needs the first only.
  Strip(const MarkerReader& reader, std::span<const size_t> segments, const QuantTables& tables,
        const DecodeOptions& options, int32_t first, int32_t end, Image& image)
      : frame_(reader.frame()),
        transform_(frame_, tables, options, first, image),
        first_(first),
        end_(end),
        firstMcu_(int64_t{transform_.firstNeeded()} * frame_.mcusWide()),
        segment_(first == 0 ? 0 : firstMcu_ / reader.restartInterval()),
        skipped_(firstMcu_ - segment_ * reader.restartInterval()),
        scan_(reader.file(), segments[static_cast<size_t>(segment_)], frame_.process, reader.scan(),
              reader.scanTables(), reader.restartInterval(), segment_),
        run_(frame_, kRunMcus, 1),
        inScan_(interleavedMcu(frame_, reader.scan().components, run_, 0, 0)),
        inFrame_(interleavedMcu(frame_, frame_.allComponents(), run_, 0, 0)) {}

  void decode() {
    for (int64_t left = skipped_; left > 0; left -= kRunMcus) {
      scan_.decode(inScan_, static_cast<int32_t>(std::min<int64_t>(left, kRunMcus)));
    }
    int64_t lostBefore = scan_.lostMcus();
    for (int32_t row = transform_.firstNeeded(); row < end_; ++row) {
      if (row == first_) lostBefore = scan_.lostMcus();
      decodeRow(row);
    }
    lostMcus_ = scan_.lostMcus() - lostBefore;
  }

  LoneScanEnd result() const { return {lostMcus_, scan_.end()}; }

 private:
  void decodeRow(int32_t row) {
    for (int32_t column = 0; column < frame_.mcusWide(); column += kRunMcus) {
      const int32_t count = std::min(kRunMcus, frame_.mcusWide() - column);
      scan_.decode(inScan_, count);
      transform_.run(column, row, count, inFrame_);
    }
  }

  const Frame& frame_;
  InverseTransform transform_;
  int32_t first_;
  int32_t end_;
  int64_t firstMcu_;
  int64_t segment_;  // that it lies in
  int64_t skipped_;  // MCUs of the segment before it
  ScanDecoder scan_;
  McuArray run_;
  std::vector<McuBlock> inScan_;
  std::vector<McuBlock> inFrame_;
  int64_t lostMcus_ = 0;
};

// Some rows of MCUs between entropy decoding and transform.
struct RowGroup {
  void shape(const MarkerReader& reader, int32_t rows) {
    const Frame& frame = reader.frame();
    mcus = McuArray(frame, frame.mcusWide(), rows);
    for (int32_t row = 0; row < rows; ++row) {
      inScan.push_back(interleavedMcu(frame, reader.scan().components, mcus, 0, row));
      inFrame.push_back(interleavedMcu(frame, frame.allComponents(), mcus, 0, row));
    }
  }

  McuArray mcus;
  std::vector<std::vector<McuBlock>> inScan;  // by row
  std::vector<std::vector<McuBlock>> inFrame;
  // Up to 2, as a stage that fails releases both.
  std::counting_semaphore<2> empty{1};
  std::counting_semaphore<2> full{0};
};

// Without restart markers entropy decoding is one thread's work: another transforms what it has decoded.
LoneScanEnd decodeInTwoStages(const MarkerReader& reader, const QuantTables& tables, const DecodeOptions& options,
                              Image& image) {
  constexpr int32_t kGroupMcus = 512;
  const Frame& frame = reader.frame();
  const int32_t rows = divideUp(kGroupMcus, frame.mcusWide());
  RowGroup groups[2];
  for (RowGroup& group : groups) group.shape(reader, rows);
  InverseTransform transform(frame, tables, options, 0, image);
  ScanDecoder scan(reader.file(), reader.position(), frame.process, reader.scan(), reader.scanTables(),
                   reader.restartInterval());

  std::atomic<bool> failed{false};
  // Calls row(group, index in it, number) for all rows, the groups in turns.
  const auto forAllRows = [&](auto waitFor, auto becomes, const auto& row) {
    try {
      for (int32_t number = 0; number < frame.mcusHigh();) {
        RowGroup& group = groups[number / rows % 2];
        (group.*waitFor).acquire();
        if (failed) return;
        for (int32_t i = 0; i < rows && number < frame.mcusHigh(); ++i, ++number) row(group, size_t(i), number);
        (group.*becomes).release();
      }
    } catch (...) {
      failed = true;  // the other stage must not go on waiting
      for (RowGroup& group : groups) (group.*becomes).release();
      throw;
    }
  };
  inParallel(2, [&](int32_t stage) {
    if (stage == 0) {
      forAllRows(&RowGroup::empty, &RowGroup::full,
                 [&](RowGroup& group, size_t i, int32_t) { scan.decode(group.inScan[i], frame.mcusWide()); });
    } else {
      forAllRows(&RowGroup::full, &RowGroup::empty, [&](RowGroup& group, size_t i, int32_t number) {
        transform.run(0, number, frame.mcusWide(), group.inFrame[i]);
      });
    }
  });
  return {scan.lostMcus(), scan.end()};
}

LoneScanEnd decodeStrips(const MarkerReader& reader, std::span<const size_t> segments, int32_t count,
                         const QuantTables& tables, const DecodeOptions& options, Image& image) {
  const int32_t rows = reader.frame().mcusHigh();
  std::vector<std::unique_ptr<Strip>> strips;
  for (int32_t i = 0; i < count; ++i) {
    strips.push_back(std::make_unique<Strip>(reader, segments, tables, options, stripStart(rows, count, i),
                                             stripStart(rows, count, i + 1), image));
  }
  inParallel(count, [&](int32_t i) { strips[static_cast<size_t>(i)]->decode(); });
  LoneScanEnd whole = strips.back()->result();
  for (size_t i = 0; i + 1 < strips.size(); ++i) whole.lostMcus += strips[i]->result().lostMcus;
  return whole;
}

}  // namespace

LoneScanEnd decodeLoneScan(const MarkerReader& reader, const DecodeOptions& options, Image& image) {
  const Frame& frame = reader.frame();
  QuantTables tables{};
  reader.takeQuantTables(tables);
  const int32_t threads = std::min(options.threads, frame.mcusHigh());
  const size_t start = reader.position();
  if (threads == 1) return decodeStrips(reader, {&start, 1}, 1, tables, options, image);
  if (reader.restartInterval() > 0) {
    const int64_t mcus = int64_t{frame.mcusWide()} * frame.mcusHigh();
    const int64_t count = (mcus + reader.restartInterval() - 1) / reader.restartInterval();
    const std::vector<size_t> segments = restartSegments(reader.file(), start, count);
    const int32_t strips = static_cast<int32_t>(std::min<int64_t>(threads, std::ssize(segments)));
    if (strips > 1) return decodeStrips(reader, segments, strips, tables, options, image);
  }
  return decodeInTwoStages(reader, tables, options, image);
}

}  // namespace examples::jpeg
