// Models of the JPEG Huffman coders: one bit at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "zorj/types.h"

namespace zorj::reference {

// The lists of a DHT segment.
struct HuffmanLists {
  std::array<uint8_t, 16> bits{};
  std::vector<uint8_t> values;
};

struct HuffmanCode {
  int length;
  uint32_t code;
  uint8_t symbol;
};

// The codes in the order of the list (T.81 Annex C).
inline std::vector<HuffmanCode> canonicalCodes(const HuffmanLists& lists) {
  std::vector<HuffmanCode> codes;
  uint32_t code = 0;
  for (int length = 1; length <= 16; ++length, code *= 2) {
    for (int i = 0; i < lists.bits[static_cast<size_t>(length - 1)]; ++i) {
      codes.push_back({length, code++, lists.values[codes.size()]});
    }
  }
  return codes;
}

// The k-th coefficient in zig-zag order: the diagonals of the block, walked in turns.
inline int naturalIndex(int k) {
  for (int diagonal = 0, position = 0; diagonal < 15; ++diagonal) {
    for (int step = 0; step <= diagonal; ++step) {
      const int row = diagonal % 2 == 0 ? diagonal - step : step, column = diagonal - row;
      if (row < 8 && column < 8 && position++ == k) return 8 * row + column;
    }
  }
  return -1;
}

inline int category(int value) {
  int bits = 0;
  for (int magnitude = std::abs(value); magnitude != 0; magnitude /= 2) ++bits;
  return bits;
}

// --- Encoding ---------------------------------------------------------------------------------------------------

class HuffmanWriter {
 public:
  HuffmanWriter(uint8_t* bytes, int length) : bytes_(bytes), length_(length) {}

  int position = 0;
  std::vector<bool> pending;
  uint8_t lastByte = 0;  // the data byte written last

  void clear() {
    pending.clear();
    lastByte = 0;
  }
  uint32_t accumulator() const {
    uint32_t bits = lastByte;
    for (size_t i = 0; i < 24; ++i) bits = bits << 1 | (i < pending.size() && pending[i]);
    return bits;
  }

  StatusCode put(int value, int count) {
    if (count == 0) return StatusBadHuffmanTable;
    std::vector<bool> bits = pending;
    for (int i = count - 1; i >= 0; --i) bits.push_back((static_cast<unsigned>(value) >> i & 1) != 0);
    uint8_t byte = lastByte;
    while (bits.size() >= 8) {
      byte = 0;
      for (size_t i = 0; i < 8; ++i) byte = static_cast<uint8_t>(byte * 2 + bits[i]);
      bits.erase(bits.begin(), bits.begin() + 8);
      if (position == length_) return StatusBufferEnd;
      bytes_[position++] = byte;
      if (byte == 0xFF) {
        if (position == length_) return StatusBufferEnd;
        bytes_[position++] = 0;
      }
    }
    pending = bits;
    lastByte = byte;
    return StatusOk;
  }

  StatusCode flush() {
    const StatusCode status = put(0x7F, 7);
    clear();
    return status;
  }

 private:
  uint8_t* bytes_;
  int length_;
};

class HuffmanEncoder {
 public:
  explicit HuffmanEncoder(const HuffmanLists& lists) {
    for (const HuffmanCode& code : canonicalCodes(lists)) codes_[code.symbol] = code;
  }
  StatusCode putSymbol(HuffmanWriter& writer, int symbol) const {
    const HuffmanCode& code = codes_[static_cast<size_t>(symbol)];
    return writer.put(static_cast<int>(code.code), code.length);
  }
  // A symbol, then the extra bits of `value`.
  StatusCode putValue(HuffmanWriter& writer, int symbol, int value, int extra) const {
    const StatusCode status = putSymbol(writer, symbol);
    if (status != StatusOk && !ignoreMissingCodes) return status;
    return extra == 0 ? StatusOk : writer.put(value < 0 ? value - 1 : value, extra);
  }
  StatusCode putDifference(HuffmanWriter& writer, int value) const {
    return putValue(writer, category(value), value, category(value) == 16 ? 0 : category(value));
  }

