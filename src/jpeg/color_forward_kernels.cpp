#include <algorithm>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/color_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/color_forward_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/color_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

struct Weights {
  int16_t red, green, blue, rounding;
};
struct Fine {
  static constexpr int kShift = 15;
  static constexpr Weights kLuma = {9798, 19235, 3736, 16266}, kBlueChroma = {-5529, -10855, 16384, 16384},
                           kRedChroma = {16384, -13720, -2664, 16400};
};
struct Coarse {
  static constexpr int kShift = 14;
  static constexpr Weights kLuma = {4899, 9617, 1868, 8192}, kBlueChroma = {-2764, -5428, 8192, 8192},
                           kRedChroma = {8192, -6860, -1332, 8192};
};
// Where both kinds are used, the fine weights serve whole groups of this many pixels.
inline constexpr size_t kFineGroup = 8;

using Pixel = Channels<int32_t>;

#if ZORJ_SIMD

// Four pixels of every block as (red, green) and (blue, 1). Part i of a register's pixels are pixels 4i to 4i + 3.
template <class D>
struct PixelPairs {
  Words<D> redGreen, blueOne;
};

template <size_t kPart, class D>
HWY_INLINE PixelPairs<D> pairUp(D d, Bytes<D> red, Bytes<D> green, Bytes<D> blue) {
  const auto widen = [&](Bytes<D> first, Bytes<D> second) HWY_ATTR {
    const auto pairs = kPart < 2 ? hn::InterleaveLower(d, first, second) : hn::InterleaveUpper(d, first, second);
    const auto zero = hn::Zero(d);
    return hn::BitCast(WordTag<D>(),
                       kPart % 2 == 0 ? hn::InterleaveLower(d, pairs, zero) : hn::InterleaveUpper(d, pairs, zero));
  };
  return {widen(red, green), widen(blue, hn::Set(d, 1))};
}

#endif

template <class Order>
struct FromInterleaved {
  using Rows = PlaneRows<const uint8_t, 1>;

  static Pixel pixel(const Rows& src, size_t x) {
    const uint8_t* at = src[0] + 3 * x;
    return {at[Order::red], at[Order::green], at[Order::blue]};
  }

#if ZORJ_SIMD
  template <size_t kPart, class D>
  static HWY_INLINE PixelPairs<D> load(D d, const Rows& src, size_t x) {
    // The 16 bytes of the last four pixels end with them: nothing beyond is read.
    constexpr size_t kStart = kPart < 3 ? 12 * kPart : 32, kFirst = 12 * kPart - kStart;
    const PairBytes& bytes = kPairBytes<Order, kFirst>;
    const auto blocks = loadBlocks(d, src[0] + 3 * x + kStart, 48);
    return {hn::BitCast(WordTag<D>(), arrange(d, blocks, bytes.redGreen)),
            hn::Or(hn::BitCast(WordTag<D>(), arrange(d, blocks, bytes.blue)), pairOf(d, 0, 1))};
  }
#endif
};

struct FromPlanes {
  using Rows = PlaneRows<const uint8_t, 3>;

  static Pixel pixel(const Rows& src, size_t x) { return {src[0][x], src[1][x], src[2][x]}; }

#if ZORJ_SIMD
  template <size_t kPart, class D>
  static HWY_INLINE PixelPairs<D> load(D d, const Rows& src, size_t x) {
    return pairUp<kPart>(d, hn::LoadU(d, src[0] + x), hn::LoadU(d, src[1] + x), hn::LoadU(d, src[2] + x));
  }
#endif
};

template <class Format>
struct FromPacked {
  using Rows = PlaneRows<const uint16_t, 1>;

  static Pixel pixel(const Rows& src, size_t x) { return Format::unpack(loadUnaligned(src[0] + x)); }

#if ZORJ_SIMD
  template <size_t kPart, class D>
  static HWY_INLINE PixelPairs<D> load(D d, const Rows& src, size_t x) {
    const WordTag<D> d16;
    const auto one = hn::Set(d16, 1);
    const auto* from = reinterpret_cast<const uint8_t*>(src[0]) + 2 * x + 16 * (kPart / 2);
    const auto [red, green, blue] = Format::unpackLanes(hn::BitCast(d16, loadBlocks(d, from, 32)));
    if constexpr (kPart % 2 == 0) return {hn::InterleaveLower(d16, red, green), hn::InterleaveLower(d16, blue, one)};
    return {hn::InterleaveUpper(d16, red, green), hn::InterleaveUpper(d16, blue, one)};
  }
#endif
};

