#include "jpeg/mcu_sampling_kernels.h"

#include <algorithm>
#include <array>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/mcu_sampling_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#if ZORJ_SIMD

// 16 pixels make a group: a row of a wide MCU, or two rows of an MCU 8 pixels wide. In memory they are 48 bytes, in
// registers a 16-byte block in each of three vectors. Wider vectors hold two groups.
using Block = hn::Full128<uint8_t>;
using WordBlock = hn::Full128<int16_t>;
using HalfBlock = hn::Half<Block>;
constexpr size_t kBlock = 16;
#if HWY_TARGET <= HWY_AVX2
constexpr int kGroups = 2;
using Bytes = hn::Twice<Block>;
#else
constexpr int kGroups = 1;
using Bytes = Block;
#endif
using Words = hn::Repartition<int16_t, Bytes>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;

// The vector whose block for group g is load(g).
template <class D, class Load>
HWY_INLINE hn::Vec<D> fromGroups(D d, const Load& load) {
#if HWY_TARGET <= HWY_AVX2
  return hn::Combine(d, load(1), load(0));
#else
  (void)d;
  return load(0);
#endif
}

// Calls store(block, g) for every group.
template <class V, class Store>
HWY_INLINE void toGroups(V vector, const Store& store) {
#if HWY_TARGET <= HWY_AVX2
  const hn::Half<hn::DFromV<V>> half;
  store(hn::LowerHalf(half, vector), 0);
  store(hn::UpperHalf(half, vector), 1);
#else
  store(vector, 0);
#endif
}

struct Vectors {
  ByteVector at0, at1, at2;
};

using Shuffle = std::array<uint8_t, kBlock>;
constexpr uint8_t kZero = 0x80;

// For the channel with this number: which bytes of vector `part` of the pixels become its samples.
constexpr Shuffle channelFromPart(size_t channel, size_t part) {
  Shuffle shuffle;
  for (size_t x = 0; x < kBlock; ++x) {
    const size_t byte = 3 * x + channel;
    shuffle[x] = byte / kBlock == part ? static_cast<uint8_t>(byte % kBlock) : kZero;
  }
  return shuffle;
}

// For vector `part` of the pixels: which samples of the channel with this number become its bytes.
constexpr Shuffle partFromChannel(size_t part, size_t channel) {
  Shuffle shuffle;
  for (size_t i = 0; i < kBlock; ++i) {
    const size_t byte = part * kBlock + i;
    shuffle[i] = byte % 3 == channel ? static_cast<uint8_t>(byte / 3) : kZero;
  }
  return shuffle;
}

template <Shuffle (*makeShuffle)(size_t, size_t), size_t to, size_t from>
HWY_INLINE ByteVector shuffled(ByteVector bytes) {
  static constexpr Shuffle kShuffle = makeShuffle(to, from);
  return hn::TableLookupBytesOr0(bytes, hn::LoadDup128(Bytes(), kShuffle.data()));
}

template <Shuffle (*makeShuffle)(size_t, size_t), size_t to>
HWY_INLINE ByteVector gathered(const Vectors& from) {
  return hn::Or(hn::Or(shuffled<makeShuffle, to, 0>(from.at0), shuffled<makeShuffle, to, 1>(from.at1)),
                shuffled<makeShuffle, to, 2>(from.at2));
}

template <Shuffle (*makeShuffle)(size_t, size_t)>
HWY_INLINE Vectors rearranged(const Vectors& from) {
  return {gathered<makeShuffle, 0>(from), gathered<makeShuffle, 1>(from), gathered<makeShuffle, 2>(from)};
}

// The channels of rows of 16 pixels, one in each group.
HWY_INLINE Vectors loadWideRows(const uint8_t* src, ptrdiff_t groupStep) {
  const auto bytes = [&](size_t at) HWY_ATTR {
    return fromGroups(Bytes(), [&](int g) HWY_ATTR { return hn::LoadU(Block(), src + g * groupStep + at); });
  };
  return rearranged<&channelFromPart>({bytes(0), bytes(16), bytes(32)});
}

HWY_INLINE void storeWideRows(const Vectors& channels, uint8_t* dst, ptrdiff_t groupStep) {
  const Vectors pixels = rearranged<&partFromChannel>(channels);
  const auto store = [&](ByteVector bytes, size_t at) HWY_ATTR {
    toGroups(bytes, [&](auto block, int g) HWY_ATTR { hn::StoreU(block, Block(), dst + g * groupStep + at); });
  };
  store(pixels.at0, 0);
  store(pixels.at1, 16);
  store(pixels.at2, 32);
}

