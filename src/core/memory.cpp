#include "core/memory.h"

#include <zorcore.h>

namespace zorj {

void* zorjMalloc(int32_t length) { return length <= 0 ? nullptr : zorMalloc(length); }

void zorjFree(void* memory) { zorFree(memory); }

}  // namespace zorj
