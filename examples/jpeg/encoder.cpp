#include <zorj/jpeg_dct.h>

#include <algorithm>

#include "common/error.h"
#include "common/image_file.h"
#include "jpeg/codec.h"
#include "jpeg/coefficient_encoder.h"
#include "jpeg/deep_pixels.h"
#include "jpeg/forward_transform.h"
#include "jpeg/headers.h"
#include "jpeg/lossless_encoder.h"
#include "jpeg/marker_writer.h"
#include "jpeg/markers.h"
#include "jpeg/scan_encoder.h"

namespace examples::jpeg {
namespace {

// As many MCUs go through transform and entropy coding at a time as stay in the nearest caches.
constexpr int32_t kRunMcus = 32;

ColorCoding codingFor(int32_t channels, bool convert) {
  switch (channels) {
    case 1:
      return ColorCoding::grey;
    case 3:
      return convert ? ColorCoding::yCbCr : ColorCoding::rgb;
    case 4:
      return convert ? ColorCoding::ycck : ColorCoding::cmyk;
    default:
      throw Error("only grey, RGB and CMYK images can be encoded");
  }
}

// Chroma has tables of its own and may have fewer samples.
template <class AnyImage>
Frame frameFor(const AnyImage& image, const EncodeOptions& options) {
  const ColorCoding coding = codingFor(image.channels, options.convertColors && options.predictor == 0);
  if (image.width < 1 || image.height < 1 || image.width > 65535 || image.height > 65535) {
    throw Error("width and height must be from 1 to 65535");
  }
  const bool hasChroma = coding == ColorCoding::yCbCr || coding == ColorCoding::ycck;
  const bool halved = hasChroma && options.sampling != Sampling::s444;
  const Component full = {0, halved ? 2 : 1, halved && options.sampling == Sampling::s420 ? 2 : 1, 0};
  const Component chroma = {0, 1, 1, 1};
  Frame frame;
  frame.precision = options.predictor > 0 ? image.precision : options.precision;
  frame.process = options.predictor > 0 ? Process::lossless
                  : options.progressive ? Process::progressive
                                        : Process::sequential;
  frame.width = image.width;
  frame.height = image.height;
  frame.coding = coding;
  frame.inverted = image.channels == 4;
  for (int32_t c = 0; c < image.channels; ++c) {
    frame.components.push_back(hasChroma && (c == 1 || c == 2) ? chroma : full);
    frame.components.back().id = static_cast<uint8_t>(coding == ColorCoding::rgb ? "RGB"[c] : c + 1);
  }
  return frame;
}

using RawQuantTable = std::array<uint8_t, 64>;

// Luminance and chrominance step sizes in zig-zag order.
std::array<RawQuantTable, 2> quantTables(int32_t quality) {
  if (quality < 1 || quality > 100) throw Error("the quality must be from 1 to 100");
  std::array<RawQuantTable, 2> tables = {kQuantisation[0], kQuantisation[1]};
  for (RawQuantTable& table : tables) zoriQuantFwdRawTableInit_JPEG_8u(table.data(), quality);
  return tables;
}

// The tables of each component, out of those of luminance and chrominance.
std::array<const uint8_t*, kMaxComponents> tablesOf(const Frame& frame, std::span<const RawQuantTable, 2> quant) {
  std::array<const uint8_t*, kMaxComponents> tables{};
  for (size_t c = 0; c < frame.components.size(); ++c) tables[c] = quant[frame.components[c].quantTable].data();
  return tables;
}

std::array<QuantTable, kMaxComponents> stepsOf(const Frame& frame, std::span<const RawQuantTable, 2> quant) {
  const std::array<const uint8_t*, kMaxComponents> tables = tablesOf(frame, quant);
  std::array<QuantTable, kMaxComponents> steps{};
  for (size_t c = 0; c < frame.components.size(); ++c) {
    zoriQuantInvTableInit_JPEG_8u16u(tables[c], steps[c].data());
  }
  return steps;
}

void check(const EncodeOptions& options) {
  if (options.restartInterval < 0 || options.restartInterval > 65535) {
    throw Error("the restart interval must be from 0 to 65535");
  }
  if (options.precision != 8 && options.precision != 12) throw Error("the precision must be 8 or 12");
  if (options.precision == 12 && options.progressive) throw Error("12-bit files are sequential");
  if (options.predictor < 0 || options.predictor > 7) throw Error("the predictor must be from 1 to 7");
}

// Row by row with the usual Huffman tables.
void encodeBaseline(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  const Frame frame = frameFor(image, options);
  const std::array<RawQuantTable, 2> quant = quantTables(options.quality);
  jpeg.clear();
  writeHeaders(frame, stepsOf(frame, quant), options.restartInterval, jpeg);
  const Scan all{frame.allComponents()};
  std::vector<EncodeTables> huffman;
  EncodeSpec dc[2], ac[2];
  for (const Component& component : frame.components) {
    const uint8_t table = huffmanTableOf(component);
    if (!dc[table]) {
      dc[table] = makeEncodeSpec(kDcHuffman[table]);
      ac[table] = makeEncodeSpec(kAcHuffman[table]);
      MarkerWriter(jpeg).huffmanTable(false, table, kDcHuffman[table]);
      MarkerWriter(jpeg).huffmanTable(true, table, kAcHuffman[table]);
    }
    huffman.push_back({dc[table].get(), ac[table].get()});
  }
  MarkerWriter(jpeg).scan(frame, all);

  ForwardTransform transform(image, frame, tablesOf(frame, quant));
  ScanEncoder scan(jpeg, frame.process, all, std::move(huffman), options.restartInterval);
  McuArray run(frame, kRunMcus, 1);
  const std::vector<McuBlock> blocks = interleavedMcu(frame, all.components, run, 0, 0);
  const int32_t mcusWide = frame.mcusWide();
  for (int32_t row = 0; row < frame.mcusHigh(); ++row) {
    for (int32_t column = 0; column < mcusWide; column += kRunMcus) {
      const int32_t count = std::min(kRunMcus, mcusWide - column);
      transform.run(column, row, count, blocks);
      scan.encode(blocks, count);
    }
  }
  scan.finish();
  MarkerWriter(jpeg).marker(marker::EOI);
}

// The values of the coefficients are to be filled in.
template <class AnyImage>
CoefficientImage coefficientsFor(const AnyImage& image, const EncodeOptions& options) {
  CoefficientImage result;
  result.frame = frameFor(image, options);
  result.mcus = McuArray(result.frame, result.frame.mcusWide(), result.frame.mcusHigh(), FirstValues::any);
  result.quantTables = stepsOf(result.frame, quantTables(options.quality));
  return result;
}

// Fills in the coefficients. Calls done(row) after each row of MCUs.
template <class Done>
void transformRows(const Image& image, const EncodeOptions& options, CoefficientImage& result, const Done& done) {
  const Frame& frame = result.frame;
  ForwardTransform forward(image, frame, tablesOf(frame, quantTables(options.quality)));
  for (int32_t row = 0; row < frame.mcusHigh(); ++row) {
    forward.run(0, row, frame.mcusWide(), interleavedMcu(frame, frame.allComponents(), result.mcus, 0, row));
    done(row);
  }
}

}  // namespace

CoefficientImage transform(const Image& image, const EncodeOptions& options) {
  CoefficientImage result = coefficientsFor(image, options);
  transformRows(image, options, result, [](int32_t) {});
  return result;
}

CoefficientImage transform(const DeepImage& image, const EncodeOptions& options) {
  if (options.precision == 8) return transform(withPrecision<uint8_t>(image, 8), options);
  CoefficientImage result = coefficientsFor(image, options);
  transformDeep(withPrecision<uint16_t>(image, options.precision), result);
  return result;
}

void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  check(options);
  if (options.predictor > 0) return encodeLossless(image, frameFor(image, options), options, jpeg);
  if (options.precision != 8) {
    return encode(withPrecision<uint16_t>(image, 8), options, jpeg);
  }
  if (!options.optimize && !options.progressive) return encodeBaseline(image, options, jpeg);
  CoefficientImage coefficients = coefficientsFor(image, options);
  CoefficientEncoder encoder(coefficients, options);
  transformRows(image, options, coefficients, [&](int32_t row) { encoder.count(row); });
  encoder.write(jpeg);
}

void encode(const DeepImage& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  check(options);
  if (options.predictor > 0) return encodeLossless(image, frameFor(image, options), options, jpeg);
  if (options.precision == 8) return encode(withPrecision<uint8_t>(image, 8), options, jpeg);
  CoefficientImage coefficients = transform(image, options);
  encodeCoefficients(coefficients, options, jpeg);
}

}  // namespace examples::jpeg
