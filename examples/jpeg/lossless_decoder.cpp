#include "jpeg/lossless_decoder.h"

#include <zorj/jpeg_huffman.h>

#include <algorithm>

#include "common/error.h"
#include "jpeg/damage.h"
#include "jpeg/entropy_segments.h"
#include "jpeg/prediction.h"

namespace examples::jpeg {
namespace {

// A component's rows of one row of MCUs: all differences, and the samples of the current row and the one above, as
// the point transform leaves them. An MCU holds as many samples of it as its sampling factors say, or one if it is
// alone in the scan.
struct ComponentRows {
  size_t component;
  int32_t horizontal, vertical;
  int32_t width, height;  // inside the image
  std::vector<std::vector<int16_t>> differences;
  std::vector<int16_t> samples, above;
};

class LosslessScan {
 public:
  LosslessScan(const MarkerReader& reader, const TakeRow& takeRow)
      : scan_(reader.scan()),
        precision_(reader.frame().precision),
        tables_(reader.scanTables()),
        takeRow_(takeRow),
        mcusWide_(0),
        mcusHigh_(0),
        data_(reader.file(), reader.position(), rowsPerSegment(reader)) {
    if (scan_.first < 1 || scan_.first > 7) throw Error("a scan has an unknown predictor");
    if (scan_.lowBit >= precision_) throw Error("a scan's point transform leaves no bits");
    for (const size_t c : scan_.components) addComponent(reader.frame(), c);
  }

  // Decodes the scan; returns how many rows of MCUs are lost.
  int64_t decode() {
    int64_t lost = 0;
    bool isFirst = true;
    for (int32_t row = 0; row < mcusHigh_; ++row) {
      if (row > 0 && data_.advance()) isFirst = true;
      if (data_.lost() || !decodeDifferences()) {
        data_.lose();
        ++lost;
        continue;
      }
      for (ComponentRows& rows : rows_) reconstruct(rows, row, isFirst);
      isFirst = false;
    }
    return lost;
  }

  int32_t rows() const { return mcusHigh_; }
  size_t end() const { return data_.end(); }

 private:
  static int32_t mcusWideOf(const MarkerReader& reader) {
    const Frame& frame = reader.frame();
    const std::vector<size_t>& components = reader.scan().components;
    if (components.size() == 1) return frame.samplesWide(frame.components[components[0]]);
    return divideUp(frame.width, frame.maxHorizontal());
  }

  static int32_t rowsPerSegment(const MarkerReader& reader) {
    const int32_t mcusWide = mcusWideOf(reader);
    if (reader.restartInterval() % mcusWide != 0) {
      throw Error("a lossless scan restarts within a row, which the standard does not allow");
    }
    return reader.restartInterval() / mcusWide;
  }

  void addComponent(const Frame& frame, size_t c) {
    const Component& component = frame.components[c];
    const bool alone = scan_.components.size() == 1;
    mcusWide_ = alone ? frame.samplesWide(component) : divideUp(frame.width, frame.maxHorizontal());
    mcusHigh_ = alone ? frame.samplesHigh(component) : divideUp(frame.height, frame.maxVertical());
    ComponentRows rows{c,
                       alone ? 1 : component.horizontal,
                       alone ? 1 : component.vertical,
                       frame.samplesWide(component),
                       frame.samplesHigh(component),
                       {},
                       {},
                       {}};
    // With the samples that fill up the last MCU.
    const std::vector<int16_t> row(static_cast<size_t>(mcusWide_) * static_cast<size_t>(rows.horizontal));
    rows.differences.assign(static_cast<size_t>(rows.vertical), row);
    rows.samples = rows.above = row;
    onePerMcu_ = onePerMcu_ && rows.horizontal == 1 && rows.vertical == 1;
    rows_.push_back(std::move(rows));
  }

  bool decodeDifferences() {
    HuffmanDecodeState* const state = data_.state.get();
    if (onePerMcu_) {
      int16_t* rows[kMaxComponents];
      const HuffmanDecodeSpec* specs[kMaxComponents];
      for (size_t i = 0; i < rows_.size(); ++i) {
        rows[i] = rows_[i].differences[0].data();
        specs[i] = tables_[i].dc;
      }
      return zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(data_.bytes, data_.length, &data_.position, rows, mcusWide_,
                                                  static_cast<int32_t>(rows_.size()), &data_.marker, specs,
                                                  state) == StatusOk;
    }
    for (int32_t mcu = 0; mcu < mcusWide_; ++mcu) {
      for (size_t i = 0; i < rows_.size(); ++i) {
        ComponentRows& rows = rows_[i];
        for (std::vector<int16_t>& row : rows.differences) {
          for (int32_t x = 0; x < rows.horizontal; ++x) {
            if (zoriDecodeHuffmanOne_JPEG_1u16s_C1(data_.bytes, data_.length, &data_.position,
                                                   row.data() + mcu * rows.horizontal + x, &data_.marker, tables_[i].dc,
                                                   state) != StatusOk) {
              return false;
            }
          }
        }
      }
    }
    return true;
  }

  void reconstruct(ComponentRows& rows, int32_t mcuRow, bool isFirst) {
    const Prediction prediction{scan_.first, precision_, scan_.lowBit};
    for (int32_t v = 0; v < rows.vertical; ++v) {
      const std::vector<int16_t>& differences = rows.differences[static_cast<size_t>(v)];
      if (isFirst && v == 0) {
        reconstructFirstRow(prediction, differences, rows.samples);
      } else {
        reconstructRow(prediction, differences, rows.above, rows.samples);
      }
      const int32_t y = mcuRow * rows.vertical + v;
      if (y < rows.height) {
        takeRow_(rows.component, y, std::span(rows.samples).first(static_cast<size_t>(rows.width)), scan_.lowBit);
      }
      rows.above.swap(rows.samples);
    }
  }

  const Scan& scan_;
  int32_t precision_;
  std::vector<DecodeTables> tables_;
  const TakeRow& takeRow_;
  int32_t mcusWide_;
  int32_t mcusHigh_;
  bool onePerMcu_ = true;
  std::vector<ComponentRows> rows_;
  EntropySegments data_;
};

}  // namespace

DecodeReport decodeLossless(MarkerReader& reader, const TakeRow& takeRow) {
  const Frame& frame = reader.frame();
  std::vector<bool> coded(frame.components.size());
  Damage damage;
  bool isFirst = true;
  for (bool more = true; more; isFirst = false) {
    try {
      for (const size_t component : reader.scan().components) {
        if (coded[component]) throw Error("a component is coded twice");
        coded[component] = true;
      }
      LosslessScan scan(reader, takeRow);
      damage.count(scan.decode(), scan.rows());
      more = nextScan(reader, scan.end(), damage);
    } catch (const Error& error) {
      if (isFirst) throw;
      damage.note(error.what());
      return damage.report();
    }
  }
  if (std::find(coded.begin(), coded.end(), false) != coded.end()) damage.note("a component is missing");
  return damage.report();
}

}  // namespace examples::jpeg
