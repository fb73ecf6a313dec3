#include "core/isa.h"

#include <cpuid.h>

#include <algorithm>

namespace zorj {

std::atomic<uint8_t> g_isa{static_cast<uint8_t>(Isa::kPortable)};

namespace {

struct CpuFeatures {
  uint32_t leaf1Ecx = 0;
  uint32_t leaf7Ebx = 0;
  uint32_t leaf7Ecx = 0;
  uint32_t extendedLeaf1Ecx = 0;
  uint32_t enabledState = 0;  // XCR0: the register files the operating system saves
};

CpuFeatures readCpuFeatures() {
  CpuFeatures cpu;
  uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (__get_cpuid(1, &eax, &ebx, &ecx, &edx)) cpu.leaf1Ecx = ecx;
  if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) {
    cpu.leaf7Ebx = ebx;
    cpu.leaf7Ecx = ecx;
  }
  if (__get_cpuid(0x80000001, &eax, &ebx, &ecx, &edx)) cpu.extendedLeaf1Ecx = ecx;
  if (cpu.leaf1Ecx & bit_OSXSAVE) {
    uint32_t high = 0;
    __asm__("xgetbv" : "=a"(cpu.enabledState), "=d"(high) : "c"(0));
  }
  return cpu;
}

constexpr bool hasAll(uint32_t features, uint32_t wanted) { return (features & wanted) == wanted; }

// Each level asks for every feature that its variants are compiled with.
Isa detectIsa() {
  const CpuFeatures cpu = readCpuFeatures();
  if (!hasAll(cpu.leaf1Ecx, bit_SSSE3)) return Isa::kPortable;
  if (!hasAll(cpu.leaf1Ecx, bit_SSE4_1 | bit_SSE4_2 | bit_PCLMUL | bit_AES | bit_POPCNT)) return Isa::kSsse3;
  constexpr uint32_t kYmmState = 0x6;
  if (!hasAll(cpu.enabledState, kYmmState) || !hasAll(cpu.leaf1Ecx, bit_AVX | bit_FMA | bit_F16C) ||
      !hasAll(cpu.leaf7Ebx, bit_AVX2 | bit_BMI | bit_BMI2) || !hasAll(cpu.extendedLeaf1Ecx, bit_LZCNT)) {
    return Isa::kSse4;
  }
#if defined(__i386__)
  return Isa::kAvx2;
#else
  constexpr uint32_t kZmmState = 0xE6;
  if (!hasAll(cpu.enabledState, kZmmState) ||
      !hasAll(cpu.leaf7Ebx, bit_AVX512F | bit_AVX512CD | bit_AVX512DQ | bit_AVX512BW | bit_AVX512VL) ||
      !hasAll(cpu.leaf7Ecx,
              bit_AVX512VBMI | bit_AVX512VBMI2 | bit_AVX512VNNI | bit_AVX512BITALG | bit_AVX512VPOPCNTDQ)) {
    return Isa::kAvx2;
  }
  return Isa::kAvx512;
#endif
}

[[maybe_unused]] const Isa raisedAtLoad = setIsa(Isa::kAvx512);

}  // namespace

Isa setIsa(Isa wanted) {
  const Isa level = std::min(wanted, detectIsa());
  g_isa.store(static_cast<uint8_t>(level), std::memory_order_relaxed);
  return level;
}

}  // namespace zorj
