#include "jpeg/quant_kernels.h"

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

#if ZORJ_SIMD

namespace hn = hwy::HWY_NAMESPACE;

void quantise(int16_t* block, const uint16_t* table) {
  const hn::CappedTag<int16_t, 64> d;
  const hn::RebindToUnsigned<decltype(d)> du;
  const auto one = hn::Set(d, 1);
  for (size_t i = 0; i < 64; i += hn::Lanes(d)) {
    const auto half = hn::BitCast(d, hn::ShiftRight<1>(hn::LoadU(du, table + i)));
    const auto product = hn::MulHigh(hn::ShiftLeft<3>(hn::LoadU(d, block + i)), half);
    hn::StoreU(hn::ShiftRight<1>(hn::Add(product, one)), d, block + i);
  }
}

void dequantise(int16_t* block, const uint16_t* table) {
  const hn::CappedTag<int16_t, 64> d;
  const hn::RebindToUnsigned<decltype(d)> du;
  for (size_t i = 0; i < 64; i += hn::Lanes(d)) {
    hn::StoreU(hn::Mul(hn::LoadU(d, block + i), hn::BitCast(d, hn::LoadU(du, table + i))), d, block + i);
  }
}

#else

void quantise(int16_t* block, const uint16_t* table) {
  for (size_t i = 0; i < 64; ++i) {
    const int16_t scaled = static_cast<int16_t>(loadUnaligned(block + i) * 8);
    const int product = scaled * (loadUnaligned(table + i) >> 1) >> 16;
    storeUnaligned(block + i, static_cast<int16_t>((product + 1) >> 1));
  }
}

void dequantise(int16_t* block, const uint16_t* table) {
  for (size_t i = 0; i < 64; ++i) {
    storeUnaligned(block + i, static_cast<int16_t>(loadUnaligned(block + i) * loadUnaligned(table + i)));
  }
}

#endif

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
