#include "texture/dxt_encode_kernels.h"

#include <algorithm>

#include "core/isa.h"
#include "texture/dxt_encode_plain.h"
#include "texture/dxt_tables.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "texture/dxt_encode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "texture/dxt_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

#if ZORJ_SIMD

inline constexpr uint8_t kNone = 0x80;  // gives a zero byte in TableLookupBytesOr0

template <class V>
HWY_INLINE V shuffle(V bytes, const uint8_t (&select)[16]) {
  return hn::TableLookupBytesOr0(bytes, everyLane(hn::DFromV<V>(), select));
}

// Byte kByte of every lane, all over the lane.
template <int kByte, class V>
HWY_INLINE V broadcast(V bytes) {
  return hn::TableLookupBytes(bytes, everyLane(hn::DFromV<V>(), kBroadcastByte[kByte]));
}

// A block a lane: the channels of its sixteen pixels, and the least and the largest value of each channel in the first
// bytes of the four double words.
template <class V>
struct Channels {
  V red, green, blue, alpha;
  V least, largest;
};

// Of rows whose lanes hold four values of each channel, channel by channel.
template <class V>
HWY_INLINE Channels<V> gatherChannels(V row0, V row1, V row2, V row3) {
  const DwordsOf<V> d32;
  const hn::Repartition<uint64_t, hn::DFromV<V>> d64;
  const auto spread = [&](V v, auto op) HWY_ATTR {
    v = op(v, asBytes(hn::ShiftRight<16>(asDwords(v))));
    return op(v, asBytes(hn::ShiftRight<8>(asDwords(v))));
  };
  const auto min = [](V a, V b) HWY_ATTR { return hn::Min(a, b); };
  const auto max = [](V a, V b) HWY_ATTR { return hn::Max(a, b); };
  const auto low01 = hn::BitCast(d64, hn::InterleaveLower(d32, asDwords(row0), asDwords(row1)));
  const auto low23 = hn::BitCast(d64, hn::InterleaveLower(d32, asDwords(row2), asDwords(row3)));
  const auto high01 = hn::BitCast(d64, hn::InterleaveUpper(d32, asDwords(row0), asDwords(row1)));
  const auto high23 = hn::BitCast(d64, hn::InterleaveUpper(d32, asDwords(row2), asDwords(row3)));
  return {asBytes(hn::InterleaveLower(d64, low01, low23)),    asBytes(hn::InterleaveUpper(d64, low01, low23)),
          asBytes(hn::InterleaveLower(d64, high01, high23)),  asBytes(hn::InterleaveUpper(d64, high01, high23)),
          spread(min(min(row0, row1), min(row2, row3)), min), spread(max(max(row0, row1), max(row2, row3)), max)};
}

struct RgbaPixels {
  static constexpr size_t pixelBytes = 4;

  template <class D>
  static HWY_INLINE Channels<hn::Vec<D>> load(D d, const uint8_t* pixels, ptrdiff_t step) {
    alignas(16) static constexpr uint8_t kChannels[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    const auto row = [&](int y) HWY_ATTR { return shuffle(hn::LoadU(d, pixels + y * step), kChannels); };
    return gatherChannels(row(0), row(1), row(2), row(3));
  }
};

// Y, Co, Cg as alpha, red and green.
struct YCoCgPixels {
  static constexpr size_t pixelBytes = 3;

  template <class D>
  static HWY_INLINE Channels<hn::Vec<D>> load(D d, const uint8_t* pixels, ptrdiff_t step) {
    alignas(16) static constexpr uint8_t kChannels[16] = {1,     4,     7,     10,    2, 5, 8, 11,
                                                          kNone, kNone, kNone, kNone, 0, 3, 6, 9};
    const auto row = [&](int y) HWY_ATTR { return shuffle(loadRow(d, pixels + y * step), kChannels); };
    return gatherChannels(row(0), row(1), row(2), row(3));
  }

