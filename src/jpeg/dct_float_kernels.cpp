#include "jpeg/dct_float_kernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "core/isa.h"
#include "core/unaligned.h"
#include "jpeg/dct_constants.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/dct_float_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// A vector of columns, or one column at the portable level, of a block in memory.
#if ZORJ_SIMD
using Floats = hn::CappedTag<float, 8>;
using Columns = hn::Vec<Floats>;
constexpr int kColumnCount = static_cast<int>(hn::MaxLanes(Floats()));
HWY_INLINE Columns load(const float* from) { return hn::Load(Floats(), from); }
HWY_INLINE void store(Columns columns, float* to) { hn::Store(columns, Floats(), to); }
HWY_INLINE Columns constant(float value) { return hn::Set(Floats(), value); }
#else
using Columns = float;
constexpr int kColumnCount = 1;
inline float load(const float* from) { return *from; }
inline void store(float column, float* to) { *to = column; }
inline float constant(float value) { return value; }
#endif

struct alignas(64) Block {
  float at[64];
};

// sqrt(2) cos(k pi / 16)
constexpr float kCosines[8] = {static_cast<float>(kSqrt2 * cosineOfSixteenths(0)),
                               static_cast<float>(kSqrt2* cosineOfSixteenths(1)),
                               static_cast<float>(kSqrt2* cosineOfSixteenths(2)),
                               static_cast<float>(kSqrt2* cosineOfSixteenths(3)),
                               1.0f,
                               static_cast<float>(kSqrt2* cosineOfSixteenths(5)),
                               static_cast<float>(kSqrt2* cosineOfSixteenths(6)),
                               static_cast<float>(kSqrt2* cosineOfSixteenths(7))};
// What both passes together make too large. A power of two, and the DC weights are 1: flat blocks stay exact.
constexpr float kScale = 0.125f;

// The product of a row of the odd half of the DCT matrix. The order of the additions is part of the result.
HWY_INLINE Columns dot(Columns a, float fa, Columns b, float fb, Columns c, float fc, Columns d, float fd) {
  return (a * constant(fa) + b * constant(fb)) + (c * constant(fc) + d * constant(fd));
}

HWY_INLINE void forwardColumns(Block& block) {
  const auto& [c0, c1, c2, c3, c4, c5, c6, c7] = kCosines;
  for (int column = 0; column < 8; column += kColumnCount) {
    float* const at = block.at + column;
    const Columns s0 = load(at) + load(at + 56), d0 = load(at) - load(at + 56);
    const Columns s1 = load(at + 8) + load(at + 48), d1 = load(at + 8) - load(at + 48);
    const Columns s2 = load(at + 16) + load(at + 40), d2 = load(at + 16) - load(at + 40);
    const Columns s3 = load(at + 24) + load(at + 32), d3 = load(at + 24) - load(at + 32);
    const Columns outer = s0 + s3, inner = s1 + s2, outerDifference = s0 - s3, innerDifference = s1 - s2;
    store(outer + inner, at);
    store(dot(d0, c1, d1, c3, d2, c5, d3, c7), at + 8);
    store(outerDifference * constant(c2) + innerDifference * constant(c6), at + 16);
    store(dot(d0, c3, d1, -c7, d2, -c1, d3, -c5), at + 24);
    store(outer - inner, at + 32);
    store(dot(d0, c5, d1, -c1, d2, c7, d3, c3), at + 40);
    store(outerDifference * constant(c6) - innerDifference * constant(c2), at + 48);
    store(dot(d0, c7, d1, -c5, d2, c3, d3, -c1), at + 56);
  }
}