// The channels of two rows of 8 pixels in each group.
HWY_INLINE Vectors loadNarrowRows(const uint8_t* src, ptrdiff_t step) {
  const HalfBlock half;
  const auto row = [&](ptrdiff_t y) HWY_ATTR { return src + y * step; };
  const auto first = [&](int g) HWY_ATTR { return hn::LoadU(Block(), row(2 * g)); };
  const auto middle = [&](int g) HWY_ATTR {
    return hn::Combine(Block(), hn::LoadU(half, row(2 * g + 1)), hn::LoadU(half, row(2 * g) + 16));
  };
  const auto last = [&](int g) HWY_ATTR { return hn::LoadU(Block(), row(2 * g + 1) + 8); };
  return rearranged<&channelFromPart>(
      {fromGroups(Bytes(), first), fromGroups(Bytes(), middle), fromGroups(Bytes(), last)});
}

HWY_INLINE void storeNarrowRows(const Vectors& channels, uint8_t* dst, ptrdiff_t step) {
  const HalfBlock half;
  const auto row = [&](ptrdiff_t y) HWY_ATTR { return dst + y * step; };
  const Vectors pixels = rearranged<&partFromChannel>(channels);
  toGroups(pixels.at0, [&](auto block, int g) HWY_ATTR { hn::StoreU(block, Block(), row(2 * g)); });
  toGroups(pixels.at1, [&](auto block, int g) HWY_ATTR {
    hn::StoreU(hn::LowerHalf(half, block), half, row(2 * g) + 16);
    hn::StoreU(hn::UpperHalf(half, block), half, row(2 * g + 1));
  });
  toGroups(pixels.at2, [&](auto block, int g) HWY_ATTR { hn::StoreU(block, Block(), row(2 * g + 1) + 8); });
}

HWY_INLINE WordVector centred(WordVector samples) { return hn::Sub(samples, hn::Set(Words(), 128)); }

// Stores the samples of each group minus 128, its first 8 and its last 8 at places of their own.
HWY_INLINE void storeCentred(ByteVector samples, int16_t* first, int16_t* second, ptrdiff_t groupStep) {
  const Bytes d;
  const auto zero = hn::Zero(d);
  const auto store = [&](ByteVector words, int16_t* dst) HWY_ATTR {
    toGroups(centred(hn::BitCast(Words(), words)),
             [&](auto block, int g) HWY_ATTR { hn::StoreU(block, WordBlock(), dst + g * groupStep); });
  };
  store(hn::InterleaveLower(d, samples, zero), first);
  store(hn::InterleaveUpper(d, samples, zero), second);
}

// 8 samples from each place make a group, plus 128 and clamped: saturation to signed bytes clamps, the flipped sign
// bit adds.
HWY_INLINE ByteVector loadUncentred(const int16_t* first, const int16_t* second, ptrdiff_t groupStep) {
  const auto words = [&](const int16_t* src) HWY_ATTR {
    return fromGroups(Words(), [&](int g) HWY_ATTR { return hn::LoadU(WordBlock(), src + g * groupStep); });
  };
#if HWY_TARGET <= HWY_AVX2
  const ByteVector saturated{_mm256_packs_epi16(words(first).raw, words(second).raw)};
#else
  const ByteVector saturated{_mm_packs_epi16(words(first).raw, words(second).raw)};
#endif
  return hn::Xor(saturated, hn::Set(Bytes(), 0x80));
}

HWY_INLINE WordVector pairSums(ByteVector bytes) {
  const hn::RebindToUnsigned<Words> d;
  const auto pairs = hn::BitCast(d, bytes);
  return hn::BitCast(Words(), hn::Add(hn::And(pairs, hn::Set(d, 0xFF)), hn::ShiftRight<8>(pairs)));
}

// Where row y of a wide MCU starts in plane 0; 64 samples further on it goes on.
constexpr ptrdiff_t wideRowOffset(ptrdiff_t y) { return y / 8 * 128 + y % 8 * 8; }

template <ptrdiff_t columns, ptrdiff_t rows>
void down(const uint8_t* src, ptrdiff_t step, int16_t* const mcu[3]) {
  if constexpr (columns == 1) {
    for (ptrdiff_t row = 0; row < 8; row += 2 * kGroups) {
      const Vectors channels = loadNarrowRows(src + row * step, step);
      const auto store = [&](ByteVector samples, int16_t* dst) HWY_ATTR { storeCentred(samples, dst, dst + 8, 16); };
      store(channels.at0, mcu[0] + 8 * row);
      store(channels.at1, mcu[1] + 8 * row);
      store(channels.at2, mcu[2] + 8 * row);
    }
  } else {
    const Words d;
    // Each group makes a row of planes 1 and 2.
    for (ptrdiff_t row = 0; row < 8; row += kGroups) {
      auto sums1 = hn::Set(d, static_cast<int16_t>(rows)), sums2 = sums1;  // half of the samples summed
      for (ptrdiff_t y = rows * row; y < rows * (row + 1); ++y) {
        const Vectors channels = loadWideRows(src + y * step, rows * step);
        int16_t* const left = mcu[0] + wideRowOffset(y);
        storeCentred(channels.at0, left, left + 64, 8 * rows);
        sums1 = hn::Add(sums1, pairSums(channels.at1));
        sums2 = hn::Add(sums2, pairSums(channels.at2));
      }
      hn::StoreU(centred(hn::ShiftRight<rows>(sums1)), d, mcu[1] + 8 * row);
      hn::StoreU(centred(hn::ShiftRight<rows>(sums2)), d, mcu[2] + 8 * row);
    }
  }
}

