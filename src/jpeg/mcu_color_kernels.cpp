#include "jpeg/mcu_color_kernels.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/mcu_color_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Where the channels of a pixel lie.
struct Rgb {
  static constexpr int red = 0, green = 1, blue = 2;
};
struct Bgr {
  static constexpr int red = 2, green = 1, blue = 0;
};

// Pixels that share a chroma sample.
struct Sampling444 {
  static constexpr int horizontal = 1, vertical = 1;
};
struct Sampling422 {
  static constexpr int horizontal = 2, vertical = 1;
};
struct Sampling411 {
  static constexpr int horizontal = 2, vertical = 2;
};

// Weights of R, G and B, and a constant in units of 256.
struct Weights {
  int16_t red, green, blue, constant;
};
inline constexpr int16_t kConstantUnit = 256;
inline constexpr int kForwardShift = 14;

constexpr Weights kLuma = {4899, 9617, 1868, -2088960 / kConstantUnit};
constexpr Weights chromaBlue(int pixels) {
  return {-2764, -5428, 8192, static_cast<int16_t>(8192 * pixels / kConstantUnit)};
}
constexpr Weights chromaRed(int pixels) {
  return {8192, -6860, -1332, static_cast<int16_t>(8192 * pixels / kConstantUnit)};
}

// What a chroma pair adds to Y: the weighted sum of Cb and Cr and a constant in units of 256, shifted and narrowed with
// saturation; the green term of 2x2 chroma is subtracted instead.
struct ChromaTerm {
  int16_t cb, cr, constant;
  int shift;
};
struct InverseOf444 {
  static constexpr ChromaTerm red = {0, 22970, 8224, 14}, green = {-5638, -11700, 8224, 14},
                              blue = {29032, 0, 8224, 14};
  static constexpr bool subtractGreen = false;
};
struct InverseOf411 {
  static constexpr ChromaTerm red = {0, 11485, 4112, 13}, green = {5638, 11700, -8160, 14}, blue = {14516, 0, 4112, 13};
  static constexpr bool subtractGreen = true;
};

#if ZORJ_SIMD

using RowTag = hn::FixedTag<int16_t, 8>;
// One or two groups of eight pixels, a block of the register each.
using GroupTag = hn::CappedTag<int16_t, 16>;
using Group = hn::Vec<GroupTag>;
using ByteTag = hn::Repartition<uint8_t, GroupTag>;
inline constexpr size_t kGroups = hn::MaxLanes(GroupTag()) / 8;

struct Channels {
  Group red, green, blue;
};

// Calls use(i, block) with the block of every group.
template <class V, class Use>
HWY_INLINE void forEachGroup(V groups, Use use) {
  if constexpr (kGroups == 1) {
    use(size_t{0}, groups);
  } else {
    const hn::Half<hn::DFromV<V>> half;
    use(size_t{0}, hn::LowerHalf(half, groups));
    use(size_t{1}, hn::UpperHalf(half, groups));
  }
}

// A register of the blocks load(i) of every group.
template <class D, class Load>
HWY_INLINE hn::Vec<D> loadGroups(Load load) {
  if constexpr (kGroups == 1) {
    return load(0);
  } else {
    return hn::Combine(D(), load(1), load(0));
  }
}

// Channel `channel` of eight pixels as 16-bit values, out of the first and the last sixteen of their 24 bytes.
template <int kChannel>
HWY_INLINE Group extractChannel(hn::Vec<ByteTag> first, hn::Vec<ByteTag> last) {
  alignas(16) static constexpr auto kSelect = [] {
    struct {
      uint8_t first[16], last[16];
    } select{};
    for (int i = 0; i < 16; ++i) {
      const int byte = 3 * (i / 2) + kChannel;
      const bool used = i % 2 == 0, inFirst = byte < 16;
      select.first[i] = static_cast<uint8_t>(used && inFirst ? byte : 0x80);
      select.last[i] = static_cast<uint8_t>(used && !inFirst ? byte - 8 : 0x80);
    }
    return select;
  }();
  const ByteTag d8;
  return hn::BitCast(GroupTag(), hn::Or(hn::TableLookupBytesOr0(first, hn::LoadDup128(d8, kSelect.first)),
                                        hn::TableLookupBytesOr0(last, hn::LoadDup128(d8, kSelect.last))));
}

