// Models of the MQ coder and of raw bits: T.800 Annex C by its flow charts, one bit at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zorj::reference {

// T.800 Table C.2, by columns.
struct MqTable {
  static constexpr int qe[47] = {0x5601, 0x3401, 0x1801, 0x0AC1, 0x0521, 0x0221, 0x5601, 0x5401, 0x4801, 0x3801,
                                 0x3001, 0x2401, 0x1C01, 0x1601, 0x5601, 0x5401, 0x5101, 0x4801, 0x3801, 0x3401,
                                 0x3001, 0x2801, 0x2401, 0x2201, 0x1C01, 0x1801, 0x1601, 0x1401, 0x1201, 0x1101,
                                 0x0AC1, 0x09C1, 0x08A1, 0x0521, 0x0441, 0x02A1, 0x0221, 0x0141, 0x0111, 0x0085,
                                 0x0049, 0x0025, 0x0015, 0x0009, 0x0005, 0x0001, 0x5601};
  static constexpr int afterLps[47] = {1,  6,  9,  12, 29, 33, 6,  14, 14, 14, 17, 18, 20, 21, 14, 14,
                                       15, 16, 17, 18, 19, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29,
                                       30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 46};
  static int afterMps(int state) {
    switch (state) {
      case 5:
        return 38;
      case 13:
        return 29;
      case 45:
      case 46:
        return state;
      default:
        return state + 1;
    }
  }
  static bool exchanges(int state) { return state == 0 || state == 6 || state == 14; }
};

struct MqContextModel {
  int state = 0;
  int mps = 0;

  void adapt(bool lps) {
    if (lps && MqTable::exchanges(state)) mps = 1 - mps;
    state = lps ? MqTable::afterLps[state] : MqTable::afterMps(state);
  }
};

// Table D.7, in the library's order: uniform, run-length, zero coding, sign, refinement.
inline std::array<MqContextModel, 19> initialContexts() {
  std::array<MqContextModel, 19> contexts{};
  contexts[0].state = 46;
  contexts[1].state = 3;
  contexts[2].state = 4;
  return contexts;
}

using CodedBytes = std::vector<uint8_t>;

class MqEncoderModel {
 public:
  void encode(MqContextModel& context, int bit) {
    const uint32_t qe = static_cast<uint32_t>(MqTable::qe[context.state]);
    const bool lps = bit != context.mps;
    a_ -= qe;
    if (lps) {
      if (a_ < qe) {
        c_ += qe;
      } else {
        a_ = qe;
      }
    } else if ((a_ & 0x8000) == 0 && a_ < qe) {
      a_ = qe;
    } else {
      c_ += qe;
    }
    if ((a_ & 0x8000) != 0) return;
    context.adapt(lps);
    do {
      a_ <<= 1;
      c_ <<= 1;
      if (--ct_ == 0) byteOut();
    } while ((a_ & 0x8000) == 0);
  }

  // The segment ended in the mode with the caller's number.
  CodedBytes ended(int mode) const {
    MqEncoderModel copy = *this;
    if (mode == 2) {
      for (int k = 12 - ct_; k > 0; k -= copy.ct_) copy.shiftOut();
    } else if (mode == 1) {
      copy.endShortest();
    } else {
      const uint32_t end = c_ + a_;
      copy.c_ |= 0xFFFF;
      if (copy.c_ >= end) copy.c_ -= 0x8000;
      copy.shiftOut();
      copy.shiftOut();
    }
    if (!copy.bytes_.empty() && copy.bytes_.back() == 0xFF) copy.bytes_.pop_back();
    return copy.bytes_;
  }

  // The bytes after which the segment could be cut.
  int rate() const {
    if (bytes_.empty()) return ct_ >= 4 ? 3 : 4;
    const int settled = static_cast<int>(bytes_.size()) - 1;
    return settled + 4 + (ct_ < (bytes_.back() >= 0xFE ? 5 : 4) ? 1 : 0);
  }

 private:
  void shiftOut() {
    c_ <<= ct_;
    byteOut();
  }

  void byteOut() {
    if (!bytes_.empty() && bytes_.back() != 0xFF && c_ >= 0x8000000) {
      ++bytes_.back();
      c_ &= 0x7FFFFFF;
    }
    const bool stuffs = !bytes_.empty() && bytes_.back() == 0xFF;
    ct_ = stuffs ? 7 : 8;
    const int below = stuffs ? 20 : 19;
    bytes_.push_back(static_cast<uint8_t>(c_ >> below));
    c_ &= (1u << below) - 1;
  }

  void endShortest() {
    for (int k = 15; k >= 0; --k) {
      const uint32_t unit = 1u << k;
      const uint32_t value = (c_ + unit - 1) / unit * unit;
      if (value + unit > c_ + a_) continue;
      c_ = value;
      for (int bits = 27 - ct_ - k; bits > 0; bits -= ct_) shiftOut();
      return;
    }
  }