// CMYK sources also give the K of their pixels.
struct FromCmyk {
  using Rows = PlaneRows<const uint8_t, 1>;

  static Pixel pixel(const Rows& src, size_t x) {
    const uint8_t* at = src[0] + Cmyk::kBytes * x;
    return {255 - at[0], 255 - at[1], 255 - at[2]};
  }
  static uint8_t key(const Rows& src, size_t x) { return src[0][Cmyk::kBytes * x + Cmyk::key]; }

#if ZORJ_SIMD
  template <class D>
  static HWY_INLINE Bytes<D> fourPixels(D d, const Rows& src, size_t x, size_t i) {
    return loadBlocks(d, src[0] + Cmyk::kBytes * x + 16 * i, 64);
  }
  template <size_t kPart, class D>
  static HWY_INLINE PixelPairs<D> load(D d, const Rows& src, size_t x) {
    const auto rgb = complement(d, fourPixels(d, src, x, kPart));
    return {hn::BitCast(WordTag<D>(), arrange(d, rgb, kPairBytes<Cmyk, 0>.redGreen)),
            hn::Or(hn::BitCast(WordTag<D>(), arrange(d, rgb, kPairBytes<Cmyk, 0>.blue)), pairOf(d, 0, 1))};
  }
  template <class D>
  static HWY_INLINE Bytes<D> keys(D d, const Rows& src, size_t x) {
    const WordTag<D> d16;
    const hn::Repartition<uint32_t, D> u32;
    const auto key = [&](size_t i) HWY_ATTR {
      return hn::BitCast(PairTag<D>(), hn::ShiftRight<24>(hn::BitCast(u32, fourPixels(d, src, x, i))));
    };
    return packUnsigned(hn::ReorderDemote2To(d16, key(0), key(1)), hn::ReorderDemote2To(d16, key(2), key(3)));
  }
#endif
};

struct FromCmykPlanes {
  using Rows = PlaneRows<const uint8_t, 4>;

  static Pixel pixel(const Rows& src, size_t x) { return {255 - src[0][x], 255 - src[1][x], 255 - src[2][x]}; }
  static uint8_t key(const Rows& src, size_t x) { return src[3][x]; }

#if ZORJ_SIMD
  template <size_t kPart, class D>
  static HWY_INLINE PixelPairs<D> load(D d, const Rows& src, size_t x) {
    return pairUp<kPart>(d, complement(d, hn::LoadU(d, src[0] + x)), complement(d, hn::LoadU(d, src[1] + x)),
                         complement(d, hn::LoadU(d, src[2] + x)));
  }
  template <class D>
  static HWY_INLINE Bytes<D> keys(D d, const Rows& src, size_t x) {
    return hn::LoadU(d, src[3] + x);
  }
#endif
};

template <int kShift>
int32_t weigh(const Pixel& p, const Weights& w) {
  return (w.red * p.red + w.green * p.green + w.blue * p.blue + w.rounding) >> kShift;
}

// Pixels x to end - 1 one at a time. One plane takes the luminance alone, a fourth K.
template <class Precision, class Source, size_t kPlanes>
void convertPixels(const typename Source::Rows& src, const PlaneRows<uint8_t, kPlanes>& dst, size_t x, size_t end) {
  for (; x < end; ++x) {
    const Pixel pixel = Source::pixel(src, x);
    if constexpr (kPlanes == 4) dst[3][x] = Source::key(src, x);
    dst[0][x] = clampToByte(weigh<Precision::kShift>(pixel, Precision::kLuma));
    if constexpr (kPlanes >= 3) {
      dst[1][x] = clampToByte(weigh<Precision::kShift>(pixel, Precision::kBlueChroma) + 128);
      dst[2][x] = clampToByte(weigh<Precision::kShift>(pixel, Precision::kRedChroma) + 128);
    }
  }
}

#if ZORJ_SIMD

// 16-bit results of two parts.
template <int kShift, class D>
HWY_INLINE Words<D> weigh(D d, const PixelPairs<D>& first, const PixelPairs<D>& second, const Weights& w) {
  const PairTag<D> d32;
  const auto redGreen = pairOf(d, w.red, w.green), blueOne = pairOf(d, w.blue, w.rounding);
  const auto sum = [&](const PixelPairs<D>& pixels) HWY_ATTR {
    auto unused = hn::Zero(d32);
    const auto product = hn::ReorderWidenMulAccumulate(d32, pixels.redGreen, redGreen, hn::Zero(d32), unused);
    return hn::ShiftRight<kShift>(addPairProducts(product, pixels.blueOne, blueOne));
  };
  return hn::ReorderDemote2To(WordTag<D>(), sum(first), sum(second));
}

