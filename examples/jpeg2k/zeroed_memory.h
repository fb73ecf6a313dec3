// Memory that is zero and costs nothing until it is used.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace examples::jpeg2k {

template <class T>
class ZeroedMemory {
 public:
  ZeroedMemory() = default;
  explicit ZeroedMemory(size_t count) : bytes_(std::max<size_t>(count, 1) * sizeof(T)) {
    if (isMapped()) {
      memory_ = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
      if (memory_ == MAP_FAILED) throw std::bad_alloc();
      madvise(memory_, bytes_, MADV_HUGEPAGE);  // entering pages one by one took a tenth of a lossy decode
    } else {
      memory_ = std::calloc(bytes_, 1);
      if (memory_ == nullptr) throw std::bad_alloc();
    }
  }
  ZeroedMemory(ZeroedMemory&& other) noexcept
      : memory_(std::exchange(other.memory_, nullptr)), bytes_(std::exchange(other.bytes_, 0)) {}
  ZeroedMemory& operator=(ZeroedMemory&& other) noexcept {
    std::swap(memory_, other.memory_);
    std::swap(bytes_, other.bytes_);
    return *this;
  }
  ~ZeroedMemory() {
    if (!isMapped()) {
      std::free(memory_);
    } else {
      munmap(memory_, bytes_);
    }
  }

  T* get() const { return static_cast<T*>(memory_); }

 private:
  static constexpr size_t kMappedFrom = size_t{4} << 20;

  bool isMapped() const { return bytes_ >= kMappedFrom; }

  void* memory_ = nullptr;
  size_t bytes_ = 0;
};

}  // namespace examples::jpeg2k
