// Decodes code-blocks to the coefficients of their subbands.
#pragma once

#include <cstdint>
#include <vector>

#include "jpeg2k/component_decoder.h"
#include "jpeg2k/packet_reader.h"

namespace examples::jpeg2k {

// What the blocks of a subband have in common.
struct BandCoding {
  SubbandKind kind = SubbandLL;
  uint32_t flags = 0;    // CodeBlockStyle
  int32_t planes = 0;    // of magnitudes, with those of the region of interest
  int32_t roiShift = 0;  //
  float step = 1;        // of the quantization
};

BandCoding bandCoding(const ComponentCoding& coding, const Subband& band, int32_t precision);

// What a thread needs for one block after the other.
class BlockDecoder {
 public:
  BlockDecoder();

  // Writes as much of a block as lies in the window. False if its data are damaged; what is before the damage is
  // written. T is int16_t or int32_t for reversible coding, float for irreversible coding.
  template <class T>
  bool decode(const PacketReader& packets, const PacketBlock& block, const Rect& rect, const BandCoding& coding,
              const Window<T>& window);

 private:
  bool decodeMagnitudes(const PacketReader& packets, const PacketBlock& block, const Rect& rect,
                        const BandCoding& coding);

  std::vector<int32_t> samples_;
  std::vector<uint8_t> state_;
  std::vector<uint8_t> joined_;
  std::vector<int32_t> lengths_;
};

}  // namespace examples::jpeg2k
