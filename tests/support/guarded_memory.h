// Memory between two inaccessible pages: an access outside it ends the test.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj::test {

// Where the bytes lie between the guard pages.
enum class Placement { kAtStart, kAtEnd };

class GuardedMemory {
 public:
  GuardedMemory(size_t bytes, Placement placement);
  ~GuardedMemory();
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  uint8_t* data() const { return data_; }
  size_t size() const { return size_; }

 private:
  void* mapping_ = nullptr;
  size_t mappedBytes_ = 0;
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace zorj::test
