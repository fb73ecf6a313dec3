// What zorcore asks the operating system and the processor about.
#pragma once

#include <cstdint>

namespace zorcore {

// The processors this process may use: its affinity, cut to the processor time its control groups allow. At least 1.
int availableProcessors();

// The size of the processor's largest cache in bytes, 0 if unknown, at most INT32_MAX.
int32_t largestCacheBytes();

}  // namespace zorcore
