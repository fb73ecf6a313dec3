#include <algorithm>
#include <cstddef>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"
#include "jpeg/mcu_color_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/mcu_color_forward_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/color_lanes-inl.h"
#include "jpeg/mcu_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// Weights of R, G and B, and a constant in units of kConstantUnit.
struct Weights {
  int16_t red, green, blue, constant;
};
inline constexpr int kShift = 14;

constexpr Weights kLuma = {4899, 9617, 1868, -2088960 / kConstantUnit};
constexpr Weights chromaBlue(int pixels) {
  return {-2764, -5428, 8192, static_cast<int16_t>(8192 * pixels / kConstantUnit)};
}
constexpr Weights chromaRed(int pixels) {
  return {8192, -6860, -1332, static_cast<int16_t>(8192 * pixels / kConstantUnit)};
}
// For sums of 1, 2 or 4 pixels.
constexpr int chromaShift(int pixels) { return kShift + pixels / 2; }

// Sources: `pixel` reads one, `load` eight pixels of each of kLines lines that lie `distance` bytes apart. CMYK gives
// its K besides.

template <class Order>
struct FromInterleaved {
  static constexpr int32_t kBytes = 3, kPlanes = 3;

  static Channels<int32_t> pixel(const uint8_t* at) { return {at[Order::red], at[Order::green], at[Order::blue]}; }

#if ZORJ_SIMD
  // Which bytes of the first and the last 16 of eight pixels are those of a channel.
  struct ChannelBytes {
    uint8_t first[16], last[16];
  };
  static constexpr ChannelBytes channelBytes(size_t channel) {
    ChannelBytes bytes{};
    for (size_t i = 0; i < 16; ++i) {
      const size_t byte = 3 * (i / 2) + channel;
      const bool used = i % 2 == 0, inFirst = byte < 16;
      bytes.first[i] = static_cast<uint8_t>(used && inFirst ? byte : kNone);
      bytes.last[i] = static_cast<uint8_t>(used && !inFirst ? byte - 8 : kNone);
    }
    return bytes;
  }
  static HWY_INLINE Channels<Lanes> load(const uint8_t* from, size_t distance) {
    static constexpr ChannelBytes kRed = channelBytes(Order::red), kGreen = channelBytes(Order::green),
                                  kBlue = channelBytes(Order::blue);
    const ByteTag d;
    const auto first = loadBlocks(d, from, distance), last = loadBlocks(d, from + 8, distance);
    const auto extract = [&](const ChannelBytes& bytes) HWY_ATTR {
      return hn::BitCast(LaneTag(), hn::Or(arrange(d, first, bytes.first), arrange(d, last, bytes.last)));
    };
    return {extract(kRed), extract(kGreen), extract(kBlue)};
  }
#endif
};

template <class Format>
struct FromPacked {
  static constexpr int32_t kBytes = 2, kPlanes = 3;

  static Channels<int32_t> pixel(const uint8_t* at) {
    return Format::unpack(loadUnaligned(reinterpret_cast<const uint16_t*>(at)));
  }

#if ZORJ_SIMD
  static HWY_INLINE Channels<Lanes> load(const uint8_t* from, size_t distance) {
    return Format::unpackLanes(hn::BitCast(LaneTag(), loadBlocks(ByteTag(), from, distance)));
  }
#endif
};

struct FromCmyk {
  static constexpr int32_t kBytes = kCmykBytes, kPlanes = 4;

  static Channels<int32_t> pixel(const uint8_t* at) { return {255 - at[0], 255 - at[1], 255 - at[2]}; }
  static int32_t key(const uint8_t* at) { return at[3]; }

#if ZORJ_SIMD
  static HWY_INLINE Channels<Lanes> load(const uint8_t* from, size_t distance) {
    static constexpr uint8_t kByChannel[] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    const ByteTag d;
    const SumTag d32;
    const LaneTag d16;
    const auto zero = hn::Zero(d);
    const auto fourPixels = [&](const uint8_t* at) HWY_ATTR {
      return hn::BitCast(d32, arrange(d, complement(d, loadBlocks(d, at, distance)), kByChannel));
    };
    const auto first = fourPixels(from), last = fourPixels(from + 16);
    const auto redGreen = hn::BitCast(d, hn::InterleaveLower(d32, first, last));
    const auto blueKey = hn::BitCast(d, hn::InterleaveUpper(d32, first, last));
    return {hn::BitCast(d16, hn::InterleaveLower(d, redGreen, zero)),
            hn::BitCast(d16, hn::InterleaveUpper(d, redGreen, zero)),
            hn::BitCast(d16, hn::InterleaveLower(d, blueKey, zero))};
  }
  static HWY_INLINE Lanes keys(const uint8_t* from, size_t distance) {
    const hn::Repartition<uint32_t, ByteTag> u32;
    const auto fourPixels = [&](const uint8_t* at) HWY_ATTR {
      return hn::BitCast(SumTag(), hn::ShiftRight<24>(hn::BitCast(u32, loadBlocks(ByteTag(), at, distance))));
    };
    return hn::ReorderDemote2To(LaneTag(), fourPixels(from), fourPixels(from + 16));
  }
#endif
};

