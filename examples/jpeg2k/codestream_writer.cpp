#include "jpeg2k/codestream_writer.h"

#include "common/error.h"

namespace examples::jpeg2k {
namespace {

constexpr uint32_t kSoc = 0xff4f, kSiz = 0xff51, kCod = 0xff52, kQcd = 0xff5c, kSot = 0xff90, kSod = 0xff93,
                   kEoc = 0xffd9;

uint32_t unsignedOf(int32_t value) { return static_cast<uint32_t>(value); }

void writeSize(const ImageSize& size, ByteWriter& bytes) {
  bytes.u16(kSiz);
  bytes.u16(38 + 3 * static_cast<uint32_t>(size.components.size()));
  bytes.u16(0);  // no extensions are used, and no profile is promised
  for (const int32_t value : {size.image.x1, size.image.y1, size.image.x0, size.image.y0, size.tileWidth,
                              size.tileHeight, size.tileX, size.tileY})
    bytes.u32(unsignedOf(value));
  bytes.u16(static_cast<uint32_t>(size.components.size()));
  for (const ComponentSize& component : size.components) {
    bytes.u8((component.isSigned ? 0x80u : 0u) | unsignedOf(component.precision - 1));
    bytes.u8(unsignedOf(component.dx));
    bytes.u8(unsignedOf(component.dy));
  }
}

bool hasPrecincts(const CodingStyle& style) {
  for (int32_t resolution = 0; resolution <= style.levels; ++resolution) {
    const CodingStyle::Precinct& precinct = style.precincts[static_cast<size_t>(resolution)];
    if (precinct.width != kMaxPrecinctExponent || precinct.height != kMaxPrecinctExponent) return true;
  }
  return false;
}

void writeCoding(const TileCoding& coding, ByteWriter& bytes) {
  const CodingStyle& style = coding.components.front().style;
  const bool precincts = hasPrecincts(style);
  bytes.u16(kCod);
  bytes.u16(12 + (precincts ? unsignedOf(style.levels) + 1 : 0));
  bytes.u8((precincts ? 1u : 0u) | (coding.sop ? 2u : 0u) | (coding.eph ? 4u : 0u));
  bytes.u8(static_cast<uint32_t>(coding.order));
  bytes.u16(unsignedOf(coding.layers));
  bytes.u8(coding.colorTransform ? 1 : 0);
  bytes.u8(unsignedOf(style.levels));
  bytes.u8(unsignedOf(style.blockWidth - 2));
  bytes.u8(unsignedOf(style.blockHeight - 2));
  bytes.u8(style.blockStyle);
  bytes.u8(style.reversible ? 1 : 0);
  for (int32_t resolution = 0; precincts && resolution <= style.levels; ++resolution) {
    const CodingStyle::Precinct& precinct = style.precincts[static_cast<size_t>(resolution)];
    bytes.u8(uint32_t{precinct.height} << 4 | precinct.width);
  }
}

void writeQuantization(const ComponentCoding& coding, ByteWriter& bytes) {
  const Quantization& quantization = coding.quantization;
  const bool steps = quantization.style == QuantizationStyle::expounded;
  const uint32_t subbands = 3 * unsignedOf(coding.style.levels) + 1;
  bytes.u16(kQcd);
  bytes.u16(3 + (steps ? 2 : 1) * subbands);
  bytes.u8(unsignedOf(quantization.guardBits) << 5 | static_cast<uint32_t>(quantization.style));
  for (uint32_t i = 0; i < subbands; ++i) {
    const Quantization::Step& step = quantization.steps[i];
    if (steps) {
      bytes.u16(uint32_t{step.exponent} << 11 | step.mantissa);
    } else {
      bytes.u8(uint32_t{step.exponent} << 3);
    }
  }
}

}  // namespace

void writeMainHeader(const ImageSize& size, const TileCoding& coding, ByteWriter& bytes) {
  bytes.u16(kSoc);
  writeSize(size, bytes);
  writeCoding(coding, bytes);
  writeQuantization(coding.components.front(), bytes);
}

size_t beginTilePart(int32_t tile, ByteWriter& bytes) {
  const size_t start = bytes.size();
  bytes.u16(kSot);
  bytes.u16(10);
  bytes.u16(unsignedOf(tile));
  bytes.u32(0);  // its length, which is filled in later
  bytes.u8(0);   // the first part
  bytes.u8(1);   // of one
  bytes.u16(kSod);
  return start;
}

void endTilePart(size_t start, ByteWriter& bytes) {
  constexpr size_t kLengthField = 6;
  const size_t length = bytes.size() - start;
  if (length > UINT32_MAX) throw Error("the tile is too large");
  bytes.patch32(start + kLengthField, static_cast<uint32_t>(length));
}

void writeEndOfCodestream(ByteWriter& bytes) { bytes.u16(kEoc); }

}  // namespace examples::jpeg2k