HWY_INLINE void inverseColumns(Block& block) {
  const auto& [c0, c1, c2, c3, c4, c5, c6, c7] = kCosines;
  for (int column = 0; column < 8; column += kColumnCount) {
    float* const at = block.at + column;
    const Columns sum = load(at) + load(at + 32), difference = load(at) - load(at + 32);
    const Columns y2 = load(at + 16), y6 = load(at + 48);
    const Columns outer = y2 * constant(c2) + y6 * constant(c6), inner = y2 * constant(c6) - y6 * constant(c2);
    const Columns e0 = sum + outer, e1 = difference + inner, e2 = difference - inner, e3 = sum - outer;
    const Columns y1 = load(at + 8), y3 = load(at + 24), y5 = load(at + 40), y7 = load(at + 56);
    const Columns o0 = dot(y1, c1, y3, c3, y5, c5, y7, c7), o1 = dot(y1, c3, y3, -c7, y5, -c1, y7, -c5);
    const Columns o2 = dot(y1, c5, y3, -c1, y5, c7, y7, c3), o3 = dot(y1, c7, y3, -c5, y5, c3, y7, -c1);
    store(e0 + o0, at);
    store(e1 + o1, at + 8);
    store(e2 + o2, at + 16);
    store(e3 + o3, at + 24);
    store(e3 - o3, at + 32);
    store(e2 - o2, at + 40);
    store(e1 - o1, at + 48);
    store(e0 - o0, at + 56);
  }
}

template <class T>
const T* rowOf(const T* base, int32_t step, int y) {
  return reinterpret_cast<const T*>(reinterpret_cast<const uint8_t*>(base) + ptrdiff_t{y} * step);
}
template <class T>
T* rowOf(T* base, int32_t step, int y) {
  return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(base) + ptrdiff_t{y} * step);
}

constexpr float kMiddle = 2048;
constexpr float kHighest = 4095;

#if ZORJ_SIMD

using Shorts = hn::Rebind<int16_t, Floats>;
using Ints = hn::Rebind<int32_t, Floats>;

HWY_INLINE Columns loadShorts(const int16_t* from) {
  return hn::ConvertTo(Floats(), hn::PromoteTo(Ints(), hn::LoadU(Shorts(), from)));
}
HWY_INLINE void storeShorts(hn::Vec<Ints> values, int16_t* to) {
  hn::StoreU(hn::DemoteTo(Shorts(), values), Shorts(), to);
}
// The first operand is what Min and Max drop where it is NaN.
HWY_INLINE Columns clampNumber(Columns value, float low, float high) {
  return hn::Min(hn::Max(value, constant(low)), constant(high));
}

// The transposes of 4x4 blocks: the first 4 rows of columns `from` and, in vectors of 8, of the 4 columns after.
struct Transposed {
  Columns column[4];
};
HWY_INLINE Transposed transpose4(const float* from) {
  constexpr Floats d;
  const auto r0 = load(from), r1 = load(from + 8), r2 = load(from + 16), r3 = load(from + 24);
  const auto lower02 = hn::InterleaveLower(d, r0, r2), upper02 = hn::InterleaveUpper(d, r0, r2);
  const auto lower13 = hn::InterleaveLower(d, r1, r3), upper13 = hn::InterleaveUpper(d, r1, r3);
  return {{hn::InterleaveLower(d, lower02, lower13), hn::InterleaveUpper(d, lower02, lower13),
           hn::InterleaveLower(d, upper02, upper13), hn::InterleaveUpper(d, upper02, upper13)}};
}

HWY_INLINE void storeColumn(Columns upper, Columns lower, float* to) {
  if constexpr (kColumnCount == 8) {
    store(hn::ConcatLowerLower(Floats(), lower, upper), to);
    store(hn::ConcatUpperUpper(Floats(), lower, upper), to + 32);
  } else {
    store(upper, to);
    store(lower, to + 4);
  }
}

HWY_INLINE void transpose(const Block& from, Block& to) {
  for (int x = 0; x < 8; x += kColumnCount) {
    const Transposed upper = transpose4(from.at + x), lower = transpose4(from.at + 32 + x);
    storeColumn(upper.column[0], lower.column[0], to.at + 8 * x);
    storeColumn(upper.column[1], lower.column[1], to.at + 8 * x + 8);
    storeColumn(upper.column[2], lower.column[2], to.at + 8 * x + 16);
    storeColumn(upper.column[3], lower.column[3], to.at + 8 * x + 24);
  }
}