  bool ignoreMissingCodes = false;

 private:
  // By symbol; those of length 0 are none, as for 256, a run of 15 before a value of 16 bits.
  std::array<HuffmanCode, 257> codes_{};
};

inline StatusCode encodeBlock(HuffmanWriter& writer, const int16_t* block, int16_t& lastDc, const HuffmanEncoder& dc,
                              const HuffmanEncoder& ac) {
  const int difference = block[0] - lastDc;
  lastDc = block[0];
  const bool goOn = dc.ignoreMissingCodes;
  StatusCode status = dc.putValue(writer, category(difference), difference, category(difference));
  if (status != StatusOk && !goOn) return status;
  int zeros = 0;
  for (int k = 1; k < 64; ++k) {
    const int value = block[naturalIndex(k)];
    if (value == 0) {
      ++zeros;
      continue;
    }
    for (; zeros >= 16; zeros -= 16) {
      status = ac.putSymbol(writer, 0xF0);
      if (status != StatusOk && !goOn) return status;
    }
    status = ac.putValue(writer, 16 * zeros + category(value), value, category(value));
    if (status != StatusOk && !goOn) return status;
    zeros = 0;
  }
  return zeros > 0 ? ac.putSymbol(writer, 0) : StatusOk;
}

// --- Decoding ---------------------------------------------------------------------------------------------------

class HuffmanReader {
 public:
  HuffmanReader(const uint8_t* bytes, int length) : bytes_(bytes), length_(length) {}

  int position = 0;
  int marker = 0;

  int held() const { return static_cast<int>(bits_.size() - consumed_); }
  uint32_t buffer() const {
    uint32_t word = 0;
    for (size_t i = 32; i > 0; --i) word = word << 1 | (i <= bits_.size() && bits_[bits_.size() - i]);
    return word;
  }
  // Starts with bits that were read before.
  void prefetch(uint32_t word, int count) {
    bits_.clear();
    for (int i = 31; i >= 0; --i) bits_.push_back((word >> i & 1) != 0);
    consumed_ = bits_.size() - static_cast<size_t>(count);
  }

  StatusCode refill(int needed) {
    if (marker != 0) return held() < needed ? StatusHuffmanDataError : StatusOk;
    while (held() < 25) {
      if (position >= length_) return held() < needed ? StatusBufferEnd : StatusOk;
      const int byte = bytes_[position++];
      if (byte == 0xFF) {
        int next = 0xFF;
        while (next == 0xFF) {
          if (position >= length_) return StatusBufferEnd;
          next = bytes_[position++];
        }
        if (next != 0) {
          marker = next;
          return StatusOk;
        }
      }
      for (int i = 7; i >= 0; --i) bits_.push_back((byte >> i & 1) != 0);
    }
    return StatusOk;
  }
  StatusCode need(int count) {
    if (held() >= count) return StatusOk;
    const StatusCode status = refill(count);
    if (status == StatusOk && held() < count) return StatusHuffmanDataError;
    return status;
  }
  uint32_t take(int count) {
    uint32_t value = 0;
    for (; count > 0; --count) value = value << 1 | bits_[consumed_++];
    return value;
  }
  uint32_t peek(int count) const {
    uint32_t value = 0;
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) value = value << 1 | bits_[consumed_ + i];
    return value;
  }

 private:
  const uint8_t* bytes_;
  int length_;
  std::vector<bool> bits_;
  size_t consumed_ = 0;
};

class HuffmanDecoder {
 public:
  explicit HuffmanDecoder(const HuffmanLists& lists) : codes_(canonicalCodes(lists)) {
    // All ones in 16 bits cannot be told from "no code of this length".
    std::erase_if(codes_, [](const HuffmanCode& code) { return code.length == 16 && code.code == 0xFFFF; });
  }

