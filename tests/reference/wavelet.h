// Models of the wavelet transforms: single samples by the lifting formulas, and levels of tiles by lines.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "reference/component_transform.h"

namespace zorj::reference {

// Sample i of a line or of a subband, wherever it comes from.
template <class T>
using At = std::function<T(int)>;

// The 5/3 wavelet. Low sample k stands at 2k of the line x, high sample k at 2k + 1.
template <class T>
struct Wavelet53 {
  using Sample = T;

  static T high(const At<T>& x, int k) {
    return wrapped<T>(x(2 * k + 1) - floorDivide(wrapped<int32_t>(int64_t{x(2 * k)} + x(2 * k + 2)), 2));
  }
  static T low(const At<T>& x, int k) { return wrapped<T>(x(2 * k) + quarter(high(x, k - 1), high(x, k))); }
  static T even(const At<T>& low, const At<T>& high, int k) {
    return wrapped<T>(low(k) - quarter(high(k - 1), high(k)));
  }
  static T odd(const At<T>& low, const At<T>& high, int k) {
    const int64_t sum = int64_t{even(low, high, k)} + even(low, high, k + 1);
    return wrapped<T>(high(k) + floorDivide(wrapped<int32_t>(sum), 2));
  }
  // In lines of one and two samples: results, and what is computed with.
  static T stored(int64_t x) { return wrapped<T>(x); }
  static int64_t difference(int64_t a, int64_t b) { return wrapped<T>(a - b); }

 private:
  static int64_t quarter(int64_t a, int64_t b) { return floorDivide(wrapped<int32_t>(a + b + 2), 4); }
};

// ---- Lines and tiles of any wavelet W

// Position c of a line that is reflected about its first and last positions.
inline int reflected(int c, int first, int last) {
  const int period = 2 * (last - first);
  const int offset = ((c - first) % period + period) % period;
  return first + std::min(offset, period - offset);
}

inline int64_t halfUp(int64_t x) { return floorDivide(wrapped<int32_t>(x + 1), 2); }

// A line whose first position is even or odd into its low samples, followed by its high samples.
template <class W, class T = typename W::Sample>
std::vector<T> analysed(const std::vector<T>& line, int parity) {
  const int length = static_cast<int>(line.size()), lows = (length + 1 - parity) / 2;
  if (length == 1) return {parity == 0 ? line[0] : W::stored(int64_t{line[0]} * 2)};
  if (length == 2) {
    const int64_t even = line[static_cast<size_t>(parity)], odd = line[static_cast<size_t>(1 - parity)];
    const int64_t difference = W::difference(odd, even);
    return {W::stored(even + halfUp(difference)), W::stored(difference)};
  }
  const At<T> x = [&](int c) {
    const int i = reflected(c, -parity, length - 1 - parity) + parity;
    return line[static_cast<size_t>(i)];
  };
  std::vector<T> bands;
  for (int k = 0; k < lows; ++k) bands.push_back(W::low(x, k));
  for (int k = -parity; k < length - lows - parity; ++k) bands.push_back(W::high(x, k));
  return bands;
}

template <class W, class T = typename W::Sample>
std::vector<T> synthesised(const std::vector<T>& bands, int parity) {
  const int length = static_cast<int>(bands.size()), lows = (length + 1 - parity) / 2;
  if (length == 1) return {parity == 0 ? bands[0] : static_cast<T>(bands[0] / 2)};
  if (length == 2) {
    std::vector<T> line(2);
    const int64_t even = W::difference(bands[0], halfUp(bands[1]));
    line[static_cast<size_t>(parity)] = W::stored(even);
    line[static_cast<size_t>(1 - parity)] = W::stored(even + bands[1]);
    return line;
  }
  const auto inside = [=](int c) { return reflected(c, -parity, length - 1 - parity); };
  const At<T> low = [&](int k) { return bands[static_cast<size_t>(inside(2 * k) / 2)]; };
  const At<T> high = [&](int k) {
    const int i = lows + (inside(2 * k + 1) + 1) / 2 - 1 + parity;
    return bands[static_cast<size_t>(i)];
  };
  std::vector<T> line;
  for (int c = -parity; c < length - parity; ++c) {
    const int k = static_cast<int>(floorDivide(c, 2));
    line.push_back(c % 2 == 0 ? W::even(low, high, k) : W::odd(low, high, k));
  }
  return line;
}

// A tile by rows.
template <class T>
using Tile = std::vector<std::vector<T>>;

template <class T>
Tile<T> transposed(const Tile<T>& tile) {
  Tile<T> columns(tile[0].size(), std::vector<T>(tile.size()));
  for (size_t y = 0; y < tile.size(); ++y) {
    for (size_t x = 0; x < tile[y].size(); ++x) columns[x][y] = tile[y][x];
  }
  return columns;
}

template <class W, class T = typename W::Sample>
Tile<T> forwardLevel(const Tile<T>& tile, int parityX, int parityY) {
  Tile<T> columns = transposed(tile);
  for (auto& column : columns) column = analysed<W>(column, parityY);
  Tile<T> rows = transposed(columns);
  for (auto& row : rows) row = analysed<W>(row, parityX);
  return rows;
}

template <class W, class T = typename W::Sample>
Tile<T> inverseLevel(const Tile<T>& bands, int parityX, int parityY) {
  Tile<T> rows = bands;
  for (auto& row : rows) row = synthesised<W>(row, parityX);
  Tile<T> columns = transposed(rows);
  for (auto& column : columns) column = synthesised<W>(column, parityY);
  return transposed(columns);
}

}  // namespace zorj::reference
