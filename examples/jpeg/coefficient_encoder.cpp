// Codes the coefficients of a whole image, scan by scan.
#include <algorithm>
#include <optional>

#include "jpeg/codec.h"
#include "jpeg/headers.h"
#include "jpeg/marker_writer.h"
#include "jpeg/scan_encoder.h"
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

void encodeScan(CoefficientImage& image, const Scan& scan, bool optimize, int32_t restartInterval,
                std::vector<uint8_t>& file) {
  ScanCounter counter(image.frame, scan, restartInterval);
  if (optimize) {
    forEachMcuRow(image, scan.components, [&](auto mcu, int32_t count) { counter.count(mcu, count); });
    counter.finish();
  }
  const ScanTables tables(image.frame, scan, optimize ? &counter : nullptr, file);
  MarkerWriter(file).scan(image.frame, scan);
  ScanEncoder encoder(file, image.frame.process, scan, tables.ofComponents(), restartInterval);
  forEachMcuRow(image, scan.components, [&](auto mcu, int32_t count) { encoder.encode(mcu, count); });
  encoder.finish();
}

}  // namespace

void encodeCoefficients(CoefficientImage& coefficients, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  Frame& frame = coefficients.frame;
  frame.process = options.progressive ? Process::progressive : Process::sequential;
  std::vector<Scan> scans = {Scan{frame.allComponents()}};
  if (options.progressive) scans = options.script.empty() ? usualScript(frame) : options.script;
  if (options.progressive) checkScript(scans, frame.components.size());
  // The usual tables lack the symbols of progressive scans and of 12-bit samples.
  const bool optimize = options.optimize || options.progressive || frame.precision != 8;
  jpeg.clear();
  writeHeaders(frame, coefficients.quantTables, options.restartInterval, jpeg);
  for (const Scan& scan : codableScans(frame, scans)) {
    encodeScan(coefficients, scan, optimize, options.restartInterval, jpeg);
  }
  MarkerWriter(jpeg).marker(marker::EOI);
}

}  // namespace examples::jpeg
