#include "jpeg2k/component_transform_kernels.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg2k/component_transform_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// ---- Arithmetic that reads the same for one sample and for a vector of them. Single 32-bit samples are unsigned here,
// so that sums wrap.

template <int bits>
uint32_t shiftRight(uint32_t x) {
  return static_cast<uint32_t>(static_cast<int32_t>(x) >> bits);
}
template <int bits>
uint32_t shiftLeft(uint32_t x) {
  return x << bits;
}
uint32_t scale(uint32_t x, int32_t factor) { return x * static_cast<uint32_t>(factor); }
uint32_t plus(uint32_t x, int32_t constant) { return x + static_cast<uint32_t>(constant); }
float scale(float x, float factor) { return x * factor; }

#if ZORJ_SIMD
template <int bits, class V>
HWY_INLINE V shiftRight(V x) {
  return hn::ShiftRight<bits>(x);
}
template <int bits, class V>
HWY_INLINE V shiftLeft(V x) {
  return hn::ShiftLeft<bits>(x);
}
template <class V, class T>
HWY_INLINE V scale(V x, T factor) {
  return hn::Mul(x, hn::Set(hn::DFromV<V>(), factor));
}
template <class V>
HWY_INLINE V plus(V x, int32_t constant) {
  return hn::Add(x, hn::Set(hn::DFromV<V>(), constant));
}
#endif

// q(x / 2^14) of the fixed-point forms.
template <class V>
HWY_INLINE V roundOff(V x) {
  return shiftRight<14>(plus(x, 8192));
}

int16_t saturate(int32_t x) {
  return static_cast<int16_t>(
      std::clamp<int32_t>(x, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max()));
}

// ---- The transforms: each turns three components into three others, in their places.

struct RctForward {
  template <class V>
  static HWY_INLINE void apply(V& r, V& g, V& b) {
    const V y = shiftRight<2>(r + g + g + b), u = b - g, v = r - g;
    r = y, g = u, b = v;
  }
};

struct RctInverse {
  template <class V>
  static HWY_INLINE void apply(V& y, V& u, V& v) {
    const V g = y - shiftRight<2>(u + v), red = v + g, blue = u + g;
    y = red, u = g, v = blue;
  }
};

struct IctForward32 {
  // The weights of Y sum up to 2^14 and those of Cb and Cr to 0, which leaves four products.
  template <class V>
  static HWY_INLINE void apply(V& r, V& g, V& b) {
    const V red = r - g, blue = b - g;
    const V y = roundOff(shiftLeft<14>(g) + scale(red, 4899) + scale(blue, 1868));
    const V cb = roundOff(shiftLeft<13>(blue) - scale(red, 2765));
    const V cr = roundOff(shiftLeft<13>(red) - scale(blue, 1332));
    r = y, g = cb, b = cr;
  }
};

struct IctInverse32 {
  template <class V>
  static HWY_INLINE void apply(V& y, V& cb, V& cr) {
    const V red = y + roundOff(scale(cr, 22970));
    const V green = y + roundOff(scale(cb, -5638) + scale(cr, -11700));
    const V blue = y + roundOff(scale(cb, 29032));
    y = red, cb = green, cr = blue;
  }
};

struct IctForwardFloat {
  template <class V>
  static HWY_INLINE void apply(V& r, V& g, V& b) {
    const V y = scale(r, 0.299f) + scale(g, 0.587f) + scale(b, 0.114f);
    const V cb = scale(r, -0.16875f) + scale(g, -0.33126f) + scale(b, 0.5f);
    const V cr = scale(r, 0.5f) + scale(g, -0.41869f) + scale(b, -0.08131f);
    r = y, g = cb, b = cr;
  }
};

struct IctInverseFloat {
  template <class V>
  static HWY_INLINE void apply(V& y, V& cb, V& cr) {
    const V red = scale(cr, 1.402f) + y;
    const V green = (scale(cb, -0.34413f) + scale(cr, -0.71414f)) + y;
    const V blue = scale(cb, 1.772f) + y;
    y = red, cb = green, cr = blue;
  }
};

#if ZORJ_SIMD
using Words = hn::ScalableTag<int16_t>;
using WordVector = hn::Vec<Words>;
using Ints = hn::ScalableTag<int32_t>;
using IntVector = hn::Vec<Ints>;

