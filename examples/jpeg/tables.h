// The tables of T.81 Annex K that the encoder uses, and the zig-zag order.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace examples::jpeg {

// The natural (row-major) index of each zig-zag position.
extern const std::array<uint8_t, 64> kNaturalOrder;

// Step sizes in zig-zag order, T.81 Tables K.1 and K.2: luminance, chrominance.
extern const std::array<uint8_t, 64> kQuantisation[2];

// The number of codes of each length from 1 to 16, and the symbols in order of increasing code.
struct HuffmanLists {
  std::array<uint8_t, 16> bits;
  std::span<const uint8_t> values;
};

// T.81 Tables K.3 to K.6: luminance, chrominance.
extern const HuffmanLists kDcHuffman[2];
extern const HuffmanLists kAcHuffman[2];

}  // namespace examples::jpeg
