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

// How often each symbol occurs.
using SymbolCounts = std::array<int32_t, 256>;

// The best lists for such symbols, and the memory for them.
class OptimalLists {
 public:
  // Throws Error if nothing was counted, or too much.
  explicit OptimalLists(const SymbolCounts& counts);
  HuffmanLists lists() const { return {bits_, std::span(values_.data(), count_)}; }

 private:
  std::array<uint8_t, 16> bits_{};
  std::array<uint8_t, 256> values_{};
  size_t count_ = 0;
};

// T.81 Tables K.3 to K.6: luminance, chrominance.
extern const HuffmanLists kDcHuffman[2];
extern const HuffmanLists kAcHuffman[2];

}  // namespace examples::jpeg