// Luminance and centred chroma of half a register's pixels.
template <class D>
struct YccWords {
  Words<D> luma, blueChroma, redChroma;
};

template <class Precision, bool kChroma, class D>
HWY_INLINE YccWords<D> weigh(D d, const PixelPairs<D>& first, const PixelPairs<D>& second) {
  const auto luma = weigh<Precision::kShift>(d, first, second, Precision::kLuma);
  if constexpr (!kChroma) return {luma, luma, luma};
  return {luma, weigh<Precision::kShift>(d, first, second, Precision::kBlueChroma),
          weigh<Precision::kShift>(d, first, second, Precision::kRedChroma)};
}

// The chroma saturates as a signed byte before its centre moves to 128.
template <class D>
HWY_INLINE Bytes<D> packChroma(D d, Words<D> low, Words<D> high) {
  return hn::Xor(hn::BitCast(d, packSigned(low, high)), hn::Set(d, 0x80));
}

// Whole registers of the pixels x to end - 1; returns where they end.
template <class Precision, class Source, class D, size_t kPlanes>
HWY_INLINE size_t convertRegisters(D d, const typename Source::Rows& src, const PlaneRows<uint8_t, kPlanes>& dst,
                                   size_t x, size_t end) {
  for (; x + hn::Lanes(d) <= end; x += hn::Lanes(d)) {
    const auto low =
        weigh<Precision, kPlanes >= 3>(d, Source::template load<0>(d, src, x), Source::template load<1>(d, src, x));
    const auto high =
        weigh<Precision, kPlanes >= 3>(d, Source::template load<2>(d, src, x), Source::template load<3>(d, src, x));
    if constexpr (kPlanes == 4) hn::StoreU(Source::keys(d, src, x), d, dst[3] + x);
    hn::StoreU(packUnsigned(low.luma, high.luma), d, dst[0] + x);
    if constexpr (kPlanes >= 3) {
      hn::StoreU(packChroma(d, low.blueChroma, high.blueChroma), d, dst[1] + x);
      hn::StoreU(packChroma(d, low.redChroma, high.redChroma), d, dst[2] + x);
    }
  }
  return x;
}

#endif

// The pixels that make no whole group of eight are converted with LeftoverPrecision.
template <class Source, size_t kPlanes, class Precision, class LeftoverPrecision>
void convertRow(typename Source::Rows src, PlaneRows<uint8_t, kPlanes> dst, size_t width) {
  const size_t grouped = width - width % kFineGroup;
  size_t x = 0;
#if ZORJ_SIMD
  x = convertRegisters<Precision, Source>(Widest(), src, dst, x, grouped);
  x = convertRegisters<Precision, Source>(OneBlock(), src, dst, x, grouped);
#endif
  convertPixels<Precision, Source>(src, dst, x, grouped);
  convertPixels<LeftoverPrecision, Source>(src, dst, grouped, width);
}

constexpr ColorForwardKernels kernels = {
    &convertRow<FromInterleaved<Rgb>, 3, Fine, Coarse>, &convertRow<FromInterleaved<Bgr>, 3, Fine, Coarse>,
    &convertRow<FromPlanes, 3, Fine, Coarse>,           &convertRow<FromInterleaved<Rgb>, 1, Fine, Fine>,
    &convertRow<FromInterleaved<Bgr>, 1, Fine, Fine>,   &convertRow<FromPlanes, 1, Fine, Fine>,
    &convertRow<FromPacked<Bgr555>, 3, Coarse, Coarse>, &convertRow<FromPacked<Bgr565>, 3, Coarse, Coarse>,
    &convertRow<FromPacked<Rgb555>, 3, Coarse, Coarse>, &convertRow<FromPacked<Rgb565>, 3, Coarse, Coarse>,
    &convertRow<FromCmyk, 4, Coarse, Coarse>,           &convertRow<FromCmykPlanes, 4, Coarse, Coarse>,
};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const ColorForwardKernels> perIsa{ZORJ_PER_ISA(kernels)};

const ColorForwardKernels& colorForwardKernels() { return *perIsa; }

}  // namespace zorj
#endif
