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

// What a coder keeps of a context: twice the state's index plus the more probable symbol.
using MqContext = uint8_t;

// A state as the coders use it. After a decision the context becomes one of the bytes of `next`: byte 0 after the more
// probable symbol, byte 1 after the less probable one, byte 2 (the context itself) where the interval needed no
// renormalisation.
struct MqTransition {
  uint32_t qe;  // in the upper 16 bits
  uint32_t next;
};

inline constexpr auto kMqTransitions = [] {
  std::array<MqTransition, 2 * kMqStateCount> transitions{};
  for (uint32_t context = 0; context < transitions.size(); ++context) {
    const MqState& state = kMqStates[context / 2];
    const uint32_t mps = context & 1;
    transitions[context] = {
        state.qe << 16, (2 * state.nextMps + mps) | (2 * state.nextLps + (mps ^ state.switchMps)) << 8 | context << 16};
  }
  return transitions;
}();

// Where in `next` the new context stands, as a shift.
constexpr uint32_t mqTransitionShift(bool isLps, bool keepsInterval) { return isLps * 8u + keepsInterval * 16u; }

}  // namespace zorj
