#include <gtest/gtest.h>
#include <zorcore.h>
#include <zorj.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "core/isa.h"
#include "core/memory.h"
#include "support/isa_levels.h"

namespace zorj::test {
namespace {

TEST(Version, RecordHoldsThisRelease) {
  const LibraryVersion* version = zorjGetLibVersion();
  EXPECT_EQ(version, zorjGetLibVersion());
  EXPECT_EQ(version->major, 6);
  EXPECT_EQ(version->minor, 1);
  EXPECT_EQ(version->majorBuild, 137);
  EXPECT_EQ(version->build, 823);
  EXPECT_EQ(std::memcmp(version->targetCpu, "q5\0\0", 4), 0);
  EXPECT_STREQ(version->name, "zorjq5-6.1.dll");
  EXPECT_STREQ(version->version, "6.1 build 137.56");
  EXPECT_STREQ(version->buildDate, "Mar 17 2010");
  EXPECT_EQ(sizeof(LibraryVersion), 20 + (sizeof(void*) == 8 ? 4 : 0) + 3 * sizeof(void*));
}

// Hands out memory, or fails, and counts.
struct CountingAllocator {
  static void* allocate(size_t bytes, size_t alignment, void* context) {
    auto& self = *static_cast<CountingAllocator*>(context);
    EXPECT_EQ(alignment, 64u);
    self.lastBytes = bytes;
    if (self.exhausted) return nullptr;
    ++self.live;
    return std::malloc(bytes);
  }
  static void release(void* memory, void* context) {
    --static_cast<CountingAllocator*>(context)->live;
    std::free(memory);
  }

  CountingAllocator() { zorSetAllocator(&hook); }
  ~CountingAllocator() { zorSetAllocator(nullptr); }
  CountingAllocator(const CountingAllocator&) = delete;
  CountingAllocator& operator=(const CountingAllocator&) = delete;

  ZorAllocator hook = {&allocate, &release, this};
  bool exhausted = false;
  int live = 0;
  size_t lastBytes = 0;
};

TEST(Memory, GoesThroughTheAllocatorInForce) {
  CountingAllocator allocator;
  EXPECT_EQ(zorjMalloc(0), nullptr);
  EXPECT_EQ(zorjMalloc(-1), nullptr);
  EXPECT_EQ(zorjMalloc(INT32_MIN), nullptr);
  EXPECT_EQ(allocator.lastBytes, 0u);
  void* memory = zorjMalloc(100);
  ASSERT_NE(memory, nullptr);
  EXPECT_EQ(allocator.lastBytes, 100u);
  EXPECT_EQ(allocator.live, 1);
  zorjFree(memory);
  EXPECT_EQ(allocator.live, 0);
  allocator.exhausted = true;
  EXPECT_EQ(zorjMalloc(100), nullptr);
}

TEST(Memory, IsAlignedByDefault) {
  for (const int32_t length : {1, 63, 64, 65, 100000}) {
    void* memory = zorMalloc(length);
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(memory) % 64, 0u);
    std::memset(memory, 1, static_cast<size_t>(length));
    zorFree(memory);
  }
  EXPECT_EQ(zorMalloc(0), nullptr);
  EXPECT_EQ(zorMalloc(-5), nullptr);
  zorFree(nullptr);
}

TEST(Processor, ReportsCacheAndThreads) {
  int32_t size = 0;
  EXPECT_EQ(zorGetMaxCacheSizeB(nullptr), -1);
  if (zorGetMaxCacheSizeB(&size) == 0) {
    EXPECT_GE(size, 1 << 15);
  } else {
    EXPECT_EQ(size, 0);
  }
  const int available = ownGetNumThreads();
  EXPECT_GE(available, 1);
  zorSetNumThreads(7);
  EXPECT_EQ(ownGetNumThreads(), 7);
  zorSetNumThreads(0);
  EXPECT_EQ(ownGetNumThreads(), available);
}

TEST(Isa, IsTheBestThatTheProcessorHas) {
  const std::vector<Isa> levels = availableIsas();
  ASSERT_FALSE(levels.empty());
  EXPECT_EQ(levels.front(), Isa::kPortable);
  EXPECT_EQ(static_cast<Isa>(g_isa.load()), levels.back());
  for (size_t i = 0; i < levels.size(); ++i) EXPECT_EQ(levels[i], static_cast<Isa>(i));  // each includes those below
  // The compiler's own detection, of the features whose names it knows.
  EXPECT_EQ(levels.back() >= Isa::kSsse3, __builtin_cpu_supports("ssse3") != 0);
  const bool hasSse4 = __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("sse4.2") &&
                       __builtin_cpu_supports("popcnt") && __builtin_cpu_supports("pclmul") &&
                       __builtin_cpu_supports("aes");
  EXPECT_EQ(levels.back() >= Isa::kSse4, hasSse4);
  const bool hasAvx2 = hasSse4 && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                       __builtin_cpu_supports("bmi2") &&
                       __builtin_cpu_supports("fma");  // and, without names, F16C, LZCNT
  EXPECT_EQ(levels.back() >= Isa::kAvx2, hasAvx2);
#if defined(__x86_64__)
  const bool hasAvx512 = hasAvx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
                         __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
                         __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vl") &&
                         __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vnni") &&
                         __builtin_cpu_supports("avx512bitalg") && __builtin_cpu_supports("avx512vpopcntdq");
  EXPECT_EQ(levels.back() >= Isa::kAvx512, hasAvx512);
#else
  EXPECT_LE(levels.back(), Isa::kAvx2);
#endif
}

}  // namespace
}  // namespace zorj::test
