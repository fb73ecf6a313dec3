#include <zorj/jpeg_dct.h>

#include <algorithm>

#include "common/error.h"
#include "jpeg/codec.h"
#include "jpeg/inverse_transform.h"
#include "jpeg/marker_reader.h"
#include "jpeg/scan_decoder.h"

namespace examples::jpeg {
namespace {

// As many MCUs go through entropy decoding and transform at a time as stay in the nearest caches.
constexpr int32_t kRunMcus = 32;

// Sums up what is missing.
class Damage {
 public:
  void count(int64_t lostMcus, int64_t allMcus) {
    lost_ += lostMcus;
    all_ += allMcus;
  }
  void note(const std::string& problem) {
    if (problem_.empty()) problem_ = problem;
  }
  DecodeReport report() const {
    if (lost_ == 0) return {problem_};
    const int64_t percent = std::clamp<int64_t>(lost_ * 100 / all_, 1, 99);
    const std::string share = lost_ == all_ ? "all" : "about " + std::to_string(percent) + " %";
    return {(problem_.empty() ? "damaged data" : problem_) + ": " + share + " of the image data is lost"};
  }

 private:
  int64_t lost_ = 0;
  int64_t all_ = 0;
  std::string problem_;
};

std::vector<DecodeTables> scanTables(const MarkerReader& reader) {
  std::vector<DecodeTables> tables;
  for (const ScanComponent& component : reader.scan()) {
    tables.push_back({reader.dcSpec(component), reader.acSpec(component)});
  }
  return tables;
}

std::vector<size_t> scanComponents(const MarkerReader& reader) {
  std::vector<size_t> components;
  for (const ScanComponent& component : reader.scan()) components.push_back(component.component);
  return components;
}

ScanDecoder startScan(const MarkerReader& reader, std::array<QuantTable, kMaxComponents>& quantTables) {
  for (const size_t component : scanComponents(reader)) quantTables[component] = reader.quantTable(component);
  return ScanDecoder(reader.file(), reader.position(), scanTables(reader), reader.restartInterval());
}

void readFirstScan(MarkerReader& reader) {
  if (!reader.nextScan()) throw Error("the file has no image data");
}

// Reads on after a scan: true at another one. Damage of the headers from here on leaves what was decoded.
bool nextScan(MarkerReader& reader, const ScanDecoder& done, Damage& damage) {
  reader.resumeAt(done.end());
  try {
    return reader.nextScan();
  } catch (const Error& error) {
    damage.note(error.what());
    return false;
  }
}

// A file whose one scan holds all components: no more than a run of MCUs is kept of its coefficients.
DecodeReport decodeDirectly(MarkerReader& reader, Image& image) {
  const Frame& frame = reader.frame();
  std::array<QuantTable, kMaxComponents> quantTables{};
  ScanDecoder scan = startScan(reader, quantTables);
  InverseTransform transform(frame, quantTables, image);
  McuArray run(frame, kRunMcus, 1);
  const std::vector<McuBlock> inScan = interleavedMcu(frame, scanComponents(reader), run, 0, 0);
  const std::vector<McuBlock> inFrame = interleavedMcu(frame, frame.allComponents(), run, 0, 0);
  for (int32_t row = 0; row < frame.mcusHigh(); ++row) {
    for (int32_t column = 0; column < frame.mcusWide(); column += kRunMcus) {
      const int32_t count = std::min(kRunMcus, frame.mcusWide() - column);
      scan.decode(inScan, count);
      transform.run(column, row, count, inFrame);
    }
  }
  Damage damage;
  damage.count(scan.lostMcus(), int64_t{frame.mcusWide()} * frame.mcusHigh());
  if (nextScan(reader, scan, damage)) damage.note("a component is coded twice");
  return damage.report();
}

// A scan into the coefficients of the whole image.
void decodeScan(const MarkerReader& reader, ScanDecoder& scan, CoefficientImage& image, Damage& damage) {
  const std::vector<size_t> components = scanComponents(reader);
  int32_t wide = image.frame.mcusWide();
  int32_t high = image.frame.mcusHigh();
  if (components.size() == 1) {
    // The MCU of a lone component is one block, and the image has no more of them than it needs (T.81 A.2.2).
    const Component& component = image.frame.components[components[0]];
    wide = image.frame.blocksWide(component);
    high = image.frame.blocksHigh(component);
    const Blocks blocks = image.mcus.blocks(components[0], 0, 0);
    for (int32_t row = 0; row < high; ++row) {
      const McuBlock block{&blocks.at(0, row), 1, 0};
      scan.decode({&block, 1}, wide);
    }
  } else {
    for (int32_t row = 0; row < high; ++row) {
      scan.decode(interleavedMcu(image.frame, components, image.mcus, 0, row), wide);
    }
  }
  damage.count(scan.lostMcus(), int64_t{wide} * high);
}

// Sequential files code every component once.
Damage decodeAllScans(MarkerReader& reader, CoefficientImage& image) {
  image.frame = reader.frame();
  image.quantTables = {};
  image.mcus = McuArray(image.frame, image.frame.mcusWide(), image.frame.mcusHigh());
  std::vector<bool> coded(image.frame.components.size());
  Damage damage;
  bool more = true;
  while (more) {
    for (const size_t component : scanComponents(reader)) {
      if (coded[component]) {
        damage.note("a component is coded twice");
        return damage;
      }
      coded[component] = true;
    }
    ScanDecoder scan = startScan(reader, image.quantTables);
    decodeScan(reader, scan, image, damage);
    more = nextScan(reader, scan, damage);
  }
  if (std::find(coded.begin(), coded.end(), false) != coded.end()) damage.note("a component is missing");
  return damage;
}

bool holdsAllComponents(const MarkerReader& reader) { return reader.scan().size() == reader.frame().components.size(); }

}  // namespace

DecodeReport decode(std::span<const uint8_t> jpeg, Image& image) {
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  if (holdsAllComponents(reader)) return decodeDirectly(reader, image);

  CoefficientImage coefficients;
  const Damage damage = decodeAllScans(reader, coefficients);
  const Frame& frame = coefficients.frame;
  InverseTransform transform(frame, coefficients.quantTables, image);
  for (int32_t row = 0; row < frame.mcusHigh(); ++row) {
    transform.run(0, row, frame.mcusWide(), interleavedMcu(frame, frame.allComponents(), coefficients.mcus, 0, row));
  }
  return damage.report();
}

DecodeReport decodeCoefficients(std::span<const uint8_t> jpeg, CoefficientImage& coefficients) {
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  return decodeAllScans(reader, coefficients).report();
}

std::vector<ComponentSamples> inverseTransform(CoefficientImage& coefficients) {
  std::vector<ComponentSamples> result;
  const Frame& frame = coefficients.frame;
  for (size_t c = 0; c < frame.components.size(); ++c) {
    ComponentSamples plane{8 * frame.blocksWide(frame.components[c]), 8 * frame.blocksHigh(frame.components[c]), {}};
    plane.samples.resize(size_t(plane.width) * size_t(plane.height));
    const Blocks blocks = coefficients.mcus.blocks(c, 0, 0);
    for (int32_t y = 0; y < plane.height; y += 8) {
      uint8_t* const rows = plane.samples.data() + ptrdiff_t{y} * plane.width;
      for (int32_t x = 0; x < plane.width; x += 8) {
        zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(blocks.at(x / 8, y / 8).values, rows + x, plane.width,
                                            coefficients.quantTables[c].data());
      }
    }
    result.push_back(std::move(plane));
  }
  return result;
}

}  // namespace examples::jpeg
