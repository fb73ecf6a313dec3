#include "hdp/photo_core_kernels.h"

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

// The steps below work on the 16 samples of a block, or on vectors with a block in every lane. Everything wraps modulo
// 2^32, which makes each of them reversible.
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
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    block[to] = plus(block[to], scaled<factor, rounding, shift>(block[from]));
  }
};

template <int to, int from, int factor, int rounding, int shift>
struct Subtract {
  using Inverse = Add<to, from, factor, rounding, shift>;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    block[to] = minus(block[to], scaled<factor, rounding, shift>(block[from]));
  }
};

// The steps from here on are their own inverses.
template <int to>
struct Negate {
  using Inverse = Negate;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    block[to] = minus(constant(0, block[to]), block[to]);
  }
};

// to = ((from + 1) >> 1) - to
template <int to, int from>
struct SubtractFromHalf {
  using Inverse = SubtractFromHalf;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    block[to] = minus(scaled<1, 1, 1>(block[from]), block[to]);
  }
};

template <int w, int x, int y, int z, int rounding>
struct Hadamard {
  using Inverse = Hadamard;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    const auto sum = plus(block[w], block[z]), difference = minus(block[x], block[y]);
    const auto half = scaled<1, rounding, 1>(minus(sum, difference));
    const auto oldZ = block[z];
    block[z] = minus(half, block[y]);
    block[y] = minus(half, oldZ);
    block[x] = plus(difference, block[y]);
    block[w] = minus(sum, block[z]);
  }
};

// Steps one after the other.
template <class First, class... Rest>
struct Reversed {
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    if constexpr (sizeof...(Rest) > 0) Reversed<Rest...>::run(block);
    First::Inverse::run(block);
  }
};

template <class... Step>
struct Reversible {
  using Inverse = Reversed<Step...>;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    (Step::run(block), ...);
  }
};

// Two sequences of as many steps, in turns, where neither needs the other: the processor finds more to do at once.
template <class First, class Second>
struct Interleave;

template <class... First, class... Second>
struct Interleave<Reversible<First...>, Reversible<Second...>> : Reversible<Reversible<First, Second>...> {};

// The rotations of T.832 for the coefficients that are odd in one direction, and in both.
template <int c, int d, int g, int h>
using OddRotation = Reversible<Subtract<d, g>, Add<c, h>, Add<g, d, 1, 1, 1>, SubtractFromHalf<h, c>,
                               Subtract<d, c, 3, 4, 3>, Add<c, d, 3, 4, 3>, Subtract<h, g, 3, 4, 3>, Add<g, h, 3, 4, 3>,
                               Add<h, d, 1, 0, 1>, Subtract<g, c, 1, 1, 1>, Subtract<d, h>, Add<c, g>>;
template <int k, int l, int o, int p>
using OddOddRotation = Reversible<Negate<l>, Negate<o>, Add<p, k>, Subtract<o, l>, Subtract<k, p, 1, 0, 1>,
                                  Add<l, o, 1, 0, 1>, Add<k, l, 3, 4, 3>, Subtract<l, k, 3, 3, 2>, Add<k, l, 3, 3, 3>,
                                  Subtract<l, o, 1, 0, 1>, Add<k, p, 1, 0, 1>, Add<o, l>, Subtract<p, k>>;

template <int row>
struct Store;

// A row of the blocks, from and to memory.
template <int row>
struct Load {
  using Inverse = Store<row>;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    block.load(row);
  }
};

template <int row>
struct Store {
  using Inverse = Load<row>;
  template <class Block>
  static HWY_INLINE void run(Block& block) {
    block.store(row);
  }
};

enum Sample { a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p };

// Rows are loaded late and stored early, in both directions, for there are hardly more registers than samples.
struct Forward : Reversible<Load<0>, Load<3>, Hadamard<a, d, m, p, 0>, Hadamard<b, c, n, o, 0>,  //
                            Load<1>, Load<2>, Hadamard<e, h, i, l, 0>, Hadamard<f, g, j, k, 0>,  //
                            Interleave<OddRotation<c, d, g, h>, OddRotation<i, m, j, n>>,        //
                            Hadamard<a, b, e, f, 1>, Store<0>, Store<1>,                         //
                            OddOddRotation<k, l, o, p>, Store<2>, Store<3>> {};
struct Inverse : Forward::Inverse {};

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

// The blocks in four strips, each four rows high and as wide as a vector; which lane a block goes through does not
// matter. Strips may be the same.
template <class D>
struct Blocks {
  hn::Vec<D>& operator[](int sample) { return samples[sample]; }

  // Written out, since loops would keep the vectors in memory.
  HWY_INLINE void load(int row) {
    auto* const columns = samples + 4 * row;
    columns[0] = hn::LoadU(D(), rowAt(strips[0], step, row));
    columns[1] = hn::LoadU(D(), rowAt(strips[1], step, row));
    columns[2] = hn::LoadU(D(), rowAt(strips[2], step, row));
    columns[3] = hn::LoadU(D(), rowAt(strips[3], step, row));
    transpose(D(), columns);
  }
  HWY_INLINE void store(int row) {
    auto* const columns = samples + 4 * row;
    transpose(D(), columns);
    hn::StoreU(columns[0], D(), rowAt(strips[0], step, row));
    hn::StoreU(columns[1], D(), rowAt(strips[1], step, row));
    hn::StoreU(columns[2], D(), rowAt(strips[2], step, row));
    hn::StoreU(columns[3], D(), rowAt(strips[3], step, row));
  }

  int32_t* const* strips;
  int32_t step;
  hn::Vec<D> samples[16];
};

// The region's strips of `lanes` columns, four at a time, then what is left on the right in narrower ones.
template <class Steps, size_t lanes>
void transformRegion(int32_t* samples, int32_t step, int32_t width, int32_t height) {
  constexpr auto kWidth = static_cast<int32_t>(lanes);
  const int32_t whole = width / kWidth * kWidth;
  int32_t* strips[4];
  int32_t waiting = 0;
  for (int32_t y = 0; y < height; y += 4) {
    for (int32_t x = 0; x < whole; x += kWidth) {
      strips[waiting++] = rowAt(samples, step, y) + x;
      const bool isLast = y + 4 == height && x + kWidth == whole;
      if (waiting < 4 && !isLast) continue;
      while (waiting < 4) strips[waiting++] = strips[0];
      Blocks<hn::CappedTag<int32_t, lanes>> blocks;
      blocks.strips = strips;
      blocks.step = step;
      Steps::run(blocks);
      waiting = 0;
    }
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
struct Block {
  int32_t& operator[](int sample) { return samples[sample]; }
  void load(int row) {
    for (int x = 0; x < 4; ++x) samples[4 * row + x] = loadUnaligned(rowAt(first, step, row) + x);
  }
  void store(int row) {
    for (int x = 0; x < 4; ++x) storeUnaligned(rowAt(first, step, row) + x, samples[4 * row + x]);
  }

  int32_t* first;
  int32_t step;
  int32_t samples[16];
};

template <class Steps>
void transform(int32_t* samples, int32_t step, int32_t width, int32_t height) {
  for (int32_t y = 0; y < height; y += 4) {
    for (int32_t x = 0; x < width; x += 4) {
      Block block;
      block.first = rowAt(samples, step, y) + x;
      block.step = step;
      Steps::run(block);
    }
  }
}
#endif

constexpr PhotoCoreKernels kernels = {&transform<Forward>, &transform<Inverse>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const PhotoCoreKernels> perIsa{ZORJ_PER_ISA(kernels)};

const PhotoCoreKernels& photoCoreKernels() { return *perIsa; }

}  // namespace zorj
#endif
