// Reads the boxes of a JP2 file (T.800 Annex I).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace examples::jpeg2k {

enum class ColorSpace : uint8_t { unknown, grey, rgb, ycc, cmyk };

// Samples become colours of some channels by a table.
struct Palette {
  struct Column {
    int32_t precision = 8;
    bool isSigned = false;
    std::vector<uint16_t> values;  // raised to start at 0
  };
  std::vector<Column> columns;
};

// A channel is a component, or what a column of the palette makes of one.
struct Channel {
  int32_t component = 0;
  int32_t column = -1;  // -1 for the component as it is
};

struct Jp2File {
  std::span<const uint8_t> codestream;
  ColorSpace colorSpace = ColorSpace::unknown;
  std::optional<Palette> palette;
  std::vector<Channel> channels;  // empty for the components in their order

  struct Definition {
    int32_t channel = 0;
    int32_t type = 0;         // 0 for a colour, others for opacity
    int32_t association = 0;  // which colour, from 1
  };
  std::vector<Definition> definitions;

  // The channels of the colours, for a codestream of so many components.
  std::vector<Channel> colors(int32_t components) const;
};

// Takes a bare codestream too. Throws Error if the file is neither.
Jp2File readJp2(std::span<const uint8_t> file);

}  // namespace examples::jpeg2k
