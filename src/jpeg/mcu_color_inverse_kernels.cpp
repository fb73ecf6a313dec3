#include <algorithm>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"
#include "jpeg/mcu_color_kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/mcu_color_inverse_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"
#include "jpeg/color_lanes-inl.h"
#include "jpeg/mcu_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// What a chroma pair adds to Y: the weighted sum of Cb and Cr and a constant in units of kConstantUnit, shifted and
// narrowed with saturation; where chroma has half the height, the green term is subtracted instead.
struct ChromaTerm {
  int16_t cb, cr, constant;
  int shift;
};
struct FullHeightFormula {
  static constexpr ChromaTerm red = {0, 22970, 8224, 14}, green = {-5638, -11700, 8224, 14},
                              blue = {29032, 0, 8224, 14};
  static constexpr bool subtractGreen = false;
};
struct HalfHeightFormula {
  static constexpr ChromaTerm red = {0, 11485, 4112, 13}, green = {5638, 11700, -8160, 14}, blue = {14516, 0, 4112, 13};
  static constexpr bool subtractGreen = true;
};
template <class Sampling>
using FormulaOf = std::conditional_t<Sampling::vertical == 1, FullHeightFormula, HalfHeightFormula>;

// Destinations: `put` writes one pixel, `store` eight in each of kLines lines that lie `distance` bytes apart. CMYK is
// given its K besides.

template <class Order>
struct ToInterleaved {
  static constexpr int32_t kBytes = 3, kPlanes = 3;

  static void put(const Channels<int32_t>& pixel, uint8_t* to) {
    to[Order::red] = clampToByte(pixel.red);
    to[Order::green] = clampToByte(pixel.green);
    to[Order::blue] = clampToByte(pixel.blue);
  }

#if ZORJ_SIMD
  // Which bytes of (eight of the first channel, eight of the second) and of (eight of the third) make 16 bytes of the
  // pixels.
  struct PixelBytes {
    uint8_t firstTwo[16], third[16];
  };
  static constexpr PixelBytes pixelBytes(size_t start) {
    PixelBytes bytes{};
    for (size_t i = 0; i < 16; ++i) {
      const size_t pixel = (start + i) / 3, channel = (start + i) % 3;
      bytes.firstTwo[i] = static_cast<uint8_t>(channel < 2 ? 8 * channel + pixel : kNone);
      bytes.third[i] = static_cast<uint8_t>(channel == 2 ? pixel : kNone);
    }
    return bytes;
  }
  static HWY_INLINE void store(const Channels<Lanes>& pixels, uint8_t* to, size_t distance) {
    static constexpr PixelBytes kFirst = pixelBytes(0), kLast = pixelBytes(8);
    const ByteTag d;
    const Lanes first = Order::red == 0 ? pixels.red : pixels.blue, last = Order::red == 0 ? pixels.blue : pixels.red;
    const auto firstTwo = packUnsigned(first, pixels.green), third = packUnsigned(last, last);
    const auto weave = [&](const PixelBytes& bytes) HWY_ATTR {
      return hn::Or(arrange(d, firstTwo, bytes.firstTwo), arrange(d, third, bytes.third));
    };
    // The 24 bytes of eight pixels, those in the middle twice.
    storeBlocks(d, weave(kFirst), to, distance);
    storeBlocks(d, weave(kLast), to + 8, distance);
  }
#endif
};

template <class Format>
struct ToPacked {
  static constexpr int32_t kBytes = 2, kPlanes = 3;

  static void put(const Channels<int32_t>& pixel, uint8_t* to) {
    const Channels<int32_t> clamped = {clampToByte(pixel.red), clampToByte(pixel.green), clampToByte(pixel.blue)};
    storeUnaligned(reinterpret_cast<uint16_t*>(to), Format::pack(clamped));
  }

#if ZORJ_SIMD
  static HWY_INLINE void store(const Channels<Lanes>& pixels, uint8_t* to, size_t distance) {
    const LaneTag d;
    const auto clamp = [&](Lanes v) HWY_ATTR { return hn::Min(hn::Max(v, hn::Zero(d)), hn::Set(d, 255)); };
    const Lanes words = Format::packLanes(Channels<Lanes>{clamp(pixels.red), clamp(pixels.green), clamp(pixels.blue)});
    storeBlocks(ByteTag(), hn::BitCast(ByteTag(), words), to, distance);
  }
#endif
};

struct ToCmyk {
  static constexpr int32_t kBytes = Cmyk::kBytes, kPlanes = 4;