 private:
  // Four pixels a lane; nothing is read beyond them.
  template <class D>
  static HWY_INLINE hn::Vec<D> loadRow(D d, const uint8_t* row) {
    if constexpr (hn::MaxLanes(D()) == 16) {
      const hn::FixedTag<uint8_t, 8> d8;
      return hn::Combine(d, hn::ZeroExtendVector(d8, hn::LoadU(hn::FixedTag<uint8_t, 4>(), row + 8)),
                         hn::LoadU(d8, row));
    } else {
      const hn::Half<D> half;
      return hn::Combine(d, loadRow(half, row + 12 * (hn::MaxLanes(half) / 16)), loadRow(half, row));
    }
  }
};

// RGBA words of the high corner of the box, then of the low one.
template <class V>
HWY_INLINE auto boxCorners(V least, V largest) {
  alignas(16) static constexpr uint8_t kHigh[16] = {0,     kNone, 4,     kNone, 8,     kNone, 12,    kNone,
                                                    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone};
  alignas(16) static constexpr uint8_t kLow[16] = {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
                                                   0,     kNone, 4,     kNone, 8,     kNone, 12,    kNone};
  const auto range = hn::ShiftRight<4>(asWords(hn::Sub(largest, least)));
  const auto inset = hn::And(asBytes(range), hn::Set(hn::DFromV<V>(), uint8_t{0x0F}));
  return asWords(
      hn::Or(shuffle(hn::SaturatedSub(largest, inset), kHigh), shuffle(hn::SaturatedAdd(least, inset), kLow)));
}

// c0 and c1 of a colour block in the upper half of each lane, of the RGBA words with no more than the 5, 6 and 5 high
// bits.
template <class V, class W>
HWY_INLINE V packEnds(W ends) {
  alignas(16) static constexpr uint16_t kPosition[8] = {1 << 11, 1 << 6, 1, 0, 1 << 11, 1 << 6, 1, 0};
  alignas(16) static constexpr uint8_t kColours[16] = {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
                                                       0,     1,     8,     9,     kNone, kNone, kNone, kNone};
  const hn::Repartition<uint64_t, hn::DFromV<V>> d64;
  const auto redGreen = hn::BitCast(d64, addWordProducts(ends, everyLane(WordsOf<V>(), kPosition)));
  const auto colours = hn::ShiftRight<3>(hn::Add(redGreen, hn::ShiftRight<32>(redGreen)));
  return shuffle(asBytes(colours), kColours);
}

// The indices of a colour block in the upper half of each lane, of a byte a pixel.
template <class V>
HWY_INLINE V packIndices(V indices) {
  alignas(16) static constexpr uint8_t kIndices[16] = {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
                                                       kNone, kNone, kNone, kNone, 0,     4,     8,     12};
  const auto pairs = addByteProducts(indices, asBytes(hn::Set(WordsOf<V>(), 1 | 4 << 8)));
  const auto rows = addWordProducts(pairs, asWords(hn::Set(DwordsOf<V>(), 1 | 16 << 16)));
  return shuffle(asBytes(rows), kIndices);
}

// Blocks whose colours are chosen and whose colour indices are not: the blocks without these, the channels of the
// pixels, the four colours, and half the distances between those (the first five words: e2 to e0, e3 to e2 and e3 to e0
// rounded up, e1 to e2 and e1 to e3 rounded down). Greens are counted from 255 down where c0 and c1 have exchanged
// theirs.
template <class V>
struct ColouredBlocks {
  V blocks;
  V red, green, blue;
  V palette;
  V half;
};

// `corners` are the colours to be encoded, `blocks` the rest of the blocks; where greens are exchanged, `flip` has all
// bits of the lane set.
template <class V, class W>
HWY_INLINE ColouredBlocks<V> chooseColours(const Channels<V>& channels, W corners, V flip, V blocks) {
  alignas(16) static constexpr uint16_t kKept[8] = {0xF8, 0xFC, 0xF8, 0, 0xF8, 0xFC, 0xF8, 0};
  alignas(16) static constexpr uint16_t kRepeat[8] = {1 << 11, 1 << 10, 1 << 11, 0, 1 << 11, 1 << 10, 1 << 11, 0};
  alignas(16) static constexpr uint8_t kRgb[16] = {1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0};
  alignas(16) static constexpr uint8_t kFrom[16] = {0,  1,  8,     9,     0,     1,     8,     9,
                                                    12, 13, kNone, kNone, kNone, kNone, kNone, kNone};
  alignas(16) static constexpr uint8_t kTo[16] = {8, 9, 12,    13,    12,    13,    4,     5,
                                                  4, 5, kNone, kNone, kNone, kNone, kNone, kNone};
  alignas(16) static constexpr uint16_t kRound[8] = {1, 1, 1, 0, 0};
  const WordsOf<V> d16;
  const auto kept = hn::And(corners, everyLane(d16, kKept));
  const auto ends = hn::Or(kept, hn::MulHigh(kept, everyLane(d16, kRepeat)));
  const V greens = asBytes(hn::Set(DwordsOf<V>(), 0x0000FF00));
  const V palette = hn::Xor(packWords(ends, colourThirds(ends)), hn::And(flip, greens));
  const auto sums = asBytes(addWordProducts(addByteProducts(palette, everyLane(BytesOf<V>(), kRgb)), hn::Set(d16, 1)));
  const auto lengths = hn::Sub(asWords(shuffle(sums, kFrom)), asWords(shuffle(sums, kTo)));
  return {hn::Or(blocks, packEnds<V>(kept)),
          channels.red,
          hn::Xor(channels.green, flip),
          channels.blue,
          palette,
          asBytes(hn::ShiftRight<1>(hn::Add(lengths, everyLane(d16, kRound))))};
}

// The sums over the channels of min(x, e) modulo 256, for colour kColour of the palettes.
template <int kColour, class V>
HWY_INLINE V sumBelow(const ColouredBlocks<V>& b) {
  return hn::Add(hn::Add(hn::Min(b.red, broadcast<4 * kColour>(b.palette)),
                         hn::Min(b.green, broadcast<4 * kColour + 1>(b.palette))),
                 hn::Min(b.blue, broadcast<4 * kColour + 2>(b.palette)));
}

// The blocks with their colour indices. From e1 over e3 and e2 to e0 no channel decreases, so the part of a channel x
// that lies between two neighbours of these is min(x, upper) - min(x, lower), and the difference of two d, where x
// passes from one side to the other, is the length of that stretch less twice the part below x. The sums of such parts
// over the channels fit in bytes: thanks to the inset, a stretch is at most 80 long.
template <class V>
HWY_INLINE V withIndices(const ColouredBlocks<V>& b) {
  const V below3 = sumBelow<3>(b), below2 = sumBelow<2>(b);
  const V part13 = hn::Sub(below3, sumBelow<1>(b)), part32 = hn::Sub(below2, below3),
          part20 = hn::Sub(sumBelow<0>(b), below2);
  const V part12 = hn::SaturatedAdd(part13, part32), part30 = hn::SaturatedAdd(part32, part20);
  // Each is not 0 where the one distance is above the other.
  const V d0Above2 = hn::SaturatedSub(broadcast<0>(b.half), part20);
  const V d2Above3 = hn::SaturatedSub(broadcast<2>(b.half), part32);
  const V d0Above3 = hn::SaturatedSub(broadcast<4>(b.half), part30);
  const V d1Above2 = hn::SaturatedSub(part12, broadcast<6>(b.half));
  const V d1Above3 = hn::SaturatedSub(part13, broadcast<8>(b.half));
  const V one = hn::Set(BytesOf<V>(), uint8_t{1});
  const V lower = hn::Min(hn::Min(d2Above3, d0Above3), one);
  const V upper = hn::Min(hn::Or(hn::Min(d1Above2, d0Above2), hn::Min(d0Above3, d1Above3)), one);
  return hn::Or(b.blocks, packIndices(hn::Add(lower, hn::Add(upper, upper))));
}

// The DXT3 alpha block in the lower half of each lane.
template <class V>
HWY_INLINE V encodeExplicitAlphas(V alphas) {
  alignas(16) static constexpr uint8_t kLowBytes[16] = {0,     2,     4,     6,     8,     10,    12,    14,
                                                        kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone};
  const V nibbles = hn::And(asBytes(hn::ShiftRight<4>(asWords(alphas))), hn::Set(BytesOf<V>(), uint8_t{0x0F}));
  return shuffle(asBytes(addByteProducts(nibbles, asBytes(hn::Set(WordsOf<V>(), 1 | 16 << 8)))), kLowBytes);
}

// The DXT5 alpha block in the lower half of each lane.
template <class V, class W>
HWY_INLINE V encodeInterpolatedAlphas(V alphas, W corners) {
  alignas(16) static constexpr uint8_t kEnds[16] = {6, 14, 6, 14, 6, 14, 6, 14, 6, 14, 6, 14, 6, 14, 6, 14};
  alignas(16) static constexpr uint8_t kWeights[16] = {0, 7, 1, 6, 2, 5, 3, 4, 4, 3, 5, 2, 6, 1, 0, 0};
  // By the number of thresholds an alpha does not exceed.
  alignas(16) static constexpr uint8_t kIndex[16] = {0, 2, 3, 4, 5, 6, 7, 1};
  alignas(16) static constexpr uint8_t kFirst[16] = {0,     1,     kNone, kNone, kNone, kNone, kNone, kNone,
                                                     kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone};
  alignas(16) static constexpr uint8_t kPacked[16] = {kNone, kNone, 0,     1,     2,     8,     9,     10,
                                                      kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone};
  constexpr uint16_t kSeventh = 9363, kFourteenth = 4682;  // of 65536, rounded up: exact for the sums here
  constexpr uint16_t kDifference = 0xFF << 8 | 1;          // weights 1 and -1
  const BytesOf<V> d8;
  const WordsOf<V> d16;
  const hn::Repartition<uint64_t, hn::DFromV<V>> d64;
  const V ends = shuffle(asBytes(corners), kEnds);
  const auto bias = hn::MulHigh(addByteProducts(ends, asBytes(hn::Set(d16, kDifference))), hn::Set(d16, kFourteenth));
  const auto sevenths = hn::MulHigh(addByteProducts(ends, everyLane(d8, kWeights)), hn::Set(d16, kSeventh));
  const V thresholds = asBytes(hn::Add(sevenths, bias));
  const auto count = [&](V counted, V threshold) HWY_ATTR {
    return hn::Sub(counted, hn::VecFromMask(d8, hn::Eq(hn::Min(alphas, threshold), alphas)));
  };
  V counted = count(hn::Zero(d8), broadcast<0>(thresholds));
  counted = count(counted, broadcast<2>(thresholds));
  counted = count(counted, broadcast<4>(thresholds));
  counted = count(counted, broadcast<6>(thresholds));
  counted = count(counted, broadcast<8>(thresholds));
  counted = count(counted, broadcast<10>(thresholds));
  counted = count(counted, broadcast<12>(thresholds));
  const V indices = hn::TableLookupBytes(everyLane(d8, kIndex), counted);
  const auto pairs = addByteProducts(indices, asBytes(hn::Set(d16, 1 | 8 << 8)));
  const auto rows = hn::BitCast(d64, addWordProducts(pairs, asWords(hn::Set(DwordsOf<V>(), 1 | 64 << 16))));
  const auto twoRows = asBytes(hn::Or(rows, hn::ShiftRight<20>(rows)));
  return hn::Or(shuffle(ends, kFirst), shuffle(twoRows, kPacked));
}

// The sign of the sum over each lane of products of red and green, counted from the middle of their boxes: all bits of
// the lane are set where it is negative.
template <class V>
HWY_INLINE V negativeCovariance(V red, V green, V middle) {
  const hn::Repartition<int16_t, hn::DFromV<V>> d16;
  const hn::Repartition<int32_t, hn::DFromV<V>> d32;
  const auto zero = hn::Zero(hn::DFromV<V>());
  red = hn::Sub(red, broadcast<0>(middle));
  green = hn::Sub(green, broadcast<4>(middle));
  const auto lower = [&](V v) HWY_ATTR { return hn::ShiftRight<8>(hn::BitCast(d16, hn::InterleaveLower(zero, v))); };
  const auto upper = [&](V v) HWY_ATTR {
    return hn::ShiftRight<8>(hn::BitCast(d16, hn::InterleaveUpper(hn::DFromV<V>(), zero, v)));
  };
  auto sums = hn::BitCast(d32, hn::Add(addWordProducts(asWords(lower(red)), asWords(lower(green))),
                                       addWordProducts(asWords(upper(red)), asWords(upper(green)))));
  sums = hn::Add(sums, hn::Shuffle1032(sums));
  sums = hn::Add(sums, hn::Shuffle2301(sums));
  return asBytes(hn::ShiftRight<31>(sums));
}

struct Dxt1 {
  using Pixels = RgbaPixels;
  static constexpr size_t blockBytes = 8;

