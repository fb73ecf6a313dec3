#include <zorj/jpeg_dct.h>

#include <algorithm>

#include "common/error.h"
#include "jpeg/codec.h"
#include "jpeg/forward_transform.h"
#include "jpeg/marker_writer.h"
#include "jpeg/markers.h"
#include "jpeg/scan_encoder.h"

namespace examples::jpeg {
namespace {

// As many MCUs go through transform and entropy coding at a time as stay in the nearest caches.
constexpr int32_t kRunMcus = 32;

ColorCoding codingFor(const Image& image, const EncodeOptions& options) {
  switch (image.channels) {
    case 1:
      return ColorCoding::grey;
    case 3:
      return options.convertColors ? ColorCoding::yCbCr : ColorCoding::rgb;
    case 4:
      return options.convertColors ? ColorCoding::ycck : ColorCoding::cmyk;
    default:
      throw Error("only grey, RGB and CMYK images can be encoded");
  }
}

// Chroma has tables of its own and may have fewer samples.
Frame frameFor(const Image& image, const EncodeOptions& options) {
  const ColorCoding coding = codingFor(image, options);
  if (image.width < 1 || image.height < 1 || image.width > 65535 || image.height > 65535) {
    throw Error("width and height must be from 1 to 65535");
  }
  const bool hasChroma = coding == ColorCoding::yCbCr || coding == ColorCoding::ycck;
  const bool halved = hasChroma && options.sampling != Sampling::s444;
  const Component full = {0, halved ? 2 : 1, halved && options.sampling == Sampling::s420 ? 2 : 1, 0};
  const Component chroma = {0, 1, 1, 1};
  Frame frame{image.width, image.height, {}, coding, image.channels == 4};
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

void writeHeaders(const Frame& frame, std::span<const RawQuantTable> quant, int32_t restartInterval,
                  std::vector<uint8_t>& file) {
  size_t tables = 1;
  for (const Component& component : frame.components) tables = std::max(tables, component.quantTable + size_t{1});
  MarkerWriter writer(file);
  writer.marker(marker::SOI);
  if (frame.coding == ColorCoding::grey || frame.coding == ColorCoding::yCbCr) {
    writer.jfif();
  } else {
    writer.adobe(frame.coding == ColorCoding::ycck ? kAdobeYcck : kAdobeUnconverted);
  }
  for (size_t i = 0; i < tables; ++i) writer.quantTable(static_cast<uint8_t>(i), quant[i]);
  writer.baselineFrame(frame);
  for (size_t i = 0; i < tables; ++i) {
    writer.huffmanTable(false, static_cast<uint8_t>(i), kDcHuffman[i]);
    writer.huffmanTable(true, static_cast<uint8_t>(i), kAcHuffman[i]);
  }
  if (restartInterval > 0) writer.restartInterval(restartInterval);
  writer.scan(frame);
}

// The tables of each component, out of those of luminance and chrominance.
std::array<const uint8_t*, kMaxComponents> tablesOf(const Frame& frame, std::span<const RawQuantTable, 2> quant) {
  std::array<const uint8_t*, kMaxComponents> tables{};
  for (size_t c = 0; c < frame.components.size(); ++c) tables[c] = quant[frame.components[c].quantTable].data();
  return tables;
}

}  // namespace

void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  const Frame frame = frameFor(image, options);
  const std::array<RawQuantTable, 2> quant = quantTables(options.quality);
  if (options.restartInterval < 0 || options.restartInterval > 65535) {
    throw Error("the restart interval must be from 0 to 65535");
  }
  jpeg.clear();
  writeHeaders(frame, quant, options.restartInterval, jpeg);

  ForwardTransform transform(image, frame, tablesOf(frame, quant));
  const EncodeSpec dc[2] = {makeEncodeSpec(kDcHuffman[0]), makeEncodeSpec(kDcHuffman[1])};
  const EncodeSpec ac[2] = {makeEncodeSpec(kAcHuffman[0]), makeEncodeSpec(kAcHuffman[1])};
  std::vector<EncodeTables> huffman;
  for (const Component& component : frame.components) {
    huffman.push_back({dc[component.quantTable].get(), ac[component.quantTable].get()});
  }
  ScanEncoder scan(jpeg, std::move(huffman), options.restartInterval);

  McuArray run(frame, kRunMcus, 1);
  const std::vector<McuBlock> blocks = interleavedMcu(frame, frame.allComponents(), run, 0, 0);
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

CoefficientImage transform(const Image& image, const EncodeOptions& options) {
  CoefficientImage result;
  result.frame = frameFor(image, options);
  result.mcus = McuArray(result.frame, result.frame.mcusWide(), result.frame.mcusHigh());
  const std::array<RawQuantTable, 2> quant = quantTables(options.quality);
  const std::array<const uint8_t*, kMaxComponents> tables = tablesOf(result.frame, quant);
  for (size_t c = 0; c < result.frame.components.size(); ++c) {
    zoriQuantInvTableInit_JPEG_8u16u(tables[c], result.quantTables[c].data());
  }
  ForwardTransform forward(image, result.frame, tables);
  const std::vector<size_t> components = result.frame.allComponents();
  for (int32_t row = 0; row < result.frame.mcusHigh(); ++row) {
    forward.run(0, row, result.frame.mcusWide(), interleavedMcu(result.frame, components, result.mcus, 0, row));
  }
  return result;
}

}  // namespace examples::jpeg
