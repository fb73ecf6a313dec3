// Addresses of rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zorj {

// Row y of an image; steps are in bytes, and the product is taken at the width of a pointer.
template <class T>
T* rowAt(T* base, int32_t step, int32_t y) {
  using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
  return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<ptrdiff_t>(y) * step);
}

}  // namespace zorj
