#include "support/guarded_memory.h"

#include <cstdio>
#include <cstdlib>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace zorj::test {
namespace {

constexpr size_t kPage = 4096;

// Reserves `bytes` and makes all but the first and the last page accessible.
void* mapBetweenGuards(size_t bytes) {
#if defined(_WIN32)
  void* mapping = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  DWORD before = 0;
  const bool guarded = mapping && VirtualProtect(mapping, kPage, PAGE_NOACCESS, &before) &&
                       VirtualProtect(static_cast<char*>(mapping) + bytes - kPage, kPage, PAGE_NOACCESS, &before);
#else
  void* mapping = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  const bool guarded = mapping != MAP_FAILED &&
                       mprotect(static_cast<char*>(mapping) + kPage, bytes - 2 * kPage, PROT_READ | PROT_WRITE) == 0;
#endif
  if (!guarded) {
    std::fputs("cannot map guarded memory\n", stderr);
    std::abort();
  }
  return mapping;
}

}  // namespace

GuardedMemory::GuardedMemory(size_t bytes, Placement placement) : size_(bytes) {
  const size_t inner = (bytes + kPage - 1) / kPage * kPage;
  mappedBytes_ = inner + 2 * kPage;
  mapping_ = mapBetweenGuards(mappedBytes_);
  data_ = static_cast<uint8_t*>(mapping_) + kPage + (placement == Placement::kAtEnd ? inner - bytes : 0);
}

GuardedMemory::~GuardedMemory() {
#if defined(_WIN32)
  VirtualFree(mapping_, 0, MEM_RELEASE);
#else
  munmap(mapping_, mappedBytes_);
#endif
}

}  // namespace zorj::test
