// The allocation wrappers: all memory the library obtains or releases goes through these two.
#pragma once

#include <cstdint>

namespace zorj {

// Null for a length of 0 or below, and when zorcore has no memory.
void* zorjMalloc(int32_t length);

// `memory` must not be null.
void zorjFree(void* memory);

}  // namespace zorj
