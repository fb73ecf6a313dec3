#include "processors.h"

#include <cpuid.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sched.h>
#endif

namespace zorcore {
namespace {

int affinityCount() {
#if defined(_WIN32)
  DWORD_PTR process = 0, system = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &process, &system)) return 1;
  return __builtin_popcountll(process);
#else
  cpu_set_t set;
  return sched_getaffinity(0, sizeof set, &set) == 0 ? CPU_COUNT(&set) : 1;
#endif
}

#if !defined(_WIN32)

// The quota of a control group as a number of processors rounded up; INT_MAX where there is none.
int quotaCount(long long quota, long long period) {
  if (quota <= 0 || period <= 0) return std::numeric_limits<int>::max();
  return static_cast<int>(std::min<long long>((quota + period - 1) / period, std::numeric_limits<int>::max()));
}

bool readNumber(const char* path, long long& number) {
  FILE* file = std::fopen(path, "re");
  if (!file) return false;
  const bool found = std::fscanf(file, "%lld", &number) == 1;
  std::fclose(file);
  return found;
}

// The tightest quota from the control group `group` under the mount point `root` up to the root itself.
template <class QuotaAt>
int tightestQuota(const char* root, const char* group, QuotaAt quotaAt) {
  char path[512];
  if (std::snprintf(path, sizeof path, "%s%s", root, group) >= static_cast<int>(sizeof path)) {
    return std::numeric_limits<int>::max();
  }
  int least = std::numeric_limits<int>::max();
  for (size_t length = std::strlen(path); length >= std::strlen(root); --length) {
    if (path[length] != '\0' && path[length] != '/') continue;
    path[length] = '\0';
    least = std::min(least, quotaAt(path));
  }
  return least;
}

int quotaOfUnifiedGroup(const char* directory) {
  char path[600];
  std::snprintf(path, sizeof path, "%s/cpu.max", directory);
  FILE* file = std::fopen(path, "re");
  if (!file) return std::numeric_limits<int>::max();
  long long quota = 0, period = 0;
  const bool limited = std::fscanf(file, "%lld %lld", &quota, &period) == 2;  // an unlimited group says "max"
  std::fclose(file);
  return limited ? quotaCount(quota, period) : std::numeric_limits<int>::max();
}

int quotaOfCpuGroup(const char* directory) {
  char path[600];
  long long quota = 0, period = 0;
  std::snprintf(path, sizeof path, "%s/cpu.cfs_quota_us", directory);
  if (!readNumber(path, quota)) return std::numeric_limits<int>::max();
  std::snprintf(path, sizeof path, "%s/cpu.cfs_period_us", directory);
  if (!readNumber(path, period)) return std::numeric_limits<int>::max();
  return quotaCount(quota, period);
}

bool listsController(const char* controllers, const char* name) {
  const size_t length = std::strlen(name);
  for (const char* at = controllers; (at = std::strstr(at, name)); at += length) {
    const bool starts = at == controllers || at[-1] == ',';
    const bool ends = at[length] == ',' || at[length] == '\0';
    if (starts && ends) return true;
  }
  return false;
}

// Lines of /proc/self/cgroup are "hierarchy:controllers:path"; the unified hierarchy is number 0.
int controlGroupCount() {
  FILE* file = std::fopen("/proc/self/cgroup", "re");
  if (!file) return std::numeric_limits<int>::max();
  int least = std::numeric_limits<int>::max();
  char line[512];
  while (std::fgets(line, sizeof line, file)) {
    line[std::strcspn(line, "\n")] = '\0';
    char* controllers = std::strchr(line, ':');
    char* group = controllers ? std::strchr(controllers + 1, ':') : nullptr;
    if (!group) continue;
    *controllers++ = '\0';
    *group++ = '\0';
    if (std::strcmp(line, "0") == 0) {
      least = std::min(least, tightestQuota("/sys/fs/cgroup", group, quotaOfUnifiedGroup));
    } else if (listsController(controllers, "cpu")) {
      least = std::min(least, tightestQuota("/sys/fs/cgroup/cpu", group, quotaOfCpuGroup));
    }
  }
  std::fclose(file);
  return least;
}

#else

int controlGroupCount() { return std::numeric_limits<int>::max(); }

#endif

// The largest cache that one of the deterministic cache leaves (Intel 4, AMD 0x8000001D) describes.
int64_t largestCacheOfLeaf(uint32_t leaf) {
  int64_t largest = 0;
  for (uint32_t index = 0; index < 16; ++index) {
    uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (!__get_cpuid_count(leaf, index, &eax, &ebx, &ecx, &edx)) break;
    const uint32_t type = eax & 0x1F;
    if (type == 0) break;
    const int64_t ways = (ebx >> 22) + 1, partitions = ((ebx >> 12) & 0x3FF) + 1, line = (ebx & 0xFFF) + 1;
    largest = std::max(largest, ways * partitions * line * (int64_t{ecx} + 1));
  }
  return largest;
}

}  // namespace

int availableProcessors() { return std::max(1, std::min(affinityCount(), controlGroupCount())); }

int32_t largestCacheBytes() {
  const int64_t largest = std::max(largestCacheOfLeaf(4), largestCacheOfLeaf(0x8000001D));
  return static_cast<int32_t>(std::min<int64_t>(largest, std::numeric_limits<int32_t>::max()));
}

}  // namespace zorcore