// `address(i)` is that of the eight pixels of group i.
template <class Order, class Address>
HWY_INLINE Channels loadPixels(Address address) {
  const hn::FixedTag<uint8_t, 16> d8;
  const auto first = loadGroups<ByteTag>([&](size_t i) HWY_ATTR { return hn::LoadU(d8, address(i)); });
  const auto last = loadGroups<ByteTag>([&](size_t i) HWY_ATTR { return hn::LoadU(d8, address(i) + 8); });
  return {extractChannel<Order::red>(first, last), extractChannel<Order::green>(first, last),
          extractChannel<Order::blue>(first, last)};
}

// Lanes of two 16-bit values each.
HWY_INLINE Group pairOf(int16_t first, int16_t second) {
  const hn::Repartition<int32_t, GroupTag> d32;
  const uint32_t both = static_cast<uint16_t>(first) | static_cast<uint32_t>(static_cast<uint16_t>(second)) << 16;
  return hn::BitCast(GroupTag(), hn::Set(d32, static_cast<int32_t>(both)));
}

HWY_INLINE auto multiplyPairs(Group a, Group b) {
  const hn::Repartition<int32_t, GroupTag> d32;
  auto unused = hn::Zero(d32);
  return hn::ReorderWidenMulAccumulate(d32, a, b, hn::Zero(d32), unused);
}

// The weighted sum of (red, green) and (blue, 256) pairs.
template <int kShift>
HWY_INLINE auto weightedSum(Group redGreen, Group blueUnit, const Weights& weights) {
  return hn::ShiftRight<kShift>(hn::Add(multiplyPairs(redGreen, pairOf(weights.red, weights.green)),
                                        multiplyPairs(blueUnit, pairOf(weights.blue, weights.constant))));
}

// Eight pixels a group to one value each.
struct PixelPairs {
  explicit HWY_INLINE PixelPairs(const Channels& c) {
    const GroupTag d;
    const auto unit = hn::Set(d, kConstantUnit);
    redGreen[0] = hn::InterleaveLower(d, c.red, c.green);
    redGreen[1] = hn::InterleaveUpper(d, c.red, c.green);
    blueUnit[0] = hn::InterleaveLower(d, c.blue, unit);
    blueUnit[1] = hn::InterleaveUpper(d, c.blue, unit);
  }
  HWY_INLINE Group weigh(const Weights& weights) const {
    return hn::ReorderDemote2To(GroupTag(), weightedSum<kForwardShift>(redGreen[0], blueUnit[0], weights),
                                weightedSum<kForwardShift>(redGreen[1], blueUnit[1], weights));
  }
  Group redGreen[2], blueUnit[2];
};

HWY_INLINE Channels add(const Channels& a, const Channels& b) {
  return {hn::Add(a.red, b.red), hn::Add(a.green, b.green), hn::Add(a.blue, b.blue)};
}

// Pairs of neighbouring pixels of a group summed, four of them as (red, green) or (blue, 256).
struct SummedPairs {
  explicit HWY_INLINE SummedPairs(const Channels& c) {
    const GroupTag d;
    const auto ones = hn::Set(d, 1);
    const auto red = multiplyPairs(c.red, ones), green = multiplyPairs(c.green, ones),
               blue = multiplyPairs(c.blue, ones);
    redGreen = hn::BitCast(d, hn::Or(red, hn::ShiftLeft<16>(green)));
    blueUnit = hn::Or(hn::BitCast(d, blue), pairOf(0, kConstantUnit));
  }
  Group redGreen, blueUnit;
};

template <class Order>
void forward444(const uint8_t* src, int32_t srcStep, int16_t* const dst[3]) {
  const GroupTag d;
  for (int32_t y = 0; y < 8; y += kGroups) {
    const PixelPairs pixels(
        loadPixels<Order>([&](size_t i) { return rowAt(src, srcStep, y + static_cast<int32_t>(i)); }));
    hn::StoreU(pixels.weigh(kLuma), d, dst[0] + 8 * y);
    hn::StoreU(pixels.weigh(chromaBlue(1)), d, dst[1] + 8 * y);
    hn::StoreU(pixels.weigh(chromaRed(1)), d, dst[2] + 8 * y);
  }
}

// A row of sixteen pixels in as many registers as it takes.
inline constexpr size_t kParts = 2 / kGroups;
struct WideRow {
  Channels parts[kParts];
};

template <class Order>
HWY_INLINE WideRow loadWideRow(const uint8_t* row) {
  WideRow wide;
  for (size_t p = 0; p < kParts; ++p) {
    wide.parts[p] = loadPixels<Order>([&](size_t i) { return row + 24 * (p * kGroups + i); });
  }
  return wide;
}

