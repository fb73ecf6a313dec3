#include "texture/bc7_layout.h"

#include <algorithm>
#include <utility>

namespace zorj {
namespace {

constexpr int kSelectedLayout = kBc7Modes, kNoMode = kBc7Modes + 1;

// Word `word` is to have the `count` bits from bit `first` on, their highest one `below` bits below its top.
constexpr void setField(Bc7Fields& fields, int word, int first, int count, int below) {
  fields.bytes[2 * word] = static_cast<uint8_t>(first / 8);
  fields.bytes[2 * word + 1] = static_cast<uint8_t>(first / 8 + 1);
  fields.shift[word] = static_cast<uint16_t>(1 << (16 - below - count - first % 8));
}

constexpr uint64_t bitsFrom(int first) { return ~uint64_t{0} << first; }

constexpr uint64_t bitsFromAnchor(int indexBits, int pixel) { return bitsFrom(indexBits * pixel + indexBits - 1); }

constexpr Bc7Indices makeIndices(int firstBit, int indexBits) {
  Bc7Indices indices{};
  for (int word = 0; word < 16; ++word) {
    setField(indices.fields, word, indexBits * bc7PixelOfWord(word), indexBits, 0);
    indices.weights[word] = kBc7Weights[indexBits][word >> (4 - indexBits)];
  }
  indices.firstAnchor = bitsFromAnchor(indexBits, 0);
  // Not beyond the block's last byte.
  indices.byte = static_cast<uint8_t>(std::min(firstBit / 8, 8));
  indices.shift = static_cast<uint8_t>(firstBit - 8 * indices.byte);
  return indices;
}

constexpr void clear(Bc7Fields& fields) { std::fill_n(fields.bytes, 32, kNoByte); }

// Sets the endpoint fields from bit `at` on; returns where they end.
constexpr int setEndpoints(Bc7Layout& layout, const Bc7Mode& mode, int at) {
  const int endpoints = 2 * mode.subsets;
  const int lowBits = mode.lowBitsPerEndpoint != 0 || mode.lowBitsPerSubset != 0 ? 1 : 0;
  const auto bitsOf = [&](int channel) { return channel < 3 ? mode.colourBits : mode.alphaBits; };
  for (int channel = 0; channel < 4; ++channel) {
    const int bits = bitsOf(channel);
    for (int i = 0; i < endpoints && bits != 0; ++i, at += bits) {
      const int word = 4 * (i / 2) + channel;
      setField(layout.ends[i % 2], word, at, bits, 0);
      layout.endMask[word] = static_cast<uint16_t>(0xFFFF << (16 - bits));
      layout.repeat[word] = static_cast<uint16_t>(1 << (16 - bits - lowBits));
    }
  }
  for (int i = 0; i < endpoints && lowBits != 0; ++i) {
    for (int channel = 0; channel < 4; ++channel) {
      const int bits = bitsOf(channel), word = 4 * (i / 2) + channel;
      if (bits == 0) continue;
      setField(layout.lowBits[i % 2], word, at, 1, bits);
      layout.lowBitMask[word] = static_cast<uint16_t>(1 << (15 - bits));
    }
    if (mode.lowBitsPerEndpoint != 0 || i % 2 == 1) ++at;
  }
  return at;
}

constexpr Bc7Layout makeLayout(int layoutNumber) {
  Bc7Layout layout{};
  for (Bc7Fields* fields : {&layout.ends[0], &layout.ends[1], &layout.lowBits[0], &layout.lowBits[1],
                            &layout.colour.fields, &layout.alpha.fields}) {
    clear(*fields);
  }
  std::fill_n(layout.base, 16, uint16_t{32});
  if (layoutNumber == kNoMode) return layout;

  const int modeNumber = layoutNumber == kSelectedLayout ? 4 : layoutNumber;
  const Bc7Mode& mode = kBc7ModeTable[modeNumber];
  layout.partitionShift = static_cast<uint8_t>(modeNumber + 1);
  layout.partitionMask = static_cast<uint8_t>((1 << mode.partitionBits) - 1);
  layout.firstPartition = mode.subsets == 1 ? 0 : mode.subsets == 2 ? 1 : 65;
  const int firstEndpoint = modeNumber + 1 + mode.partitionBits + mode.rotationBits + mode.indexSelectionBits;
  const int firstIndex = setEndpoints(layout, mode, firstEndpoint);
  if (mode.alphaBits == 0) {
    for (int word = 3; word < 16; word += 4) layout.base[word] = 255 * 64 + 32;
  }
  layout.colour = makeIndices(firstIndex, mode.indexBits);
  layout.alpha = layout.colour;
  if (mode.secondIndexBits != 0) {
    layout.alpha = makeIndices(firstIndex + 16 * mode.indexBits - 1, mode.secondIndexBits);
  }
  if (layoutNumber == kSelectedLayout) std::swap(layout.colour, layout.alpha);
  layout.colourIndexBits = mode.indexBits;
  return layout;
}

constexpr Bc7Partition makePartition(int number) {
  Bc7Partition partition{{}, {kNoAnchor, kNoAnchor}};
  const int bits = number == 0 ? 0 : number < 65 ? 1 : 2;
  const uint32_t subsets = bits == 0 ? 0 : bits == 1 ? kBc7TwoSubsets[number - 1] : kBc7ThreeSubsets[number - 65];
  for (int word = 0; word < 16 && bits != 0; ++word) {
    const int subset = static_cast<int>(subsets >> (bits * bc7PixelOfWord(word))) & ((1 << bits) - 1);
    const int h = word / 8, k = word / 2 % 4, q = word % 2;
    for (int half = 0; half < 2; ++half) {
      partition.ends[4 * h + 2 * q + half] |= static_cast<uint16_t>(2 * subset << 4 * k);
    }
  }
  for (int i = 0; i < 8; ++i) partition.ends[i] |= static_cast<uint16_t>(i % 2 * 0x1111);
  if (bits == 1) partition.anchors[0] = kBc7TwoAnchors[number - 1];
  if (bits == 2) {
    const auto& anchors = kBc7ThreeAnchors[number - 65];
    partition.anchors[0] = std::min(anchors[0], anchors[1]);
    partition.anchors[1] = std::max(anchors[0], anchors[1]);
  }
  return partition;
}

constexpr Bc7FirstByte describeFirstByte(int byte) {
  int mode = 0;
  while (mode < kBc7Modes && (byte >> mode & 1) == 0) ++mode;
  if (mode == kBc7Modes) return {kNoMode, 0};
  const int rotationBits = kBc7ModeTable[mode].rotationBits, afterMode = byte >> (mode + 1);
  const bool selected = mode == 4 && byte >> 7 != 0;
  return {static_cast<uint8_t>(selected ? kSelectedLayout : mode),
          static_cast<uint8_t>(afterMode & ((1 << rotationBits) - 1))};
}

constexpr Bc7Tables makeTables() {
  Bc7Tables tables{};
  for (int i = 0; i < kBc7LayoutCount; ++i) tables.layouts[i] = makeLayout(i);
  for (int i = 0; i < 1 + 64 + 64; ++i) tables.partitions[i] = makePartition(i);
  for (int i = 0; i < 256; ++i) tables.firstBytes[i] = describeFirstByte(i);
  for (int bits = 2; bits <= 4; ++bits) {
    for (int pixel = 0; pixel < kNoAnchor; ++pixel) tables.anchors[bits][pixel] = bitsFromAnchor(bits, pixel);
  }
  for (int rotation = 0; rotation < 4; ++rotation) {
    for (int i = 0; i < 16; ++i) {
      const int channel = i % 4, exchanged = rotation == 0 ? 3 : rotation - 1;
      const int from = channel == 3 ? exchanged : channel == exchanged ? 3 : channel;
      tables.rotations[rotation][i] = static_cast<uint8_t>(i / 4 * 4 + from);
    }
  }
  for (int k = 0; k < 4; ++k) {
    for (int word = 0; word < 8; ++word) {
      tables.spreadWeights[k][2 * word] = static_cast<uint8_t>(2 * (2 * k + word / 4) + word % 4 / 3);
      tables.spreadWeights[k][2 * word + 1] = kNoByte;
    }
  }
  return tables;
}

}  // namespace

constinit const Bc7Tables kBc7Tables = makeTables();

}  // namespace zorj
