#include "tiff/rows_kernels.h"

#include <algorithm>
#include <cstring>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tiff/rows_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// What a packet holds at most, and the header that says nothing. A header below it is a literal's length less 1, one
// above it 257 less the length of a replicate.
constexpr ptrdiff_t kLongest = 128;
constexpr int kNoOperation = 128;

#if ZORJ_SIMD
using Bytes = hn::ScalableTag<uint8_t>;
constexpr ptrdiff_t kLanes = HWY_LANES(uint8_t);

template <class Word>
HWY_INLINE void copyEnds(uint8_t* to, const uint8_t* from, ptrdiff_t length) {
  Word first, last;
  const size_t lastAt = static_cast<size_t>(length) - sizeof last;
  std::memcpy(&first, from, sizeof first);
  std::memcpy(&last, from + lastAt, sizeof last);
  std::memcpy(to, &first, sizeof first);
  std::memcpy(to + lastAt, &last, sizeof last);
}
#endif

// Copies a packet's bytes, none beyond.
HWY_INLINE void copyLiteral(uint8_t* to, const uint8_t* from, ptrdiff_t length) {
#if ZORJ_SIMD
  const Bytes d;
  if (length >= kLanes) {
    const ptrdiff_t last = length - kLanes;
    if (length > 4 * kLanes) {
      for (ptrdiff_t i = 0; i < last; i += kLanes) hn::StoreU(hn::LoadU(d, from + i), d, to + i);
      hn::StoreU(hn::LoadU(d, from + last), d, to + last);
      return;
    }
    if (length > 2 * kLanes) {
      hn::StoreU(hn::LoadU(d, from + kLanes), d, to + kLanes);
      hn::StoreU(hn::LoadU(d, from + last - kLanes), d, to + last - kLanes);
    }
    hn::StoreU(hn::LoadU(d, from), d, to);
    hn::StoreU(hn::LoadU(d, from + last), d, to + last);
    return;
  }
  const hn::CappedTag<uint8_t, 32> d32;
  const hn::Full128<uint8_t> d16;
  if (length >= 32) {
    hn::StoreU(hn::LoadU(d32, from), d32, to);
    hn::StoreU(hn::LoadU(d32, from + length - 32), d32, to + length - 32);
  } else if (length >= 16) {
    hn::StoreU(hn::LoadU(d16, from), d16, to);
    hn::StoreU(hn::LoadU(d16, from + length - 16), d16, to + length - 16);
  } else if (length >= 8) {
    copyEnds<uint64_t>(to, from, length);
  } else if (length >= 4) {
    copyEnds<uint32_t>(to, from, length);
  } else {
    to[0] = from[0];
    to[length / 2] = from[length / 2];
    to[length - 1] = from[length - 1];
  }
#else
  std::memcpy(to, from, static_cast<size_t>(length));
#endif
}

// How many of the first bytes, at most `limit`, are all equal.
HWY_INLINE ptrdiff_t runLength(const uint8_t* row, ptrdiff_t limit) {
  ptrdiff_t i = 1;
#if ZORJ_SIMD
  const Bytes d;
  const auto value = hn::Set(d, row[0]);
  for (i = 0; i + kLanes <= limit; i += kLanes) {
    const intptr_t other = hn::FindFirstTrue(d, hn::Ne(hn::LoadU(d, row + i), value));
    if (other >= 0) return i + other;
  }
#endif
  while (i < limit && row[i] == row[0]) ++i;
  return i;
}

// The length of a literal at the start of `left` bytes, the first two of which differ: up to three equal ones.
HWY_INLINE ptrdiff_t literalLength(const uint8_t* row, ptrdiff_t left) {
  ptrdiff_t i = 1;
#if ZORJ_SIMD
  const Bytes d;
  for (; i < kLongest && i + kLanes + 2 <= left; i += kLanes) {
    const auto first = hn::LoadU(d, row + i), second = hn::LoadU(d, row + i + 1), third = hn::LoadU(d, row + i + 2);
    const intptr_t triple = hn::FindFirstTrue(d, hn::And(hn::Eq(first, second), hn::Eq(second, third)));
    if (triple >= 0) return std::min(i + triple, kLongest);
  }
#endif
  const ptrdiff_t limit = std::min(left, kLongest);
  for (; i < limit && i + 2 < left; ++i) {
    if (row[i] == row[i + 1] && row[i + 1] == row[i + 2]) return i;
  }
  return limit;
}

