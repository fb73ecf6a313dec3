#include <algorithm>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/color_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/color_inverse_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/color_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// What the chroma, minus 128, adds to the luminance. As two instructions can make it of 16-bit lanes, red and blue are
// rounded products of twice the chroma and a weight in units of 2^-15, one less at `redExcess` and `blueExcess`.
struct Fine {
  static int32_t red(int32_t cr) { return (22970 * cr + 8145) >> 14; }
  static int32_t green(int32_t cb, int32_t cr) { return (-5638 * cb - 11700 * cr + 8302) >> 14; }
  static int32_t blue(int32_t cb) { return (29032 * cb + 8135) >> 14; }

#if ZORJ_SIMD
  static constexpr int16_t kRed = 22970, kBlue = 29032;
  static constexpr bool kHasExcess = true;
  static constexpr int16_t kRedExcess = 51, kBlueExcess = -125;
  // Green as the weights of twice the chroma.
  static constexpr int16_t kGreenCb = -2819, kGreenCr = -5850;
  static constexpr int32_t kGreenRounding = 8302;
  static constexpr int kGreenShift = 14;
#endif
};
// For channels that lose their low bits.
struct Coarse {
  static int32_t red(int32_t cr) { return (91881 * cr + 32768) >> 16; }
  static int32_t green(int32_t cb, int32_t cr) { return (-22554 * cb - 46802 * cr + 32768) >> 16; }
  static int32_t blue(int32_t cb) { return (116130 * cb + 32768) >> 16; }

#if ZORJ_SIMD
  static constexpr int16_t kRed = 22970, kBlue = 29033;
  static constexpr bool kHasExcess = false;
  static constexpr int16_t kRedExcess = 0, kBlueExcess = 0;
  static constexpr int16_t kGreenCb = -11277, kGreenCr = -23401;
  static constexpr int32_t kGreenRounding = 32768;
  static constexpr int kGreenShift = 16;
#endif
};

struct Ycc {
  int32_t luma, cb, cr;
};
using Pixel = Channels<uint8_t>;

#if ZORJ_SIMD
template <class D>
struct YccBytes {
  Bytes<D> luma, cb, cr;
};
template <class D>
using RgbBytes = Channels<Bytes<D>>;
template <class D>
using RgbWords = Channels<Words<D>>;
#endif

template <size_t kPlanes>
struct FromPlanes {
  using Rows = PlaneRows<const uint8_t, kPlanes>;

  static Ycc pixel(const Rows& src, size_t x) { return {src[0][x], src[1][x], src[2][x]}; }

#if ZORJ_SIMD
  template <class D>
  static HWY_INLINE YccBytes<D> load(D d, const Rows& src, size_t x) {
    return {hn::LoadU(d, src[0] + x), hn::LoadU(d, src[1] + x), hn::LoadU(d, src[2] + x)};
  }
#endif
};

struct From422 {
  using Rows = PlaneRows<const uint8_t, 1>;

  static Ycc pixel(const Rows& src, size_t x) {
    const uint8_t* pair = src[0] + 4 * (x / 2);
    return {pair[2 * (x % 2)], pair[1], pair[3]};
  }

#if ZORJ_SIMD
  template <class D>
  static HWY_INLINE YccBytes<D> load(D d, const Rows& src, size_t x) {
    static constexpr uint8_t kCb[] = {0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14};
    static constexpr uint8_t kCr[] = {1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11, 13, 13, 15, 15};
    const WordTag<D> d16;
    const hn::Repartition<uint16_t, D> u16;
    const auto first = hn::BitCast(u16, loadBlocks(d, src[0] + 2 * x, 32));
    const auto second = hn::BitCast(u16, loadBlocks(d, src[0] + 2 * x + 16, 32));
    const auto low = hn::Set(u16, 0xFF);
    const auto pack = [&](auto a, auto b) HWY_ATTR { return packUnsigned(hn::BitCast(d16, a), hn::BitCast(d16, b)); };
    const auto chroma = pack(hn::ShiftRight<8>(first), hn::ShiftRight<8>(second));
    return {pack(hn::And(first, low), hn::And(second, low)), arrange(d, chroma, kCb), arrange(d, chroma, kCr)};
  }
#endif
};

