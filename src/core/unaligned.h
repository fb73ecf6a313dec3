// Access to samples at any byte address: callers may bring odd pointers and odd steps.
#pragma once

#include <cstring>

namespace zorj {

template <class T>
T loadUnaligned(const T* from) {
  T value;
  std::memcpy(&value, static_cast<const void*>(from), sizeof value);
  return value;
}

template <class T>
void storeUnaligned(T* to, T value) {
  std::memcpy(static_cast<void*>(to), &value, sizeof value);
}

}  // namespace zorj
