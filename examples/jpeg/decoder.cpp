#include <zorj/jpeg_dct.h>

#include <algorithm>

#include "common/error.h"
#include "jpeg/codec.h"
#include "jpeg/inverse_transform.h"
#include "jpeg/lone_scan.h"
#include "jpeg/marker_reader.h"
#include "jpeg/parallel.h"
#include "jpeg/scan_decoder.h"

namespace examples::jpeg {
namespace {

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

ScanDecoder startScan(const MarkerReader& reader, std::array<QuantTable, kMaxComponents>& quantTables) {
  reader.takeQuantTables(quantTables);
  return ScanDecoder(reader.file(), reader.position(), reader.scanTables(), reader.restartInterval());
}

void readFirstScan(MarkerReader& reader) {
  if (!reader.nextScan()) throw Error("the file has no image data");
}

// Reads on after a scan: true at another one. Damage of the headers from here on leaves what was decoded.
bool nextScan(MarkerReader& reader, size_t endOfData, Damage& damage) {
  reader.resumeAt(endOfData);
  try {
    return reader.nextScan();
  } catch (const Error& error) {
    damage.note(error.what());
    return false;
  }
}

// A scan into the coefficients of the whole image.
void decodeScan(const MarkerReader& reader, ScanDecoder& scan, CoefficientImage& image, Damage& damage) {
  const std::vector<size_t> components = reader.scanComponents();
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
    for (const size_t component : reader.scanComponents()) {
      if (coded[component]) {
        damage.note("a component is coded twice");
        return damage;
      }
      coded[component] = true;
    }
    ScanDecoder scan = startScan(reader, image.quantTables);
    decodeScan(reader, scan, image, damage);
    more = nextScan(reader, scan.end(), damage);
  }
  if (std::find(coded.begin(), coded.end(), false) != coded.end()) damage.note("a component is missing");
  return damage;
}

DecodeReport decodeDirectly(MarkerReader& reader, const DecodeOptions& options, Image& image) {
  const Frame& frame = reader.frame();
  shapeImage(frame, options, image);
  const LoneScanEnd end = decodeLoneScan(reader, options, image);
  Damage damage;
  damage.count(end.lostMcus, int64_t{frame.mcusWide()} * frame.mcusHigh());
  if (nextScan(reader, end.position, damage)) damage.note("a component is coded twice");
  return damage.report();
}

void check(const DecodeOptions& options) {
  const int32_t scale = options.scale;
  if (scale != 1 && scale != 2 && scale != 4 && scale != 8) throw Error("the scale must be 1, 1/2, 1/4 or 1/8");
  if (options.threads < 1) throw Error("there must be at least one thread");
}

// The pixels of all coefficients, in strips.
void toPixels(CoefficientImage& coefficients, const DecodeOptions& options, Image& image) {
  const Frame& frame = coefficients.frame;
  shapeImage(frame, options, image);
  const int32_t strips = std::min(options.threads, frame.mcusHigh());
  inParallel(strips, [&](int32_t strip) {
    const int32_t first = stripStart(frame.mcusHigh(), strips, strip);
    const int32_t end = stripStart(frame.mcusHigh(), strips, strip + 1);
    InverseTransform transform(frame, coefficients.quantTables, options, first, image);
    for (int32_t row = transform.firstNeeded(); row < end; ++row) {
      transform.run(0, row, frame.mcusWide(), interleavedMcu(frame, frame.allComponents(), coefficients.mcus, 0, row));
    }
  });
}

}  // namespace

DecodeReport decode(std::span<const uint8_t> jpeg, const DecodeOptions& options, Image& image) {
  check(options);
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  if (reader.scanHoldsAllComponents()) return decodeDirectly(reader, options, image);
  CoefficientImage coefficients;
  const Damage damage = decodeAllScans(reader, coefficients);
  toPixels(coefficients, options, image);
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
