#include "jpeg/progressive_decode_kernels.h"

#include <bit>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/zigzag.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/progressive_decode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#include "jpeg/bit_gather-inl.h"
#include "jpeg/zigzag_masks-inl.h"

// The place of a coefficient that a run may have led beyond the block.
HWY_INLINE int16_t* coefficientAt(int16_t* block, uint32_t position) {
  return block + kNaturalOrder[HWY_MIN(position, kBlockSize - 1)];
}

// The length of the run that a symbol with category 0 begins, this block included.
HWY_INLINE StatusCode takeEobRun(BitReader& reader, uint32_t category, uint32_t& blocks) {
  if (const StatusCode status = reader.require(static_cast<int32_t>(category))) return status;
  blocks = (1u << category) + reader.take(static_cast<int32_t>(category));
  return StatusOk;
}

// The first scan of the band of a block.
HWY_INLINE StatusCode decodeFirst(BitReader& reader, uint32_t& eobRun, int16_t* block, const SpectralBand& band,
                                  const HuffmanDecodeSpec& spec) {
  auto position = static_cast<uint32_t>(band.first);
  const auto last = static_cast<uint32_t>(band.last);
  while (position <= last) {
    uint32_t symbol = 0;
    if (const StatusCode status = reader.decodeSymbol(spec, symbol)) return status;
    const uint32_t run = symbol >> 4, size = symbol & 15;
    if (size != 0) {
      int32_t value = 0;
      if (const StatusCode status = reader.decodeExtraBits(size, value)) return status;
      position += run;
      const uint32_t shifted = static_cast<uint32_t>(value) << band.shift;
      storeUnaligned(coefficientAt(block, position), static_cast<int16_t>(shifted));
      ++position;
    } else if (run == 15) {
      position += 16;
    } else {
      if (const StatusCode status = takeEobRun(reader, run, eobRun)) return status;
      --eobRun;
      break;
    }
  }
  return StatusOk;
}

StatusCode decodeAcFirst(const uint8_t* bytes, int32_t length, int32_t& position, int32_t& marker,
                         HuffmanDecodeState& state, int16_t* block, const SpectralBand& band,
                         const HuffmanDecodeSpec& spec) {
  BitReader reader({bytes, length, position, marker}, state);
  const StatusCode status = decodeFirst(reader, state.eobRun, block, band, spec);
  reader.finish(position, marker, state);
  return status;
}

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
// The flags of a block, zig-zag position k in bit 63 - k, in natural order from bit 0.
HWY_INLINE uint64_t naturalOrder(uint64_t reversed) {
  alignas(64) static constexpr std::array<uint8_t, kBlockSize> kFrom = [] {
    std::array<uint8_t, kBlockSize> from{};
    for (size_t k = 0; k < kBlockSize; ++k) from[kNaturalOrder[k]] = static_cast<uint8_t>(kBlockSize - 1 - k);
    return from;
  }();
  return _mm512_movepi8_mask(_mm512_permutexvar_epi8(_mm512_load_si512(kFrom.data()), _mm512_movm_epi8(reversed)));
}
#endif

// Refines the band of a block. Zig-zag position k is bit 63 - k of a mask: correction bits come in that order.
class BandRefiner {
 public:
  HWY_INLINE BandRefiner(BitReader& reader, int16_t* block, const SpectralBand& band, uint64_t nonZero)
      : reader_(reader), block_(block), band_(band), left_(band.reversedMask()), nonZero_(nonZero) {}

  HWY_INLINE StatusCode decode(const HuffmanDecodeSpec& spec, uint32_t& eobRun) {
    StatusCode status = StatusOk;
    while (left_ != 0 && eobRun == 0 && status == StatusOk) status = decodeSymbol(spec, eobRun);
    if (eobRun != 0 && status == StatusOk) {
      status = correct(left_);
      eobRun -= status == StatusOk;
    }
    setCoefficients();
    return status;
  }

 private:
  HWY_INLINE StatusCode decodeSymbol(const HuffmanDecodeSpec& spec, uint32_t& eobRun) {
    uint32_t symbol = 0;
    if (const StatusCode status = reader_.decodeSymbol(spec, symbol)) return status;
    const uint32_t run = symbol >> 4;
    const bool isNew = (symbol & 15) != 0;
    if (!isNew && run != 15) return takeEobRun(reader_, run, eobRun);
    uint32_t positive = 0;
    if (isNew) {
      if (const StatusCode status = reader_.require(1)) return status;
      positive = reader_.take(1);
    }
    // Without so many zeros left the run ends behind the band.
    const uint64_t place = bitAfter(left_ & ~nonZero_, run);
    const uint64_t passed = place == 0 ? left_ : left_ & bitsAbove(place);
    if (const StatusCode status = correct(passed)) return status;
    left_ = place == 0 ? 0 : left_ & (place - 1);
    if (!isNew) return StatusOk;
    if (place == 0) [[unlikely]] {
      const int32_t one = 1 << band_.shift;
      int16_t* behind = coefficientAt(block_, static_cast<uint32_t>(band_.last + 1));
      storeUnaligned(behind, static_cast<int16_t>(positive ? one : -one));
    }
    new_ |= place;
    positive_ |= positive ? place : 0;
    return StatusOk;
  }

