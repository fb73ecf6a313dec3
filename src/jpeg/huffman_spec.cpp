#include "jpeg/huffman_spec.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "core/checks.h"
#include "jpeg/huffman_state.h"

namespace zorj {
namespace {

// The codes that a list of counts per length assigns, one after the other (T.81 Annex C).
struct CodeRange {
  uint32_t first;       // the smallest code of its length
  uint32_t count;       // codes of this length
  uint32_t firstIndex;  // where they begin in the list of symbols
};

// Computes the codes of every length; false when there are more than 256.
bool assignCodes(const uint8_t* bits, CodeRange (&ranges)[kMaxCodeLength + 1]) {
  uint32_t code = 0, index = 0;
  for (int length = 1; length <= kMaxCodeLength; ++length) {
    const uint32_t count = bits[length - 1];
    if (index + count > 256) return false;
    ranges[length] = {code, count, index};
    index += count;
    code = (code + count) << 1;
  }
  return true;
}

StatusCode buildEncodeSpec(const uint8_t* bits, const uint8_t* values, HuffmanEncodeSpec& spec) {
  spec = {};
  CodeRange ranges[kMaxCodeLength + 1] = {};
  if (!assignCodes(bits, ranges)) return StatusBadHuffmanTable;
  // The code of all ones is left unused (T.81 F.1.2.1.2), so the code after the last of a length still fits in it.
  for (int length = 1; length <= kMaxCodeLength; ++length) {
    const CodeRange& range = ranges[length];
    if (range.count != 0 && range.first + range.count >= 1u << length) return StatusBadHuffmanTable;
  }
  for (uint32_t length = 1; length <= kMaxCodeLength; ++length) {
    const CodeRange& range = ranges[length];
    for (uint32_t i = 0; i < range.count; ++i) {
      spec.codes[values[range.firstIndex + i]] = {static_cast<uint16_t>(range.first + i),
                                                  static_cast<uint16_t>(length)};
    }
  }
  return StatusOk;
}

// Enters the codes of up to 8 bits; false when they do not fit. One entry too many is tolerated and dropped.
bool fillFastLookup(const CodeRange (&ranges)[kMaxCodeLength + 1], HuffmanDecodeSpec& spec) {
  for (uint32_t length = 1; length <= kFastBits; ++length) {
    const CodeRange& range = ranges[length];
    const uint32_t entries = 1u << (kFastBits - length);
    for (uint32_t i = 0; i < range.count; ++i) {
      const uint32_t begin = (range.first + i) * entries, end = begin + entries;
      const TableEntry entry = {spec.symbols[range.firstIndex + i], static_cast<uint16_t>(length)};
      for (uint32_t at = begin; at < std::min(end, 256u); ++at) spec.fastLookup[at] = entry;
      if (end > 257) return false;
    }
  }
  return true;
}

StatusCode buildDecodeSpec(const uint8_t* bits, const uint8_t* values, HuffmanDecodeSpec& spec) {
  spec = {};
  CodeRange ranges[kMaxCodeLength + 1] = {};
  if (!assignCodes(bits, ranges)) return StatusBadHuffmanTable;
  for (int length = 1; length <= kMaxCodeLength; ++length) {
    const CodeRange& range = ranges[length];
    spec.maxCode[length] = kNoCode;
    if (range.count == 0) continue;
    spec.symbolIndex[length] = static_cast<uint16_t>(range.firstIndex);
    spec.minCode[length] = static_cast<uint16_t>(range.first);
    spec.maxCode[length] = static_cast<uint16_t>(range.first + range.count - 1);
    std::copy_n(values + range.firstIndex, range.count, spec.symbols + range.firstIndex);
  }
  spec.maxCode[kMaxCodeLength + 1] = kNoCode;
  return fillFastLookup(ranges, spec) ? StatusOk : StatusBadHuffmanTable;
}

template <class Spec>
StatusCode initialiseSpec(const uint8_t* bits, const uint8_t* values, Spec* spec,
                          StatusCode (*build)(const uint8_t*, const uint8_t*, Spec&)) {
  if (anyNull(bits, values, spec)) return StatusNullPointer;
  return build(bits, values, *spec);
}

template <class Spec>
StatusCode allocateSpec(const uint8_t* bits, const uint8_t* values, Spec** spec,
                        StatusCode (*build)(const uint8_t*, const uint8_t*, Spec&)) {
  if (anyNull(bits, values, spec)) return StatusNullPointer;
  Spec* allocated = allocateObject<Spec>();
  if (anyNull(allocated)) return StatusNullPointer;
  *spec = allocated;
  return build(bits, values, *allocated);
}

constexpr int kSlots = 257;           // the symbols and one that takes the code of all ones
constexpr int kLongestCodeSize = 32;  // before codes are limited to 16 bits
constexpr uint32_t kFrequencyCeiling = 1'000'000'000;
constexpr int kNoSlot = -1;

// The slot other than `except` with the least frequency that is not 0, the last of them; kNoSlot if there is none.
int findRarest(const uint32_t (&frequency)[kSlots], int except) {
  uint32_t least = kFrequencyCeiling;
  int found = kNoSlot;
  for (int slot = 0; slot < kSlots; ++slot) {
    if (slot == except || frequency[slot] == 0 || frequency[slot] > least) continue;
    least = frequency[slot];
    found = slot;
  }
  return found;
}

// T.81 Figure K.1: the size of each slot's code.
void findCodeSizes(uint32_t (&frequency)[kSlots], int (&codeSize)[kSlots]) {
  int next[kSlots];
  std::fill(std::begin(next), std::end(next), kNoSlot);
  const auto lengthen = [&](int slot) {
    ++codeSize[slot];
    while (next[slot] != kNoSlot) {
      slot = next[slot];
      ++codeSize[slot];
    }
    return slot;
  };
  for (;;) {
    const int rarest = findRarest(frequency, kNoSlot);
    const int second = findRarest(frequency, rarest);
    if (rarest == kNoSlot || second == kNoSlot) return;
    frequency[rarest] += frequency[second];
    frequency[second] = 0;
    next[lengthen(rarest)] = second;
    lengthen(second);
  }
}

// The longest size of at most `size` that any code has, or 0.
int longestUsed(const uint8_t (&count)[kLongestCodeSize + 1], int size) {
  while (size > 0 && count[size] == 0) --size;
  return size;
}

// T.81 Figure K.3: moves codes of more than 16 bits up the tree, then takes the reserved code away.
bool limitCodeSizes(uint8_t (&count)[kLongestCodeSize + 1]) {
  for (int size = kLongestCodeSize; size > kMaxCodeLength; --size) {
    while (count[size] > 0) {
      const int shorter = longestUsed(count, size - 2);
      if (shorter == 0) return false;
      count[size] = static_cast<uint8_t>(count[size] - 2);
      ++count[size - 1];
      count[shorter + 1] = static_cast<uint8_t>(count[shorter + 1] + 2);
      --count[shorter];
    }
  }
  const int longest = longestUsed(count, kMaxCodeLength);
  if (longest == 0) return false;
  --count[longest];
  return true;
}

StatusCode buildRawTable(const int32_t* statistics, uint8_t* bits, uint8_t* values) {
  uint32_t frequency[kSlots];
  std::memcpy(frequency, statistics, 256 * sizeof frequency[0]);
  frequency[256] = 1;
  int codeSize[kSlots] = {};
  findCodeSizes(frequency, codeSize);
  if (*std::max_element(std::begin(codeSize), std::end(codeSize)) > kLongestCodeSize) return StatusBadHuffmanTable;

  uint8_t count[kLongestCodeSize + 1] = {};  // by size; of 8 bits, so 256 codes of one size count as none
  for (const int size : codeSize) {
    if (size > 0) ++count[size];
  }
  if (!limitCodeSizes(count)) return StatusBadHuffmanTable;

  std::copy_n(count + 1, kMaxCodeLength, bits);
  for (int size = 1; size <= kLongestCodeSize; ++size) {
    for (int symbol = 0; symbol < 256; ++symbol) {
      if (codeSize[symbol] == size) *values++ = static_cast<uint8_t>(symbol);
    }
  }
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriEncodeHuffmanRawTableInit_JPEG_8u(const int32_t* pStatistics, uint8_t* pBits,
                                                           uint8_t* pValues) {
  if (anyNull(pStatistics, pBits, pValues)) return StatusNullPointer;
  return buildRawTable(pStatistics, pBits, pValues);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanSpecGetBufSize_JPEG_8u(int32_t* pSize) {
  return reportSize<HuffmanEncodeSpec>(pSize);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanSpecInit_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                       HuffmanEncodeSpec* pSpec) {
  return initialiseSpec(pBits, pValues, pSpec, &buildEncodeSpec);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                            HuffmanEncodeSpec** ppSpec) {
  return allocateSpec(pBits, pValues, ppSpec, &buildEncodeSpec);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanSpecFree_JPEG_8u(HuffmanEncodeSpec* pSpec) { return freeObject(pSpec); }

StatusCode ZORJ_CALL zoriDecodeHuffmanSpecGetBufSize_JPEG_8u(int32_t* pSize) {
  return reportSize<HuffmanDecodeSpec>(pSize);
}

StatusCode ZORJ_CALL zoriDecodeHuffmanSpecInit_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                       HuffmanDecodeSpec* pSpec) {
  return initialiseSpec(pBits, pValues, pSpec, &buildDecodeSpec);
}

StatusCode ZORJ_CALL zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                            HuffmanDecodeSpec** ppSpec) {
  return allocateSpec(pBits, pValues, ppSpec, &buildDecodeSpec);
}

StatusCode ZORJ_CALL zoriDecodeHuffmanSpecFree_JPEG_8u(HuffmanDecodeSpec* pSpec) { return freeObject(pSpec); }
