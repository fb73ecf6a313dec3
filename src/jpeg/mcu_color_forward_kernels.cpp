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

// Weights of R, G and B, and a constant in units of kConstantUnit for every pixel of a sum.
struct Weights {
  int16_t red, green, blue, constant;
};
constexpr Weights kLuma = {4899, 9617, 1868, -2088960 / kConstantUnit},
                  kBlueChroma = {-2764, -5428, 8192, 8192 / kConstantUnit},
                  kRedChroma = {8192, -6860, -1332, 8192 / kConstantUnit};
// For the average of 1, 2 or 4 pixels.
constexpr int shiftOf(int pixels) { return 14 + pixels / 2; }

#if ZORJ_SIMD

// Eight pixels, or sums of pixels, a block: four and four as (red, green) and as (blue, kConstantUnit).
struct PixelPairs {
  Lanes redGreen[2], blueUnit[2];
};

template <class Order>
HWY_INLINE PixelPairs pairUp(hn::Vec<ByteTag> first16Bytes, hn::Vec<ByteTag> last16Bytes) {
  const auto unit = pairOf(ByteTag(), 0, kConstantUnit);
  const auto extract = [](hn::Vec<ByteTag> pixels, const uint8_t(&bytes)[16])
                           HWY_ATTR { return hn::BitCast(LaneTag(), arrange(ByteTag(), pixels, bytes)); };
  constexpr size_t kStart = 16 - 4 * Order::kBytes;
  return {
      {extract(first16Bytes, kPairBytes<Order, 0>.redGreen), extract(last16Bytes, kPairBytes<Order, kStart>.redGreen)},
      {hn::Or(extract(first16Bytes, kPairBytes<Order, 0>.blue), unit),
       hn::Or(extract(last16Bytes, kPairBytes<Order, kStart>.blue), unit)}};
}

#endif

// Sources: `pixel` reads one, `load` eight pixels of each of kLines lines that lie `distance` bytes apart. CMYK gives
// its K besides.

template <class Order>
struct FromInterleaved {
  static constexpr int32_t kBytes = Order::kBytes, kPlanes = 3;

  static Channels<int32_t> pixel(const uint8_t* at) { return {at[Order::red], at[Order::green], at[Order::blue]}; }

#if ZORJ_SIMD
  static HWY_INLINE PixelPairs load(const uint8_t* from, size_t distance) {
    const ByteTag d;
    return pairUp<Order>(loadBlocks(d, from, distance), loadBlocks(d, from + 8, distance));
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
  static HWY_INLINE PixelPairs load(const uint8_t* from, size_t distance) {
    const LaneTag d;
    const auto unit = hn::Set(d, kConstantUnit);
    const auto pixels = Format::unpackLanes(hn::BitCast(d, loadBlocks(ByteTag(), from, distance)));
    return {{hn::InterleaveLower(d, pixels.red, pixels.green), hn::InterleaveUpper(d, pixels.red, pixels.green)},
            {hn::InterleaveLower(d, pixels.blue, unit), hn::InterleaveUpper(d, pixels.blue, unit)}};
  }
#endif
};

struct FromCmyk {
  static constexpr int32_t kBytes = Cmyk::kBytes, kPlanes = 4;