#if ZORJ_SIMD

HWY_INLINE auto multiplyPairs(Lanes a, Lanes b) {
  const SumTag d;
  auto unused = hn::Zero(d);
  return hn::ReorderWidenMulAccumulate(d, a, b, hn::Zero(d), unused);
}

// In every block eight pixels, or eight sums of pixels, four and four, as (red, green) and (blue, kConstantUnit).
struct WeighedPairs {
  Lanes redGreen[2], blueUnit[2];
};

HWY_INLINE WeighedPairs pairUp(const Channels<Lanes>& pixels) {
  const LaneTag d;
  const auto unit = hn::Set(d, kConstantUnit);
  return {
      {hn::InterleaveLower(d, pixels.red, pixels.green), hn::InterleaveUpper(d, pixels.red, pixels.green)},
      {hn::InterleaveLower(d, pixels.blue, unit), hn::InterleaveUpper(d, pixels.blue, unit)},
  };
}

template <int kSumShift>
HWY_INLINE Lanes weigh(const WeighedPairs& pairs, const Weights& weights) {
  const ByteTag d;
  const auto redGreen = pairOf(d, weights.red, weights.green), blueUnit = pairOf(d, weights.blue, weights.constant);
  const auto sum = [&](size_t i) HWY_ATTR {
    return hn::ShiftRight<kSumShift>(
        addPairProducts(multiplyPairs(pairs.redGreen[i], redGreen), pairs.blueUnit[i], blueUnit));
  };
  return hn::ReorderDemote2To(LaneTag(), sum(0), sum(1));
}

// Four sums of horizontal neighbours as (red, green) and as (blue, kConstantUnit).
HWY_INLINE Lanes sumRedGreen(const Channels<Lanes>& pixels) {
  const auto ones = hn::Set(LaneTag(), 1);
  return hn::BitCast(LaneTag(),
                     hn::Or(multiplyPairs(pixels.red, ones), hn::ShiftLeft<16>(multiplyPairs(pixels.green, ones))));
}
HWY_INLINE Lanes sumBlueUnit(const Channels<Lanes>& pixels) {
  const auto blue = multiplyPairs(pixels.blue, hn::Set(LaneTag(), 1));
  return hn::Or(hn::BitCast(LaneTag(), blue), pairOf(ByteTag(), 0, kConstantUnit));
}

// Writes the luminance, and K, of eight columns of a line and of the lines a register spans with it; returns their
// pixels for the chroma.
template <class Source, class Sampling>
HWY_INLINE Channels<Lanes> takeLines(const uint8_t* src, int32_t srcStep, int32_t column, int32_t line,
                                     int16_t* const* dst) {
  const uint8_t* from = rowAt(src, srcStep, line) + Source::kBytes * column;
  const size_t distance = static_cast<size_t>(srcStep) * Sampling::vertical;
  const int32_t at = Sampling::lumaAt(column, line);
  const Channels<Lanes> pixels = Source::load(from, distance);
  storeRows<Sampling::vertical>(weigh<kShift>(pairUp(pixels), kLuma), dst[0] + at);
  if constexpr (Source::kPlanes == 4) {
    const Lanes keys = hn::Sub(Source::keys(from, distance), hn::Set(LaneTag(), 128));
    storeRows<Sampling::vertical>(keys, dst[3] + at);
  }
  return pixels;
}

template <class Source, class Sampling>
HWY_INLINE Channels<Lanes> takeColumns(const uint8_t* src, int32_t srcStep, int32_t column, int32_t y,
                                       int16_t* const* dst) {
  const Channels<Lanes> above = takeLines<Source, Sampling>(src, srcStep, column, Sampling::vertical * y, dst);
  if constexpr (Sampling::vertical == 1) return above;
  return add(above, takeLines<Source, Sampling>(src, srcStep, column, Sampling::vertical * y + 1, dst));
}

template <class Source, class Sampling>
void forward(const uint8_t* src, int32_t srcStep, int16_t* const* dst) {
  constexpr int kSumShift = chromaShift(Sampling::pixels);
  for (int32_t y = 0; y < 8; y += kLines) {
    const Channels<Lanes> left = takeColumns<Source, Sampling>(src, srcStep, 0, y, dst);
    WeighedPairs shared;
    if constexpr (Sampling::horizontal == 1) {
      shared = pairUp(left);
    } else {
      const Channels<Lanes> right = takeColumns<Source, Sampling>(src, srcStep, 8, y, dst);
      shared = {{sumRedGreen(left), sumRedGreen(right)}, {sumBlueUnit(left), sumBlueUnit(right)}};
    }
    storeRows<1>(weigh<kSumShift>(shared, chromaBlue(Sampling::pixels)), dst[1] + 8 * y);
    storeRows<1>(weigh<kSumShift>(shared, chromaRed(Sampling::pixels)), dst[2] + 8 * y);
  }
}

