// What the forward and the inverse kernels of whole-image colour conversion share: where channels lie, and registers
// whose 16-byte blocks each hold sixteen pixels. Included after core/simd-inl.h, once per target.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// Bytes of a pixel.
struct Rgb {
  static constexpr size_t red = 0, green = 1, blue = 2, kBytes = 3;
};
struct Bgr {
  static constexpr size_t red = 2, green = 1, blue = 0, kBytes = 3;
};
// Of the complements.
struct Cmyk {
  static constexpr size_t red = 0, green = 1, blue = 2, key = 3, kBytes = 4;
};

// The channels of a pixel, or registers of them.
template <class T>
struct Channels {
  T red, green, blue;
};

// Packed pixels. The lowest and the highest field have 5 bits; red is the lowest or blue is. A channel is 8 bits of
// which its field holds the high ones.
template <int kGreenBits, bool kRedLowest>
struct Packed {
  static constexpr int kEndMask = 0xF8, kGreenMask = 0x100 - (1 << (8 - kGreenBits));
  // How far a channel lies from its field.
  static constexpr int kLowShift = 3, kGreenShift = kGreenBits - 3, kHighShift = kGreenBits + 2;

  static Channels<int32_t> unpack(int32_t word) {
    const int32_t low = word << kLowShift & kEndMask, high = word >> kHighShift & kEndMask;
    return {kRedLowest ? low : high, word >> kGreenShift & kGreenMask, kRedLowest ? high : low};
  }
  static uint16_t pack(const Channels<int32_t>& pixel) {
    const int32_t low = kRedLowest ? pixel.red : pixel.blue, high = kRedLowest ? pixel.blue : pixel.red;
    return static_cast<uint16_t>(low >> kLowShift | (pixel.green & kGreenMask) << kGreenShift |
                                 (high & kEndMask) << kHighShift);
  }

#if ZORJ_SIMD
  // The same in 16-bit lanes; channels to be packed lie within 0 .. 255.
  template <class V>
  static HWY_INLINE Channels<V> unpackLanes(V words) {
    const hn::DFromV<V> d;
    const V end = hn::Set(d, kEndMask), middle = hn::Set(d, kGreenMask);
    const V low = hn::And(hn::ShiftLeft<kLowShift>(words), end), high = hn::And(hn::ShiftRight<kHighShift>(words), end);
    return {kRedLowest ? low : high, hn::And(hn::ShiftRight<kGreenShift>(words), middle), kRedLowest ? high : low};
  }
  template <class V>
  static HWY_INLINE V packLanes(const Channels<V>& pixels) {
    const hn::DFromV<V> d;
    const V low = kRedLowest ? pixels.red : pixels.blue, high = kRedLowest ? pixels.blue : pixels.red;
    const V green = hn::And(pixels.green, hn::Set(d, kGreenMask)), top = hn::And(high, hn::Set(d, kEndMask));
    return hn::Or(hn::Or(hn::ShiftRight<kLowShift>(low), hn::ShiftLeft<kGreenShift>(green)),
                  hn::ShiftLeft<kHighShift>(top));
  }
#endif
};
using Bgr555 = Packed<5, false>;
using Bgr565 = Packed<6, false>;
using Rgb555 = Packed<5, true>;
using Rgb565 = Packed<6, true>;

inline uint8_t clampToByte(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

#if ZORJ_SIMD

// Byte tags: the widest there is, and one block.
using Widest = hn::ScalableTag<uint8_t>;
using OneBlock = hn::FixedTag<uint8_t, 16>;

template <class D>
using Bytes = hn::Vec<D>;
template <class D>
using WordTag = hn::Repartition<int16_t, D>;
template <class D>
using Words = hn::Vec<WordTag<D>>;
template <class D>
using PairTag = hn::Repartition<int32_t, D>;

// Block i holds the 16 bytes at from + i * distance.
template <class D>
HWY_INLINE Bytes<D> loadBlocks(D d, const uint8_t* from, size_t distance) {
  if constexpr (hn::MaxLanes(D()) == 16) {
    return hn::LoadU(d, from);
  } else {
    const hn::Half<D> half;
    return hn::Combine(d, loadBlocks(half, from + hn::MaxLanes(half) / 16 * distance, distance),
                       loadBlocks(half, from, distance));
  }
}

// Writes block i to the 16 bytes at to + i * distance.
template <class D>
HWY_INLINE void storeBlocks(D d, Bytes<D> blocks, uint8_t* to, size_t distance) {
  if constexpr (hn::MaxLanes(D()) == 16) {
    hn::StoreU(blocks, d, to);
  } else {
    const hn::Half<D> half;
    storeBlocks(half, hn::LowerHalf(half, blocks), to, distance);
    storeBlocks(half, hn::UpperHalf(half, blocks), to + hn::MaxLanes(half) / 16 * distance, distance);
  }
}

// Byte i of every block becomes byte bytes[i] of it, or 0 where that is kNone.
inline constexpr uint8_t kNone = 0x80;
template <class D>
HWY_INLINE Bytes<D> arrange(D d, Bytes<D> blocks, const uint8_t (&bytes)[16]) {
  return hn::TableLookupBytesOr0(blocks, hn::LoadDup128(d, bytes));
}

// Which bytes of four pixels, the first of which starts at byte kStart of a block, make 16-bit pairs (red, green) and
// (blue, 0).
struct PairBytes {
  uint8_t redGreen[16], blue[16];
};
template <class Order, size_t kStart>
inline constexpr PairBytes kPairBytes = [] {
  PairBytes bytes{};
  for (size_t i = 0; i < 16; ++i) {
    const size_t pixel = kStart + Order::kBytes * (i / 4);
    bytes.redGreen[i] = static_cast<uint8_t>(i % 4 == 0   ? pixel + Order::red
                                             : i % 4 == 2 ? pixel + Order::green
                                                          : kNone);
    bytes.blue[i] = static_cast<uint8_t>(i % 4 == 0 ? pixel + Order::blue : kNone);
  }
  return bytes;
}();

// Every 32-bit lane two 16-bit values.
template <class D>
HWY_INLINE Words<D> pairOf(D, int16_t first, int16_t second) {
  const uint32_t both = static_cast<uint16_t>(first) | static_cast<uint32_t>(static_cast<uint16_t>(second)) << 16;
  return hn::BitCast(WordTag<D>(), hn::Set(hn::Repartition<uint32_t, D>(), both));
}

template <class D>
HWY_INLINE Bytes<D> complement(D d, Bytes<D> v) {
  return hn::Xor(v, hn::Set(d, 0xFF));
}

#endif

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
