#include "texture/bc7_decode_kernels.h"

#include <algorithm>
#include <bit>

#include "core/isa.h"
#include "core/unaligned.h"
#include "texture/bc7_layout.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "texture/bc7_decode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "texture/dxt_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

#if ZORJ_SIMD

// The sixteen words of a Bc7Layout, in one vector or two.
using WordTag = hn::CappedTag<uint16_t, 16>;
using ByteTag = hn::Repartition<uint8_t, WordTag>;
using Words = hn::Vec<WordTag>;
using Bytes = hn::Vec<ByteTag>;
inline constexpr size_t kLanes = hn::MaxLanes(WordTag());
inline constexpr size_t kParts = 16 / kLanes;

HWY_INLINE Words takeFields(Bytes block, const Bc7Fields& fields, size_t part) {
  const Bytes bytes = hn::Load(ByteTag(), fields.bytes + 2 * kLanes * part);
  return hn::Mul(asWords(hn::TableLookupBytesOr0(block, bytes)), hn::Load(WordTag(), fields.shift + kLanes * part));
}

// Endpoints (0: the first ones of the subsets, 1: the second ones) in 8 bits.
HWY_INLINE Words takeEnds(Bytes block, const Bc7Layout& layout, int end, size_t part) {
  const WordTag d16;
  const Words high = hn::And(takeFields(block, layout.ends[end], part), hn::Load(d16, layout.endMask + kLanes * part));
  const Words low =
      hn::And(takeFields(block, layout.lowBits[end], part), hn::Load(d16, layout.lowBitMask + kLanes * part));
  const Words bits = hn::Or(high, low);
  return hn::ShiftRight<8>(hn::Or(bits, hn::MulHigh(bits, hn::Load(d16, layout.repeat + kLanes * part))));
}

// RGBA words of the subsets.
class SubsetColours {
 public:
#if HWY_TARGET <= HWY_AVX2
  HWY_INLINE void set(Words words, size_t /*part*/) { words_ = words; }
  // Those of the pixels' subsets in vector k.
  HWY_INLINE Words ofPixels(const Bc7Partition& partition, int k, size_t /*part*/) const {
    const __m256i ends = _mm256_cvtepu16_epi32(_mm_load_si128(reinterpret_cast<const __m128i*>(partition.ends)));
    return Words{_mm256_permutevar8x32_epi32(words_.raw, _mm256_srli_epi32(ends, 4 * k))};
  }

 private:
  Words words_;
#else
  HWY_INLINE void set(Words words, size_t part) { hn::Store(words, WordTag(), words_ + kLanes * part); }
  HWY_INLINE Words ofPixels(const Bc7Partition& partition, int k, size_t part) const {
    const hn::Half<WordTag> half;
    const auto colour = [&](size_t q) HWY_ATTR {
      const int doubleWord = partition.ends[4 * part + 2 * q] >> 4 * k & 6;
      return hn::Load(half, words_ + 2 * doubleWord);
    };
    return hn::Combine(WordTag(), colour(1), colour(0));
  }

 private:
  alignas(16) uint16_t words_[16];
#endif
};

// The indices of all pixels, 0 in the place of the bit that those of anchors lack.
HWY_INLINE uint64_t takeIndices(const uint8_t* block, const Bc7Indices& indices, const uint64_t (&anchors)[2]) {
  uint64_t bits = loadUnaligned(reinterpret_cast<const uint64_t*>(block + indices.byte)) >> indices.shift;
  bits += bits & indices.firstAnchor;
  bits += bits & anchors[0];
  bits += bits & anchors[1];
  return bits;
}

// The weights of the pixels, in words.
HWY_INLINE Words takeWeights(uint64_t bits, const Bc7Indices& indices, size_t part) {
  const Bytes everywhere = hn::BitCast(ByteTag(), hn::Set(hn::Repartition<uint64_t, WordTag>(), bits));
  const Words index = hn::ShiftRight<12>(takeFields(everywhere, indices.fields, part));
  // The weight of index 0, which the upper bytes of the words have, is 0.
  return asWords(hn::TableLookupBytes(everyLane(ByteTag(), indices.weights), asBytes(index)));
}