void split422(const uint8_t* src, int32_t srcStep, int16_t* const* dst) {
  const ByteTag d8;
  const LaneTag d;
  const SumTag d32;
  const hn::Repartition<uint16_t, ByteTag> u16;
  const auto store = [&](auto rows, int16_t* to)
                         HWY_ATTR { storeRows<1>(hn::Sub(hn::BitCast(d, rows), hn::Set(d, 128)), to); };
  for (int32_t y = 0; y < 8; y += kLines) {
    const uint8_t* from = rowAt(src, srcStep, y);
    const auto left = hn::BitCast(u16, loadBlocks(d8, from, static_cast<size_t>(srcStep)));
    const auto right = hn::BitCast(u16, loadBlocks(d8, from + 16, static_cast<size_t>(srcStep)));
    const auto low = hn::Set(u16, 0xFF);
    store(hn::And(left, low), dst[0] + 8 * y);
    store(hn::And(right, low), dst[0] + 64 + 8 * y);
    // Four pairs of Cb and Cr a block.
    const auto leftChroma = hn::BitCast(d32, hn::ShiftRight<8>(left));
    const auto rightChroma = hn::BitCast(d32, hn::ShiftRight<8>(right));
    const auto first = hn::Set(d32, 0xFFFF);
    store(hn::ReorderDemote2To(d, hn::And(leftChroma, first), hn::And(rightChroma, first)), dst[1] + 8 * y);
    store(hn::ReorderDemote2To(d, hn::ShiftRight<16>(leftChroma), hn::ShiftRight<16>(rightChroma)), dst[2] + 8 * y);
  }
}

#else

template <int kSumShift>
int16_t weigh(const Channels<int32_t>& sum, const Weights& w) {
  const int32_t weighed = w.red * sum.red + w.green * sum.green + w.blue * sum.blue + w.constant * kConstantUnit;
  return static_cast<int16_t>(weighed >> kSumShift);
}

template <class Source, class Sampling>
void forward(const uint8_t* src, int32_t srcStep, int16_t* const* dst) {
  constexpr int kSumShift = chromaShift(Sampling::pixels);
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t x = 0; x < 8; ++x) {
      Channels<int32_t> sum{};
      for (int32_t line = Sampling::vertical * y; line < Sampling::vertical * (y + 1); ++line) {
        for (int32_t column = Sampling::horizontal * x; column < Sampling::horizontal * (x + 1); ++column) {
          const uint8_t* from = rowAt(src, srcStep, line) + Source::kBytes * column;
          const int32_t at = Sampling::lumaAt(column, line);
          const Channels<int32_t> pixel = Source::pixel(from);
          storeUnaligned(dst[0] + at, weigh<kShift>(pixel, kLuma));
          if constexpr (Source::kPlanes == 4) {
            storeUnaligned(dst[3] + at, static_cast<int16_t>(Source::key(from) - 128));
          }
          sum = {sum.red + pixel.red, sum.green + pixel.green, sum.blue + pixel.blue};
        }
      }
      storeUnaligned(dst[1] + 8 * y + x, weigh<kSumShift>(sum, chromaBlue(Sampling::pixels)));
      storeUnaligned(dst[2] + 8 * y + x, weigh<kSumShift>(sum, chromaRed(Sampling::pixels)));
    }
  }
}

void split422(const uint8_t* src, int32_t srcStep, int16_t* const* dst) {
  const auto store = [](int16_t* to, uint8_t sample) { storeUnaligned(to, static_cast<int16_t>(sample - 128)); };
  for (int32_t y = 0; y < 8; ++y) {
    const uint8_t* pair = rowAt(src, srcStep, y);
    for (int32_t x = 0; x < 8; ++x, pair += 4) {
      int16_t* luma = dst[0] + Sampling422::lumaAt(2 * x, y);
      store(luma, pair[0]);
      store(luma + 1, pair[2]);
      store(dst[1] + 8 * y + x, pair[1]);
      store(dst[2] + 8 * y + x, pair[3]);
    }
  }
}

#endif

constexpr McuForwardKernels kernels = {
    &forward<FromInterleaved<Rgb>, Sampling444>,
    &forward<FromInterleaved<Rgb>, Sampling422>,
    &forward<FromInterleaved<Rgb>, Sampling411>,
    &forward<FromInterleaved<Bgr>, Sampling444>,
    &forward<FromInterleaved<Bgr>, Sampling422>,
    &forward<FromInterleaved<Bgr>, Sampling411>,
    &forward<FromPacked<Bgr555>, Sampling444>,
    &forward<FromPacked<Bgr555>, Sampling422>,
    &forward<FromPacked<Bgr555>, Sampling411>,
    &forward<FromPacked<Bgr565>, Sampling444>,
    &forward<FromPacked<Bgr565>, Sampling422>,
    &forward<FromPacked<Bgr565>, Sampling411>,
    &forward<FromCmyk, Sampling444>,
    &forward<FromCmyk, Sampling422>,
    &forward<FromCmyk, Sampling411>,
    &split422,
};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const McuForwardKernels> perIsa{ZORJ_PER_ISA(kernels)};

const McuForwardKernels& mcuForwardKernels() { return *perIsa; }

}  // namespace zorj
#endif
