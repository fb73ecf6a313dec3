#include "texture/dxt_decode_kernels.h"

#include <hwy/cache_control.h>

#include <cstring>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "texture/dxt_decode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "texture/dxt_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

#if ZORJ_SIMD

inline constexpr uint8_t kNone = 0x80;  // gives a zero byte in TableLookupBytesOr0

// The 8-byte blocks from `src` on, each in both halves of its lane.
template <class D>
HWY_INLINE hn::Vec<D> loadBlocksOf8(D d, const uint8_t* src) {
  if constexpr (hn::MaxLanes(D()) == 16) {
    uint64_t block;
    std::memcpy(&block, src, sizeof block);
    return hn::BitCast(d, hn::Set(hn::Repartition<uint64_t, D>(), block));
  } else {
    alignas(64) static constexpr uint32_t kTwice[] = {0, 1, 0, 1, 2, 3, 2, 3, 4, 5, 4, 5, 6, 7, 6, 7};
    const hn::Repartition<uint32_t, D> d32;
    const hn::Half<D> half;
    const auto blocks = hn::BitCast(d32, hn::ZeroExtendVector(d, hn::LoadU(half, src)));
    return hn::BitCast(d, hn::TableLookupLanes(blocks, hn::SetTableIndices(d32, kTwice)));
  }
}

// RGB words of c0 and c1 of the colour block in the upper half of each lane; the fourth words are 0.
template <class V>
HWY_INLINE auto endColours(V blocks) {
  // Words of c0 or c1, blue's moved up by a byte; what of them is wanted; and how far it then moves down.
  alignas(16) static constexpr uint8_t kSelect[16] = {8,  9,  8,  9,  kNone, 8,  kNone, kNone,
                                                      10, 11, 10, 11, kNone, 10, kNone, kNone};
  alignas(16) static constexpr uint16_t kMask[8] = {0xF800, 0x07E0, 0x1F00, 0, 0xF800, 0x07E0, 0x1F00, 0};
  alignas(16) static constexpr uint16_t kShift[8] = {1 << 8, 1 << 13, 1 << 11, 0, 1 << 8, 1 << 13, 1 << 11, 0};
  const BytesOf<V> d8;
  const WordsOf<V> d16;
  const auto words = asWords(hn::TableLookupBytesOr0(blocks, everyLane(d8, kSelect)));
  return hn::MulHigh(hn::And(words, everyLane(d16, kMask)), everyLane(d16, kShift));
}

template <class V>
HWY_INLINE V wordsBothHalves(V blocks, const uint8_t (&select)[16]) {
  return hn::TableLookupBytes(blocks, everyLane(BytesOf<V>(), select));
}

// The palettes of DXT3 and DXT5: four RGBA colours a lane, alpha 0.
template <class V>
HWY_INLINE V thirdsPalette(V blocks) {
  const auto ends = endColours(blocks);
  return packWords(ends, colourThirds(ends));
}

// The palettes of DXT1: halfway and white instead of the thirds where c0 <= c1; alpha 255.
template <class V>
HWY_INLINE V dxt1Palette(V blocks) {
  alignas(16) static constexpr uint8_t kFirst[16] = {8, 9, 8, 9, 8, 9, 8, 9, 8, 9, 8, 9, 8, 9, 8, 9};
  alignas(16) static constexpr uint8_t kSecond[16] = {10, 11, 10, 11, 10, 11, 10, 11, 10, 11, 10, 11, 10, 11, 10, 11};
  alignas(16) static constexpr uint16_t kWhite[8] = {0, 0, 0, 0, 255, 255, 255, 255};
  const WordsOf<V> d16;
  const auto ends = endColours(blocks);
  const auto halfway = hn::ShiftRight<1>(hn::Add(ends, exchangeHalves(ends)));
  // c0 <= c1 where the saturated difference is 0.
  const auto excess =
      hn::SaturatedSub(asWords(wordsBothHalves(blocks, kFirst)), asWords(wordsBothHalves(blocks, kSecond)));
  const auto inner =
      hn::IfThenElse(hn::Eq(excess, hn::Zero(d16)), hn::Or(halfway, everyLane(d16, kWhite)), colourThirds(ends));
  const auto opaque = asBytes(hn::Set(DwordsOf<V>(), 0xFF000000));
  return hn::Or(packWords(ends, inner), opaque);
}