// Writes the luminance of a row of sixteen pixels to the left block and the one that follows it.
HWY_INLINE void storeLuma(const WideRow& row, int16_t* left) {
  for (size_t p = 0; p < kParts; ++p) {
    forEachGroup(PixelPairs(row.parts[p]).weigh(kLuma),
                 [&](size_t i, auto luma) HWY_ATTR { hn::StoreU(luma, RowTag(), left + 64 * (p * kGroups + i)); });
  }
}

// Writes one chroma row of a row of sixteen pixels, or of two of them summed.
template <int kShift>
HWY_INLINE void storeChroma(const WideRow& row, const Weights& weights, int16_t* dst) {
  hn::Vec<hn::FixedTag<int32_t, 4>> sums[2];
  for (size_t p = 0; p < kParts; ++p) {
    const SummedPairs pairs(row.parts[p]);
    forEachGroup(weightedSum<kShift>(pairs.redGreen, pairs.blueUnit, weights),
                 [&](size_t i, auto sum) HWY_ATTR { sums[p * kGroups + i] = sum; });
  }
  hn::StoreU(hn::ReorderDemote2To(RowTag(), sums[0], sums[1]), RowTag(), dst);
}

// Writes the luminance of a line of the MCU; returns its pixels for the chroma.
template <class Order>
HWY_INLINE WideRow takeLine(const uint8_t* src, int32_t srcStep, int32_t line, int16_t* luma) {
  const WideRow row = loadWideRow<Order>(rowAt(src, srcStep, line));
  storeLuma(row, luma + 128 * (line / 8) + 8 * (line % 8));
  return row;
}

template <class Order, class Sampling>
void forwardShared(const uint8_t* src, int32_t srcStep, int16_t* const dst[3]) {
  constexpr int kPixels = Sampling::horizontal * Sampling::vertical;
  constexpr int kShift = kForwardShift + (kPixels == 2 ? 1 : 2);
  for (int32_t y = 0; y < 8; ++y) {
    WideRow sums = takeLine<Order>(src, srcStep, Sampling::vertical * y, dst[0]);
    if constexpr (Sampling::vertical == 2) {
      const WideRow below = takeLine<Order>(src, srcStep, 2 * y + 1, dst[0]);
      for (size_t p = 0; p < kParts; ++p) sums.parts[p] = add(sums.parts[p], below.parts[p]);
    }
    storeChroma<kShift>(sums, chromaBlue(kPixels), dst[1] + 8 * y);
    storeChroma<kShift>(sums, chromaRed(kPixels), dst[2] + 8 * y);
  }
}

template <int kShift>
HWY_INLINE Group chromaTerm(Group firstPairs, Group secondPairs, Group weights, int32_t constant) {
  const hn::Repartition<int32_t, GroupTag> d32;
  const auto rounding = hn::Set(d32, constant);
  return hn::ReorderDemote2To(GroupTag(), hn::ShiftRight<kShift>(hn::Add(multiplyPairs(firstPairs, weights), rounding)),
                              hn::ShiftRight<kShift>(hn::Add(multiplyPairs(secondPairs, weights), rounding)));
}

template <const ChromaTerm& kTerm>
HWY_INLINE Group chromaTerm(Group firstPairs, Group secondPairs) {
  return chromaTerm<kTerm.shift>(firstPairs, secondPairs, pairOf(kTerm.cb, kTerm.cr), kTerm.constant * kConstantUnit);
}

template <class Formula>
HWY_INLINE Channels chromaTerms(Group cb, Group cr) {
  const GroupTag d;
  const Group first = hn::InterleaveLower(d, cb, cr), second = hn::InterleaveUpper(d, cb, cr);
  const Group green = chromaTerm<Formula::green>(first, second);
  return {chromaTerm<Formula::red>(first, second), Formula::subtractGreen ? hn::Sub(hn::Zero(d), green) : green,
          chromaTerm<Formula::blue>(first, second)};
}

// Which byte of the pairs (first channel, second channel) and (third channel, 0) goes where in eight pixels.
struct InterleaveTables {
  alignas(16) uint8_t firstTwo[32];
  alignas(16) uint8_t third[32];
};
constexpr InterleaveTables kInterleave = [] {
  InterleaveTables tables{};
  for (int i = 0; i < 32; ++i) {
    const int pixel = i / 3, channel = i % 3;
    tables.firstTwo[i] = static_cast<uint8_t>(pixel < 8 && channel < 2 ? 2 * pixel + channel : 0x80);
    tables.third[i] = static_cast<uint8_t>(pixel < 8 && channel == 2 ? 2 * pixel : 0x80);
  }
  return tables;
}();

