// An input taken apart: bytes from its front make the choices, what is left is data.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

namespace zorj::fuzz {

// Exactly `count` values on the heap, where the address sanitizer sees every access beyond them.
template <class T>
class Exact {
 public:
  explicit Exact(size_t count, bool atOddAddress = false)
      : count_(count), skipped_(atOddAddress ? 1 : 0), bytes_(new uint8_t[count * sizeof(T) + skipped_]) {
    std::memset(bytes_.get(), 0xA5, count * sizeof(T) + skipped_);
  }
  explicit Exact(std::span<const T> values, bool atOddAddress = false) : Exact(values.size(), atOddAddress) {
    if (!values.empty()) std::memcpy(bytes_.get() + skipped_, values.data(), values.size_bytes());
  }

  T* data() const { return reinterpret_cast<T*>(bytes_.get() + skipped_); }
  size_t size() const { return count_; }
  int32_t length() const { return static_cast<int32_t>(count_); }
  // A copy, wherever the values lie.
  std::vector<T> values() const {
    std::vector<T> copy(count_);
    if (count_ != 0) std::memcpy(copy.data(), data(), count_ * sizeof(T));
    return copy;
  }

 private:
  size_t count_;
  size_t skipped_;
  std::unique_ptr<uint8_t[]> bytes_;
};

class Input {
 public:
  explicit Input(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  bool empty() const { return bytes_.empty(); }
  std::span<const uint8_t> rest() const { return bytes_; }

  // Beyond the end all is 0.
  uint8_t byte() {
    if (bytes_.empty()) return 0;
    const uint8_t first = bytes_[0];
    bytes_ = bytes_.subspan(1);
    return first;
  }
  bool coin() { return (byte() & 1) != 0; }
  int32_t word() {
    const int high = byte();
    return static_cast<int16_t>(high * 256 + byte());
  }
  // Two bytes where one does not reach.
  int32_t between(int32_t low, int32_t high) {
    const int32_t count = high - low + 1;
    return low + (count > 256 ? byte() * 256 + byte() : byte()) % count;
  }
  std::span<const uint8_t> take(size_t count) {
    const std::span<const uint8_t> front = bytes_.first(std::min(count, bytes_.size()));
    bytes_ = bytes_.subspan(front.size());
    return front;
  }
  // Fills `values` from the data, again and again from its start.
  template <class T>
  void fill(T* values, size_t count) {
    auto* const bytes = reinterpret_cast<uint8_t*>(values);
    for (size_t i = 0; i < count * sizeof(T); ++i) bytes[i] = bytes_.empty() ? uint8_t{0} : bytes_[i % bytes_.size()];
  }

 private:
  std::span<const uint8_t> bytes_;
};

}  // namespace zorj::fuzz