  // Takes a correction bit for each coefficient of `places` that is not zero.
  HWY_INLINE StatusCode correct(uint64_t places) {
    uint64_t corrected = places & nonZero_;
    int32_t wanted = std::popcount(corrected);
    while (wanted > reader_.held()) {
      // The last of them have to wait for more bits.
      const int32_t missing = wanted - reader_.held();
      const uint64_t rest = scatterBits((uint64_t{1} << missing) - 1, corrected);
      set_ |= scatterBits(reader_.take(reader_.held()), corrected ^ rest);
      if (const StatusCode status = reader_.require(1)) return status;
      corrected = rest;
      wanted = missing;
    }
    set_ |= scatterBits(reader_.take(wanted), corrected);
    return StatusOk;
  }

  // The new coefficients, and the magnitude bits that the correction bits set.
  HWY_INLINE void setCoefficients() {
    const int32_t one = 1 << band_.shift;
#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
    if ((set_ | new_) == 0) return;
    const uint64_t set = naturalOrder(set_), added = naturalOrder(new_), positive = naturalOrder(positive_);
    const __m512i ones = _mm512_set1_epi16(static_cast<int16_t>(one));
    for (int half = 0; half < 2; ++half) {
      const auto of = [half](uint64_t mask) HWY_ATTR { return static_cast<__mmask32>(mask >> (32 * half)); };
      const __m512i before = _mm512_loadu_si512(block_ + 32 * half), sign = _mm512_srai_epi16(before, 15);
      const __m512i magnitude = _mm512_or_si512(_mm512_abs_epi16(before), ones);
      __m512i values = _mm512_mask_sub_epi16(before, of(set), _mm512_xor_si512(magnitude, sign), sign);
      values = _mm512_mask_sub_epi16(values, of(added), _mm512_setzero_si512(), ones);
      values = _mm512_mask_mov_epi16(values, of(positive), ones);
      _mm512_mask_storeu_epi16(block_ + 32 * half, of(set | added), values);
    }
#else
    for (uint64_t left = set_ | new_; left != 0;) {
      const auto position = static_cast<uint32_t>(std::countl_zero(left));
      const uint64_t place = uint64_t{1} << 63 >> position;
      left ^= place;
      int16_t* coefficient = block_ + kNaturalOrder[position];
      const int32_t before = loadUnaligned(coefficient);
      const int32_t sign = (new_ & place) != 0 ? -((positive_ & place) == 0) : before >> 31;
      const int32_t magnitude = ((before ^ sign) - sign) | one;
      storeUnaligned(coefficient, static_cast<int16_t>((magnitude ^ sign) - sign));
    }
#endif
  }

  BitReader& reader_;
  int16_t* block_;
  SpectralBand band_;
  uint64_t left_;  // the positions not passed yet
  const uint64_t nonZero_;
  uint64_t set_ = 0;       // the positions whose correction bit was 1
  uint64_t new_ = 0;       // those that were zero before this scan
  uint64_t positive_ = 0;  // among the new ones
};

StatusCode decodeAcRefine(const uint8_t* bytes, int32_t length, int32_t& position, int32_t& marker,
                          HuffmanDecodeState& state, int16_t* block, const SpectralBand& band,
                          const HuffmanDecodeSpec& spec) {
  const uint64_t nonZero = nonZeroMask<PointTransform::kNone, true>(block, 0);
  if (state.eobRun > 0 && (nonZero & band.reversedMask()) == 0) {
    --state.eobRun;
    return StatusOk;
  }
  BitReader reader({bytes, length, position, marker}, state);
  const StatusCode status = BandRefiner(reader, block, band, nonZero).decode(spec, state.eobRun);
  reader.finish(position, marker, state);
  return status;
}

constexpr ProgressiveDecodeKernels kernels = {&decodeAcFirst, &decodeAcRefine};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const ProgressiveDecodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const ProgressiveDecodeKernels& progressiveDecodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
