#include "jpeg/progressive_encode_kernels.h"

#include <bit>
#include <cstring>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/big_endian.h"
#include "jpeg/symbols.h"
#include "jpeg/zigzag.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/progressive_encode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#include "jpeg/bit_buffer-inl.h"
#include "jpeg/bit_gather-inl.h"
#include "jpeg/eob_run-inl.h"
#include "jpeg/zigzag_masks-inl.h"
//
#include "jpeg/refinement_masks-inl.h"
#include "jpeg/zigzag_coefficients-inl.h"

// Where the fast path puts symbols.
class SymbolBuffer {
 public:
  SymbolBuffer(BitBuffer& buffer, const HuffmanEncodeSpec& spec) : buffer_(buffer), codes_(spec.codes) {}

  HWY_INLINE StatusCode putSymbol(uint32_t symbol, uint64_t bits = 0, uint32_t count = 0) {
    const TableEntry entry = codes_[symbol];
    if (entry.length == 0) return StatusBadHuffmanTable;
    buffer_.put(uint64_t{entry.value} << count | bits, entry.length + count);
    buffer_.store();
    return StatusOk;
  }
  HWY_INLINE StatusCode putSymbolAndCorrections(uint32_t symbol, uint64_t bits, uint32_t count) {
    constexpr uint32_t kMostAtOnce = 63 - 7 - 16;  // beside pending bits and a code
    if (count <= kMostAtOnce) [[likely]]
      return putSymbol(symbol, bits, count);
    if (const StatusCode status = putSymbol(symbol)) return status;
    return putCorrections(bits, count);
  }
  HWY_INLINE StatusCode putCorrections(uint64_t bits, uint32_t count) {
    if (count > 32) {
      buffer_.put(bits >> 32, count - 32);
      buffer_.store();
      bits &= 0xFFFFFFFF;
      count = 32;
    }
    if (count > 0) {
      buffer_.put(bits, count);
      buffer_.store();
    }
    return StatusOk;
  }

 private:
  BitBuffer& buffer_;
  const TableEntry* codes_;
};

// The coefficients of a band in its first scan.
class FirstScan {
 public:
  HWY_INLINE FirstScan(const int16_t* block, const SpectralBand& band)
      : coefficients_(block, band.shift),
        left_(coefficients_.nonZero() & band.mask()),
        next_(static_cast<uint32_t>(band.first)),
        end_(static_cast<uint32_t>(band.last) + 1) {}

  // Nothing to code: the block just joins the run.
  bool isEmpty() const { return left_ == 0; }

  template <class Symbols>
  HWY_INLINE StatusCode code(Symbols& symbols, EobRun& eobRun) {
    if (left_ != 0) {
      if (const StatusCode status = eobRun.put(symbols)) return status;
    }
    while (left_ != 0) {
      if (const StatusCode status = codeNext(symbols)) return status;
    }
    return next_ == end_ ? StatusOk : eobRun.join(symbols);
  }

 private:
  static constexpr uint32_t kLargestCategory = 10;

  template <class Symbols>
  HWY_INLINE StatusCode codeNext(Symbols& symbols) {
    const auto position = static_cast<uint32_t>(std::countr_zero(left_));
    left_ &= left_ - 1;
    uint32_t run = position - next_;
    next_ = position + 1;
    for (; run > 15; run -= 16) {
      if (const StatusCode status = symbols.putSymbol(kZeroRun16)) return status;
    }
    const auto [category, bits] = coefficients_.at(position);
    if (category > kLargestCategory) return StatusHuffmanDataError;
    return symbols.putSymbol(run << 4 | category, bits, category);
  }

  const ZigzagCoefficients<PointTransform::kShift> coefficients_;
  uint64_t left_;  // zig-zag positions to do
  uint32_t next_;  // the zig-zag position after the last coefficient
  uint32_t end_;
};

// The coefficients of a band in a refinement scan. Positions are bits as in RefinementMasks.
class RefinementScan {
 public:
  HWY_INLINE RefinementScan(const int16_t* block, const SpectralBand& band)
      : masks_(refinementMasks(block, band.shift)), left_(band.reversedMask()) {}

  bool isEmpty() const { return (masks_.nonZero & left_) == 0; }

  template <class Symbols>
  HWY_INLINE StatusCode code(Symbols& symbols, EobRun& eobRun) {
    uint64_t newlyNonZero = masks_.one & left_;
    if (newlyNonZero != 0) {
      if (const StatusCode status = eobRun.put(symbols)) return status;
    }
    while (newlyNonZero != 0) {
      const uint64_t place = uint64_t{1} << 63 >> std::countl_zero(newlyNonZero);
      newlyNonZero ^= place;
      if (const StatusCode status = codeUpTo(symbols, place)) return status;
    }
    const Corrections rest = correctionsAt(left_);
    return left_ == 0 ? StatusOk : eobRun.join(symbols, rest.bits, rest.count);
  }

 private:
  struct Corrections {
    uint64_t bits;
    uint32_t count;
  };
  HWY_INLINE Corrections correctionsAt(uint64_t places) const {
    const uint64_t corrected = masks_.nonZero & ~masks_.one & places;
    return {gatherBits(masks_.odd, corrected), static_cast<uint32_t>(std::popcount(corrected))};
  }

