#include "jpeg2k/jp2_reader.h"

#include <algorithm>
#include <numeric>

#include "common/byte_reader.h"
#include "common/error.h"
#include "jpeg2k/markers.h"

namespace examples::jpeg2k {
namespace {

constexpr uint32_t boxType(const char (&name)[5]) {
  uint32_t type = 0;
  for (int i = 0; i < 4; ++i) type = type << 8 | static_cast<uint8_t>(name[i]);
  return type;
}

constexpr uint32_t kSignature = 0x0d0a870a;
constexpr size_t kMaxEntries = 1024;  // of a palette

struct Box {
  uint32_t type = 0;
  ByteReader content;
};

// The next box; one that is cut goes to the end of the file.
Box nextBox(ByteReader& in) {
  uint64_t length = in.doubleWord();
  const uint32_t type = in.doubleWord();
  uint64_t header = 8;
  if (length == 1) {
    length = uint64_t{in.doubleWord()} << 32;
    length |= in.doubleWord();
    header = 16;
  }
  if (length == 0) length = header + in.left();
  if (length < header) throw Error("a box is too short");
  return {type, ByteReader(in.take(static_cast<size_t>(std::min<uint64_t>(length - header, in.left()))))};
}

ColorSpace enumerated(uint32_t number) {
  switch (number) {
    case 12:
      return ColorSpace::cmyk;
    case 16:
      return ColorSpace::rgb;
    case 17:
      return ColorSpace::grey;
    case 18:
      return ColorSpace::ycc;
    default:
      return ColorSpace::unknown;
  }
}

// What an ICC profile's header says.
ColorSpace ofProfile(ByteReader profile) {
  if (profile.left() < 20) return ColorSpace::unknown;
  profile.take(16);
  switch (profile.doubleWord()) {
    case boxType("GRAY"):
      return ColorSpace::grey;
    case boxType("RGB "):
      return ColorSpace::rgb;
    case boxType("CMYK"):
      return ColorSpace::cmyk;
    default:
      return ColorSpace::unknown;
  }
}

ColorSpace readColorSpace(ByteReader in) {
  const uint8_t method = in.byte();
  in.take(2);  // precedence, approximation
  return method == 1 ? enumerated(in.doubleWord()) : ofProfile(in);
}

Palette readPalette(ByteReader in) {
  const size_t entries = in.word();
  Palette palette;
  palette.columns.resize(in.byte());
  if (entries == 0 || entries > kMaxEntries || palette.columns.empty()) throw Error("the palette is damaged");
  for (Palette::Column& column : palette.columns) {
    const uint8_t depth = in.byte();
    column.precision = (depth & 0x7f) + 1;
    column.isSigned = (depth & 0x80) != 0;
    if (column.precision > 16) throw Error("more than 16 bits a sample are not supported");
  }
  for (size_t i = 0; i < entries; ++i) {
    for (Palette::Column& column : palette.columns) {
      const int32_t value = in.number(column.precision > 8);
      const int32_t mask = (1 << column.precision) - 1;
      const int32_t middle = column.isSigned ? 1 << (column.precision - 1) : 0;
      column.values.push_back(static_cast<uint16_t>((value + middle) & mask));
    }
  }
  return palette;
}

void readHeaderBoxes(ByteReader in, Jp2File& file) {
  bool hasColorSpace = false;
  while (in.left() > 0) {
    Box box = nextBox(in);
    switch (box.type) {
      case boxType("colr"):
        if (!hasColorSpace) file.colorSpace = readColorSpace(box.content);  // later ones are to be ignored
        hasColorSpace = true;
        break;
      case boxType("pclr"):
        file.palette = readPalette(box.content);
        break;
      case boxType("cmap"):
        while (box.content.left() >= 4) {
          Channel channel;
          channel.component = box.content.word();
          const bool mapped = box.content.byte() == 1;
          const int32_t column = box.content.byte();
          if (mapped) channel.column = column;
          file.channels.push_back(channel);
        }
        break;
      case boxType("cdef"):
        box.content.word();
        while (box.content.left() >= 6) {
          file.definitions.push_back({box.content.word(), box.content.word(), box.content.word()});
        }
        break;
      default:
        break;
    }
  }
}

int32_t colorCount(ColorSpace space) {
  switch (space) {
    case ColorSpace::grey:
      return 1;
    case ColorSpace::rgb:
    case ColorSpace::ycc:
      return 3;
    case ColorSpace::cmyk:
      return 4;
    case ColorSpace::unknown:
      break;
  }
  return 0;
}

}  // namespace

std::vector<Channel> Jp2File::colors(int32_t components) const {
  std::vector<Channel> all = palette ? channels : std::vector<Channel>{};
  if (all.empty()) {
    for (int32_t c = 0; c < components; ++c) all.push_back({c, -1});
  }
  for (const Channel& channel : all) {
    if (channel.component >= components ||
        (channel.column >= 0 && static_cast<size_t>(channel.column) >= palette->columns.size())) {
      throw Error("the channels are damaged");
    }
  }
  // Opacity is left out, and colours are put in their order.
  std::vector<int32_t> orders(all.size());
  std::iota(orders.begin(), orders.end(), 1);
  for (const Definition& definition : definitions) {
    const size_t channel = static_cast<size_t>(definition.channel);
    if (channel < all.size()) orders[channel] = definition.type == 0 ? definition.association : -1;
  }
  std::vector<std::pair<int32_t, Channel>> ordered;
  for (size_t i = 0; i < all.size(); ++i) {
    if (orders[i] >= 0) ordered.emplace_back(orders[i], all[i]);
  }
  std::stable_sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  if (ordered.empty()) throw Error("there are no colours");
  size_t count = static_cast<size_t>(colorCount(colorSpace));
  if (count == 0 || count > ordered.size()) count = ordered.size() == 2 ? 1 : std::min<size_t>(ordered.size(), 4);
  std::vector<Channel> colors;
  for (size_t i = 0; i < count; ++i) colors.push_back(ordered[i].second);
  return colors;
}

Jp2File readJp2(std::span<const uint8_t> bytes) {
  Jp2File file;
  ByteReader in(bytes);
  if (bytes.size() >= 2 && ByteReader(bytes).word() == marker::SOC) {
    file.codestream = bytes;
    return file;
  }
  if (bytes.size() < 12) throw Error("not a JPEG 2000 file");
  Box signature = nextBox(in);
  if (signature.type != boxType("jP  ") || signature.content.left() < 4 ||
      signature.content.doubleWord() != kSignature) {
    throw Error("not a JPEG 2000 file");
  }
  while (in.left() > 0) {
    Box box = nextBox(in);
    if (box.type == boxType("jp2h")) readHeaderBoxes(box.content, file);
    if (box.type == boxType("jp2c")) {
      file.codestream = box.content.rest();
      return file;
    }
  }
  throw Error("the file has no image data");
}

}  // namespace examples::jpeg2k
