// The model of PackBits (TIFF 6.0, section 9), byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zorj::reference {

using Packet = std::vector<uint8_t>;

// The packets of a row.
inline std::vector<Packet> packets(const std::vector<uint8_t>& row) {
  std::vector<Packet> all;
  const auto equal = [&](size_t i, size_t count) {
    if (i + count > row.size()) return false;
    for (size_t k = 1; k < count; ++k) {
      if (row[i + k] != row[i]) return false;
    }
    return true;
  };
  for (size_t i = 0; i < row.size();) {
    const size_t start = i;
    if (equal(i, 2)) {
      while (i < row.size() && row[i] == row[start] && i - start < 128) ++i;
      all.push_back({static_cast<uint8_t>(257 - (i - start)), row[start]});
    } else {
      do {
        ++i;
      } while (i < row.size() && i - start < 128 && !equal(i, 3));
      all.push_back({static_cast<uint8_t>(i - start - 1)});
      all.back().insert(all.back().end(), row.begin() + static_cast<ptrdiff_t>(start),
                        row.begin() + static_cast<ptrdiff_t>(i));
    }
  }
  return all;
}

// Unpacks a row of `rowLength` bytes as far as its packets reach; true if they fill it. Moves the position on.
inline bool unpack(const uint8_t* source, int64_t length, int64_t& position, size_t rowLength,
                   std::vector<uint8_t>& row) {
  while (position < length) {
    const auto header = static_cast<int8_t>(source[position++]);
    if (header == -128) continue;
    if (header < 0) {
      const size_t count = static_cast<size_t>(1 - header);
      if (row.size() + count > rowLength) return false;
      row.insert(row.end(), count, source[position++]);
    } else {
      const size_t count = static_cast<size_t>(header) + 1;
      if (position + int64_t{header} + 1 > length || row.size() + count > rowLength) return false;
      for (size_t i = 0; i < count; ++i) row.push_back(source[position++]);
    }
    if (row.size() == rowLength) return true;
  }
  return false;
}

}  // namespace zorj::reference