  static Channels<int32_t> pixel(const uint8_t* at) { return {255 - at[0], 255 - at[1], 255 - at[2]}; }
  static int32_t key(const uint8_t* at) { return at[Cmyk::key]; }

#if ZORJ_SIMD
  static HWY_INLINE PixelPairs load(const uint8_t* from, size_t distance) {
    const ByteTag d;
    return pairUp<Cmyk>(complement(d, loadBlocks(d, from, distance)),
                        complement(d, loadBlocks(d, from + 16, distance)));
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

template <int32_t kPixels>
HWY_INLINE Lanes weigh(const PixelPairs& pairs, const Weights& weights) {
  const ByteTag d8;
  const SumTag d;
  const auto redGreen = pairOf(d8, weights.red, weights.green), blueUnit = pairOf(d8, weights.blue, weights.constant);
  const auto sum = [&](size_t i) HWY_ATTR {
    auto unused = hn::Zero(d);
    const auto product = hn::ReorderWidenMulAccumulate(d, pairs.redGreen[i], redGreen, hn::Zero(d), unused);
    return hn::ShiftRight<shiftOf(kPixels)>(addPairProducts(product, pairs.blueUnit[i], blueUnit));
  };
  return hn::ReorderDemote2To(LaneTag(), sum(0), sum(1));
}

HWY_INLINE PixelPairs add(const PixelPairs& a, const PixelPairs& b) {
  return {{hn::Add(a.redGreen[0], b.redGreen[0]), hn::Add(a.redGreen[1], b.redGreen[1])},
          {hn::Add(a.blueUnit[0], b.blueUnit[0]), hn::Add(a.blueUnit[1], b.blueUnit[1])}};
}

// The sums of horizontal neighbours. No sum of 16-bit values carries into the other value of its pair.
HWY_INLINE PixelPairs addColumns(const PixelPairs& left, const PixelPairs& right) {
  const LaneTag d;
  const SumTag d32;
  const auto sum = [&](const Lanes(&pairs)[2]) HWY_ATTR {
    return hn::BitCast(d, addNeighbours(hn::BitCast(d32, pairs[0]), hn::BitCast(d32, pairs[1])));
  };
  return {{sum(left.redGreen), sum(right.redGreen)}, {sum(left.blueUnit), sum(right.blueUnit)}};
}

// Writes the luminance, and K, of eight columns of a line and of the lines a register spans with it; returns their
// pixels for the chroma.
template <class Source, class Sampling>
HWY_INLINE PixelPairs takeLines(const uint8_t* src, int32_t srcStep, int32_t column, int32_t line,
                                int16_t* const* dst) {
  const uint8_t* from = rowAt(src, srcStep, line) + Source::kBytes * column;
  const size_t distance = static_cast<size_t>(srcStep) * Sampling::vertical;
  const int32_t at = Sampling::lumaAt(column, line);
  const PixelPairs pixels = Source::load(from, distance);
  storeRows<Sampling::vertical>(weigh<1>(pixels, kLuma), dst[0] + at);
  if constexpr (Source::kPlanes == 4) {
    const Lanes keys = hn::Sub(Source::keys(from, distance), hn::Set(LaneTag(), 128));
    storeRows<Sampling::vertical>(keys, dst[3] + at);
  }
  return pixels;
}

// The same for the lines that share rows y and on of the chroma; returns the sums of their pixels.
template <class Source, class Sampling>
HWY_INLINE PixelPairs takeColumns(const uint8_t* src, int32_t srcStep, int32_t column, int32_t y, int16_t* const* dst) {
  const PixelPairs above = takeLines<Source, Sampling>(src, srcStep, column, Sampling::vertical * y, dst);
  if constexpr (Sampling::vertical == 1) return above;
  return add(above, takeLines<Source, Sampling>(src, srcStep, column, Sampling::vertical * y + 1, dst));
}

template <class Source, class Sampling>
void forward(const uint8_t* src, int32_t srcStep, int16_t* const* dst) {
  for (int32_t y = 0; y < 8; y += kLines) {
    PixelPairs shared = takeColumns<Source, Sampling>(src, srcStep, 0, y, dst);
    if constexpr (Sampling::horizontal == 2) {
      shared = addColumns(shared, takeColumns<Source, Sampling>(src, srcStep, 8, y, dst));
    }
    storeRows<1>(weigh<Sampling::pixels>(shared, kBlueChroma), dst[1] + 8 * y);
    storeRows<1>(weigh<Sampling::pixels>(shared, kRedChroma), dst[2] + 8 * y);
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

template <int32_t kPixels>
int16_t weigh(const Channels<int32_t>& sum, const Weights& w) {
  const int32_t constant = w.constant * kConstantUnit * kPixels;
  return static_cast<int16_t>((w.red * sum.red + w.green * sum.green + w.blue * sum.blue + constant) >>
                              shiftOf(kPixels));
}

template <class Source, class Sampling>
void forward(const uint8_t* src, int32_t srcStep, int16_t* const* dst) {
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t x = 0; x < 8; ++x) {
      Channels<int32_t> sum{};
      for (int32_t line = Sampling::vertical * y; line < Sampling::vertical * (y + 1); ++line) {
        for (int32_t column = Sampling::horizontal * x; column < Sampling::horizontal * (x + 1); ++column) {
          const uint8_t* from = rowAt(src, srcStep, line) + Source::kBytes * column;
          const int32_t at = Sampling::lumaAt(column, line);
          const Channels<int32_t> pixel = Source::pixel(from);
          storeUnaligned(dst[0] + at, weigh<1>(pixel, kLuma));
          if constexpr (Source::kPlanes == 4) {
            storeUnaligned(dst[3] + at, static_cast<int16_t>(Source::key(from) - 128));
          }
          sum = {sum.red + pixel.red, sum.green + pixel.green, sum.blue + pixel.blue};
        }
      }
      storeUnaligned(dst[1] + 8 * y + x, weigh<Sampling::pixels>(sum, kBlueChroma));
      storeUnaligned(dst[2] + 8 * y + x, weigh<Sampling::pixels>(sum, kRedChroma));
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
