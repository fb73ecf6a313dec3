#include "jpeg/huffman_decode_kernels.h"

#include <bit>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/big_endian.h"
#include "jpeg/zigzag.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/huffman_decode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#include "jpeg/bit_window-inl.h"

void clearBlock(int16_t* block) {
  size_t i = 0;
#if ZORJ_SIMD
  const hn::ScalableTag<int16_t> d;
  for (; i < kBlockSize; i += hn::Lanes(d)) hn::StoreU(hn::Zero(d), d, block + i);
#endif
  for (; i < kBlockSize; ++i) storeUnaligned(block + i, int16_t{0});
}

enum class Progress { kGoesOn, kBlockEnds, kLongCode, kDeclined };

// The AC coefficients of a block, one symbol at a time.
struct AcDecoder {
  BitWindow& window;
  const HuffmanDecodeSpec& spec;
  int16_t* block;
  const TableEntry* shortCodes = spec.fastLookup;
  size_t position = 1;

  // The extra bits of a coefficient after `run` zeros. Runs beyond the block are left to the careful path.
  HWY_INLINE Progress takeCoefficient(uint32_t run, uint32_t size) {
    const size_t at = position + run;
    const int32_t value = window.takeExtraBits(size);
    if (at >= kBlockSize - 1) [[unlikely]] {
      if (at >= kBlockSize) return Progress::kDeclined;
      storeUnaligned(block + kBlockSize - 1, static_cast<int16_t>(value));
      position = kBlockSize;
      return Progress::kBlockEnds;
    }
    storeUnaligned(block + kNaturalOrder[at], static_cast<int16_t>(value));
    position = at + 1;
    return Progress::kGoesOn;
  }

  // The other symbols.
  HWY_INLINE Progress takeRun(uint32_t symbol) {
    if (symbol != 0xF0) return Progress::kBlockEnds;
    position += 16;
    return position < kBlockSize ? Progress::kGoesOn : Progress::kBlockEnds;
  }

  // A symbol whose code is short.
  HWY_INLINE Progress stepShort() {
    const BitWindow::Code code = window.peekShort(shortCodes);
    const uint32_t size = code.symbol & 15;
    if (size != 0) [[likely]] {
      window.consumeShort(code);
      return takeCoefficient(code.symbol >> 4, size);
    }
    if (code.length == 0) return Progress::kLongCode;
    window.consumeShort(code);
    return takeRun(code.symbol);
  }

  HWY_INLINE Progress stepLong() {
    const BitWindow::Code code = window.peekLong(spec);
    if (code.length == 0) return Progress::kDeclined;
    window.consumeLong(code);
    const uint32_t size = code.symbol & 15;
    return size != 0 ? takeCoefficient(code.symbol >> 4, size) : takeRun(code.symbol);
  }
};

bool decodeBlock(const uint8_t* source, int32_t length, int32_t& position, HuffmanDecodeState& state, int16_t* block,
                 int16_t& lastDc, const HuffmanDecodeSpec& dcSpec, const HuffmanDecodeSpec& acSpec) {
  BitWindow window(source, length, position, state);
  clearBlock(block);
  if (!window.refill()) return false;
  const BitWindow::Code code = window.takeCode(dcSpec);
  if (code.length == 0) return false;
  const uint32_t size = code.symbol & 15;
  const int16_t dc = static_cast<int16_t>(lastDc + (size != 0 ? window.takeExtraBits(size) : 0));
  storeUnaligned(block, dc);

  AcDecoder ac{window, acSpec, block};
  Progress progress = Progress::kGoesOn;
  while (progress == Progress::kGoesOn) {
    if (!window.refill()) return false;
    // A full window is enough for two short codes with their extra bits, or for a long one.
    progress = ac.stepShort();
    if (progress == Progress::kGoesOn) {
      progress = ac.stepShort();
      if (progress == Progress::kLongCode) progress = Progress::kGoesOn;
    } else if (progress == Progress::kLongCode) {
      progress = ac.stepLong();
    }
  }
  if (progress == Progress::kDeclined || !window.commit(source, position, state)) return false;
  lastDc = dc;
  state.lastPosition = static_cast<int32_t>(ac.position);
  return true;
}

int64_t decodeDifferences(const uint8_t* source, int32_t length, int32_t& position, HuffmanDecodeState& state,
                          int16_t* const rows[], int64_t count, int32_t components,
                          const HuffmanDecodeSpec* const specs[]) {
  BitWindow window(source, length, position, state);
  int64_t done = 0;
  int32_t component = 0;
  ptrdiff_t sample = 0;
  for (; done < count && window.refill(); ++done) {
    const HuffmanDecodeSpec& spec = *specs[component];
    const BitWindow::Code code = window.takeCode(spec);
    if (code.length == 0) break;
    int32_t value = 0;
    if (code.symbol - 1 < 15) {
      value = window.takeExtraBits(code.symbol);
    } else if (code.symbol != 0) {
      value = -32768;
    }
    storeUnaligned(rows[component] + sample, static_cast<int16_t>(value));
    if (++component == components) {
      component = 0;
      ++sample;
    }
  }
  // A full window before each of them leaves no more than BitReader would have read as well.
  return window.commit(source, position, state) ? done : 0;
}

constexpr HuffmanDecodeKernels kernels = {&decodeBlock, &decodeDifferences};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const HuffmanDecodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const HuffmanDecodeKernels& huffmanDecodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