// (a + b) >> 1 of the exact sum.
HWY_INLINE WordVector half(WordVector a, WordVector b) {
  return hn::Add(hn::And(a, b), hn::ShiftRight<1>(hn::Xor(a, b)));
}

// The products a * weightA + b * weightB, of the lower and the upper half of each 16-byte block.
struct Products {
  IntVector lower, upper;

  Products(WordVector a, int16_t weightA, WordVector b, int16_t weightB) {
    const Ints d;
    const uint32_t pair = static_cast<uint16_t>(weightA) | static_cast<uint32_t>(static_cast<uint16_t>(weightB)) << 16;
    const auto weights = hn::BitCast(Words(), hn::Set(d, static_cast<int32_t>(pair)));
    auto ignored = hn::Zero(d);
    lower = hn::ReorderWidenMulAccumulate(d, hn::InterleaveLower(Words(), a, b), weights, hn::Zero(d), ignored);
    upper = hn::ReorderWidenMulAccumulate(d, hn::InterleaveUpper(Words(), a, b), weights, hn::Zero(d), ignored);
  }
  Products& operator+=(const Products& other) {
    lower = hn::Add(lower, other.lower), upper = hn::Add(upper, other.upper);
    return *this;
  }
  // Saturated (x + bias) >> 14.
  WordVector roundOff(int32_t bias) const {
    const auto addend = hn::Set(Ints(), bias);
    return hn::ReorderDemote2To(Words(), hn::ShiftRight<14>(hn::Add(lower, addend)),
                                hn::ShiftRight<14>(hn::Add(upper, addend)));
  }
};
#endif

// The 16-bit forms: with sums of 32 bits for one sample, without them where there are many.

struct RctForward16 {
  static void apply(int16_t& r, int16_t& g, int16_t& b) {
    const int32_t y = (r + 2 * g + b) >> 2, u = b - g, v = r - g;
    r = static_cast<int16_t>(y), g = static_cast<int16_t>(u), b = static_cast<int16_t>(v);
  }
#if ZORJ_SIMD
  static HWY_INLINE void apply(WordVector& r, WordVector& g, WordVector& b) {
    const auto y = half(half(r, b), g), u = hn::Sub(b, g), v = hn::Sub(r, g);
    r = y, g = u, b = v;
  }
#endif
};

struct RctInverse16 {
  static void apply(int16_t& y, int16_t& u, int16_t& v) {
    const int32_t g = y - ((u + v) >> 2), red = v + g, blue = u + g;
    y = static_cast<int16_t>(red), u = static_cast<int16_t>(g), v = static_cast<int16_t>(blue);
  }
#if ZORJ_SIMD
  static HWY_INLINE void apply(WordVector& y, WordVector& u, WordVector& v) {
    const auto g = hn::Sub(y, hn::ShiftRight<1>(half(u, v))), red = hn::Add(v, g), blue = hn::Add(u, g);
    y = red, u = g, v = blue;
  }
#endif
};

struct IctForward16 {
  static void apply(int16_t& r, int16_t& g, int16_t& b) {
    const int32_t s = 4899 * r + 9617 * g + 1868 * b;
    const auto blue = static_cast<int16_t>((b * 16384 - s + 8192) >> 14);
    const auto red = static_cast<int16_t>((r * 16384 - s + 8192) >> 14);
    r = saturate((s + 8192) >> 14);
    g = saturate((blue * 9246 + 8192) >> 14);
    b = saturate((red * 11686 + 8192) >> 14);
  }
#if ZORJ_SIMD
  // B and R stand before the shift as multiples of 2^14 and can be added after it: what remains there,
  // (8192 - S) >> 14, is -((S + 8191) >> 14). MulFixedPoint15 by twice a weight is q of the product.
  static HWY_INLINE void apply(WordVector& r, WordVector& g, WordVector& b) {
    const Words d;
    Products sum(r, 4899, g, 9617);
    sum += Products(b, 1868, hn::Zero(d), 0);
    const auto luma = sum.roundOff(8191);
    g = hn::MulFixedPoint15(hn::Sub(b, luma), hn::Set(d, 2 * 9246));
    b = hn::MulFixedPoint15(hn::Sub(r, luma), hn::Set(d, 2 * 11686));
    r = sum.roundOff(8192);
  }
#endif
};