HWY_INLINE void storeRows(Bytes rows, uint8_t* pixels, ptrdiff_t step) {
  const hn::FixedTag<uint8_t, 16> d;
#if HWY_TARGET <= HWY_AVX2
  hn::StoreU(hn::LowerHalf(d, rows), d, pixels);
  hn::StoreU(hn::UpperHalf(d, rows), d, pixels + step);
#else
  (void)step;
  hn::StoreU(rows, d, pixels);
#endif
}

HWY_INLINE void decodeBlock(const uint8_t* src, uint8_t* pixels, ptrdiff_t step) {
  const WordTag d16;
  const Bc7FirstByte first = kBc7Tables.firstBytes[src[0]];
  const Bc7Layout& layout = kBc7Tables.layouts[first.layout];
  const unsigned start = loadUnaligned(reinterpret_cast<const uint16_t*>(src));
  const Bc7Partition& partition =
      kBc7Tables.partitions[layout.firstPartition + (start >> layout.partitionShift & layout.partitionMask)];
  const auto& anchorsOfBits = kBc7Tables.anchors[layout.colourIndexBits];
  const uint64_t anchors[2] = {anchorsOfBits[partition.anchors[0]], anchorsOfBits[partition.anchors[1]]};
  const uint64_t colourBits = takeIndices(src, layout.colour, anchors);
  const uint64_t alphaBits = takeIndices(src, layout.alpha, anchors);

  const Bytes block = everyLane(ByteTag(), src);
  SubsetColours base, difference;
  for (size_t part = 0; part < kParts; ++part) {
    const Words ends0 = takeEnds(block, layout, 0, part), ends1 = takeEnds(block, layout, 1, part);
    base.set(hn::Add(hn::ShiftLeft<6>(ends0), hn::Load(d16, layout.base + kLanes * part)), part);
    difference.set(hn::Sub(ends1, ends0), part);
  }
  const Bytes rotation = everyLane(ByteTag(), kBc7Tables.rotations[first.rotation]);
  for (size_t part = 0; part < kParts; ++part) {
    const Words colourWeights = takeWeights(colourBits, layout.colour, part);
    const Words alphaWeights = takeWeights(alphaBits, layout.alpha, part);
    const Bytes weights = asBytes(hn::Or(colourWeights, hn::ShiftLeft<8>(alphaWeights)));
    const auto pixelPairs = [&](int k) HWY_ATTR {
      const Bytes spread = everyLane(ByteTag(), kBc7Tables.spreadWeights[k]);
      const Words weight = asWords(hn::TableLookupBytesOr0(weights, spread));
      const Words product = hn::Mul(difference.ofPixels(partition, k, part), weight);
      return hn::ShiftRight<6>(hn::Add(base.ofPixels(partition, k, part), product));
    };
    uint8_t* const row = pixels + static_cast<ptrdiff_t>(part) * step;
    storeRows(hn::TableLookupBytes(packWords(pixelPairs(0), pixelPairs(1)), rotation), row, step);
    storeRows(hn::TableLookupBytes(packWords(pixelPairs(2), pixelPairs(3)), rotation), row + 2 * step, step);
  }
}

#else

// Reads fields of a block from its lowest bit on.
class BlockBits {
 public:
  explicit BlockBits(const uint8_t* block)
      : low_(loadUnaligned(reinterpret_cast<const uint64_t*>(block))),
        high_(loadUnaligned(reinterpret_cast<const uint64_t*>(block + 8))) {}
  // At most 8 bits.
  int take(int count) {
    const int bits = static_cast<int>(low_ & ((1u << count) - 1));
    low_ = low_ >> count | high_ << 1 << (63 - count);
    high_ >>= count;
    return bits;
  }

 private:
  uint64_t low_, high_;
};

struct Endpoints {
  int of[3][2][4];  // subset, end, channel