// Destinations are given the source rows too, for the K that some copy.

template <class Order>
struct ToInterleaved {
  using Rows = PlaneRows<uint8_t, 1>;

  template <class Source>
  static void store(const Pixel& pixel, const Source&, const Rows& dst, size_t x) {
    uint8_t* at = dst[0] + 3 * x;
    at[Order::red] = pixel.red;
    at[Order::green] = pixel.green;
    at[Order::blue] = pixel.blue;
  }

#if ZORJ_SIMD
  // Bytes 16 part to 16 part + 15 of sixteen pixels: which of them channel `channel` of which pixel fills.
  struct Bytes16 {
    uint8_t at[16];
  };
  static constexpr Bytes16 pixelBytes(size_t part, size_t channel) {
    Bytes16 bytes{};
    for (size_t i = 0; i < 16; ++i) {
      const size_t byte = 16 * part + i;
      bytes.at[i] = static_cast<uint8_t>(byte % 3 == channel ? byte / 3 : kNone);
    }
    return bytes;
  }
  template <size_t kPart, class D>
  static HWY_INLINE void storePart(D d, const RgbBytes<D>& pixels, uint8_t* to) {
    static constexpr Bytes16 kRed = pixelBytes(kPart, Order::red), kGreen = pixelBytes(kPart, Order::green),
                             kBlue = pixelBytes(kPart, Order::blue);
    const auto blocks = hn::Or(hn::Or(arrange(d, pixels.red, kRed.at), arrange(d, pixels.green, kGreen.at)),
                               arrange(d, pixels.blue, kBlue.at));
    storeBlocks(d, blocks, to + 16 * kPart, 48);
  }
  template <class Source, class D>
  static HWY_INLINE void store(D d, const RgbBytes<D>& pixels, const Source&, const Rows& dst, size_t x) {
    storePart<0>(d, pixels, dst[0] + 3 * x);
    storePart<1>(d, pixels, dst[0] + 3 * x);
    storePart<2>(d, pixels, dst[0] + 3 * x);
  }
#endif
};

struct ToPlanes {
  using Rows = PlaneRows<uint8_t, 3>;

  template <class Source>
  static void store(const Pixel& pixel, const Source&, const Rows& dst, size_t x) {
    dst[0][x] = pixel.red;
    dst[1][x] = pixel.green;
    dst[2][x] = pixel.blue;
  }

#if ZORJ_SIMD
  template <class Source, class D>
  static HWY_INLINE void store(D d, const RgbBytes<D>& pixels, const Source&, const Rows& dst, size_t x) {
    hn::StoreU(pixels.red, d, dst[0] + x);
    hn::StoreU(pixels.green, d, dst[1] + x);
    hn::StoreU(pixels.blue, d, dst[2] + x);
  }
#endif
};

template <class Format>
struct ToPacked {
  using Rows = PlaneRows<uint16_t, 1>;

  template <class Source>
  static void store(const Pixel& pixel, const Source&, const Rows& dst, size_t x) {
    storeUnaligned(dst[0] + x, Format::pack({pixel.red, pixel.green, pixel.blue}));
  }

#if ZORJ_SIMD
  template <class Source, class D>
  static HWY_INLINE void store(D d, const RgbBytes<D>& pixels, const Source&, const Rows& dst, size_t x) {
    const auto zero = hn::Zero(d);
    const auto lower = [&](Bytes<D> v) HWY_ATTR { return hn::BitCast(WordTag<D>(), hn::InterleaveLower(d, v, zero)); };
    const auto upper = [&](Bytes<D> v) HWY_ATTR { return hn::BitCast(WordTag<D>(), hn::InterleaveUpper(d, v, zero)); };
    const auto first = Format::packLanes(RgbWords<D>{lower(pixels.red), lower(pixels.green), lower(pixels.blue)});
    const auto second = Format::packLanes(RgbWords<D>{upper(pixels.red), upper(pixels.green), upper(pixels.blue)});
    auto* to = reinterpret_cast<uint8_t*>(dst[0] + x);
    storeBlocks(d, hn::BitCast(d, first), to, 32);
    storeBlocks(d, hn::BitCast(d, second), to + 16, 32);
  }
#endif
};

