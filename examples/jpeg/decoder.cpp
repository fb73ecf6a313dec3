#include <zorj/jpeg_dct.h>

#include <algorithm>

#include "common/error.h"
#include "common/image_file.h"
#include "jpeg/codec.h"
#include "jpeg/damage.h"
#include "jpeg/deep_pixels.h"
#include "jpeg/inverse_transform.h"
#include "jpeg/lone_scan.h"
#include "jpeg/lossless_decoder.h"
#include "jpeg/marker_reader.h"
#include "jpeg/parallel.h"
#include "jpeg/scan_decoder.h"

namespace examples::jpeg {
namespace {

ScanDecoder startScan(const MarkerReader& reader, std::array<QuantTable, kMaxComponents>& quantTables) {
  reader.takeQuantTables(quantTables);
  return ScanDecoder(reader.file(), reader.position(), reader.frame().process, reader.scan(), reader.scanTables(),
                     reader.restartInterval());
}

void readFirstScan(MarkerReader& reader) {
  if (!reader.nextScan()) throw Error("the file has no image data");
}

// All scans of a file together may go through so many blocks, and so many more for each byte of it: a damaged scan, or
// one of empty blocks, takes hardly any data. With a scan for each bit of each coefficient, 14 times 64 of them, an
// empty picture takes 14 bits a block for its DC values: a byte for 512 blocks.
constexpr int64_t kAlwaysAllowedBlocks = 1 << 24;
constexpr int64_t kMaxBlocksPerByte = 512;

// A scan into the coefficients of the whole image. Returns how many blocks it went through.
int64_t decodeScan(const MarkerReader& reader, ScanDecoder& scan, CoefficientImage& image, Damage& damage) {
  int64_t mcus = 0, blocks = 0;
  for (int32_t row = 0; row < image.frame.mcusHigh(); ++row) {
    inMcuRow(image, reader.scan().components, row, [&](std::span<const McuBlock> mcu, int32_t count) {
      scan.decode(mcu, count);
      mcus += count;
      blocks += std::ssize(mcu) * count;
    });
  }
  damage.count(scan.lostMcus(), mcus);
  return blocks;
}

// Which scans a file has had. Sequential ones code each component once, whole.
class ScanRecord {
 public:
  explicit ScanRecord(const Frame& frame)
      : isProgressive_(frame.process == Process::progressive),
        coded_(frame.components.size()),
        progress_(frame.components.size()) {}

  // Throws Error if the scan cannot be decoded.
  void add(const Scan& scan, Damage& damage) {
    if (isProgressive_ && !progress_.add(scan)) damage.note("scans are missing or out of order");
    for (const size_t component : scan.components) {
      if (!isProgressive_ && coded_[component]) throw Error("a component is coded twice");
      coded_[component] = true;
    }
  }

  void finish(Damage& damage) const {
    if (std::find(coded_.begin(), coded_.end(), false) != coded_.end()) damage.note("a component is missing");
    if (isProgressive_ && !progress_.complete()) damage.note("scans are missing: the picture lacks detail");
  }

