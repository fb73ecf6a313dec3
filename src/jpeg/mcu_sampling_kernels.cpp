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

// 16 pixels are worked on at a time: a row of a wide MCU, or two rows of an MCU 8 pixels wide. In memory they are the
// 48 bytes of three vectors.
using Bytes = hn::Full128<uint8_t>;
using Halves = hn::Half<Bytes>;
using Words = hn::Full128<int16_t>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;
constexpr size_t kLanes = 16;

struct Vectors {
  ByteVector at0, at1, at2;
};

using Shuffle = std::array<uint8_t, kLanes>;
constexpr uint8_t kZero = 0x80;

// For the channel with this number: which bytes of vector `part` of the pixels become its samples.
constexpr Shuffle channelFromPart(size_t channel, size_t part) {
  Shuffle shuffle;
  for (size_t x = 0; x < kLanes; ++x) {
    const size_t byte = 3 * x + channel;
    shuffle[x] = byte / kLanes == part ? static_cast<uint8_t>(byte % kLanes) : kZero;
  }
  return shuffle;
}

// For vector `part` of the pixels: which samples of the channel with this number become its bytes.
constexpr Shuffle partFromChannel(size_t part, size_t channel) {
  Shuffle shuffle;
  for (size_t i = 0; i < kLanes; ++i) {
    const size_t byte = part * kLanes + i;
    shuffle[i] = byte % 3 == channel ? static_cast<uint8_t>(byte / 3) : kZero;
  }
  return shuffle;
}