struct ToCmyk {
  using Rows = PlaneRows<uint8_t, 1>;

  template <class Source>
  static void store(const Pixel& pixel, const Source& src, const Rows& dst, size_t x) {
    uint8_t* at = dst[0] + Cmyk::kBytes * x;
    at[0] = static_cast<uint8_t>(255 - pixel.red);
    at[1] = static_cast<uint8_t>(255 - pixel.green);
    at[2] = static_cast<uint8_t>(255 - pixel.blue);
    at[3] = src[3][x];
  }

#if ZORJ_SIMD
  template <class Source, class D>
  static HWY_INLINE void store(D d, const RgbBytes<D>& pixels, const Source& src, const Rows& dst, size_t x) {
    const hn::Repartition<uint16_t, D> d16;
    const auto cyan = complement(d, pixels.red), magenta = complement(d, pixels.green),
               yellow = complement(d, pixels.blue), key = hn::LoadU(d, src[3] + x);
    const auto storeFour = [&](auto cyanMagenta, auto yellowKey, size_t i) HWY_ATTR {
      const auto low = hn::BitCast(d16, cyanMagenta), high = hn::BitCast(d16, yellowKey);
      uint8_t* to = dst[0] + Cmyk::kBytes * x + 32 * i;
      storeBlocks(d, hn::BitCast(d, hn::InterleaveLower(d16, low, high)), to, 64);
      storeBlocks(d, hn::BitCast(d, hn::InterleaveUpper(d16, low, high)), to + 16, 64);
    };
    storeFour(hn::InterleaveLower(d, cyan, magenta), hn::InterleaveLower(d, yellow, key), 0);
    storeFour(hn::InterleaveUpper(d, cyan, magenta), hn::InterleaveUpper(d, yellow, key), 1);
  }
#endif
};

struct ToCmykPlanes {
  using Rows = PlaneRows<uint8_t, 4>;

  template <class Source>
  static void store(const Pixel& pixel, const Source& src, const Rows& dst, size_t x) {
    dst[3][x] = src[3][x];
    dst[0][x] = static_cast<uint8_t>(255 - pixel.red);
    dst[1][x] = static_cast<uint8_t>(255 - pixel.green);
    dst[2][x] = static_cast<uint8_t>(255 - pixel.blue);
  }

#if ZORJ_SIMD
  template <class Source, class D>
  static HWY_INLINE void store(D d, const RgbBytes<D>& pixels, const Source& src, const Rows& dst, size_t x) {
    hn::StoreU(hn::LoadU(d, src[3] + x), d, dst[3] + x);
    hn::StoreU(complement(d, pixels.red), d, dst[0] + x);
    hn::StoreU(complement(d, pixels.green), d, dst[1] + x);
    hn::StoreU(complement(d, pixels.blue), d, dst[2] + x);
  }
#endif
};

template <class Terms>
Pixel convert(const Ycc& pixel) {
  const int32_t cb = pixel.cb - 128, cr = pixel.cr - 128;
  return {clampToByte(pixel.luma + Terms::red(cr)), clampToByte(pixel.luma + Terms::green(cb, cr)),
          clampToByte(pixel.luma + Terms::blue(cb))};
}

#if ZORJ_SIMD

// The product with a weight in units of 2^-15, rounded, less one where `twice` is twice `excess`.
template <bool kHasExcess, class D>
HWY_INLINE Words<D> roundedProduct(D, Words<D> twice, int16_t weight, int excess) {
  const WordTag<D> d16;
  const auto product = hn::MulFixedPoint15(twice, hn::Set(d16, weight));
  if constexpr (!kHasExcess) return product;
  const auto exceeds = hn::Eq(twice, hn::Set(d16, static_cast<int16_t>(2 * excess)));
  return hn::Add(product, hn::VecFromMask(d16, exceeds));
}