struct IctInverse16 {
  static void apply(int16_t& y, int16_t& cb, int16_t& cr) {
    const int16_t red = saturate(y + ((22970 * cr + 8192) >> 14));
    const int16_t green = saturate(y - ((5638 * cb + 11700 * cr + 8192) >> 14));
    const int16_t blue = saturate(y + ((29032 * cb + 8192) >> 14));
    y = red, cb = green, cr = blue;
  }
#if ZORJ_SIMD
  // Y joins the products as a multiple of 2^14; a difference from a rounded x is a sum with (8191 - x) >> 14.
  static HWY_INLINE void apply(WordVector& y, WordVector& cb, WordVector& cr) {
    Products green(y, 16384, cr, -11700);
    green += Products(cb, -5638, hn::Zero(Words()), 0);
    const auto red = Products(y, 16384, cr, 22970).roundOff(8192);
    const auto blue = Products(y, 16384, cb, 29032).roundOff(8192);
    y = red, cb = green.roundOff(8191), cr = blue;
  }
#endif
};

// ---- Pixels of three samples to three vectors, and back

#if ZORJ_SIMD
template <class D, class T, class V>
HWY_INLINE void loadPixels(D d, const T* pixels, V& c0, V& c1, V& c2) {
  hn::LoadInterleaved3(d, pixels, c0, c1, c2);
}
template <class D, class T, class V>
HWY_INLINE void storePixels(V c0, V c1, V c2, D d, T* pixels) {
  hn::StoreInterleaved3(c0, c1, c2, d, pixels);
}

#if HWY_TARGET <= HWY_AVX2
// Three vectors of pixels of 32-bit samples hold a component in lanes that differ from vector to vector: blends gather
// it, and one permutation sorts it.

// Lanes 0, 3, 6... of a, 1, 4, 7... of b, 2, 5, 8... of c.
#if HWY_TARGET == HWY_AVX2
HWY_INLINE IntVector everyThird(IntVector a, IntVector b, IntVector c) {
  return IntVector{_mm256_blend_epi32(_mm256_blend_epi32(a.raw, b.raw, 0x92), c.raw, 0x24)};
}
#else
HWY_INLINE IntVector everyThird(IntVector a, IntVector b, IntVector c) {
  return IntVector{_mm512_mask_blend_epi32(0x4924, _mm512_mask_blend_epi32(0x2492, a.raw, b.raw), c.raw)};
}
#endif

constexpr size_t kInts = hn::MaxLanes(Ints());

struct LaneOrder {
  alignas(64) int32_t lanes[kInts];
};

// The lane in which each sample of a component is gathered, and the sample that each lane takes to be scattered.
constexpr LaneOrder gathered(size_t component) {
  LaneOrder order = {};
  for (size_t i = 0; i < kInts; ++i) order.lanes[i] = static_cast<int32_t>((3 * i + component) % kInts);
  return order;
}
constexpr LaneOrder scattered(size_t component) {
  LaneOrder order = {};
  for (size_t i = 0; i < kInts; ++i) order.lanes[(3 * i + component) % kInts] = static_cast<int32_t>(i);
  return order;
}
constexpr LaneOrder kGathered[3] = {gathered(0), gathered(1), gathered(2)};
constexpr LaneOrder kScattered[3] = {scattered(0), scattered(1), scattered(2)};

HWY_INLINE IntVector reorder(IntVector v, const LaneOrder& order) {
  return hn::TableLookupLanes(v, hn::SetTableIndices(Ints(), order.lanes));
}

HWY_INLINE void loadPixels(Ints d, const int32_t* pixels, IntVector& c0, IntVector& c1, IntVector& c2) {
  auto v0 = hn::LoadU(d, pixels), v1 = hn::LoadU(d, pixels + kInts), v2 = hn::LoadU(d, pixels + 2 * kInts);
#if HWY_TARGET <= HWY_AVX3
  // GCC 12 would load each of them again for every blend.
  asm("" : "+v"(v0.raw), "+v"(v1.raw), "+v"(v2.raw));
#endif
  if constexpr (kInts % 3 == 1) std::swap(v1, v2);
  c0 = reorder(everyThird(v0, v1, v2), kGathered[0]);
  c1 = reorder(everyThird(v2, v0, v1), kGathered[1]);
  c2 = reorder(everyThird(v1, v2, v0), kGathered[2]);
}
HWY_INLINE void storePixels(IntVector c0, IntVector c1, IntVector c2, Ints d, int32_t* pixels) {
  c0 = reorder(c0, kScattered[0]), c1 = reorder(c1, kScattered[1]), c2 = reorder(c2, kScattered[2]);
  auto v0 = everyThird(c0, c1, c2), v1 = everyThird(c2, c0, c1), v2 = everyThird(c1, c2, c0);
  if constexpr (kInts % 3 == 1) std::swap(v1, v2);
  hn::StoreU(v0, d, pixels), hn::StoreU(v1, d, pixels + kInts), hn::StoreU(v2, d, pixels + 2 * kInts);
}

