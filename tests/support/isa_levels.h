// Runs tests at every instruction-set level of the processor.
#pragma once

#include <vector>

#include "core/isa.h"

namespace zorj::test {

inline const char* isaName(Isa isa) {
  constexpr const char* kNames[kIsaCount] = {"portable", "SSSE3", "SSE4", "AVX2", "AVX-512"};
  return kNames[static_cast<int>(isa)];
}

// The levels this processor has, lowest first. Leaves the best one in force.
inline std::vector<Isa> availableIsas() {
  std::vector<Isa> levels;
  for (size_t i = 0; i < kIsaCount; ++i) {
    const Isa isa = static_cast<Isa>(i);
    if (setIsa(isa) == isa) levels.push_back(isa);
  }
  return levels;
}

// Calls test(isa) with each level in force, then returns to the best one.
template <class Test>
void forEachIsa(const Test& test) {
  for (const Isa isa : availableIsas()) {
    setIsa(isa);
    test(isa);
  }
  setIsa(Isa::kAvx512);
}

}  // namespace zorj::test