  static void put(const Channels<int32_t>& pixel, int32_t key, uint8_t* to) {
    to[0] = static_cast<uint8_t>(255 - clampToByte(pixel.red));
    to[1] = static_cast<uint8_t>(255 - clampToByte(pixel.green));
    to[2] = static_cast<uint8_t>(255 - clampToByte(pixel.blue));
    to[3] = clampToByte(key);
  }

#if ZORJ_SIMD
  static HWY_INLINE void store(const Channels<Lanes>& pixels, Lanes keys, uint8_t* to, size_t distance) {
    const ByteTag d;
    // The complement of Y and K below undoes this one.
    const auto keysComplement = hn::SaturatedSub(hn::Set(LaneTag(), 255), keys);
    const auto cyanMagenta = complement(d, packUnsigned(pixels.red, pixels.green));
    const auto yellowKey = complement(d, packUnsigned(pixels.blue, keysComplement));
    const auto cyanYellow = hn::InterleaveLower(d, cyanMagenta, yellowKey);
    const auto magentaKey = hn::InterleaveUpper(d, cyanMagenta, yellowKey);
    storeBlocks(d, hn::InterleaveLower(d, cyanYellow, magentaKey), to, distance);
    storeBlocks(d, hn::InterleaveUpper(d, cyanYellow, magentaKey), to + 16, distance);
  }
#endif
};

#if ZORJ_SIMD

// Of eight chroma pairs a block, four and four.
template <const ChromaTerm& kTerm>
HWY_INLINE Lanes chromaTerm(Lanes first, Lanes last) {
  const auto rounding = hn::Set(SumTag(), kTerm.constant * kConstantUnit);
  const auto weights = pairOf(ByteTag(), kTerm.cb, kTerm.cr);
  return hn::ReorderDemote2To(LaneTag(), hn::ShiftRight<kTerm.shift>(addPairProducts(rounding, first, weights)),
                              hn::ShiftRight<kTerm.shift>(addPairProducts(rounding, last, weights)));
}

template <class Formula>
HWY_INLINE Channels<Lanes> chromaTerms(Lanes cb, Lanes cr) {
  const LaneTag d;
  const Lanes first = hn::InterleaveLower(d, cb, cr), last = hn::InterleaveUpper(d, cb, cr);
  const Lanes green = chromaTerm<Formula::green>(first, last);
  return {chromaTerm<Formula::red>(first, last), Formula::subtractGreen ? hn::Neg(green) : green,
          chromaTerm<Formula::blue>(first, last)};
}

// Of eight lanes a block the left or the right four, every one twice.
HWY_INLINE Channels<Lanes> repeatSide(const Channels<Lanes>& terms, int32_t side) {
  const auto repeat = [side](Lanes v) HWY_ATTR {
    return side == 0 ? hn::InterleaveLower(LaneTag(), v, v) : hn::InterleaveUpper(LaneTag(), v, v);
  };
  return {repeat(terms.red), repeat(terms.green), repeat(terms.blue)};
}

template <class Destination, class Sampling>
void inverse(const int16_t* const* src, uint8_t* dst, int32_t dstStep) {
  const size_t distance = static_cast<size_t>(dstStep) * Sampling::vertical;
  for (int32_t y = 0; y < 8; y += kLines) {
    const Channels<Lanes> terms =
        chromaTerms<FormulaOf<Sampling>>(loadRows<1>(src[1] + 8 * y), loadRows<1>(src[2] + 8 * y));
    for (int32_t side = 0; side < Sampling::horizontal; ++side) {
      const Channels<Lanes> spread = Sampling::horizontal == 1 ? terms : repeatSide(terms, side);
      for (int32_t v = 0; v < Sampling::vertical; ++v) {
        const int32_t line = Sampling::vertical * y + v, at = Sampling::lumaAt(8 * side, line);
        uint8_t* to = rowAt(dst, dstStep, line) + 8 * Destination::kBytes * side;
        const Lanes luma = loadRows<Sampling::vertical>(src[0] + at);
        const Channels<Lanes> pixels = {hn::Add(luma, spread.red), hn::Add(luma, spread.green),
                                        hn::Add(luma, spread.blue)};
        if constexpr (Destination::kPlanes == 4) {
          const Lanes keys = loadRows<Sampling::vertical>(src[3] + at);
          Destination::store(pixels, hn::SaturatedAdd(keys, hn::Set(LaneTag(), 128)), to, distance);
        } else {
          Destination::store(pixels, to, distance);
        }
      }
    }
  }
}

