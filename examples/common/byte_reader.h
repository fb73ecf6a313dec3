// Big-endian numbers from a header or another part of a file. Throws Error where it ends early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "common/error.h"

namespace examples {

class ByteReader {
 public:
  // Errors call the bytes `what`.
  explicit ByteReader(std::span<const uint8_t> bytes, const char* what = "a header") : bytes_(bytes), what_(what) {}

  size_t left() const { return bytes_.size(); }
  uint8_t byte() { return take(1)[0]; }
  uint16_t word() {
    const std::span<const uint8_t> two = take(2);
    return static_cast<uint16_t>(two[0] << 8 | two[1]);
  }
  uint32_t doubleWord() {
    const uint32_t high = word();
    return high << 16 | word();
  }
  // One byte or two: component numbers have two where there are more than 256 components (T.800 A.6.2).
  uint16_t number(bool wide) { return wide ? word() : byte(); }
  std::span<const uint8_t> take(size_t count) {
    if (count > bytes_.size()) throw Error(std::string(what_) + " is too short");
    const std::span<const uint8_t> taken = bytes_.first(count);
    bytes_ = bytes_.subspan(count);
    return taken;
  }
  bool takeIf(const char* text, size_t count) {
    if (bytes_.size() < count || std::memcmp(bytes_.data(), text, count) != 0) return false;
    bytes_ = bytes_.subspan(count);
    return true;
  }
  std::span<const uint8_t> rest() { return take(bytes_.size()); }

 private:
  std::span<const uint8_t> bytes_;
  const char* what_;
};

}  // namespace examples