HWY_INLINE void loadSamples(const uint16_t* src, int32_t srcStep, Block& block) {
  for (int i = 0; i < 64; i += kColumnCount) {
    const auto from = reinterpret_cast<const int16_t*>(rowOf(src, srcStep, i / 8) + i % 8);
    store(loadShorts(from) - constant(kMiddle), block.at + i);
  }
}

HWY_INLINE void quantise(const Block& block, int16_t* dst, const float* table) {
  for (int i = 0; i < 64; i += kColumnCount) {
    const auto value = load(block.at + i) * constant(kScale) * hn::LoadU(Floats(), table + i);
    const auto number = hn::IfThenElseZero(hn::Eq(value, value), value);
    storeShorts(hn::NearestInt(clampNumber(number, -32768, 32767)), dst + i);
  }
}

HWY_INLINE void dequantise(const int16_t* src, const float* table, Block& block) {
  for (int i = 0; i < 64; i += kColumnCount) {
    store(loadShorts(src + i) * hn::LoadU(Floats(), table + i), block.at + i);
  }
}

HWY_INLINE void storeSamples(const Block& block, uint16_t* dst, int32_t dstStep) {
  for (int i = 0; i < 64; i += kColumnCount) {
    const auto value = load(block.at + i) * constant(kScale) + constant(kMiddle);
    storeShorts(hn::ConvertTo(Ints(), clampNumber(value, 0, kHighest)),
                reinterpret_cast<int16_t*>(rowOf(dst, dstStep, i / 8) + i % 8));
  }
}

#else

void transpose(const Block& from, Block& to) {
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) to.at[8 * x + y] = from.at[8 * y + x];
  }
}

void loadSamples(const uint16_t* src, int32_t srcStep, Block& block) {
  for (int i = 0; i < 64; ++i) {
    const uint16_t sample = loadUnaligned(rowOf(src, srcStep, i / 8) + i % 8);
    block.at[i] = static_cast<int16_t>(sample) - kMiddle;
  }
}

void quantise(const Block& block, int16_t* dst, const float* table) {
  for (int i = 0; i < 64; ++i) {
    const float value = block.at[i] * kScale * loadUnaligned(table + i);
    const float number = value == value ? std::clamp(value, -32768.0f, 32767.0f) : 0.0f;
    storeUnaligned(dst + i, static_cast<int16_t>(std::lrint(number)));
  }
}

void dequantise(const int16_t* src, const float* table, Block& block) {
  for (int i = 0; i < 64; ++i) {
    block.at[i] = static_cast<float>(loadUnaligned(src + i)) * loadUnaligned(table + i);
  }
}

void storeSamples(const Block& block, uint16_t* dst, int32_t dstStep) {
  for (int i = 0; i < 64; ++i) {
    const float value = block.at[i] * kScale + kMiddle;
    const float number = value > 0 ? std::min(value, kHighest) : 0.0f;
    storeUnaligned(rowOf(dst, dstStep, i / 8) + i % 8, static_cast<uint16_t>(number));
  }
}

#endif

void forward(const uint16_t* src, int32_t srcStep, int16_t* dst, const float* table) {
  Block block, transposed;
  loadSamples(src, srcStep, block);
  forwardColumns(block);
  transpose(block, transposed);
  forwardColumns(transposed);
  transpose(transposed, block);
  quantise(block, dst, table);
}

void inverse(const int16_t* src, uint16_t* dst, int32_t dstStep, const float* table) {
  Block block, transposed;
  dequantise(src, table, block);
  inverseColumns(block);
  transpose(block, transposed);
  inverseColumns(transposed);
  transpose(transposed, block);
  storeSamples(block, dst, dstStep);
}

constexpr DctFloatKernels kernels = {&forward, &inverse};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const DctFloatKernels> perIsa{ZORJ_PER_ISA(kernels)};

const DctFloatKernels& dctFloatKernels() { return *perIsa; }

}  // namespace zorj
#endif