// Row `kRow` of pixels, out of the palettes by the colour blocks' indices.
template <int kRow, class V>
HWY_INLINE V paletteRow(V palettes, V blocks) {
#if HWY_TARGET <= HWY_AVX2
  // Double word i selects by its lowest two bits: the block's indices moved down to those of pixel i.
  alignas(16) static constexpr uint32_t kShift[4] = {8 * kRow, 8 * kRow + 2, 8 * kRow + 4, 8 * kRow + 6};
  const DwordsOf<V> d32;
  const auto select = hn::Shr(hn::Broadcast<3>(asDwords(blocks)), everyLane(d32, kShift));
  if constexpr (hn::MaxLanes(BytesOf<V>()) == 16) {
    return V{_mm_castps_si128(_mm_permutevar_ps(_mm_castsi128_ps(palettes.raw), select.raw))};
  } else if constexpr (hn::MaxLanes(BytesOf<V>()) == 32) {
    return V{_mm256_castps_si256(_mm256_permutevar_ps(_mm256_castsi256_ps(palettes.raw), select.raw))};
#if HWY_TARGET <= HWY_AVX3
  } else {
    return V{_mm512_castps_si512(_mm512_permutevar_ps(_mm512_castsi512_ps(palettes.raw), select.raw))};
#endif
  }
#else
  // Two words a pixel with the row's byte of indices: moved to bits 10 and 11, they are 4 times the pixel's index in
  // the upper byte.
  constexpr uint8_t kByte = 12 + kRow;
  alignas(16) static constexpr uint8_t kIndices[16] = {kByte, kNone, kByte, kNone, kByte, kNone, kByte, kNone,
                                                       kByte, kNone, kByte, kNone, kByte, kNone, kByte, kNone};
  alignas(16) static constexpr uint16_t kShift[8] = {1 << 10, 1 << 10, 1 << 8, 1 << 8, 1 << 6, 1 << 6, 1 << 4, 1 << 4};
  const WordsOf<V> d16;
  const auto indices = asWords(hn::TableLookupBytesOr0(blocks, everyLane(BytesOf<V>(), kIndices)));
  const auto upper = hn::And(hn::Mul(indices, everyLane(d16, kShift)), hn::Set(d16, 0x0C00));
  const auto channels = asBytes(hn::Set(DwordsOf<V>(), 0x03020100));
  return hn::TableLookupBytes(palettes, hn::Or(asBytes(hn::Or(upper, hn::ShiftRight<8>(upper))), channels));
#endif
}

struct Dxt1 {
  static constexpr size_t blockBytes = 8;

  template <class D>
  static HWY_INLINE hn::Vec<D> load(D d, const uint8_t* src) {
    return loadBlocksOf8(d, src);
  }
  template <class V>
  static HWY_INLINE V palette(V blocks) {
    return dxt1Palette(blocks);
  }
  template <class V>
  static HWY_INLINE V alphas(V blocks) {
    return blocks;
  }
  template <int kRow, class V>
  static HWY_INLINE V withAlphaRow(V pixels, V /*alphas*/) {
    return pixels;
  }
};

// DXT3 and DXT5: alphas, then a colour block whose order of c0 and c1 means nothing.
struct AlphaAndColour {
  static constexpr size_t blockBytes = 16;

  template <class D>
  static HWY_INLINE hn::Vec<D> load(D d, const uint8_t* src) {
    return hn::LoadU(d, src);
  }
  template <class V>
  static HWY_INLINE V palette(V blocks) {
    return thirdsPalette(blocks);
  }
};