template <ptrdiff_t columns, ptrdiff_t rows>
void up(const int16_t* const mcu[3], uint8_t* dst, ptrdiff_t step) {
  if constexpr (columns == 1) {
    for (ptrdiff_t row = 0; row < 8; row += 2 * kGroups) {
      const auto load = [&](const int16_t* src) HWY_ATTR { return loadUncentred(src, src + 8, 16); };
      storeNarrowRows({load(mcu[0] + 8 * row), load(mcu[1] + 8 * row), load(mcu[2] + 8 * row)}, dst + row * step, step);
    }
  } else {
    const Bytes d;
    for (ptrdiff_t row = 0; row < 8; row += kGroups) {
      const auto chroma = loadUncentred(mcu[1] + 8 * row, mcu[2] + 8 * row, 8);
      const auto channel1 = hn::InterleaveLower(d, chroma, chroma), channel2 = hn::InterleaveUpper(d, chroma, chroma);
      for (ptrdiff_t y = rows * row; y < rows * (row + 1); ++y) {
        const int16_t* const left = mcu[0] + wideRowOffset(y);
        storeWideRows({loadUncentred(left, left + 64, 8 * rows), channel1, channel2}, dst + y * step, rows * step);
      }
    }
  }
}

#else

// Where plane 0 of an MCU `columns` blocks wide keeps the sample of pixel (x, y).
template <ptrdiff_t columns>
constexpr ptrdiff_t blockOffset(ptrdiff_t x, ptrdiff_t y) {
  return (y / 8 * columns + x / 8) * 64 + y % 8 * 8 + x % 8;
}

template <ptrdiff_t columns, ptrdiff_t rows>
void down(const uint8_t* src, ptrdiff_t step, int16_t* const mcu[3]) {
  constexpr int kCovered = static_cast<int>(columns * rows);
  int sums[2][64] = {};
  for (ptrdiff_t y = 0; y < 8 * rows; ++y, src += step) {
    for (ptrdiff_t x = 0; x < 8 * columns; ++x) {
      const ptrdiff_t covering = y / rows * 8 + x / columns;
      storeUnaligned(mcu[0] + blockOffset<columns>(x, y), static_cast<int16_t>(src[3 * x] - 128));
      sums[0][covering] += src[3 * x + 1];
      sums[1][covering] += src[3 * x + 2];
    }
  }
  for (int i = 0; i < 64; ++i) {
    storeUnaligned(mcu[1] + i, static_cast<int16_t>((sums[0][i] + kCovered / 2) / kCovered - 128));
    storeUnaligned(mcu[2] + i, static_cast<int16_t>((sums[1][i] + kCovered / 2) / kCovered - 128));
  }
}

uint8_t uncentred(const int16_t* sample) {
  return static_cast<uint8_t>(std::clamp(loadUnaligned(sample) + 128, 0, 255));
}

template <ptrdiff_t columns, ptrdiff_t rows>
void up(const int16_t* const mcu[3], uint8_t* dst, ptrdiff_t step) {
  for (ptrdiff_t y = 0; y < 8 * rows; ++y, dst += step) {
    for (ptrdiff_t x = 0; x < 8 * columns; ++x) {
      const ptrdiff_t covering = y / rows * 8 + x / columns;
      dst[3 * x] = uncentred(mcu[0] + blockOffset<columns>(x, y));
      dst[3 * x + 1] = uncentred(mcu[1] + covering);
      dst[3 * x + 2] = uncentred(mcu[2] + covering);
    }
  }
}

#endif

constexpr McuSamplingKernels kernels = {&down<2, 2>, &down<2, 1>, &down<1, 1>, &up<2, 2>, &up<2, 1>, &up<1, 1>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const McuSamplingKernels> perIsa{ZORJ_PER_ISA(kernels)};

const McuSamplingKernels& mcuSamplingKernels() { return *perIsa; }

}  // namespace zorj
#endif