  // The coefficient at `place` and all that is left before it.
  template <class Symbols>
  HWY_INLINE StatusCode codeUpTo(Symbols& symbols, uint64_t place) {
    uint64_t before = left_ & bitsAbove(place);
    uint64_t zeros = before & ~masks_.nonZero;
    auto run = static_cast<uint32_t>(std::popcount(zeros));
    for (; run > 15; run -= 16) {
      const uint64_t last = bitAfter(zeros, 15);
      const Corrections passed = correctionsAt(before & bitsAbove(last));
      if (const StatusCode status = symbols.putSymbolAndCorrections(kZeroRun16, passed.bits, passed.count))
        return status;
      before &= last - 1;
      zeros &= last - 1;
    }
    const uint64_t sign = (masks_.positive & place) != 0;
    left_ &= place - 1;
    const Corrections passed = correctionsAt(before);
    return symbols.putSymbolAndCorrections(run << 4 | 1, sign << passed.count | passed.bits, 1 + passed.count);
  }

  const RefinementMasks masks_;
  uint64_t left_;
};

template <class Scan>
HWY_NOINLINE StatusCode encodeStepByStep(const int16_t* block, const SpectralBand& band, const HuffmanEncodeSpec& spec,
                                         const Destination& dst, HuffmanEncodeState& state) {
  SymbolWriter writer(dst, spec, state);
  EobRun eobRun(state);
  const StatusCode status = Scan(block, band).code(writer, eobRun);
  eobRun.commit(state);
  return status;
}

template <class Scan>
StatusCode encode(const int16_t* block, const SpectralBand& band, const HuffmanEncodeSpec& spec, const Destination& dst,
                  HuffmanEncodeState& state) {
  Scan scan(block, band);
  if (scan.isEmpty() && EobRun::joinEmpty(state)) return StatusOk;
  BitBufferMemory memory;
  BitBuffer buffer(memory, pendingBits(state), state.bitCount);
  SymbolBuffer symbols(buffer, spec);
  EobRun eobRun(state);
  if (scan.code(symbols, eobRun) != StatusOk || !commit(buffer, dst, state)) [[unlikely]] {
    return encodeStepByStep<Scan>(block, band, spec, dst, state);
  }
  eobRun.commit(state);
  return StatusOk;
}

StatusCode flush(const HuffmanEncodeSpec& spec, const Destination& dst, HuffmanEncodeState& state) {
  SymbolWriter writer(dst, spec, state);
  if (const StatusCode status = EobRun(state).put(writer)) return status;
  return BitWriter(dst, state).flush();
}

template <class Scan>
StatusCode count(const int16_t* block, const SpectralBand& band, uint32_t* counters, HuffmanEncodeState& state) {
  Scan scan(block, band);
  if (scan.isEmpty() && EobRun::joinEmpty(state)) return StatusOk;
  SymbolCounter counter(counters);
  EobRun eobRun(state);
  const StatusCode status = scan.code(counter, eobRun);
  eobRun.commit(state);
  return status;
}

StatusCode countRun(uint32_t* counters, HuffmanEncodeState& state) {
  SymbolCounter counter(counters);
  return EobRun(state).put(counter);
}

HWY_INLINE StatusCode countCoefficients(const int16_t* block, uint32_t* counters) {
  const ZigzagCoefficients<PointTransform::kNone> coefficients(block);
  uint32_t next = 1;
  for (uint64_t left = coefficients.nonZero() & ~uint64_t{1}; left != 0; left &= left - 1) {
    const auto position = static_cast<uint32_t>(std::countr_zero(left));
    const uint32_t run = position - next;
    next = position + 1;
    counters[kZeroRun16] += run / 16;
    const uint32_t category = coefficients.at(position).category;
    if (category > kLargestSequentialCategory) return StatusHuffmanDataError;
    ++counters[run % 16 << 4 | category];
  }
  counters[kEndOfBlock] += next < kBlockSize;
  return StatusOk;
}

#if ZORJ_SIMD && HWY_TARGET == HWY_AVX3
StatusCode countAc(const int16_t* block, uint32_t* counters) {
  const ZigzagSymbols symbols(block);
  if (!symbols.isUsual()) [[unlikely]]
    return countCoefficients(block, counters);
  for (uint32_t i = 0; i < symbols.count(); i += ZigzagSymbols::kGroup) {
    HWY_UNROLL(8)  // the group
    for (uint32_t k = i; k < i + ZigzagSymbols::kGroup; ++k) counters[symbols[k]] += k < symbols.count();
  }
  counters[kEndOfBlock] += symbols.endsEarly();
  return StatusOk;
}
#else
StatusCode countAc(const int16_t* block, uint32_t* counters) { return countCoefficients(block, counters); }
#endif

constexpr ProgressiveEncodeKernels kernels = {&encode<FirstScan>,
                                              &encode<RefinementScan>,
                                              &flush,
                                              &count<FirstScan>,
                                              &count<RefinementScan>,
                                              &countRun,
                                              &countAc};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const ProgressiveEncodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const ProgressiveEncodeKernels& progressiveEncodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
