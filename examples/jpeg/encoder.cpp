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

Frame frameFor(const Image& image, Sampling sampling) {
  if (image.channels != 1 && image.channels != 3) throw Error("only grey and RGB images can be encoded");
  if (image.width < 1 || image.height < 1 || image.width > 65535 || image.height > 65535) {
    throw Error("width and height must be from 1 to 65535");
  }
  Frame frame{image.width, image.height, {}, false};
  frame.components.push_back({1, 1, 1, 0});
  if (image.channels == 1) return frame;
  frame.components[0].horizontal = sampling == Sampling::s444 ? 1 : 2;
  frame.components[0].vertical = sampling == Sampling::s411 ? 2 : 1;
  frame.components.push_back({2, 1, 1, 1});
  frame.components.push_back({3, 1, 1, 1});
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
  const size_t tables = frame.components.size() == 1 ? 1 : 2;
  MarkerWriter writer(file);
  writer.marker(marker::SOI);
  writer.jfif();
  for (size_t i = 0; i < tables; ++i) writer.quantTable(static_cast<uint8_t>(i), quant[i]);
  writer.baselineFrame(frame);
  for (size_t i = 0; i < tables; ++i) {
    writer.huffmanTable(false, static_cast<uint8_t>(i), kDcHuffman[i]);
    writer.huffmanTable(true, static_cast<uint8_t>(i), kAcHuffman[i]);
  }
  if (restartInterval > 0) writer.restartInterval(restartInterval);
  writer.scan(frame);
}

}  // namespace

void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg) {
  const Frame frame = frameFor(image, options.sampling);
  const std::array<RawQuantTable, 2> quant = quantTables(options.quality);
  if (options.restartInterval < 0 || options.restartInterval > 65535) {
    throw Error("the restart interval must be from 0 to 65535");
  }
  jpeg.clear();
  writeHeaders(frame, quant, options.restartInterval, jpeg);

  ForwardTransform transform(image, frame, {quant[0].data(), quant[1].data(), quant[1].data()});
  const EncodeSpec dc[2] = {makeEncodeSpec(kDcHuffman[0]), makeEncodeSpec(kDcHuffman[1])};
  const EncodeSpec ac[2] = {makeEncodeSpec(kAcHuffman[0]), makeEncodeSpec(kAcHuffman[1])};
  const EncodeTables luma{dc[0].get(), ac[0].get()};
  const EncodeTables chroma{dc[1].get(), ac[1].get()};
  ScanEncoder scan(jpeg, {luma, chroma, chroma}, options.restartInterval);

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
  result.frame = frameFor(image, options.sampling);
  result.mcus = McuArray(result.frame, result.frame.mcusWide(), result.frame.mcusHigh());
  const std::array<RawQuantTable, 2> quant = quantTables(options.quality);
  for (size_t c = 0; c < result.frame.components.size(); ++c) {
    zoriQuantInvTableInit_JPEG_8u16u(quant[c == 0 ? 0 : 1].data(), result.quantTables[c].data());
  }
  ForwardTransform forward(image, result.frame, {quant[0].data(), quant[1].data(), quant[1].data()});
  const std::vector<size_t> components = result.frame.allComponents();
  for (int32_t row = 0; row < result.frame.mcusHigh(); ++row) {
    forward.run(0, row, result.frame.mcusWide(), interleavedMcu(result.frame, components, result.mcus, 0, row));
  }
  return result;
}

}  // namespace examples::jpeg