StatusCode pack(const uint8_t* row, int32_t rowLength, uint8_t* packets, int32_t* position, int32_t length) {
  const uint8_t* const end = row + rowLength;
  ptrdiff_t at = *position;
  while (row < end) {
    const ptrdiff_t left = end - row;
    const bool replicate = left >= 2 && row[0] == row[1];
    const ptrdiff_t count = replicate ? runLength(row, std::min(left, kLongest)) : literalLength(row, left);
    const ptrdiff_t packetSize = 1 + (replicate ? 1 : count);
    if (packetSize > length - at) {
      *position = static_cast<int32_t>(at);
      return StatusPackBitsError;
    }
    packets[at] = static_cast<uint8_t>(replicate ? 1 - count : count - 1);
    if (replicate) {
      packets[at + 1] = row[0];
    } else {
      copyLiteral(packets + at + 1, row, count);
    }
    row += count;
    at += packetSize;
  }
  *position = static_cast<int32_t>(at);
  return StatusOk;
}

// How far unpacking got.
struct Progress {
  ptrdiff_t at;       // in the packets
  ptrdiff_t written;  // of the row
};

#if ZORJ_SIMD
// Bytes of the row as they were before packets were unpacked there. Its functions are not inlined, for the sake of the
// loop that seldom calls them.
struct Saved {
  static constexpr ptrdiff_t kSize = 4096;
  uint8_t bytes[kSize];

  HWY_NOINLINE void take(const uint8_t* row, ptrdiff_t from, ptrdiff_t end) {
    std::memcpy(bytes, row + from, static_cast<size_t>(std::min(kSize, end - from)));
  }
  HWY_NOINLINE void putBack(uint8_t* row, ptrdiff_t from, ptrdiff_t savedFrom, ptrdiff_t end) const {
    if (end > from) std::memcpy(row + from, bytes + (from - savedFrom), static_cast<size_t>(end - from));
  }
};

// Stores a packet of up to `shortest` bytes as that many, and one of up to `longest`, twice that, as what it is.
template <ptrdiff_t shortest, ptrdiff_t longest, size_t lanes, class StoreVector>
HWY_INLINE void storePacket(ptrdiff_t count, const StoreVector& storeVector) {
  constexpr auto kStep = static_cast<ptrdiff_t>(lanes);
  for (ptrdiff_t i = 0; i < shortest; i += kStep) storeVector(i);
  if (count <= shortest) return;
  for (ptrdiff_t i = count - (longest - shortest); i < count; i += kStep) storeVector(i);
}

// Unpacks packets of up to `longest` bytes while so many can be read and written. What the short ones destroy behind
// them was saved before, and is put back at the end. Literals and replicates go apart, although they do much the same:
// photographs and pages alternate between them, so a guess is right more often than a choice by arithmetic is quick.
template <ptrdiff_t shortest, ptrdiff_t longest>
HWY_INLINE Progress unpackVectors(const uint8_t* packets, ptrdiff_t length, uint8_t* row, ptrdiff_t rowLength,
                                  Progress progress) {
  const hn::CappedTag<uint8_t, shortest> d;
  constexpr size_t kStep = hn::MaxLanes(d);
  Saved saved;
  ptrdiff_t at = progress.at, written = progress.written;
  ptrdiff_t savedFrom = written - Saved::kSize, dirtyEnd = written;
  while (length - at > longest && rowLength - written >= longest) {
    const int header = packets[at];
    const bool literal = header < kNoOperation;
    const ptrdiff_t count = literal ? header + 1 : 257 - header;
    if (count > longest) break;
    if (count <= shortest) {
      if (written + shortest > savedFrom + Saved::kSize) {
        saved.putBack(row, written, savedFrom, dirtyEnd);
        saved.take(row, written, rowLength);
        savedFrom = written;
      }
      dirtyEnd = written + shortest;
    }
    const uint8_t* const from = packets + at + 1;
    uint8_t* const to = row + written;
    if (literal) {
      storePacket<shortest, longest, kStep>(
          count, [=](ptrdiff_t i) HWY_ATTR { hn::StoreU(hn::LoadU(d, from + i), d, to + i); });
      at += 1 + count;
    } else {
      const auto repeated = hn::Set(d, *from);
      storePacket<shortest, longest, kStep>(count, [=](ptrdiff_t i) HWY_ATTR { hn::StoreU(repeated, d, to + i); });
      at += 2;
    }
    written += count;
  }
  saved.putBack(row, written, savedFrom, dirtyEnd);
  return {at, written};
}
#endif