using Floats = hn::ScalableTag<float>;
using FloatVector = hn::Vec<Floats>;

HWY_INLINE void loadPixels(Floats d, const float* pixels, FloatVector& c0, FloatVector& c1, FloatVector& c2) {
  IntVector i0, i1, i2;
  loadPixels(Ints(), reinterpret_cast<const int32_t*>(pixels), i0, i1, i2);
  c0 = hn::BitCast(d, i0), c1 = hn::BitCast(d, i1), c2 = hn::BitCast(d, i2);
}
HWY_INLINE void storePixels(FloatVector c0, FloatVector c1, FloatVector c2, Floats, float* pixels) {
  const Ints d;
  storePixels(hn::BitCast(d, c0), hn::BitCast(d, c1), hn::BitCast(d, c2), d, reinterpret_cast<int32_t*>(pixels));
}
#endif
#endif

// ---- Rows

// What one sample is in the arithmetic above.
template <class T>
struct SampleOf {
  using Type = T;
};
template <>
struct SampleOf<int32_t> {
  using Type = uint32_t;
};

#if ZORJ_SIMD
template <class T>
size_t samplesToAlign(const T* at, size_t lanes) {
  return (0 - reinterpret_cast<uintptr_t>(at)) / sizeof(T) % lanes;
}
#endif

// Three planes.
template <class T>
struct Planes {
  using Sample = typename SampleOf<std::remove_const_t<T>>::Type;
  T* plane[3];

  void load(size_t x, Sample (&c)[3]) const {
    for (int i = 0; i < 3; ++i) c[i] = static_cast<Sample>(loadUnaligned(plane[i] + x));
  }
  void store(size_t x, const Sample (&c)[3]) const {
    for (int i = 0; i < 3; ++i) storeUnaligned(plane[i] + x, static_cast<T>(c[i]));
  }
#if ZORJ_SIMD
  template <class D, class V>
  HWY_INLINE void load(D d, size_t x, V& c0, V& c1, V& c2) const {
    c0 = hn::LoadU(d, plane[0] + x), c1 = hn::LoadU(d, plane[1] + x), c2 = hn::LoadU(d, plane[2] + x);
  }
  template <class D, class V>
  HWY_INLINE void store(D d, size_t x, V c0, V c1, V c2) const {
    hn::StoreU(c0, d, plane[0] + x), hn::StoreU(c1, d, plane[1] + x), hn::StoreU(c2, d, plane[2] + x);
  }
  Planes from(size_t x) const { return {{plane[0] + x, plane[1] + x, plane[2] + x}}; }
  // The first sample less than a vector away whose address is a multiple of a vector's size, if there is one.
  size_t aligned(size_t lanes) const { return samplesToAlign(plane[0], lanes); }
#endif
};

// Pixels of three samples.
template <class T>
struct Pixels {
  using Sample = typename SampleOf<std::remove_const_t<T>>::Type;
  T* pixels;

  void load(size_t x, Sample (&c)[3]) const {
    for (size_t i = 0; i < 3; ++i) c[i] = static_cast<Sample>(loadUnaligned(pixels + 3 * x + i));
  }
  void store(size_t x, const Sample (&c)[3]) const {
    for (size_t i = 0; i < 3; ++i) storeUnaligned(pixels + 3 * x + i, static_cast<T>(c[i]));
  }
#if ZORJ_SIMD
  template <class D, class V>
  HWY_INLINE void load(D d, size_t x, V& c0, V& c1, V& c2) const {
    loadPixels(d, pixels + 3 * x, c0, c1, c2);
  }
  template <class D, class V>
  HWY_INLINE void store(D d, size_t x, V c0, V c1, V c2) const {
    storePixels(c0, c1, c2, d, pixels + 3 * x);
  }
  Pixels from(size_t x) const { return {pixels + 3 * x}; }
  size_t aligned(size_t lanes) const {
    constexpr size_t kThird = static_cast<size_t>(0xaaaaaaaaaaaaaaab);  // times 3 is 1
    return samplesToAlign(pixels, lanes) * kThird % lanes;
  }
#endif
};

