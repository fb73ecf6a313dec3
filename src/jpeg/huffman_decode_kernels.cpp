#include "jpeg/huffman_decode_kernels.h"

#include <bit>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/bit_reader.h"
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

// By the next byte: the difference that it tells whole, if it does, and the code of the one behind it.
class PairTable {
 public:
  struct Pair {
    uint64_t fields;

    HWY_INLINE bool isNone() const { return fields == 0; }
    HWY_INLINE uint32_t bits() const { return field<0>() & 63; }  // of both
    HWY_INLINE size_t count() const { return field<1>(); }
    // The difference that is told whole, and its bits; 0 if there is none.
    HWY_INLINE int16_t told() const { return static_cast<int16_t>(fields >> 48); }
    HWY_INLINE uint32_t toldBits() const { return field<2>(); }
    // Of the other one.
    HWY_INLINE uint32_t extraBitsAt() const { return field<3>(); }
    HWY_INLINE uint32_t category() const { return field<4>(); }

   private:
    template <int byte>
    HWY_INLINE uint32_t field() const {
      return static_cast<uint8_t>(fields >> 8 * byte);
    }
  };

  explicit PairTable(const HuffmanDecodeSpec& spec) {
    for (uint32_t bits = 0; bits < kSize; ++bits) pairs_[bits] = pairAt(spec.fastLookup, bits);
  }
  HWY_INLINE Pair operator[](size_t bits) const { return {pairs_[bits]}; }

 private:
  static constexpr uint32_t kSize = 1 << kFastBits;

  // Whether the second code is known follows no pattern: masks, no branches.
  static HWY_INLINE uint64_t pairAt(const TableEntry* lookup, uint32_t bits) {
    const TableEntry first = lookup[bits];
    if (first.length == 0 || first.value > 15) return 0;
    const uint32_t category = first.value, told = first.length + category;
    const uint64_t alone = fieldsOf(1, 0, 0, first.length, category);
    if (told >= kFastBits) return alone;
    const TableEntry second = lookup[bits << told & 0xFF];
    const uint32_t extraBits = bits >> (kFastBits - told) & ((1u << category) - 1);
    const uint32_t negative = (2 * extraBits >> category) - 1;
    const auto value = static_cast<uint16_t>(extraBits - (negative & ((1u << category) - 1)));
    const uint64_t both = fieldsOf(2, value, told, told + second.length, second.value);
    const bool isKnown = (second.length != 0) & (second.length <= kFastBits - told) & (second.value < 16);
    return alone ^ ((alone ^ both) & -uint64_t{isKnown});
  }
  static HWY_INLINE uint64_t fieldsOf(uint32_t count, uint16_t told, uint32_t toldBits, uint32_t extraBitsAt,
                                      uint32_t category) {
    return uint64_t{told} << 48 | uint64_t{category} << 32 | extraBitsAt << 24 | toldBits << 16 | count << 8 |
           (extraBitsAt + category);
  }

  uint64_t pairs_[kSize];
};

// Decodes `count` differences or one more. Returns how many it did; fewer at a long code, or when the window is empty.
HWY_INLINE ptrdiff_t decodePairs(BitWindow& window, const PairTable& table, int16_t* differences, ptrdiff_t count) {
  int16_t* to = differences;
  const int16_t* const end = differences + count;
  while (to < end && window.refill()) {
    // A full window is enough for two pairs.
    for (int i = 0; i < 2; ++i) {
      const PairTable::Pair pair = table[window.peekByte()];
      if (pair.isNone()) [[unlikely]]
        return to - differences;
      to[0] = pair.told();
      to[pair.count() - 1] = static_cast<int16_t>(window.peekExtraBits(pair.extraBitsAt(), pair.category()));
      to += pair.count();
      window.consumePair(pair.toldBits(), pair.extraBitsAt(), pair.bits());
      if (to >= end) break;
    }
  }
  return to - differences;
}

// Where the differences of a row go.
class RowWriter {
 public:
  HWY_INLINE RowWriter(int16_t* const rows[], int32_t components) : rows_(rows), components_(components) {}

  HWY_INLINE void put(int16_t difference) {
    storeUnaligned(rows_[component_] + sample_, difference);
    if (++component_ == components_) {
      component_ = 0;
      ++sample_;
    }
  }
  HWY_INLINE void put(const int16_t* differences, ptrdiff_t count) {
    ptrdiff_t i = 0;
    for (; component_ != 0 && i < count; ++i) put(differences[i]);
#if ZORJ_SIMD
    const hn::Full128<int16_t> d;
    constexpr ptrdiff_t kLanes = 8;
    if (components_ == 3) {
      for (; i + 3 * kLanes <= count; i += 3 * kLanes, sample_ += kLanes) {
        hn::Vec128<int16_t> first, second, third;
        hn::LoadInterleaved3(d, differences + i, first, second, third);
        hn::StoreU(first, d, rows_[0] + sample_);
        hn::StoreU(second, d, rows_[1] + sample_);
        hn::StoreU(third, d, rows_[2] + sample_);
      }
    }
#endif
    for (; i < count; ++i) put(differences[i]);
  }

 private:
  int16_t* const* rows_;
  int32_t components_;
  int32_t component_ = 0;
  ptrdiff_t sample_ = 0;
};

bool useOneTable(const HuffmanDecodeSpec* const specs[], int32_t components) {
  for (int32_t c = 1; c < components; ++c) {
    if (specs[c] != specs[0]) return false;
  }
  return true;
}

// The next difference; false if the window is empty or no code matches.
HWY_INLINE bool takeDifference(BitWindow& window, const HuffmanDecodeSpec& spec, int16_t& difference) {
  if (!window.refill()) return false;
  const uint32_t entry = takeCode(window, spec);
  const uint32_t category = entry & 0xFF;
  difference = static_cast<int16_t>(category < 16 ? window.takeExtraBits(category) : -32768);
  return entry != 0;
}

Differences decodeDifferences(const uint8_t* next, const uint8_t* end, HuffmanDecodeState& state, int16_t* const rows[],
                              int64_t count, int32_t components, const HuffmanDecodeSpec* const specs[]) {
  BitWindow window(next, end, state);
  RowWriter writer(rows, components);
  int64_t done = 0;
  int16_t difference = 0;
  constexpr int64_t kWorthTable = 500;
  if (count >= kWorthTable && useOneTable(specs, components)) {
    const PairTable table(*specs[0]);
    constexpr int64_t kRun = 240;
    int16_t differences[kRun + 1];
    while (count - done > 1) {
      const auto run = static_cast<ptrdiff_t>(HWY_MIN(kRun, count - done - 1));
      const ptrdiff_t decoded = decodePairs(window, table, differences, run);
      writer.put(differences, decoded);
      done += decoded;
      if (decoded >= run) continue;
      if (!takeDifference(window, *specs[0], difference)) break;
      writer.put(difference);
      ++done;
    }
  }
  int32_t component = static_cast<int32_t>(done % components);
  for (; done < count && takeDifference(window, *specs[component], difference); ++done) {
    writer.put(difference);
    if (++component == components) component = 0;
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