void join422(const int16_t* const* src, uint8_t* dst, int32_t dstStep) {
  const ByteTag d;
  const LaneTag d16;
  const auto distance = static_cast<size_t>(dstStep);
  // Saturation to signed bytes clamps, the flipped sign bit adds 128.
  const auto narrow = [&](Lanes left, Lanes right)
                          HWY_ATTR { return hn::Xor(hn::BitCast(d, packSigned(left, right)), hn::Set(d, 0x80)); };
  for (int32_t y = 0; y < 8; y += kLines) {
    const Lanes cb = loadRows<1>(src[1] + 8 * y), cr = loadRows<1>(src[2] + 8 * y);
    const auto luma = narrow(loadRows<1>(src[0] + 8 * y), loadRows<1>(src[0] + 64 + 8 * y));
    const auto chroma = narrow(hn::InterleaveLower(d16, cb, cr), hn::InterleaveUpper(d16, cb, cr));
    uint8_t* to = rowAt(dst, dstStep, y);
    storeBlocks(d, hn::InterleaveLower(d, luma, chroma), to, distance);
    storeBlocks(d, hn::InterleaveUpper(d, luma, chroma), to + 16, distance);
  }
}

#else

int32_t chromaTerm(const ChromaTerm& term, int32_t cb, int32_t cr) {
  const int32_t sum = (term.cb * cb + term.cr * cr + term.constant * kConstantUnit) >> term.shift;
  return std::clamp<int32_t>(sum, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max());
}

int32_t addWrapping(int32_t luma, int32_t term) { return static_cast<int16_t>(luma + term); }

template <class Destination, class Sampling>
void inverse(const int16_t* const* src, uint8_t* dst, int32_t dstStep) {
  using Formula = FormulaOf<Sampling>;
  for (int32_t line = 0; line < 8 * Sampling::vertical; ++line) {
    uint8_t* to = rowAt(dst, dstStep, line);
    for (int32_t column = 0; column < 8 * Sampling::horizontal; ++column, to += Destination::kBytes) {
      const int32_t at = Sampling::lumaAt(column, line);
      const int32_t chromaAt = 8 * (line / Sampling::vertical) + column / Sampling::horizontal;
      const int32_t luma = loadUnaligned(src[0] + at);
      const int32_t cb = loadUnaligned(src[1] + chromaAt), cr = loadUnaligned(src[2] + chromaAt);
      const int32_t green = chromaTerm(Formula::green, cb, cr);
      const Channels<int32_t> pixel = {addWrapping(luma, chromaTerm(Formula::red, cb, cr)),
                                       addWrapping(luma, Formula::subtractGreen ? -green : green),
                                       addWrapping(luma, chromaTerm(Formula::blue, cb, cr))};
      if constexpr (Destination::kPlanes == 4) {
        Destination::put(pixel, loadUnaligned(src[3] + at) + 128, to);
      } else {
        Destination::put(pixel, to);
      }
    }
  }
}

void join422(const int16_t* const* src, uint8_t* dst, int32_t dstStep) {
  const auto load = [](const int16_t* from) { return clampToByte(loadUnaligned(from) + 128); };
  for (int32_t y = 0; y < 8; ++y) {
    uint8_t* pair = rowAt(dst, dstStep, y);
    for (int32_t x = 0; x < 8; ++x, pair += 4) {
      const int16_t* luma = src[0] + Sampling422::lumaAt(2 * x, y);
      pair[0] = load(luma);
      pair[1] = load(src[1] + 8 * y + x);
      pair[2] = load(luma + 1);
      pair[3] = load(src[2] + 8 * y + x);
    }
  }
}

#endif

constexpr McuInverseKernels kernels = {
    &inverse<ToInterleaved<Rgb>, Sampling444>,
    &inverse<ToInterleaved<Rgb>, Sampling422>,
    &inverse<ToInterleaved<Rgb>, Sampling411>,
    &inverse<ToInterleaved<Bgr>, Sampling444>,
    &inverse<ToInterleaved<Bgr>, Sampling422>,
    &inverse<ToInterleaved<Bgr>, Sampling411>,
    &inverse<ToPacked<Bgr555>, Sampling444>,
    &inverse<ToPacked<Bgr555>, Sampling422>,
    &inverse<ToPacked<Bgr555>, Sampling411>,
    &inverse<ToPacked<Bgr565>, Sampling444>,
    &inverse<ToPacked<Bgr565>, Sampling422>,
    &inverse<ToPacked<Bgr565>, Sampling411>,
    &inverse<ToCmyk, Sampling444>,
    &inverse<ToCmyk, Sampling422>,
    &inverse<ToCmyk, Sampling411>,
    &join422,
};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const McuInverseKernels> perIsa{ZORJ_PER_ISA(kernels)};

const McuInverseKernels& mcuInverseKernels() { return *perIsa; }

}  // namespace zorj
#endif
