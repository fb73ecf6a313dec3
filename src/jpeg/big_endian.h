// Words of a byte stream whose first byte is the most significant.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "core/unaligned.h"

namespace zorj {

static_assert(std::endian::native == std::endian::little);

inline uint64_t loadBigEndian64(const uint8_t* from) {
  return __builtin_bswap64(loadUnaligned(reinterpret_cast<const uint64_t*>(from)));
}
inline uint32_t loadBigEndian32(const uint8_t* from) {
  return __builtin_bswap32(loadUnaligned(reinterpret_cast<const uint32_t*>(from)));
}
inline void storeBigEndian64(uint8_t* to, uint64_t word) {
  storeUnaligned(reinterpret_cast<uint64_t*>(to), __builtin_bswap64(word));
}

// Whether one of the bytes is 0xFF.
constexpr bool hasByteFF(uint64_t word) { return ((~word - 0x0101010101010101u) & word & 0x8080808080808080u) != 0; }

}  // namespace zorj
