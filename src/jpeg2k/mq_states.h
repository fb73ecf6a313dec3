// The probability states of the MQ coder (T.800 Table C.2).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zorj {

struct MqState {
  uint32_t qe;
  uint32_t nextMps;
  uint32_t nextLps;
  uint32_t switchMps;
};

inline constexpr size_t kMqStateCount = 47;

inline constexpr MqState kMqStates[kMqStateCount] = {
    {0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},  {0x0521, 5, 29, 0},
    {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},  {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0},
    {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0}, {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1},
    {0x5401, 16, 14, 0}, {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
    {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0}, {0x1C01, 25, 22, 0},
    {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0}, {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0},
    {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0}, {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0},
    {0x02A1, 36, 33, 0}, {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
    {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0}, {0x0005, 45, 42, 0},
    {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0},
};

// What a coder keeps of a context: all about its state in a word, so that a decision waits for one load. In the upper
// half stands Qe, in the bytes below it the numbers of the contexts that follow the less and the more probable symbol.
// Even numbers have the more probable symbol 0, and so has the one that follows it.
struct MqContext {
  constexpr MqContext() = default;
  constexpr MqContext(uint32_t state, uint32_t mps)
      : word(kMqStates[state].qe << 16 | (2 * kMqStates[state].nextLps + (mps ^ kMqStates[state].switchMps)) << 8 |
             (2 * kMqStates[state].nextMps + mps)) {}

  uint32_t word = 0;

  uint32_t qe() const { return word >> 16; }
  uint32_t mps() const { return word & 1; }
  inline uint32_t wordAfterMps() const;
  inline uint32_t wordAfterLps() const;
};

inline constexpr auto kMqContexts = [] {
  std::array<MqContext, 2 * kMqStateCount> contexts{};
  for (uint32_t i = 0; i < contexts.size(); ++i) contexts[i] = MqContext(i / 2, i % 2);
  return contexts;
}();

uint32_t MqContext::wordAfterMps() const { return kMqContexts[word & 0xFF].word; }
uint32_t MqContext::wordAfterLps() const { return kMqContexts[word >> 8 & 0xFF].word; }

// Selects without a branch, for conditions that no predictor could guess: there GCC 12 prefers branches to conditional
// moves whatever it is told.

// a < b ? ifBelow : otherwise
template <class T>
T selectIfBelow(T a, T b, T ifBelow, T otherwise) {
  asm("cmp %[b], %[a]\n\tcmovb %[ifBelow], %[otherwise]"
      : [otherwise] "+r"(otherwise)
      : [a] "r"(a), [b] "r"(b), [ifBelow] "r"(ifBelow)
      : "cc");
  return otherwise;
}

// Whether the topmost bit of `a` is set decides.
template <class T>
T selectIfNegative(T a, T ifNegative, T otherwise) {
  asm("test %[a], %[a]\n\tcmovs %[ifNegative], %[otherwise]"
      : [otherwise] "+r"(otherwise)
      : [a] "r"(a), [ifNegative] "r"(ifNegative)
      : "cc");
  return otherwise;
}

}  // namespace zorj
