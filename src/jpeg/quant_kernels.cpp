#include "jpeg/quant_kernels.h"

#include <cstddef>

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg/quant_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void quantise(int16_t* block, const uint16_t* forwardTable) {
#if ZORJ_SIMD
  const hn::CappedTag<int16_t, 32> d;
  const hn::RebindToUnsigned<decltype(d)> du;
  for (size_t i = 0; i < 64; i += hn::Lanes(d)) {
    const auto scaled = hn::ShiftLeft<3>(hn::LoadU(d, block + i));
    const auto half = hn::BitCast(d, hn::ShiftRight<1>(hn::LoadU(du, forwardTable + i)));
    const auto product = hn::MulHigh(scaled, half);
    hn::StoreU(hn::ShiftRight<1>(hn::Add(product, hn::Set(d, 1))), d, block + i);
  }
#else
  for (size_t i = 0; i < 64; ++i) {
    const int32_t scaled = static_cast<int16_t>(loadUnaligned(block + i) * 8);
    const int32_t half = loadUnaligned(forwardTable + i) >> 1;
    storeUnaligned(block + i, static_cast<int16_t>(((scaled * half >> 16) + 1) >> 1));
  }
#endif
}

void dequantise(int16_t* block, const uint16_t* inverseTable) {
#if ZORJ_SIMD
  const hn::CappedTag<int16_t, 32> d;
  const hn::RebindToUnsigned<decltype(d)> du;
  for (size_t i = 0; i < 64; i += hn::Lanes(d)) {
    const auto step = hn::BitCast(d, hn::LoadU(du, inverseTable + i));
    hn::StoreU(hn::Mul(hn::LoadU(d, block + i), step), d, block + i);
  }
#else
  for (size_t i = 0; i < 64; ++i) {
    const int64_t product = int64_t{loadUnaligned(block + i)} * loadUnaligned(inverseTable + i);
    storeUnaligned(block + i, static_cast<int16_t>(product));
  }
#endif
}

constexpr QuantKernels kernels = {&quantise, &dequantise};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const QuantKernels> perIsa{ZORJ_PER_ISA(kernels)};

const QuantKernels& quantKernels() { return *perIsa; }

}  // namespace zorj
#endif
