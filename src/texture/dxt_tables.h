// Byte selections that the DXT kernels load. They stand in a file of their own: where GCC 12 sees their values, it
// rebuilds them from immediates inside the loops.
#pragma once

#include <cstdint>

namespace zorj {

// Row i, in a byte shuffle, gives byte i everywhere.
extern const uint8_t kBroadcastByte[16][16];

}  // namespace zorj
