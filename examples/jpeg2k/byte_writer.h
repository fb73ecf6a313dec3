// Numbers to bytes, the most significant byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace examples::jpeg2k {

class ByteWriter {
 public:
  // Appends to `bytes`.
  explicit ByteWriter(std::vector<uint8_t>& bytes) : bytes_(bytes) {}

  void u8(uint32_t value) { bytes_.push_back(static_cast<uint8_t>(value)); }
  void u16(uint32_t value) {
    u8(value >> 8);
    u8(value);
  }
  void u32(uint32_t value) {
    u16(value >> 16);
    u16(value);
  }
  void text(std::string_view characters) { bytes_.insert(bytes_.end(), characters.begin(), characters.end()); }
  void append(std::span<const uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

  size_t size() const { return bytes_.size(); }
  // Replaces four bytes that have been written before.
  void patch32(size_t at, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) bytes_[at + i] = static_cast<uint8_t>(value >> (24 - 8 * i));
  }

 private:
  std::vector<uint8_t>& bytes_;
};

}  // namespace examples::jpeg2k
