// What the kernels share beyond Highway. Included by every kernel file after <hwy/highway.h>, once per target.

// The AVX-512 level is Highway's AVX3 and the byte permutes, compressions and bit counts of Ice Lake and Zen 4
// (core/isa.cpp asks for all of them). Highway resets the string each time it is included.
#if HWY_TARGET == HWY_AVX3
#undef HWY_TARGET_STR
#define HWY_TARGET_STR \
  HWY_TARGET_STR_AVX3 ",avx512cd,avx512vbmi,avx512vbmi2,avx512vnni,avx512bitalg,avx512vpopcntdq,popcnt,lzcnt"
#elif HWY_TARGET == HWY_AVX2
#undef HWY_TARGET_STR
#define HWY_TARGET_STR HWY_TARGET_STR_AVX2 ",popcnt,lzcnt"
#endif

// Vector code is compiled where this is 1; the plain formula that ends every kernel is all of the portable level.
#undef ZORJ_SIMD
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
#define ZORJ_SIMD 0
#else
#define ZORJ_SIMD 1
#endif
