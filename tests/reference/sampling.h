// Models of chroma sampling: each computes one sample.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zorj::reference {

// A plane that continues beyond its edges with the nearest sample.
struct ExtendedPlane {
  const uint8_t* data;
  ptrdiff_t step;
  int width;
  int height;

  int at(int x, int y) const { return data[std::clamp(y, 0, height - 1) * step + std::clamp(x, 0, width - 1)]; }
};

inline uint8_t boxH2V1(const ExtendedPlane& source, int x, int y, int bias) {
  return static_cast<uint8_t>((source.at(2 * x, y) + source.at(2 * x + 1, y) + bias) / 2);
}

inline uint8_t boxH2V2(const ExtendedPlane& source, int x, int y, int bias) {
  int sum = bias;
  for (const int row : {2 * y, 2 * y + 1}) sum += source.at(2 * x, row) + source.at(2 * x + 1, row);
  return static_cast<uint8_t>(sum / 4);
}

// Output x of a row of twice the width.
inline uint8_t triangleH2V1(const ExtendedPlane& source, int x, int y) {
  const bool left = x % 2 == 0;
  const int neighbour = left ? x / 2 - 1 : x / 2 + 1;
  return static_cast<uint8_t>((3 * source.at(x / 2, y) + source.at(neighbour, y) + (left ? 1 : 2)) / 4);
}

// Output x of a row of twice the width between the source rows `near` and `far`.
inline uint8_t triangleH2V2(const ExtendedPlane& source, int x, int near, int far) {
  const bool left = x % 2 == 0;
  const int neighbour = left ? x / 2 - 1 : x / 2 + 1;
  const auto column = [&](int i) { return 3 * source.at(i, near) + source.at(i, far); };
  return static_cast<uint8_t>((3 * column(x / 2) + column(neighbour) + (left ? 8 : 7)) / 16);
}

// How many pixels share a sample of planes 1 and 2 of an MCU.
struct ChromaSharing {
  int columns;
  int rows;

  int pixelsAcross() const { return 8 * columns; }
  int pixelsDown() const { return 8 * rows; }
  int samples(int plane) const { return plane == 0 ? 64 * columns * rows : 64; }
  // Where a plane's sample in column x and row y of all its blocks is kept.
  int offset(int plane, int x, int y) const {
    const int block = x / 8 + y / 8 * (plane == 0 ? columns : 1);
    return 64 * block + 8 * (y % 8) + x % 8;
  }
};

// The sample in column x and row y of a plane, from pixels of three channels.
inline int16_t mcuSampleDown(ChromaSharing sharing, const uint8_t* pixels, ptrdiff_t step, int plane, int x, int y) {
  const int columns = plane == 0 ? 1 : sharing.columns, rows = plane == 0 ? 1 : sharing.rows;
  const ptrdiff_t top = ptrdiff_t{y} * rows, left = ptrdiff_t{x} * columns;
  int sum = columns * rows / 2;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      sum += pixels[(top + row) * step + 3 * (left + column) + plane];
    }
  }
  return static_cast<int16_t>(sum / (columns * rows) - 128);
}

// The channel of pixel (x, y) that a plane of blocks gives.
inline uint8_t mcuSampleUp(ChromaSharing sharing, const int16_t* blocks, int plane, int x, int y) {
  const int offset = plane == 0 ? sharing.offset(0, x, y) : sharing.offset(1, x / sharing.columns, y / sharing.rows);
  return static_cast<uint8_t>(std::clamp(blocks[offset] + 128, 0, 255));
}

}  // namespace zorj::reference