  Endpoints(BlockBits& bits, const Bc7Mode& mode) : of{} {
    int widths[4];
    for (int channel = 0; channel < 4; ++channel) {
      widths[channel] = channel < 3 ? mode.colourBits : mode.alphaBits;
      for (int i = 0; i < 2 * mode.subsets; ++i) of[i / 2][i % 2][channel] = bits.take(widths[channel]);
    }
    if (mode.lowBitsPerEndpoint != 0 || mode.lowBitsPerSubset != 0) {
      int lowBit = 0;
      for (int i = 0; i < 2 * mode.subsets; ++i) {
        if (mode.lowBitsPerEndpoint != 0 || i % 2 == 0) lowBit = bits.take(1);
        for (int& value : of[i / 2][i % 2]) value = 2 * value + lowBit;
      }
      for (int& width : widths) ++width;
    }
    for (int i = 0; i < 2 * mode.subsets; ++i) {
      for (int channel = 0; channel < 4; ++channel) {
        int& value = of[i / 2][i % 2][channel];
        const int high = value << (8 - widths[channel]);
        value = channel == 3 && mode.alphaBits == 0 ? 255 : high | high >> widths[channel];
      }
    }
  }
};

void decodeBlock(const uint8_t* src, uint8_t* pixels, ptrdiff_t step) {
  const int modeNumber = std::countr_zero(src[0]);
  if (modeNumber == kBc7Modes) {
    for (int y = 0; y < 4; ++y) std::fill_n(pixels + y * step, 16, uint8_t{0});
    return;
  }
  const Bc7Mode& mode = kBc7ModeTable[modeNumber];
  BlockBits bits(src);
  bits.take(modeNumber + 1);
  const int partition = bits.take(mode.partitionBits), rotation = bits.take(mode.rotationBits);
  const bool exchanged = bits.take(mode.indexSelectionBits) != 0;
  const Endpoints endpoints(bits, mode);

  int weights[2][16];  // of colour, of alpha
  int subsets[16] = {};
  for (int pixel = 0; pixel < 16; ++pixel) {
    bool anchor = pixel == 0;
    if (mode.subsets == 2) {
      subsets[pixel] = kBc7TwoSubsets[partition] >> pixel & 1;
      anchor |= pixel == kBc7TwoAnchors[partition];
    } else if (mode.subsets == 3) {
      subsets[pixel] = static_cast<int>(kBc7ThreeSubsets[partition] >> 2 * pixel & 3);
      anchor |= pixel == kBc7ThreeAnchors[partition][0] || pixel == kBc7ThreeAnchors[partition][1];
    }
    const int weight = kBc7Weights[mode.indexBits][bits.take(mode.indexBits - anchor)];
    weights[0][pixel] = weights[1][pixel] = weight;
  }
  for (int pixel = 0; pixel < 16 && mode.secondIndexBits != 0; ++pixel) {
    weights[!exchanged][pixel] = kBc7Weights[mode.secondIndexBits][bits.take(mode.secondIndexBits - (pixel == 0))];
  }
  for (int pixel = 0; pixel < 16; ++pixel) {
    const auto& ends = endpoints.of[subsets[pixel]];
    uint8_t* const out = pixels + pixel / 4 * step + pixel % 4 * 4;
    for (int channel = 0; channel < 4; ++channel) {
      const int weight = weights[channel == 3][pixel];
      out[channel] = static_cast<uint8_t>((ends[0][channel] * (64 - weight) + ends[1][channel] * weight + 32) >> 6);
    }
    if (rotation != 0) std::swap(out[3], out[rotation - 1]);
  }
}

#endif

void decodeBlocks(const uint8_t* src, size_t count, uint8_t* pixels, ptrdiff_t step) {
  for (size_t i = 0; i < count; ++i) decodeBlock(src + 16 * i, pixels + 16 * i, step);
}

constexpr BlockDecoder kernels = {16, &decodeBlocks, &decodeBlocks};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const BlockDecoder> perIsa{ZORJ_PER_ISA(kernels)};

const BlockDecoder& bc7Decoder() { return *perIsa; }

}  // namespace zorj
#endif
