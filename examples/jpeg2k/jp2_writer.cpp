#include "jpeg2k/jp2_writer.h"

#include "common/error.h"

namespace examples::jpeg2k {
namespace {

constexpr uint32_t kBoxHeader = 8;

void box(std::string_view type, uint32_t contents, ByteWriter& file) {
  file.u32(kBoxHeader + contents);
  file.text(type);
}

// CMYK is one of those that T.801 adds to the colour spaces of T.800, which has no space of four components.
uint32_t colourSpace(int32_t channels) {
  constexpr uint32_t kCmyk = 12, kSRgb = 16, kGrey = 17;
  return channels == 4 ? kCmyk : channels == 3 ? kSRgb : kGrey;
}

void channelDefinitions(int32_t channels, ByteWriter& file) {
  // The second channel of a grey picture is its opacity.
  box("cdef", 2 + 6 * static_cast<uint32_t>(channels), file);
  file.u16(static_cast<uint32_t>(channels));
  for (const uint32_t isOpacity : {0u, 1u}) {
    file.u16(isOpacity);
    file.u16(isOpacity);
    file.u16(isOpacity ? 0 : 1);
  }
}

}  // namespace

size_t beginFile(const FileHeader& header, ByteWriter& file) {
  constexpr uint32_t kImageHeader = 14, kColour = 7, kDefinitions = 2 + 2 * 6;
  constexpr uint32_t kJpeg2000 = 7;  // the only compression type
  box("jP  ", 4, file);
  file.u32(0x0d0a870a);
  box("ftyp", 12, file);
  file.text("jp2 ");
  file.u32(0);
  file.text("jp2 ");

  const bool opacity = header.channels == 2;
  box("jp2h", kBoxHeader + kImageHeader + kBoxHeader + kColour + (opacity ? kBoxHeader + kDefinitions : 0), file);
  box("ihdr", kImageHeader, file);
  file.u32(static_cast<uint32_t>(header.height));
  file.u32(static_cast<uint32_t>(header.width));
  file.u16(static_cast<uint32_t>(header.channels));
  file.u8(static_cast<uint32_t>(header.precision - 1));
  file.u8(kJpeg2000);
  file.u8(0);  // the colour space is known
  file.u8(0);  // no intellectual property box
  box("colr", kColour, file);
  file.u8(1);  // an enumerated colour space
  file.u8(0);
  file.u8(0);
  file.u32(colourSpace(header.channels));
  if (opacity) channelDefinitions(header.channels, file);

  box("jp2c", 0, file);
  return file.size();
}

void endFile(size_t codestreamStart, ByteWriter& file) {
  const size_t length = kBoxHeader + file.size() - codestreamStart;
  if (length > UINT32_MAX) throw Error("the codestream is too long for a JP2 file");
  file.patch32(codestreamStart - kBoxHeader, static_cast<uint32_t>(length));
}

}  // namespace examples::jpeg2k