struct Dxt3 : AlphaAndColour {
  template <class V>
  static HWY_INLINE V alphas(V blocks) {
    return blocks;
  }
  template <int kRow, class V>
  static HWY_INLINE V withAlphaRow(V pixels, V blocks) {
    constexpr uint8_t kLeft = 2 * kRow, kRight = 2 * kRow + 1;
    alignas(16) static constexpr uint8_t kSelect[16] = {kNone, kNone, kNone, kLeft,  kNone, kNone, kNone, kLeft,
                                                        kNone, kNone, kNone, kRight, kNone, kNone, kNone, kRight};
    // The low nibble of the byte for even pixels, the high one for odd pixels.
    alignas(16) static constexpr uint16_t kShift[8] = {0, 16, 0, 1, 0, 16, 0, 1};
    const auto nibbles = asWords(hn::TableLookupBytesOr0(blocks, everyLane(BytesOf<V>(), kSelect)));
    const auto high = asBytes(hn::Mul(nibbles, everyLane(WordsOf<V>(), kShift)));
    return hn::Or(pixels, hn::And(high, asBytes(hn::Set(DwordsOf<V>(), 0xF0000000))));
  }
};

struct Dxt5 : AlphaAndColour {
  // The alphas of the sixteen pixels.
  template <class V>
  static HWY_INLINE V alphas(V blocks) {
    const auto palette = alphaPalette(blocks);
    return hn::TableLookupBytes(packWords(palette, palette), packWords(indices<0>(blocks), indices<8>(blocks)));
  }
  template <int kRow, class V>
  static HWY_INLINE V withAlphaRow(V pixels, V alphas) {
    constexpr uint8_t kFirst = 4 * kRow;
    alignas(16) static constexpr uint8_t kSelect[16] = {kNone, kNone,      kNone, kFirst,    kNone, kNone,
                                                        kNone, kFirst + 1, kNone, kNone,     kNone, kFirst + 2,
                                                        kNone, kNone,      kNone, kFirst + 3};
    return hn::Or(pixels, hn::TableLookupBytesOr0(alphas, everyLane(BytesOf<V>(), kSelect)));
  }

 private:
  // The weights of a0 and a1 in every entry, and what is added to the sum, for a0 > a1 and for the other order.
  struct Weights {
    alignas(16) int8_t sevenths[16];
    alignas(16) int8_t fifths[16];
    alignas(16) uint16_t fifthsRound[8];
  };
  static constexpr Weights kWeights = {{7, 0, 0, 7, 6, 1, 5, 2, 4, 3, 3, 4, 2, 5, 1, 6},
                                       {5, 0, 0, 5, 4, 1, 3, 2, 2, 3, 1, 4, 0, 0, 0, 0},
                                       {2, 2, 2, 2, 2, 2, 2, 5 * 255}};

  template <class V>
  static HWY_INLINE auto alphaPalette(V blocks) {
    // Of 65536, rounded up: exact for sums up to 7 x 255 + 3.
    constexpr uint16_t kSeventh = 9363, kFifth = 13108;
    constexpr int16_t kDifference = 0xFF << 8 | 1;  // weights 1 and -1
    const BytesOf<V> d8;
    const WordsOf<V> d16;
    const hn::RebindToSigned<WordsOf<V>> i16;
    const auto ends = asBytes(hn::Broadcast<0>(asWords(blocks)));
    const auto weights = [&](const int8_t* bytes)
                             HWY_ATTR { return everyLane(d8, reinterpret_cast<const uint8_t*>(bytes)); };
    const auto sevenths = hn::Add(addByteProducts(ends, weights(kWeights.sevenths)), hn::Set(d16, 3));
    const auto fifths = hn::Add(addByteProducts(ends, weights(kWeights.fifths)), everyLane(d16, kWeights.fifthsRound));
    const auto difference = hn::BitCast(i16, addByteProducts(ends, asBytes(hn::Set(i16, kDifference))));
    const auto descending = hn::RebindMask(d16, hn::Gt(difference, hn::Zero(i16)));
    return hn::IfThenElse(descending, hn::MulHigh(sevenths, hn::Set(d16, kSeventh)),
                          hn::MulHigh(fifths, hn::Set(d16, kFifth)));
  }