#if ZORJ_SIMD
// The vectors of a row but the first and the last one, from a sample on at which stores begin to be aligned, in pairs.
template <class Transform, class D, class Source, class Destination>
HWY_INLINE void transformVectors(D d, Source source, Destination destination, size_t width) {
  using V = hn::Vec<D>;
  const size_t lanes = hn::Lanes(d);
  size_t x = 0;
  for (; x + 2 * lanes <= width; x += 2 * lanes) {
    V a0, a1, a2, b0, b1, b2;
    source.load(d, x, a0, a1, a2);
    source.load(d, x + lanes, b0, b1, b2);
    Transform::apply(a0, a1, a2);
    Transform::apply(b0, b1, b2);
    destination.store(d, x, a0, a1, a2);
    destination.store(d, x + lanes, b0, b1, b2);
  }
  if (x + lanes <= width) {
    V c0, c1, c2;
    source.load(d, x, c0, c1, c2);
    Transform::apply(c0, c1, c2);
    destination.store(d, x, c0, c1, c2);
  }
}
#endif

template <class Transform, class T, class Source, class Destination>
HWY_INLINE void transformRow(Source source, Destination destination, size_t width) {
#if ZORJ_SIMD
  const hn::ScalableTag<T> d;
  const size_t lanes = hn::Lanes(d);
  if (width >= lanes) {
    // The first and the last vector overlap those between. They are loaded before anything is stored, as the row may be
    // transformed in place.
    hn::Vec<decltype(d)> a0, a1, a2, b0, b1, b2;
    source.load(d, 0, a0, a1, a2);
    source.load(d, width - lanes, b0, b1, b2);
    Transform::apply(a0, a1, a2);
    Transform::apply(b0, b1, b2);
    const size_t begin = destination.aligned(lanes);
    transformVectors<Transform>(d, source.from(begin), destination.from(begin), width - begin);
    destination.store(d, 0, a0, a1, a2);
    destination.store(d, width - lanes, b0, b1, b2);
    return;
  }
#endif
  for (size_t x = 0; x < width; ++x) {
    typename Destination::Sample c[3];
    source.load(x, c);
    Transform::apply(c[0], c[1], c[2]);
    destination.store(x, c);
  }
}

template <class Transform, class T>
void planesInPlace(T* plane0, T* plane1, T* plane2, size_t width) {
  const Planes<T> planes = {{plane0, plane1, plane2}};
  transformRow<Transform, T>(planes, planes, width);
}

template <class Transform, class T>
void pixelsToPlanes(const T* pixels, T* plane0, T* plane1, T* plane2, size_t width) {
  transformRow<Transform, T>(Pixels<const T>{pixels}, Planes<T>{{plane0, plane1, plane2}}, width);
}

template <class Transform, class T>
void planesToPixels(const T* plane0, const T* plane1, const T* plane2, T* pixels, size_t width) {
  transformRow<Transform, T>(Planes<const T>{{plane0, plane1, plane2}}, Pixels<T>{pixels}, width);
}

constexpr ComponentTransformKernels kernels = {
    &planesInPlace<RctForward16, int16_t>,  &planesInPlace<RctForward, int32_t>,
    &pixelsToPlanes<RctForward16, int16_t>, &pixelsToPlanes<RctForward, int32_t>,
    &planesInPlace<RctInverse16, int16_t>,  &planesInPlace<RctInverse, int32_t>,
    &planesToPixels<RctInverse16, int16_t>, &planesToPixels<RctInverse, int32_t>,
    &planesInPlace<IctForward16, int16_t>,  &planesInPlace<IctForward32, int32_t>,
    &planesInPlace<IctForwardFloat, float>, &pixelsToPlanes<IctForwardFloat, float>,
    &planesInPlace<IctInverse16, int16_t>,  &planesInPlace<IctInverse32, int32_t>,
    &planesInPlace<IctInverseFloat, float>, &planesToPixels<IctInverseFloat, float>};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const ComponentTransformKernels> perIsa{ZORJ_PER_ISA(kernels)};

const ComponentTransformKernels& componentTransformKernels() { return *perIsa; }

}  // namespace zorj
#endif