template <Shuffle (*makeShuffle)(size_t, size_t), size_t to, size_t from>
HWY_INLINE ByteVector shuffled(ByteVector bytes) {
  static constexpr Shuffle kShuffle = makeShuffle(to, from);
  return hn::TableLookupBytesOr0(bytes, hn::LoadU(Bytes(), kShuffle.data()));
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

// The channels of 16 pixels of one row.
HWY_INLINE Vectors loadWideRow(const uint8_t* src) {
  const Bytes d;
  return rearranged<&channelFromPart>({hn::LoadU(d, src), hn::LoadU(d, src + 16), hn::LoadU(d, src + 32)});
}

HWY_INLINE void storeWideRow(const Vectors& channels, uint8_t* dst) {
  const Bytes d;
  const Vectors pixels = rearranged<&partFromChannel>(channels);
  hn::StoreU(pixels.at0, d, dst);
  hn::StoreU(pixels.at1, d, dst + 16);
  hn::StoreU(pixels.at2, d, dst + 32);
}

// The channels of 8 pixels of each of two rows.
HWY_INLINE Vectors loadTwoRows(const uint8_t* src, ptrdiff_t step) {
  const Bytes d;
  const Halves half;
  const uint8_t* const second = src + step;
  return rearranged<&channelFromPart>({hn::LoadU(d, src),
                                       hn::Combine(d, hn::LoadU(half, second), hn::LoadU(half, src + 16)),
                                       hn::LoadU(d, second + 8)});
}

HWY_INLINE void storeTwoRows(const Vectors& channels, uint8_t* dst, ptrdiff_t step) {
  const Bytes d;
  const Halves half;
  uint8_t* const second = dst + step;
  const Vectors pixels = rearranged<&partFromChannel>(channels);
  hn::StoreU(pixels.at0, d, dst);
  hn::StoreU(hn::LowerHalf(half, pixels.at1), half, dst + 16);
  hn::StoreU(hn::UpperHalf(half, pixels.at1), half, second);
  hn::StoreU(pixels.at2, d, second + 8);
}

HWY_INLINE WordVector centred(WordVector samples) { return hn::Sub(samples, hn::Set(Words(), 128)); }

// Stores 16 samples minus 128, 8 at each place.
HWY_INLINE void storeCentred(ByteVector samples, int16_t* first, int16_t* second) {
  const Bytes d8;
  const Words d16;
  const auto zero = hn::Zero(d8);
  hn::StoreU(centred(hn::BitCast(d16, hn::InterleaveLower(d8, samples, zero))), d16, first);
  hn::StoreU(centred(hn::BitCast(d16, hn::InterleaveUpper(d8, samples, zero))), d16, second);
}

// 8 samples from each place plus 128, clamped: saturation to signed bytes clamps, the flipped sign bit adds.
HWY_INLINE ByteVector loadUncentred(const int16_t* first, const int16_t* second) {
  const Words d;
  const ByteVector saturated{_mm_packs_epi16(hn::LoadU(d, first).raw, hn::LoadU(d, second).raw)};
  return hn::Xor(saturated, hn::Set(Bytes(), 0x80));
}

HWY_INLINE WordVector pairSums(ByteVector bytes) {
  const auto pairs = hn::BitCast(hn::Full128<uint16_t>(), bytes);
  const auto sums = hn::Add(hn::And(pairs, hn::Set(hn::Full128<uint16_t>(), 0xFF)), hn::ShiftRight<8>(pairs));
  return hn::BitCast(Words(), sums);
}

template <int columns, int rows>
void down(const uint8_t* src, ptrdiff_t step, int16_t* const mcu[3]) {
  if constexpr (columns == 1) {
    for (size_t at = 0; at < 64; at += kLanes, src += 2 * step) {
      const Vectors channels = loadTwoRows(src, step);
      storeCentred(channels.at0, mcu[0] + at, mcu[0] + at + 8);
      storeCentred(channels.at1, mcu[1] + at, mcu[1] + at + 8);
      storeCentred(channels.at2, mcu[2] + at, mcu[2] + at + 8);
    }
  } else {
    const Words d;
    for (int row = 0; row < 8; ++row) {
      auto sums1 = hn::Set(d, rows), sums2 = sums1;  // half of the samples summed
      for (int y = rows * row; y < rows * (row + 1); ++y, src += step) {
        const Vectors channels = loadWideRow(src);
        int16_t* const left = mcu[0] + y / 8 * 128 + y % 8 * 8;
        storeCentred(channels.at0, left, left + 64);
        sums1 = hn::Add(sums1, pairSums(channels.at1));
        sums2 = hn::Add(sums2, pairSums(channels.at2));
      }
      hn::StoreU(centred(hn::ShiftRight<rows>(sums1)), d, mcu[1] + 8 * row);
      hn::StoreU(centred(hn::ShiftRight<rows>(sums2)), d, mcu[2] + 8 * row);
    }
  }
}

template <int columns, int rows>
void up(const int16_t* const mcu[3], uint8_t* dst, ptrdiff_t step) {
  if constexpr (columns == 1) {
    for (size_t at = 0; at < 64; at += kLanes, dst += 2 * step) {
      storeTwoRows({loadUncentred(mcu[0] + at, mcu[0] + at + 8), loadUncentred(mcu[1] + at, mcu[1] + at + 8),
                    loadUncentred(mcu[2] + at, mcu[2] + at + 8)},
                   dst, step);
    }
  } else {
    const Bytes d;
    for (int row = 0; row < 8; ++row) {
      const auto chroma = loadUncentred(mcu[1] + 8 * row, mcu[2] + 8 * row);
      const auto channel1 = hn::InterleaveLower(d, chroma, chroma), channel2 = hn::InterleaveUpper(d, chroma, chroma);
      for (int y = rows * row; y < rows * (row + 1); ++y, dst += step) {
        const int16_t* const left = mcu[0] + y / 8 * 128 + y % 8 * 8;
        storeWideRow({loadUncentred(left, left + 64), channel1, channel2}, dst);
      }
    }
  }
}

#else

// Where plane 0 of an MCU `columns` blocks wide keeps the sample of pixel (x, y).
template <int columns>
constexpr int blockOffset(int x, int y) {
  return (y / 8 * columns + x / 8) * 64 + y % 8 * 8 + x % 8;
}

template <int columns, int rows>
void down(const uint8_t* src, ptrdiff_t step, int16_t* const mcu[3]) {
  constexpr int kCovered = columns * rows;
  int sums[2][64] = {};
  for (int y = 0; y < 8 * rows; ++y, src += step) {
    for (int x = 0; x < 8 * columns; ++x) {
      const int covering = y / rows * 8 + x / columns;
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

template <int columns, int rows>
void up(const int16_t* const mcu[3], uint8_t* dst, ptrdiff_t step) {
  for (int y = 0; y < 8 * rows; ++y, dst += step) {
    for (int x = 0; x < 8 * columns; ++x) {
      const int covering = y / rows * 8 + x / columns;
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
