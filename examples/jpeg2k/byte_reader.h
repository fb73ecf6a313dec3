// Big-endian numbers from a header. Throws Error where it ends early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "common/error.h"

namespace examples::jpeg2k {

class ByteReader {
 public:
  explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

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
    if (count > bytes_.size()) throw Error("a header is too short");
    const std::span<const uint8_t> taken = bytes_.first(count);
    bytes_ = bytes_.subspan(count);
    return taken;
  }
  std::span<const uint8_t> rest() { return take(bytes_.size()); }

 private:
  std::span<const uint8_t> bytes_;
};

}  // namespace examples::jpeg2k
