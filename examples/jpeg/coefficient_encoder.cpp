#include "jpeg/coefficient_encoder.h"

#include <optional>

#include "jpeg/headers.h"
#include "jpeg/marker_writer.h"
#include "jpeg/script.h"

namespace examples::jpeg {
namespace {

// An interleaved scan's MCU may hold ten blocks (T.81 B.2.3).
constexpr int32_t kMostBlocks = 10;

bool canInterleave(const Frame& frame) {
  int32_t blocks = 0;
  for (const Component& component : frame.components) blocks += component.horizontal * component.vertical;
  return blocks <= kMostBlocks;
}

// Scans of several components that cannot be interleaved, component by component.
std::vector<Scan> codableScans(const Frame& frame, const std::vector<Scan>& scans) {
  if (canInterleave(frame)) return scans;
  std::vector<Scan> result;
  for (const Scan& scan : scans) {
    for (const size_t component : scan.components) {
      result.push_back(scan);
      result.back().components = {component};
    }
  }
  return result;
}

// The Huffman tables of one scan.
class ScanTables {
 public:
  // Those made for the scan, if it is given what to count them from, else the usual ones. Writes them to the file.
  ScanTables(const Frame& frame, const Scan& scan, const ScanCounter* counter, std::vector<uint8_t>& file) {
    const BlockCoding coding = blockCoding(frame.process, scan);
    for (const size_t c : scan.components) {
      const uint8_t table = huffmanTableOf(frame.components[c]);
      if (usesDcTable(coding) && !dc_[table]) {
        dc_[table] = write(false, table, counter ? &counter->dc(table) : nullptr, kDcHuffman[table], file);
      }
      if (usesAcTable(coding) && !ac_[table]) {
        ac_[table] = write(true, table, counter ? &counter->ac(table) : nullptr, kAcHuffman[table], file);
      }
      ofComponents_.push_back({dc_[table].get(), ac_[table].get()});
    }
  }

  const std::vector<EncodeTables>& ofComponents() const { return ofComponents_; }

 private:
  static EncodeSpec write(bool isAc, uint8_t table, const SymbolCounts* counts, const HuffmanLists& usual,
                          std::vector<uint8_t>& file) {
    std::optional<OptimalLists> optimal;
    if (counts) optimal.emplace(*counts);
    const HuffmanLists lists = optimal ? optimal->lists() : usual;
    MarkerWriter(file).huffmanTable(isAc, table, lists);
    return makeEncodeSpec(lists);
  }

  EncodeSpec dc_[2], ac_[2];
  std::vector<EncodeTables> ofComponents_;
};

std::vector<Scan> scansFor(const Frame& frame, const EncodeOptions& options) {
  if (!options.progressive) return codableScans(frame, {Scan{frame.allComponents()}});
  const std::vector<Scan> scans = options.script.empty() ? usualScript(frame) : options.script;
  checkScript(scans, frame.components.size());
  return codableScans(frame, scans);
}

}  // namespace

CoefficientEncoder::CoefficientEncoder(CoefficientImage& image, const EncodeOptions& options)
    : image_(image), restartInterval_(options.restartInterval) {
  Frame& frame = image.frame;
  frame.process = options.progressive ? Process::progressive : Process::sequential;
  scans_ = scansFor(frame, options);
  // The usual tables lack the symbols of progressive scans and of 12-bit samples.
  if (!options.optimize && !options.progressive && frame.precision == 8) return;
  for (const Scan& scan : scans_) counters_.emplace_back(frame, scan, restartInterval_);
}

void CoefficientEncoder::count(int32_t mcuRow) {
  for (size_t i = 0; i < counters_.size(); ++i) {
    inMcuRow(image_, scans_[i].components, mcuRow, [&](auto mcu, int32_t count) { counters_[i].count(mcu, count); });
  }
}

void CoefficientEncoder::write(std::vector<uint8_t>& jpeg) {
  const Frame& frame = image_.frame;
  jpeg.clear();
  writeHeaders(frame, image_.quantTables, restartInterval_, jpeg);
  for (size_t i = 0; i < scans_.size(); ++i) {
    const Scan& scan = scans_[i];
    ScanCounter* const counter = counters_.empty() ? nullptr : &counters_[i];
    if (counter) counter->finish();
    const ScanTables tables(frame, scan, counter, jpeg);
    MarkerWriter(jpeg).scan(frame, scan);
    ScanEncoder encoder(jpeg, frame.process, scan, tables.ofComponents(), restartInterval_);
    for (int32_t row = 0; row < frame.mcusHigh(); ++row) {
      inMcuRow(image_, scan.components, row, [&](auto mcu, int32_t count) { encoder.encode(mcu, count); });
    }
    encoder.finish();
  }
  MarkerWriter(jpeg).marker(marker::EOI);
}

void encodeCoefficients(CoefficientImage& coefficients, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  CoefficientEncoder encoder(coefficients, options);
  for (int32_t row = 0; row < coefficients.frame.mcusHigh(); ++row) encoder.count(row);
  encoder.write(jpeg);
}

}  // namespace examples::jpeg
