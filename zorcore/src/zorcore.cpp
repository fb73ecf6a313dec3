#include "zorcore.h"

#include <atomic>
#include <cstdlib>

#include "processors.h"

namespace {

constexpr size_t kAlignment = 64;

std::atomic<const ZorAllocator*> g_allocator{nullptr};
std::atomic<int> g_threads{0};  // 0: the default

}  // namespace

void* zorMalloc(int32_t length) {
  if (length < 1) return nullptr;
  const auto bytes = static_cast<size_t>(length);
  if (const ZorAllocator* allocator = g_allocator.load(std::memory_order_acquire)) {
    return allocator->allocate(bytes, kAlignment, allocator->context);
  }
#if defined(_WIN32)
  return _aligned_malloc(bytes, kAlignment);
#else
  return std::aligned_alloc(kAlignment, (bytes + kAlignment - 1) / kAlignment * kAlignment);
#endif
}

void zorFree(void* memory) {
  if (!memory) return;
  if (const ZorAllocator* allocator = g_allocator.load(std::memory_order_acquire)) {
    allocator->release(memory, allocator->context);
    return;
  }
#if defined(_WIN32)
  _aligned_free(memory);
#else
  std::free(memory);
#endif
}

void zorSetAllocator(const ZorAllocator* allocator) { g_allocator.store(allocator, std::memory_order_release); }

int zorGetMaxCacheSizeB(int32_t* size) {
  if (!size) return -1;
  static const int32_t largest = zorcore::largestCacheBytes();
  if (largest < 1) return -1;
  *size = largest;
  return 0;
}

int ownGetNumThreads() {
  const int set = g_threads.load(std::memory_order_relaxed);
  if (set > 0) return set;
  static const int available = zorcore::availableProcessors();
  return available;
}

void zorSetNumThreads(int threads) { g_threads.store(threads, std::memory_order_relaxed); }
