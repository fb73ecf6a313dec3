#include "hdp/photo_core_kernels.h"

#include <algorithm>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "hdp/photo_core_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The steps below work on arrays of the 16 samples of a block, or of vectors with a block in every lane. Everything
// wraps modulo 2^32, which makes each of them reversible.
#if ZORJ_SIMD
template <class V>
HWY_INLINE V plus(V a, V b) {
  return hn::Add(a, b);
}
template <class V>
HWY_INLINE V minus(V a, V b) {
  return hn::Sub(a, b);
}
template <int count, class V>
HWY_INLINE V shiftRight(V a) {
  return hn::ShiftRight<count>(a);
}
template <class V>
HWY_INLINE V constant(int32_t value, V) {
  return hn::Set(hn::DFromV<V>(), value);
}
#else
int32_t plus(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
int32_t minus(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
template <int count>
int32_t shiftRight(int32_t a) {
  return a >> count;
}
int32_t constant(int32_t value, int32_t) { return value; }
#endif

// (factor * value + rounding) >> shift, for the factors 1 and 3
template <int factor, int rounding, int shift, class V>
HWY_INLINE V scaled(V value) {
  static_assert(factor == 1 || factor == 3);
  if constexpr (factor == 3) value = plus(plus(value, value), value);
  if constexpr (rounding != 0) value = plus(value, constant(rounding, value));
  if constexpr (shift != 0) value = shiftRight<shift>(value);
  return value;
}

// Adds a scaled sample to another one, which Subtract undoes, and the other way round.
template <int to, int from, int factor = 1, int rounding = 0, int shift = 0>
struct Subtract;

template <int to, int from, int factor = 1, int rounding = 0, int shift = 0>
struct Add {
  using Inverse = Subtract<to, from, factor, rounding, shift>;
  template <class V>
  static HWY_INLINE void run(V* block) {
    block[to] = plus(block[to], scaled<factor, rounding, shift>(block[from]));
  }
};

template <int to, int from, int factor, int rounding, int shift>
struct Subtract {
  using Inverse = Add<to, from, factor, rounding, shift>;
  template <class V>
  static HWY_INLINE void run(V* block) {
    block[to] = minus(block[to], scaled<factor, rounding, shift>(block[from]));
  }
};

// The steps from here on are their own inverses.
template <int to>
struct Negate {
  using Inverse = Negate;
  template <class V>
  static HWY_INLINE void run(V* block) {
    block[to] = minus(constant(0, block[to]), block[to]);
  }
};

// to = ((from + 1) >> 1) - to
template <int to, int from>
struct SubtractFromHalf {
  using Inverse = SubtractFromHalf;
  template <class V>
  static HWY_INLINE void run(V* block) {
    block[to] = minus(scaled<1, 1, 1>(block[from]), block[to]);
  }
};

template <int w, int x, int y, int z, int rounding>
struct Hadamard {
  using Inverse = Hadamard;
  template <class V>
  static HWY_INLINE void run(V* block) {
    const V sum = plus(block[w], block[z]), difference = minus(block[x], block[y]);
    const V half = scaled<1, rounding, 1>(minus(sum, difference));
    const V oldZ = block[z];
    block[z] = minus(half, block[y]);
    block[y] = minus(half, oldZ);
    block[x] = plus(difference, block[y]);
    block[w] = minus(sum, block[z]);
  }
};

// Steps one after the other.
template <class First, class... Rest>
struct Reversed {
  template <class V>
  static HWY_INLINE void run(V* block) {
    if constexpr (sizeof...(Rest) > 0) Reversed<Rest...>::run(block);
    First::Inverse::run(block);
  }
};

template <class... Step>
struct Reversible {
  using Inverse = Reversed<Step...>;
  template <class V>
  static HWY_INLINE void run(V* block) {
    (Step::run(block), ...);
  }
};

// The rotations of T.832 for the coefficients that are odd in one direction, and in both.
template <int c, int d, int g, int h>
using OddRotation = Reversible<Subtract<d, g>, Add<c, h>, Add<g, d, 1, 1, 1>, SubtractFromHalf<h, c>,
                               Subtract<d, c, 3, 4, 3>, Add<c, d, 3, 4, 3>, Subtract<h, g, 3, 4, 3>, Add<g, h, 3, 4, 3>,
                               Add<h, d, 1, 0, 1>, Subtract<g, c, 1, 1, 1>, Subtract<d, h>, Add<c, g>>;
template <int k, int l, int o, int p>
using OddOddRotation = Reversible<Negate<l>, Negate<o>, Add<p, k>, Subtract<o, l>, Subtract<k, p, 1, 0, 1>,
                                  Add<l, o, 1, 0, 1>, Add<k, l, 3, 4, 3>, Subtract<l, k, 3, 3, 2>, Add<k, l, 3, 3, 3>,
                                  Subtract<l, o, 1, 0, 1>, Add<k, p, 1, 0, 1>, Add<o, l>, Subtract<p, k>>;

enum Sample { a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p };
using Forward =
    Reversible<Hadamard<a, d, m, p, 0>, Hadamard<b, c, n, o, 0>, Hadamard<e, h, i, l, 0>, Hadamard<f, g, j, k, 0>,
               Hadamard<a, b, e, f, 1>, OddRotation<c, d, g, h>, OddRotation<i, m, j, n>, OddOddRotation<k, l, o, p>>;

#if ZORJ_SIMD
// Exchanges rows and columns of the 4 x 4 samples that vectors 0 to 3 have in each of their 16-byte blocks.
template <class D, class V>
HWY_INLINE void transpose(D tag, V* rows) {
  const hn::Repartition<int64_t, D> pairs;
  const auto low01 = hn::BitCast(pairs, hn::InterleaveLower(tag, rows[0], rows[1]));
  const auto high01 = hn::BitCast(pairs, hn::InterleaveUpper(tag, rows[0], rows[1]));
  const auto low23 = hn::BitCast(pairs, hn::InterleaveLower(tag, rows[2], rows[3]));
  const auto high23 = hn::BitCast(pairs, hn::InterleaveUpper(tag, rows[2], rows[3]));
  rows[0] = hn::BitCast(tag, hn::InterleaveLower(pairs, low01, low23));
  rows[1] = hn::BitCast(tag, hn::InterleaveUpper(pairs, low01, low23));
  rows[2] = hn::BitCast(tag, hn::InterleaveLower(pairs, high01, high23));
  rows[3] = hn::BitCast(tag, hn::InterleaveUpper(pairs, high01, high23));
}

// Transforms the blocks in four strips, each four rows high and as wide as a vector; which lane a block goes through
// does not matter. Strips may be the same.
template <class Steps, class D>
HWY_INLINE void transformStrips(D tag, int32_t* const strips[4], int32_t step) {
  hn::Vec<D> block[16];
  const auto row = [&](int y, int strip) HWY_ATTR { return rowAt(strips[strip], step, y); };
  for (int y = 0; y < 4; ++y) {
    for (int strip = 0; strip < 4; ++strip) block[4 * y + strip] = hn::LoadU(tag, row(y, strip));
    transpose(tag, block + 4 * y);
  }
  Steps::run(block);
  for (int y = 0; y < 4; ++y) {
    transpose(tag, block + 4 * y);
    for (int strip = 0; strip < 4; ++strip) hn::StoreU(block[4 * y + strip], tag, row(y, strip));
  }
}

// The region's strips of `lanes` columns, four at a time, then what is left on the right in narrower ones.
template <class Steps, size_t lanes>
void transformRegion(int32_t* samples, int32_t step, int32_t width, int32_t height) {
  const hn::CappedTag<int32_t, lanes> tag;
  constexpr auto kWidth = static_cast<int32_t>(lanes);
  const int32_t whole = width / kWidth * kWidth;
  int32_t* strips[4];
  size_t count = 0;
  for (int32_t y = 0; y < height; y += 4) {
    for (int32_t x = 0; x < whole; x += kWidth) {
      strips[count++] = rowAt(samples, step, y) + x;
      if (count < 4) continue;
      transformStrips<Steps>(tag, strips, step);
      count = 0;
    }
  }
  if (count > 0) {
    std::fill(strips + count, strips + 4, strips[0]);
    transformStrips<Steps>(tag, strips, step);
  }
  if constexpr (lanes > 4) {
    if (whole < width) transformRegion<Steps, lanes / 2>(samples + whole, step, width - whole, height);
  }
}

template <class Steps>
void transform(int32_t* samples, int32_t step, int32_t width, int32_t height) {
  transformRegion<Steps, HWY_LANES(int32_t)>(samples, step, width, height);
}
#else
template <class Steps>
void transform(int32_t* samples, int32_t step, int32_t width, int32_t height) {
  for (int32_t y = 0; y < height; y += 4) {
    for (int32_t x = 0; x < width; x += 4) {
      int32_t block[16];
      const auto at = [&](int sample) { return rowAt(samples, step, y + sample / 4) + x + sample % 4; };
      for (int sample = 0; sample < 16; ++sample) block[sample] = loadUnaligned(at(sample));
      Steps::run(block);
      for (int sample = 0; sample < 16; ++sample) storeUnaligned(at(sample), block[sample]);
    }
  }
}
#endif

constexpr PhotoCoreKernels kernels = {&transform<Forward>, &transform<Forward::Inverse>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const PhotoCoreKernels> perIsa{ZORJ_PER_ISA(kernels)};

const PhotoCoreKernels& photoCoreKernels() { return *perIsa; }

}  // namespace zorj
#endif
