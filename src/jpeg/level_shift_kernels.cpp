#include "jpeg/level_shift_kernels.h"

#include <algorithm>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/level_shift_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void subtract(const uint8_t* src, int16_t* dst, size_t width) {
  size_t x = 0;
#if ZORJ_SIMD
  const hn::ScalableTag<int16_t> d;
  const hn::Rebind<uint8_t, decltype(d)> d8;
  const auto shift = hn::Set(d, 128);
  for (; x + hn::Lanes(d) <= width; x += hn::Lanes(d)) {
    hn::StoreU(hn::Sub(hn::PromoteTo(d, hn::LoadU(d8, src + x)), shift), d, dst + x);
  }
#endif
  for (; x < width; ++x) storeUnaligned(dst + x, static_cast<int16_t>(src[x] - 128));
}

void add(const int16_t* src, uint8_t* dst, size_t width) {
  size_t x = 0;
#if ZORJ_SIMD
  const hn::ScalableTag<int16_t> d;
  const hn::Rebind<uint8_t, decltype(d)> d8;
  const auto shift = hn::Set(d, 128);
  for (; x + hn::Lanes(d) <= width; x += hn::Lanes(d)) {
    hn::StoreU(hn::DemoteTo(d8, hn::SaturatedAdd(hn::LoadU(d, src + x), shift)), d8, dst + x);
  }
#endif
  for (; x < width; ++x) dst[x] = static_cast<uint8_t>(std::clamp(loadUnaligned(src + x) + 128, 0, 255));
}

constexpr LevelShiftKernels kernels = {&subtract, &add};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const LevelShiftKernels> perIsa{ZORJ_PER_ISA(kernels)};

const LevelShiftKernels& levelShiftKernels() { return *perIsa; }

}  // namespace zorj
#endif