// Writes the eight pixels of every group, clamped, to the 24 bytes at address(i).
template <class Order, class Address>
HWY_INLINE void storePixels(const Channels& c, Address address) {
  const GroupTag d;
  const ByteTag d8;
  const auto clamp = [&](Group v) HWY_ATTR { return hn::Min(hn::Max(v, hn::Zero(d)), hn::Set(d, 255)); };
  const auto third = hn::BitCast(d8, clamp(Order::red == 0 ? c.blue : c.red));
  const auto firstTwo =
      hn::BitCast(d8, hn::Or(clamp(Order::red == 0 ? c.red : c.blue), hn::ShiftLeft<8>(clamp(c.green))));
  const auto arrange = [&](size_t from) HWY_ATTR {
    return hn::Or(hn::TableLookupBytesOr0(firstTwo, hn::LoadDup128(d8, kInterleave.firstTwo + from)),
                  hn::TableLookupBytesOr0(third, hn::LoadDup128(d8, kInterleave.third + from)));
  };
  forEachGroup(arrange(0),
               [&](size_t i, auto bytes) HWY_ATTR { hn::StoreU(bytes, hn::FixedTag<uint8_t, 16>(), address(i)); });
  forEachGroup(arrange(16), [&](size_t i, auto bytes) HWY_ATTR {
    const hn::FixedTag<uint8_t, 8> half;
    hn::StoreU(hn::LowerHalf(half, bytes), half, address(i) + 16);
  });
}

template <class Order>
void inverse444(const int16_t* const src[3], uint8_t* dst, int32_t dstStep) {
  const GroupTag d;
  for (int32_t y = 0; y < 8; y += kGroups) {
    const Group luma = hn::LoadU(d, src[0] + 8 * y);
    const Channels terms = chromaTerms<InverseOf444>(hn::LoadU(d, src[1] + 8 * y), hn::LoadU(d, src[2] + 8 * y));
    storePixels<Order>(add({luma, luma, luma}, terms),
                       [&](size_t i) { return rowAt(dst, dstStep, y + static_cast<int32_t>(i)); });
  }
}

// Every lane twice: the left eight pixels of sixteen for part 0 and the right eight for part 1, or both for two groups.
HWY_INLINE Group repeatPairs(Group terms, size_t part) {
  const GroupTag d;
  const Group left = hn::InterleaveLower(d, terms, terms), right = hn::InterleaveUpper(d, terms, terms);
  if constexpr (kGroups == 1) {
    return part == 0 ? left : right;
  } else {
    return hn::ConcatUpperLower(d, right, left);
  }
}

template <class Order>
void inverse411(const int16_t* const src[3], uint8_t* dst, int32_t dstStep) {
  const GroupTag d;
  for (int32_t y = 0; y < 8; ++y) {
    const Channels terms =
        chromaTerms<InverseOf411>(hn::LoadDup128(d, src[1] + 8 * y), hn::LoadDup128(d, src[2] + 8 * y));
    for (size_t p = 0; p < kParts; ++p) {
      const Channels repeated = {repeatPairs(terms.red, p), repeatPairs(terms.green, p), repeatPairs(terms.blue, p)};
      for (int32_t line = 2 * y; line < 2 * y + 2; ++line) {
        const int16_t* left = src[0] + 128 * (line / 8) + 8 * (line % 8);
        const Group luma =
            loadGroups<GroupTag>([&](size_t i) HWY_ATTR { return hn::LoadU(RowTag(), left + 64 * (p * kGroups + i)); });
        uint8_t* row = rowAt(dst, dstStep, line);
        storePixels<Order>(add({luma, luma, luma}, repeated), [&](size_t i) { return row + 24 * (p * kGroups + i); });
      }
    }
  }
}

#else

int32_t weightedSum(int32_t red, int32_t green, int32_t blue, const Weights& w) {
  return w.red * red + w.green * green + w.blue * blue + w.constant * kConstantUnit;
}

