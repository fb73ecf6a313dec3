// The bits of packet headers: the most significant first, with a zero bit after each byte 0xff (T.800 B.10.1).
#pragma once

#include <cstdint>
#include <vector>

namespace examples::jpeg2k {

class BitWriter {
 public:
  // Appends to `bytes`.
  explicit BitWriter(std::vector<uint8_t>& bytes) : bytes_(bytes) {}

  void bit(uint32_t value) {
    pending_ = pending_ << 1 | value;
    if (--room_ == 0) flush();
  }
  void bits(uint32_t value, int32_t count) {
    for (int32_t i = count - 1; i >= 0; --i) bit(value >> i & 1);
  }
  // Fills the last byte with zeros. A header does not end on 0xff.
  void end() {
    while (room_ != 8) bit(0);
  }

 private:
  void flush() {
    bytes_.push_back(static_cast<uint8_t>(pending_));
    room_ = pending_ == 0xff ? 7 : 8;
    pending_ = 0;
  }

  std::vector<uint8_t>& bytes_;
  uint32_t pending_ = 0;
  int32_t room_ = 8;  // bits that the pending byte still takes
};

}  // namespace examples::jpeg2k