// The channels before they are clamped, of luminance and twice the centred chroma.
template <class Terms, class D>
HWY_INLINE RgbWords<D> convertWords(D d, Words<D> luma, Words<D> cb, Words<D> cr) {
  const WordTag<D> d16;
  const auto weights = pairOf(d, Terms::kGreenCb, Terms::kGreenCr);
  const auto rounding = hn::Set(PairTag<D>(), Terms::kGreenRounding);
  const auto sum = [&](Words<D> pairs) HWY_ATTR {
    return hn::ShiftRight<Terms::kGreenShift>(addPairProducts(rounding, pairs, weights));
  };
  const auto green =
      hn::ReorderDemote2To(d16, sum(hn::InterleaveLower(d16, cb, cr)), sum(hn::InterleaveUpper(d16, cb, cr)));
  return {hn::Add(luma, roundedProduct<Terms::kHasExcess>(d, cr, Terms::kRed, Terms::kRedExcess)), hn::Add(luma, green),
          hn::Add(luma, roundedProduct<Terms::kHasExcess>(d, cb, Terms::kBlue, Terms::kBlueExcess))};
}

template <class Terms, class D>
HWY_INLINE RgbBytes<D> convert(D d, const YccBytes<D>& pixels) {
  const WordTag<D> d16;
  const auto zero = hn::Zero(d), centre = hn::Set(d, 0x80);
  const auto cb = hn::Xor(pixels.cb, centre), cr = hn::Xor(pixels.cr, centre);
  const auto widen = [&](Bytes<D> words) HWY_ATTR { return hn::BitCast(d16, words); };
  const auto twice = [&](Bytes<D> words) HWY_ATTR { return hn::ShiftRight<7>(hn::BitCast(d16, words)); };
  const auto lower =
      convertWords<Terms>(d, widen(hn::InterleaveLower(d, pixels.luma, zero)), twice(hn::InterleaveLower(d, zero, cb)),
                          twice(hn::InterleaveLower(d, zero, cr)));
  const auto upper =
      convertWords<Terms>(d, widen(hn::InterleaveUpper(d, pixels.luma, zero)), twice(hn::InterleaveUpper(d, zero, cb)),
                          twice(hn::InterleaveUpper(d, zero, cr)));
  return {packUnsigned(lower.red, upper.red), packUnsigned(lower.green, upper.green),
          packUnsigned(lower.blue, upper.blue)};
}

// Whole registers of the pixels x to width - 1; returns where it ends.
template <class Terms, class Source, class Destination, class D>
HWY_INLINE size_t convertRegisters(D d, const typename Source::Rows& src, const typename Destination::Rows& dst,
                                   size_t x, size_t width) {
  for (; x + hn::Lanes(d) <= width; x += hn::Lanes(d)) {
    Destination::store(d, convert<Terms>(d, Source::load(d, src, x)), src, dst, x);
  }
  return x;
}

#endif

template <class Terms, class Source, class Destination>
void convertRow(typename Source::Rows src, typename Destination::Rows dst, size_t width) {
  size_t x = 0;
#if ZORJ_SIMD
  x = convertRegisters<Terms, Source, Destination>(Widest(), src, dst, x, width);
  x = convertRegisters<Terms, Source, Destination>(OneBlock(), src, dst, x, width);
#endif
  for (; x < width; ++x) Destination::store(convert<Terms>(Source::pixel(src, x)), src, dst, x);
}

constexpr ColorInverseKernels kernels = {
    &convertRow<Fine, FromPlanes<3>, ToInterleaved<Rgb>>,
    &convertRow<Fine, FromPlanes<3>, ToInterleaved<Bgr>>,
    &convertRow<Fine, FromPlanes<3>, ToPlanes>,
    &convertRow<Coarse, FromPlanes<3>, ToPacked<Bgr555>>,
    &convertRow<Coarse, FromPlanes<3>, ToPacked<Bgr565>>,
    &convertRow<Coarse, FromPlanes<3>, ToPacked<Rgb555>>,
    &convertRow<Coarse, FromPlanes<3>, ToPacked<Rgb565>>,
    &convertRow<Fine, From422, ToInterleaved<Rgb>>,
    &convertRow<Fine, FromPlanes<4>, ToCmyk>,
    &convertRow<Fine, FromPlanes<4>, ToCmykPlanes>,
};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const ColorInverseKernels> perIsa{ZORJ_PER_ISA(kernels)};

const ColorInverseKernels& colorInverseKernels() { return *perIsa; }

}  // namespace zorj
#endif