  template <class V>
  static HWY_INLINE ColouredBlocks<V> colour(const Channels<V>& channels) {
    const V none = hn::Zero(BytesOf<V>());
    return chooseColours(channels, boxCorners(channels.least, channels.largest), none, none);
  }
};

struct Dxt3 {
  using Pixels = RgbaPixels;
  static constexpr size_t blockBytes = 16;

  template <class V>
  static HWY_INLINE ColouredBlocks<V> colour(const Channels<V>& channels) {
    return chooseColours(channels, boxCorners(channels.least, channels.largest), hn::Zero(BytesOf<V>()),
                         encodeExplicitAlphas(channels.alpha));
  }
};

struct Dxt5 {
  using Pixels = RgbaPixels;
  static constexpr size_t blockBytes = 16;

  template <class V>
  static HWY_INLINE ColouredBlocks<V> colour(const Channels<V>& channels) {
    const auto corners = boxCorners(channels.least, channels.largest);
    return chooseColours(channels, corners, hn::Zero(BytesOf<V>()), encodeInterpolatedAlphas(channels.alpha, corners));
  }
};

struct Dxt5YCoCg {
  using Pixels = YCoCgPixels;
  static constexpr size_t blockBytes = 16;

  template <class V>
  static HWY_INLINE ColouredBlocks<V> colour(Channels<V> channels) {
    const hn::DFromV<V> d8;
    const hn::RebindToSigned<hn::DFromV<V>> i8;
    const DwordsOf<V> d32;
    const WordsOf<V> d16;
    const V middle = hn::Set(d8, uint8_t{128});
    const auto magnitude = [&](V v) HWY_ATTR { return hn::BitCast(d8, hn::Abs(hn::BitCast(i8, hn::Xor(v, middle)))); };
    const V magnitudes = hn::Max(magnitude(channels.least), magnitude(channels.largest));
    const V m = hn::Max(broadcast<0>(magnitudes), broadcast<4>(magnitudes));
    const auto upTo = [&](uint8_t limit)
                          HWY_ATTR { return hn::VecFromMask(d8, hn::Eq(hn::Min(m, hn::Set(d8, limit)), m)); };
    const V doubled = upTo(63), redoubled = upTo(31);
    const auto scale = [&](V v, V where) HWY_ATTR {
      v = hn::Xor(v, middle);
      v = hn::Add(v, hn::And(v, hn::And(doubled, where)));
      v = hn::Add(v, hn::And(v, hn::And(redoubled, where)));
      return hn::Xor(v, middle);
    };
    const V everywhere = hn::Set(d8, uint8_t{0xFF});
    alignas(16) static constexpr uint32_t kChroma[4] = {~0u, ~0u, 0, 0};
    const V chroma = asBytes(everyLane(d32, kChroma));
    channels.red = scale(channels.red, everywhere);
    channels.green = scale(channels.green, everywhere);
    channels.least = scale(channels.least, chroma);
    channels.largest = scale(channels.largest, chroma);
    const V flip = negativeCovariance(channels.red, channels.green, hn::AverageRound(channels.least, channels.largest));

    // Blue is the same in all pixels and colours: it makes no difference to the indices and is 0 there.
    alignas(16) static constexpr uint16_t kGreens[8] = {0, 0xFF, 0, 0, 0, 0xFF, 0, 0};
    alignas(16) static constexpr uint16_t kDoubledBlue[8] = {0, 0, 8, 0, 0, 0, 8, 0};
    alignas(16) static constexpr uint16_t kRedoubledBlue[8] = {0, 0, 16, 0, 0, 0, 16, 0};
    auto corners = boxCorners(channels.least, channels.largest);
    const V alphas = encodeInterpolatedAlphas(channels.alpha, corners);
    const auto greens =
        hn::And(hn::And(hn::Xor(corners, exchangeHalves(corners)), asWords(flip)), everyLane(d16, kGreens));
    const auto blues = hn::Or(hn::And(asWords(doubled), everyLane(d16, kDoubledBlue)),
                              hn::And(asWords(redoubled), everyLane(d16, kRedoubledBlue)));
    corners = hn::Or(hn::Xor(corners, greens), blues);
    return chooseColours(channels, corners, flip, alphas);
  }
};

// As many blocks as a vector of D has lanes.
template <class Format, class V>
HWY_INLINE void store(V blocks, uint8_t* dst) {
  using D = hn::DFromV<V>;
  const hn::Half<D> half;
  if constexpr (Format::blockBytes == 16) {
    hn::StoreU(blocks, D(), dst);
  } else if constexpr (hn::MaxLanes(D()) == 16) {
    hn::StoreU(hn::UpperHalf(half, blocks), half, dst);
  } else {
    // Of 8 and of 16 lanes; the upper half of the result is not used.
    alignas(64) static constexpr uint32_t kUpperHalves[2][16] = {{2, 3, 6, 7}, {2, 3, 6, 7, 10, 11, 14, 15}};
    const auto indices = hn::SetTableIndices(DwordsOf<V>(), kUpperHalves[hn::MaxLanes(D()) / 64]);
    hn::StoreU(hn::LowerHalf(half, asBytes(hn::TableLookupLanes(asDwords(blocks), indices))), half, dst);
  }
}

// Encodes from block i on while whole vectors of D are left; returns where it ends. Colours are chosen for a group of
// vectors before their indices: either is a long chain of operations, of which the processor overlaps only those of
// neighbouring vectors.
template <class Format, class D>
HWY_INLINE size_t encodeVectors(D d, size_t i, const uint8_t* pixels, ptrdiff_t step, size_t count, uint8_t* dst) {
  constexpr size_t kLanes = hn::MaxLanes(D()) / 16, kGroup = 8, kBlockRow = 4 * Format::Pixels::pixelBytes;
  while (count - i >= kLanes) {
    ColouredBlocks<hn::Vec<D>> group[kGroup];
    const size_t vectors = std::min((count - i) / kLanes, kGroup);
    for (size_t k = 0; k < vectors; ++k) {
      group[k] = Format::colour(Format::Pixels::load(d, pixels + (i + k * kLanes) * kBlockRow, step));
    }
    for (size_t k = 0; k < vectors; ++k, i += kLanes) {
      store<Format>(withIndices(group[k]), dst + i * Format::blockBytes);
    }
  }
  return i;
}

template <class Format>
void encodeBlocks(const uint8_t* pixels, ptrdiff_t step, size_t count, uint8_t* dst) {
  const size_t done = encodeVectors<Format>(hn::ScalableTag<uint8_t>(), 0, pixels, step, count, dst);
  encodeVectors<Format>(hn::FixedTag<uint8_t, 16>(), done, pixels, step, count, dst);
}

#else

using plain::Dxt1;
using plain::Dxt3;
using plain::Dxt5;
using plain::Dxt5YCoCg;

template <class Format>
void encodeBlocks(const uint8_t* src, ptrdiff_t step, size_t count, uint8_t* dst) {
  for (; count > 0; --count, src += 4 * Format::pixelBytes, dst += Format::blockBytes) {
    plain::Pixels pixels;
    for (size_t i = 0; i < 16; ++i) {
      Format::load(src + static_cast<ptrdiff_t>(i / 4) * step + i % 4 * Format::pixelBytes, pixels[i]);
    }
    Format::encode(pixels, dst);
  }
}

#endif

constexpr DxtEncodeKernels kernels = {&encodeBlocks<Dxt1>, &encodeBlocks<Dxt3>, &encodeBlocks<Dxt5>,
                                      &encodeBlocks<Dxt5YCoCg>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DxtEncodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DxtEncodeKernels& dxtEncodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