 private:
  bool isProgressive_;
  std::vector<bool> coded_;
  Progress progress_;
};

Damage decodeAllScans(MarkerReader& reader, CoefficientImage& image) {
  image.frame = reader.frame();
  image.quantTables = {};
  image.mcus = McuArray(image.frame, image.frame.mcusWide(), image.frame.mcusHigh());
  ScanRecord record(image.frame);
  Damage damage;
  int64_t blocksLeft = kAlwaysAllowedBlocks + kMaxBlocksPerByte * std::ssize(reader.file());
  bool isFirst = true;
  for (bool more = true; more; isFirst = false) {
    try {
      if (blocksLeft < 0) throw Error("the file is too small for so many scans");
      record.add(reader.scan(), damage);
      ScanDecoder scan = startScan(reader, image.quantTables);
      blocksLeft -= decodeScan(reader, scan, image, damage);
      more = nextScan(reader, scan.end(), damage);
    } catch (const Error& error) {
      if (isFirst) throw;
      damage.note(error.what());
      return damage;
    }
  }
  record.finish(damage);
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

// Whether a lossless file's samples are the pixels' as they are.
bool holdsPixels(const Frame& frame, const DecodeOptions& options) {
  const bool whole = std::all_of(frame.components.begin(), frame.components.end(), [](const Component& component) {
    return component.horizontal == 1 && component.vertical == 1;
  });
  return frame.process == Process::lossless && whole && !frame.inverted && options.scale == 1 &&
         frame.coding != ColorCoding::yCbCr && frame.coding != ColorCoding::ycck;
}

// What stands for lost samples.
template <class Sample>
Sample middleGrey(const Frame& frame) {
  return static_cast<Sample>(1 << (frame.precision - 1));
}

template <class Sample>
DecodeReport decodeLosslessPixels(MarkerReader& reader, BasicImage<Sample>& image) {
  const Frame& frame = reader.frame();
  image.reshape(frame.width, frame.height, static_cast<int32_t>(frame.components.size()));
  image.precision = frame.precision;
  std::fill(image.samples.begin(), image.samples.end(), middleGrey<Sample>(frame));
  const int32_t largest = image.largest();
  return decodeLossless(reader, [&](size_t c, int32_t y, std::span<const int16_t> samples, int32_t dropped) {
    Sample* const to = image.at(0, y) + c;
    const auto put = [&](auto channels) {
      for (size_t x = 0; x < samples.size(); ++x)
        to[x * channels] = static_cast<Sample>(samples[x] << dropped & largest);
    };
    if (image.channels == 3) {
      put(std::integral_constant<size_t, 3>());
    } else {
      put(static_cast<size_t>(image.channels));
    }
  });
}

DecodeReport decodeLosslessPlanes(MarkerReader& reader, std::vector<SamplePlane>& planes) {
  const Frame& frame = reader.frame();
  for (const Component& component : frame.components) {
    SamplePlane plane{frame.samplesWide(component), frame.samplesHigh(component), {}};
    plane.samples.assign(size_t(plane.width) * size_t(plane.height), middleGrey<uint16_t>(frame));
    planes.push_back(std::move(plane));
  }
  const int32_t largest = (1 << frame.precision) - 1;
  return decodeLossless(reader, [&](size_t c, int32_t y, std::span<const int16_t> samples, int32_t dropped) {
    std::transform(samples.begin(), samples.end(), &planes[c].samples[size_t(y) * size_t(planes[c].width)],
                   [=](int16_t sample) { return static_cast<uint16_t>(sample << dropped & largest); });
  });
}

DecodeReport decodeDeep(MarkerReader& reader, const DecodeOptions& options, DeepImage& image) {
  const Frame frame = reader.frame();
  if (holdsPixels(frame, options)) return decodeLosslessPixels(reader, image);
  DecodeReport report;
  if (frame.process == Process::lossless) {
    std::vector<SamplePlane> planes;
    report = decodeLosslessPlanes(reader, planes);
    toPixels(frame, planes, options, image);
  } else {
    CoefficientImage coefficients;
    report = decodeAllScans(reader, coefficients).report();
    toPixels(frame, inverseTransformDeep(coefficients), options, image);
  }
  return report;
}

}  // namespace

Frame describe(std::span<const uint8_t> jpeg) {
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  return reader.frame();
}

DecodeReport decode(std::span<const uint8_t> jpeg, const DecodeOptions& options, DeepImage& image) {
  check(options);
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  return decodeDeep(reader, options, image);
}

DecodeReport decode(std::span<const uint8_t> jpeg, const DecodeOptions& options, Image& image) {
  check(options);
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  const Frame& frame = reader.frame();
  if (frame.precision == 8 && holdsPixels(frame, options)) return decodeLosslessPixels(reader, image);
  if (frame.precision != 8 || frame.process == Process::lossless) {
    DeepImage deep;
    const DecodeReport report = decodeDeep(reader, options, deep);
    image = withPrecision<uint8_t>(deep, 8);
    return report;
  }
  if (frame.process == Process::sequential && reader.scanHoldsAllComponents()) {
    return decodeDirectly(reader, options, image);
  }
  CoefficientImage coefficients;
  const Damage damage = decodeAllScans(reader, coefficients);
  toPixels(coefficients, options, image);
  return damage.report();
}

DecodeReport decodeCoefficients(std::span<const uint8_t> jpeg, CoefficientImage& coefficients) {
  MarkerReader reader(jpeg);
  readFirstScan(reader);
  if (reader.frame().process == Process::lossless) throw Error("a lossless file has no coefficients");
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