  // The indices of pixels kFirst to kFirst + 7 as words: each out of the 16 bits that begin at the byte it begins in.
  template <int kFirst, class V>
  static HWY_INLINE auto indices(V blocks) {
    struct Select {
      alignas(16) uint8_t bytes[16];
      alignas(16) uint16_t shift[8];
    };
    static constexpr Select kSelect = [] {
      Select select{};
      for (int i = 0; i < 8; ++i) {
        const int bit = 16 + 3 * (kFirst + i);
        select.bytes[2 * i] = static_cast<uint8_t>(bit / 8);
        select.bytes[2 * i + 1] = static_cast<uint8_t>(bit / 8 + 1);
        select.shift[i] = static_cast<uint16_t>(1 << (13 - bit % 8));
      }
      return select;
    }();
    const auto windows = asWords(hn::TableLookupBytes(blocks, everyLane(BytesOf<V>(), kSelect.bytes)));
    return hn::ShiftRight<13>(hn::Mul(windows, everyLane(WordsOf<V>(), kSelect.shift)));
  }
};

// Stores past the caches a row of 16 aligned bytes a lane.
template <class V>
HWY_INLINE void stream(V v, uint8_t* to) {
  using D = hn::DFromV<V>;
  if constexpr (hn::MaxLanes(D()) == 16) {
    hn::Stream(v, D(), to);
  } else {
    const hn::Half<D> half;
    stream(hn::LowerHalf(half, v), to);
    stream(hn::UpperHalf(half, v), to + hn::MaxLanes(half));
  }
}

template <Stores kStores, int kRow, class Format, class V>
HWY_INLINE void storeRow(V palettes, V blocks, V alphas, uint8_t* pixels, ptrdiff_t step) {
  const V row = Format::template withAlphaRow<kRow>(paletteRow<kRow>(palettes, blocks), alphas);
  if constexpr (kStores == Stores::streaming) {
    stream(row, pixels + kRow * step);
  } else {
    hn::StoreU(row, hn::DFromV<V>(), pixels + kRow * step);
  }
}

// As many blocks as a vector of D has lanes.
template <class Format, Stores kStores, class D>
HWY_INLINE void decodeVector(D d, const uint8_t* src, uint8_t* pixels, ptrdiff_t step) {
  const auto blocks = Format::load(d, src);
  const auto palettes = Format::palette(blocks);
  const auto alphas = Format::alphas(blocks);
  storeRow<kStores, 0, Format>(palettes, blocks, alphas, pixels, step);
  storeRow<kStores, 1, Format>(palettes, blocks, alphas, pixels, step);
  storeRow<kStores, 2, Format>(palettes, blocks, alphas, pixels, step);
  storeRow<kStores, 3, Format>(palettes, blocks, alphas, pixels, step);
}

template <class Format, Stores kStores>
void decodeBlocks(const uint8_t* src, size_t count, uint8_t* pixels, ptrdiff_t step) {
  const hn::ScalableTag<uint8_t> d;
  constexpr size_t kLanes = hn::MaxLanes(hn::ScalableTag<uint8_t>()) / 16;
  size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    decodeVector<Format, kStores>(d, src + i * Format::blockBytes, pixels + 16 * i, step);
  }
  for (; i < count; ++i) {
    decodeVector<Format, kStores>(hn::FixedTag<uint8_t, 16>(), src + i * Format::blockBytes, pixels + 16 * i, step);
  }
  if constexpr (kStores == Stores::streaming) hwy::FlushStream();
}

#else

