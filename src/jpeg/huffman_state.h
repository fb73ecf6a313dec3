// What the coders keep between calls. Callers own the memory and see only its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/checks.h"
#include "core/memory.h"
#include "zorj/jpeg_huffman.h"

struct HuffmanEncodeState {
  uint32_t accumulator;  // the first pending bit is bit 23; above it the byte written last
  uint32_t reserved;
  uint32_t bitCount;  // pending bits, 0 to 7
  uint32_t eobRun;
  uint32_t correctionCount;
  uint8_t correctionBits[1024];
  uint32_t unused;  // never touched
};

struct HuffmanDecodeState {
  uint32_t bitBuffer;  // the byte read last is in the low 8 bits
  uint32_t reserved;
  int32_t bitCount;  // bits at the low end of the buffer that are not consumed yet
  uint32_t eobRun;
  int32_t lastPosition;  // zig-zag positions the last baseline block reached
  uint32_t unused;       // never touched
};

static_assert(sizeof(HuffmanEncodeState) == 1048 && sizeof(HuffmanDecodeState) == 24);

namespace zorj {

inline constexpr int32_t kMaxComponents = 4;

template <class State>
void clearState(State& state) {
  std::memset(static_cast<void*>(&state), 0, offsetof(State, unused));
}

// What the GetBufSize, Init, InitAlloc and Free exports of the tables and states share.

template <class Object>
StatusCode reportSize(int32_t* size) {
  if (anyNull(size)) return StatusNullPointer;
  *size = int32_t{sizeof(Object)};
  return StatusOk;
}

template <class State>
StatusCode initialiseState(State* state) {
  if (anyNull(state)) return StatusNullPointer;
  clearState(*state);
  return StatusOk;
}

// Null when there is no memory.
template <class Object>
Object* allocateObject() {
  return static_cast<Object*>(zorjMalloc(int32_t{sizeof(Object)}));
}

template <class State>
StatusCode allocateState(State** state) {
  if (anyNull(state)) return StatusNullPointer;
  State* allocated = allocateObject<State>();
  if (anyNull(allocated)) return StatusNullPointer;
  clearState(*allocated);
  *state = allocated;
  return StatusOk;
}

inline StatusCode freeObject(void* object) {
  if (anyNull(object)) return StatusNullPointer;
  zorjFree(object);
  return StatusOk;
}

}  // namespace zorj
