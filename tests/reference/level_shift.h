// Models of the level shift.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zorj::reference {

inline int16_t subtract128(uint8_t sample) { return static_cast<int16_t>(sample - 128); }
inline uint8_t add128(int16_t sample) { return static_cast<uint8_t>(std::clamp(int{sample} + 128, 0, 255)); }

}  // namespace zorj::reference
