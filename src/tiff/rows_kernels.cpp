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
    const ptrdiff_t packetEnd = at + 1 + (replicate ? 1 : count);
    if (packetEnd > length) {
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
    at = packetEnd;
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
// Unpacks packets while kShort bytes can be read and written. A packet of up to so many is written as that many; what
// that destroys behind it was saved before, and is put back at the end. Literals and replicates go apart, although they
// do much the same: photographs and pages alternate between them, so a guess is right more often than a choice by
// arithmetic is quick.
HWY_INLINE Progress unpackVectors(const uint8_t* packets, ptrdiff_t length, uint8_t* row, ptrdiff_t rowLength,
                                  Progress progress) {
  const Bytes d;
  constexpr ptrdiff_t kShort = std::max<ptrdiff_t>(kLanes, 32), kSaved = 512 + kShort;
  uint8_t saved[kSaved];
  auto [at, written] = progress;
  ptrdiff_t savedFrom = written - kSaved, dirtyEnd = written;
  const auto putBack = [&]() HWY_ATTR {
    if (dirtyEnd > written) {
      std::memcpy(row + written, saved + (written - savedFrom), static_cast<size_t>(dirtyEnd - written));
    }
  };
  const auto save = [&]() HWY_ATTR {
    if (written + kShort <= savedFrom + kSaved) return;
    putBack();
    savedFrom = written;
    std::memcpy(saved, row + written, static_cast<size_t>(std::min(kSaved, rowLength - written)));
  };
  while (length - at > kShort && rowLength - written >= kShort) {
    const int header = packets[at];
    const uint8_t* const from = packets + at + 1;
    if (header < kNoOperation) {
      const ptrdiff_t count = header + 1;
      if (count <= kShort) {
        save();
        for (ptrdiff_t i = 0; i < kShort; i += kLanes) hn::StoreU(hn::LoadU(d, from + i), d, row + written + i);
        dirtyEnd = written + kShort;
      } else {
        if (at + 1 + count > length || written + count > rowLength) break;
        copyLiteral(row + written, from, count);
      }
      at += 1 + count;
      written += count;
    } else {
      const ptrdiff_t count = 257 - header;
      const auto repeated = hn::Set(d, *from);
      if (count <= kShort) {
        save();
        for (ptrdiff_t i = 0; i < kShort; i += kLanes) hn::StoreU(repeated, d, row + written + i);
        dirtyEnd = written + kShort;
      } else {
        if (header == kNoOperation || written + count > rowLength) break;
        for (ptrdiff_t i = 0; i < count - kLanes; i += kLanes) hn::StoreU(repeated, d, row + written + i);
        hn::StoreU(repeated, d, row + written + count - kLanes);
      }
      at += 2;
      written += count;
    }
  }
  putBack();
  return {at, written};
}
#endif

StatusCode unpack(const uint8_t* packets, int32_t* position, int32_t length, uint8_t* row, int32_t rowLength) {
  Progress progress = {*position, 0};
  auto& [at, written] = progress;
  for (;;) {
#if ZORJ_SIMD
    progress = unpackVectors(packets, length, row, rowLength, progress);
#endif
    if (written == rowLength || at >= length) break;
    const int header = packets[at++];
    if (header == kNoOperation) continue;
    const bool literal = header < kNoOperation;
    const ptrdiff_t count = literal ? header + 1 : 257 - header;
    if ((literal && at + count > length) || written + count > rowLength) break;
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