// The colours that a colour block's indices select. DXT1 alone has the order of c0 and c1 mean something.
template <bool kOrderMatters>
void colourPalette(const uint8_t* block, uint8_t (&palette)[4][4]) {
  const int ends[2] = {block[0] | block[1] << 8, block[2] | block[3] << 8};
  const bool thirds = !kOrderMatters || ends[0] > ends[1];
  for (int channel = 0; channel < 3; ++channel) {
    constexpr int kShift[3] = {8, 3, 0}, kMask[3] = {0xF8, 0xFC, 0xF8};
    const auto expanded = [&](int c) { return (channel == 2 ? c << 3 : c >> kShift[channel]) & kMask[channel]; };
    const int a = expanded(ends[0]), b = expanded(ends[1]);
    const int colours[4] = {a, b, thirds ? (2 * a + b) / 3 : (a + b) / 2, thirds ? (a + 2 * b) / 3 : 255};
    for (int i = 0; i < 4; ++i) palette[i][channel] = static_cast<uint8_t>(colours[i]);
  }
  for (auto& colour : palette) colour[3] = 255;
}

struct Dxt1 {
  static constexpr size_t blockBytes = 8, colourOffset = 0;
  explicit Dxt1(const uint8_t*) {}
  uint8_t alpha(int) const { return 255; }
};

struct Dxt3 {
  static constexpr size_t blockBytes = 16, colourOffset = 8;
  explicit Dxt3(const uint8_t* block) : block_(block) {}
  uint8_t alpha(int pixel) const { return static_cast<uint8_t>((block_[pixel / 2] >> pixel % 2 * 4 & 15) * 16); }

 private:
  const uint8_t* block_;
};

struct Dxt5 {
  static constexpr size_t blockBytes = 16, colourOffset = 8;
  explicit Dxt5(const uint8_t* block) {
    const int a0 = block[0], a1 = block[1];
    int alphas[8] = {a0, a1, 0, 0, 0, 0, 0, 255};
    if (a0 > a1) {
      for (int i = 2; i < 8; ++i) alphas[i] = ((8 - i) * a0 + (i - 1) * a1 + 3) / 7;
    } else {
      for (int i = 2; i < 6; ++i) alphas[i] = ((6 - i) * a0 + (i - 1) * a1 + 2) / 5;
    }
    for (int i = 0; i < 8; ++i) alphas_[i] = static_cast<uint8_t>(alphas[i]);
    for (int i = 0; i < 6; ++i) indices_ |= uint64_t{block[2 + i]} << 8 * i;
  }
  uint8_t alpha(int pixel) const { return alphas_[indices_ >> 3 * pixel & 7]; }

 private:
  uint8_t alphas_[8];
  uint64_t indices_ = 0;
};

template <class Format, Stores>
void decodeBlocks(const uint8_t* src, size_t count, uint8_t* pixels, ptrdiff_t step) {
  for (size_t i = 0; i < count; ++i, src += Format::blockBytes, pixels += 16) {
    const Format alphas(src);
    const uint8_t* const colours = src + Format::colourOffset;
    uint8_t palette[4][4];
    colourPalette<Format::colourOffset == 0>(colours, palette);
    for (int pixel = 0; pixel < 16; ++pixel) {
      uint8_t* const out = pixels + pixel / 4 * step + pixel % 4 * 4;
      std::memcpy(out, palette[colours[4 + pixel / 4] >> pixel % 4 * 2 & 3], 4);
      if constexpr (Format::colourOffset != 0) out[3] = alphas.alpha(pixel);
    }
  }
}

#endif

template <class Format>
constexpr BlockDecoder decoder() {
  return {Format::blockBytes, &decodeBlocks<Format, Stores::cached>, &decodeBlocks<Format, Stores::streaming>};
}

constexpr DxtDecodeKernels kernels = {decoder<Dxt1>(), decoder<Dxt3>(), decoder<Dxt5>()};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DxtDecodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DxtDecodeKernels& dxtDecodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