  CodedBytes bytes_;  // the last one may still get a carry
  uint32_t a_ = 0x8000;
  uint32_t c_ = 0;
  int ct_ = 12;
};

// The code register holds the complement of the standard's: so does the library's, which shows where corrupt data lead
// it out of the interval.
class MqDecoderModel {
 public:
  MqDecoderModel(const uint8_t* data, int length) : data_(data), length_(length) {
    c_ = (byte(0) ^ 0xFF) << 16;
    byteIn();
    c_ <<= 7;
    ct_ -= 7;
  }

  int decode(MqContextModel& context) {
    const uint32_t qe = static_cast<uint32_t>(MqTable::qe[context.state]);
    a_ -= qe;
    bool lps;
    if (c_ >> 16 < a_) {
      if ((a_ & 0x8000) != 0) return context.mps;
      lps = a_ < qe;
    } else {
      c_ -= a_ << 16;
      lps = a_ >= qe;
      a_ = qe;
    }
    const int bit = lps ? 1 - context.mps : context.mps;
    context.adapt(lps);
    do {
      if (ct_ == 0) byteIn();
      a_ <<= 1;
      c_ <<= 1;
      --ct_;
    } while ((a_ & 0x8000) == 0);
    return bit;
  }

  // Whether a predictable termination may have left this.
  bool endsPredictably() const {
    if (!marker_ && (byte(position_) < 0xFF || ct_ != 0)) return false;
    if (ct_ == 1) return true;
    if (!marker_ && byte(position_ + 1) < 0x90) return false;
    const int counter = ct_ == 0 ? 8 : ct_;
    return a_ - (0x8000u >> (counter - 1)) <= c_ >> 16;
  }

 private:
  uint32_t byte(int position) const { return position < length_ ? data_[position] : 0xFF; }

  void byteIn() {
    const uint32_t next = byte(position_ + 1);
    ct_ = 8;
    if (marker_ || (byte(position_) == 0xFF && next > 0x8F)) {
      marker_ = true;
    } else if (byte(position_++) == 0xFF) {
      c_ += 0xFE00 - (next << 9);
      ct_ = 7;
    } else {
      c_ += 0xFF00 - (next << 8);
    }
  }

  const uint8_t* data_;
  int length_;
  int position_ = 0;
  bool marker_ = false;
  uint32_t a_ = 0x8000;
  uint32_t c_ = 0;
  int ct_ = 0;
};

class RawEncoderModel {
 public:
  void encode(int bit) {
    if (bits_.size() == capacity()) settle();
    bits_.push_back(bit);
  }

  CodedBytes ended() const {
    RawEncoderModel copy = *this;
    for (int pad = 0; !copy.bits_.empty() && copy.bits_.size() < capacity(); pad = 1 - pad) copy.bits_.push_back(pad);
    if (!copy.bits_.empty() && copy.value() != 0xFF) copy.settle();
    return copy.bytes_;
  }

  int rate() const { return static_cast<int>(ended().size()); }

 private:
  size_t capacity() const { return !bytes_.empty() && bytes_.back() == 0xFF ? 7 : 8; }
  int value() const {
    int sum = 0;
    for (const int bit : bits_) sum = 2 * sum + bit;
    return sum;
  }
  void settle() {
    bytes_.push_back(static_cast<uint8_t>(value()));
    bits_.clear();
  }

  CodedBytes bytes_;
  std::vector<int> bits_;  // of the byte to come
};

class RawDecoderModel {
 public:
  RawDecoderModel(const uint8_t* data, int length) : data_(data), length_(std::max(length, 0)) {}

  int decode() {
    if (next_ < 0) read();
    return static_cast<int>(current_ >> next_-- & 1);
  }

  bool endsPadded() {
    if (next_ >= 0) {
      for (int i = next_, expected = 0; i >= 0; --i, expected = 1 - expected) {
        if (static_cast<int>(current_ >> i & 1) != expected) return false;
      }
    } else if (current_ == 0xFF) {
      if (position_ >= length_) return true;
      read();
      next_ = 6;
    }
    if (position_ >= length_) return true;
    const uint32_t following = data_[position_++];
    if (current_ < 0xFF || next_ != 0) return true;
    return following < 0x80 && position_ < length_;
  }

 private:
  void read() {
    next_ = current_ == 0xFF ? 6 : 7;
    current_ = position_ < length_ ? data_[position_] : 0xFF;
    ++position_;
  }

  const uint8_t* data_;
  int length_;
  int position_ = 0;
  uint32_t current_ = 0;
  int next_ = -1;  // the next bit of the current byte
};

}  // namespace zorj::reference