  StatusCode takeSymbol(HuffmanReader& reader, int& symbol) const {
    symbol = 0;
    if (reader.held() < 8) {
      const StatusCode status = reader.refill(0);
      if (status != StatusOk) return status;
    }
    int length = 1;
    if (reader.held() >= 8) {
      const uint32_t next8 = reader.peek(8);
      for (; length <= 8; ++length) {
        if (!find(length, next8 >> (8 - length), symbol)) continue;
        reader.take(length);
        return StatusOk;
      }
    }
    StatusCode status = reader.need(length);
    if (status != StatusOk) return status;
    uint32_t bits = reader.take(length);
    for (; length <= 16; ++length) {
      if (find(length, bits, symbol)) return StatusOk;
      status = reader.need(1);
      if (status != StatusOk) return status;
      bits = bits << 1 | reader.take(1);
    }
    return StatusHuffmanDataError;
  }

 private:
  bool find(int length, uint32_t bits, int& symbol) const {
    const auto key = [](const HuffmanCode& code) { return std::pair(code.length, code.code); };
    const auto found = std::ranges::lower_bound(codes_, std::pair(length, bits), {}, key);
    if (found == codes_.end() || key(*found) != std::pair(length, bits)) return false;
    symbol = found->symbol;
    return true;
  }

  std::vector<HuffmanCode> codes_;  // in the order of the list, which is that of lengths and codes
};

inline StatusCode takeExtraBits(HuffmanReader& reader, int count, int& value) {
  const StatusCode status = reader.need(count);
  if (status != StatusOk) return status;
  value = static_cast<int>(reader.take(count));
  if (count < 16 && value < 1 << (count - 1)) value -= (1 << count) - 1;
  return StatusOk;
}

// What a decoder of blocks hands back besides the status.
struct DecodedBlock {
  int16_t coefficients[64] = {};
  std::optional<int> lastPosition;  // none: as it was
  bool noBitsBeforeSymbol = false;
  bool noExtraBits = false;
};

inline StatusCode decodeBlock(HuffmanReader& reader, DecodedBlock& block, int16_t& lastDc, const HuffmanDecoder& dc,
                              const HuffmanDecoder& ac) {
  const auto takeSymbol = [&](const HuffmanDecoder& decoder, int& symbol) {
    HuffmanReader before = reader;
    const StatusCode status = decoder.takeSymbol(reader, symbol);
    block.noBitsBeforeSymbol = status != StatusOk && before.refill(0) == StatusOk && before.held() == 0;
    return status;
  };
  int symbol = 0, value = 0;
  block.lastPosition = 0;
  StatusCode status = takeSymbol(dc, symbol);
  if (status != StatusOk) return status;
  if (symbol % 16 != 0) {
    status = takeExtraBits(reader, symbol % 16, value);
    block.noExtraBits = status != StatusOk;
    if (status != StatusOk) return status;
    lastDc = static_cast<int16_t>(lastDc + value);
  }
  block.coefficients[0] = lastDc;
  int k = 1;
  while (k < 64) {
    status = takeSymbol(ac, symbol);
    if (status != StatusOk || symbol == 0 || (symbol % 16 == 0 && symbol != 0xF0)) break;
    if (symbol == 0xF0) {
      k += 16;
      continue;
    }
    status = takeExtraBits(reader, symbol % 16, value);
    block.noExtraBits = status != StatusOk;
    if (status != StatusOk) return status;
    k += symbol / 16;
    if (k >= 72) {
      block.lastPosition.reset();
      return StatusBlockOverrun;
    }
    block.coefficients[k < 64 ? naturalIndex(k) : 63] = static_cast<int16_t>(value);
    ++k;
  }
  block.lastPosition = k;
  return status;
}

inline StatusCode decodeDifference(HuffmanReader& reader, const HuffmanDecoder& decoder, int16_t& difference) {
  int symbol = 0, value = 0;
  StatusCode status = decoder.takeSymbol(reader, symbol);
  if (status != StatusOk) return status;
  if (symbol >= 16) {
    value = -32768;
  } else if (symbol > 0) {
    status = takeExtraBits(reader, symbol, value);
    if (status != StatusOk) return status;
  }
  difference = static_cast<int16_t>(value);
  return StatusOk;
}

}  // namespace zorj::reference