StatusCode unpack(const uint8_t* packets, int32_t* position, int32_t length, uint8_t* row, int32_t rowLength) {
  Progress progress = {*position, 0};
  auto& [at, written] = progress;
  for (;;) {
#if ZORJ_SIMD
    progress = unpackVectors<kLongest / 2, kLongest>(packets, length, row, rowLength, progress);
    progress = unpackVectors<32, 32>(packets, length, row, rowLength, progress);
#endif
    if (written == rowLength || at >= length) break;
    const int header = packets[at++];
    if (header == kNoOperation) continue;
    const bool literal = header < kNoOperation;
    const ptrdiff_t count = literal ? header + 1 : 257 - header;
    // Behind the last position there is, no byte can be repeated.
    if ((literal ? count > length - at : at == INT32_MAX) || count > rowLength - written) break;
    if (literal) {
      copyLiteral(row + written, packets + at, count);
    } else {
      std::memset(row + written, packets[at], static_cast<size_t>(count));
    }
    at += literal ? count : 1;
    written += count;
  }
  *position = static_cast<int32_t>(at);
  return written == rowLength ? StatusOk : StatusPackBitsError;
}

// Columns in whole vectors, the last of which may overlap the one before; returns the first column left.
#if ZORJ_SIMD
template <class Column>
HWY_INLINE size_t forEachVector(size_t width, const Column& column) {
  const size_t lanes = hn::Lanes(Bytes());
  if (width < lanes) return 0;
  for (size_t i = 0; i < width; i += lanes) column(std::min(i, width - lanes));
  return width;
}
#endif

void split(const uint16_t* samples, uint8_t* high, uint8_t* low, size_t width) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(samples);
  size_t i = 0;
#if ZORJ_SIMD
  i = forEachVector(width, [&](size_t at) HWY_ATTR {
    const Bytes d;
    hn::Vec<Bytes> lows, highs;
    hn::LoadInterleaved2(d, bytes + 2 * at, lows, highs);
    hn::StoreU(highs, d, high + at);
    hn::StoreU(lows, d, low + at);
  });
#endif
  for (; i < width; ++i) {
    low[i] = bytes[2 * i];
    high[i] = bytes[2 * i + 1];
  }
}

void join(const uint8_t* high, const uint8_t* low, uint16_t* samples, size_t width) {
  auto* const bytes = reinterpret_cast<uint8_t*>(samples);
  size_t i = 0;
#if ZORJ_SIMD
  i = forEachVector(width, [&](size_t at) HWY_ATTR {
    const Bytes d;
    hn::StoreInterleaved2(hn::LoadU(d, low + at), hn::LoadU(d, high + at), d, bytes + 2 * at);
  });
#endif
  for (; i < width; ++i) {
    bytes[2 * i] = low[i];
    bytes[2 * i + 1] = high[i];
  }
}

constexpr TiffRowKernels kernels = {&pack, &unpack, &split, &join};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const TiffRowKernels> perIsa{ZORJ_PER_ISA(kernels)};

const TiffRowKernels& tiffRowKernels() { return *perIsa; }

}  // namespace zorj
#endif
