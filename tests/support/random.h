// Repeatable test data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zorj::test {

// SplitMix64 (Steele, Lea, Flood 2014).
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint64_t next() {
    uint64_t z = state_ += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  // Uniform in [low, high].
  int64_t between(int64_t low, int64_t high) {
    return low + static_cast<int64_t>(next() % static_cast<uint64_t>(high - low + 1));
  }
  bool oneIn(unsigned n) { return next() % n == 0; }

 private:
  uint64_t state_;
};

// Fills `samples` with the round-th kind of data: random over the whole type, only its limits, small values around
// zero (or the middle of an unsigned type), mostly zero, and flat.
inline constexpr int kFillKinds = 5;

template <class T>
void fillSamples(T* samples, size_t count, Random& random, int round) {
  static_assert(std::is_integral_v<T>);
  constexpr int64_t low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
  constexpr int64_t middle = std::is_signed_v<T> ? 0 : high / 2 + 1;
  const T flat = static_cast<T>(random.between(low, high));
  for (size_t i = 0; i < count; ++i) {
    switch (round % kFillKinds) {
      case 0:
        samples[i] = static_cast<T>(random.between(low, high));
        break;
      case 1:
        samples[i] = static_cast<T>(random.oneIn(2) ? low : high);
        break;
      case 2:
        samples[i] = static_cast<T>(middle + random.between(-16, 15));
        break;
      case 3:
        samples[i] = random.oneIn(8) ? static_cast<T>(random.between(low, high)) : T{0};
        break;
      default:
        samples[i] = flat;
        break;
    }
  }
}

}  // namespace zorj::test
