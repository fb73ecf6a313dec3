// Instruction-set levels: which one is in force, and the choice of the kernel variant for it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zorj {

enum class Isa : uint8_t { kPortable, kSsse3, kSse4, kAvx2, kAvx512 };
inline constexpr size_t kIsaCount = 5;

// The level in force: portable until the library is loaded, then the best the processor has.
extern std::atomic<uint8_t> g_isa;

// Sets the level for tests and benchmarks. Returns the level set: the highest one the processor has, up to `wanted`.
Isa setIsa(Isa wanted);

// The variants of one kernel table, by level; a level without a variant of its own uses the next lower one.
template <class T>
class PerIsa {
 public:
  constexpr explicit PerIsa(T* const (&variants)[kIsaCount]) : at_{} {
    for (size_t i = 0; i < kIsaCount; ++i) at_[i] = variants[i] ? variants[i] : at_[i - 1];
  }
  T& operator*() const { return *at_[g_isa.load(std::memory_order_relaxed)]; }

 private:
  T* at_[kIsaCount];
};

// The variants of `name` that Highway's foreach_target.h compiled, as the initialiser of a PerIsa.
#define ZORJ_PER_ISA(name)                                                                           \
  {                                                                                                  \
    HWY_CHOOSE_FALLBACK(name), HWY_CHOOSE_SSSE3(name), HWY_CHOOSE_SSE4(name), HWY_CHOOSE_AVX2(name), \
        HWY_CHOOSE_AVX3(name)                                                                        \
  }

}  // namespace zorj