template <class Order, class Sampling>
void forward(const uint8_t* src, int32_t srcStep, int16_t* const dst[3]) {
  constexpr int kPixels = Sampling::horizontal * Sampling::vertical;
  constexpr int kChromaShift = kForwardShift + (kPixels == 1 ? 0 : kPixels == 2 ? 1 : 2);
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t x = 0; x < 8; ++x) {
      int32_t red = 0, green = 0, blue = 0;
      for (int32_t line = Sampling::vertical * y; line < Sampling::vertical * (y + 1); ++line) {
        for (int32_t column = Sampling::horizontal * x; column < Sampling::horizontal * (x + 1); ++column) {
          const uint8_t* pixel = rowAt(src, srcStep, line) + 3 * column;
          const int32_t luma =
              weightedSum(pixel[Order::red], pixel[Order::green], pixel[Order::blue], kLuma) >> kForwardShift;
          const int32_t block = 2 * (line / 8) + column / 8;
          storeUnaligned(dst[0] + 64 * block + 8 * (line % 8) + column % 8, static_cast<int16_t>(luma));
          red += pixel[Order::red];
          green += pixel[Order::green];
          blue += pixel[Order::blue];
        }
      }
      const int32_t cb = weightedSum(red, green, blue, chromaBlue(kPixels)) >> kChromaShift;
      const int32_t cr = weightedSum(red, green, blue, chromaRed(kPixels)) >> kChromaShift;
      storeUnaligned(dst[1] + 8 * y + x, static_cast<int16_t>(cb));
      storeUnaligned(dst[2] + 8 * y + x, static_cast<int16_t>(cr));
    }
  }
}

int32_t chromaTerm(const ChromaTerm& term, int32_t cb, int32_t cr) {
  const int32_t sum = (term.cb * cb + term.cr * cr + term.constant * kConstantUnit) >> term.shift;
  return std::clamp<int32_t>(sum, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max());
}

uint8_t addClamped(int32_t luma, int32_t term) {
  return static_cast<uint8_t>(std::clamp<int>(static_cast<int16_t>(luma + term), 0, 255));
}

template <class Order, class Sampling, class Formula>
void inverse(const int16_t* const src[3], uint8_t* dst, int32_t dstStep) {
  for (int32_t line = 0; line < 8 * Sampling::vertical; ++line) {
    uint8_t* pixel = rowAt(dst, dstStep, line);
    for (int32_t column = 0; column < 8 * Sampling::horizontal; ++column, pixel += 3) {
      const int32_t chromaAt = 8 * (line / Sampling::vertical) + column / Sampling::horizontal;
      const int32_t block = 2 * (line / 8) + column / 8;
      const int32_t luma = loadUnaligned(src[0] + 64 * block + 8 * (line % 8) + column % 8);
      const int32_t cb = loadUnaligned(src[1] + chromaAt), cr = loadUnaligned(src[2] + chromaAt);
      const int32_t green = chromaTerm(Formula::green, cb, cr);
      pixel[Order::red] = addClamped(luma, chromaTerm(Formula::red, cb, cr));
      pixel[Order::green] = addClamped(luma, Formula::subtractGreen ? -green : green);
      pixel[Order::blue] = addClamped(luma, chromaTerm(Formula::blue, cb, cr));
    }
  }
}

template <class Order>
void forward444(const uint8_t* src, int32_t srcStep, int16_t* const dst[3]) {
  forward<Order, Sampling444>(src, srcStep, dst);
}
template <class Order, class Sampling>
void forwardShared(const uint8_t* src, int32_t srcStep, int16_t* const dst[3]) {
  forward<Order, Sampling>(src, srcStep, dst);
}
template <class Order>
void inverse444(const int16_t* const src[3], uint8_t* dst, int32_t dstStep) {
  inverse<Order, Sampling444, InverseOf444>(src, dst, dstStep);
}
template <class Order>
void inverse411(const int16_t* const src[3], uint8_t* dst, int32_t dstStep) {
  inverse<Order, Sampling411, InverseOf411>(src, dst, dstStep);
}

#endif

constexpr McuColorKernels kernels = {&forward444<Rgb>,
                                     &forwardShared<Rgb, Sampling422>,
                                     &forwardShared<Rgb, Sampling411>,
                                     &forward444<Bgr>,
                                     &forwardShared<Bgr, Sampling422>,
                                     &forwardShared<Bgr, Sampling411>,
                                     &inverse444<Rgb>,
                                     &inverse411<Rgb>,
                                     &inverse444<Bgr>,
                                     &inverse411<Bgr>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const McuColorKernels> perIsa{ZORJ_PER_ISA(kernels)};

const McuColorKernels& mcuColorKernels() { return *perIsa; }

}  // namespace zorj
#endif
