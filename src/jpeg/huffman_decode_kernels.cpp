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

// A code with its symbol is an entry of a table: (length << 16) | symbol, 0 if it is none of the lengths looked for.
HWY_INLINE uint32_t lengthOf(uint32_t entry) { return entry >> 16; }
HWY_INLINE uint32_t categoryOf(uint32_t entry) { return entry & 15; }

// Consumes the next code, of any length.
HWY_INLINE uint32_t takeCode(BitWindow& window, const HuffmanDecodeSpec& spec) {
  uint32_t entry = window.peek(spec.fastLookup);
  if (entry != 0) [[likely]] {
    window.consumeShort(lengthOf(entry));
  } else {
    entry = window.peekLong(spec);
    if (entry != 0) window.consumeLong(lengthOf(entry));
  }
  return entry;
}

const uint8_t* decodeBlock(const uint8_t* next, const uint8_t* end, HuffmanDecodeState& state, int16_t* block,
                           const HuffmanDecodeSpec& dcSpec, const HuffmanDecodeSpec& acSpec) {
  BitWindow window(next, end, state);
  if (!window.refill()) return nullptr;
  uint32_t entry = takeCode(window, dcSpec);
  if (entry == 0) return nullptr;
  clearBlock(block);
  storeUnaligned(block, static_cast<int16_t>(window.takeExtraBits(categoryOf(entry))));

  size_t position = 1;
  // Takes the extra bits of a coefficient. False at the end of the block or beyond.
  const auto takeCoefficient = [&]() HWY_ATTR __attribute__((always_inline)) {
    const size_t at = position + (entry >> 4 & 15);
    const int32_t value = window.takeExtraBits(categoryOf(entry));
    position = at + 1;
    if (at >= kBlockSize) [[unlikely]]
      return false;
    storeUnaligned(block + kNaturalOrder[at], static_cast<int16_t>(value));
    return at < kBlockSize - 1;
  };

  const TableEntry* const shortCodes = acSpec.fastLookup;
  entry = window.peek(shortCodes);
  for (;;) {
    // A full window is enough for two short codes with their extra bits and the next short code, or for a long one.
    if (!window.refill()) return nullptr;
    if (categoryOf(entry) != 0) [[likely]] {
      window.consumeShort(lengthOf(entry));
      if (!takeCoefficient()) break;
      entry = window.peek(shortCodes);
      if (categoryOf(entry) != 0) [[likely]] {
        window.consumeShort(lengthOf(entry));
        if (!takeCoefficient()) break;
        entry = window.peek(shortCodes);
        continue;
      }
    }
    if (entry == 0) {
      if (!window.refill()) return nullptr;
      entry = window.peekLong(acSpec);
      if (entry == 0) return nullptr;
      window.consumeLong(lengthOf(entry));
      if (categoryOf(entry) != 0) {
        if (!takeCoefficient()) break;
        entry = window.peek(shortCodes);
        continue;
      }
    } else {
      window.consumeShort(lengthOf(entry));
    }
    if ((entry & 0xFF) != kZeroRun16) break;
    position += 16;
    if (position >= kBlockSize) break;
    entry = window.peek(shortCodes);
  }
  if (position > kBlockSize && (entry & 0xFF) != kZeroRun16) return nullptr;
  const uint8_t* const following = window.finish(next, state);
  if (following) [[likely]]
    state.lastPosition = static_cast<int32_t>(position);
  return following;
}

Differences decodeDifferences(const uint8_t* next, const uint8_t* end, HuffmanDecodeState& state, int16_t* const rows[],
                              int64_t count, int32_t components, const HuffmanDecodeSpec* const specs[]) {
  BitWindow window(next, end, state);
  int64_t done = 0;
  int32_t component = 0;
  ptrdiff_t sample = 0;
  for (; done < count && window.refill(); ++done) {
    const uint32_t entry = takeCode(window, *specs[component]);
    if (entry == 0) break;
    const uint32_t category = entry & 0xFF;
    const int32_t value = category < 16 ? window.takeExtraBits(category) : -32768;
    storeUnaligned(rows[component] + sample, static_cast<int16_t>(value));
    if (++component == components) {
      component = 0;
      ++sample;
    }
  }
  // A full window before each of them leaves no more than BitReader would have read as well.
  const uint8_t* const following = window.finish(next, state);
  return following ? Differences{done, following} : Differences{0, next};
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
