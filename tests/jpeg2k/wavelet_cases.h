// Tests of a wavelet's functions, for any wavelet and sample type.
#pragma once

#include <gtest/gtest.h>
#include <zorj.h>

#include <array>
#include <string>
#include <vector>

#include "reference/wavelet.h"
#include "support/arguments.h"
#include "support/guarded_memory.h"
#include "support/operands.h"
#include "support/samples.h"

namespace zorj::test {

using reference::At;
using reference::Tile;

template <class T>
using ForwardBands = StatusCode(ZORJ_CALL*)(const T*, int32_t, T*, int32_t, T*, int32_t, RoiSize, int32_t);
template <class T>
using InverseBands = StatusCode(ZORJ_CALL*)(const T*, int32_t, const T*, int32_t, RoiSize, T*, int32_t, int32_t);
template <class T>
using InPlace = StatusCode(ZORJ_CALL*)(T*, int32_t, const TileRect*, void*);
template <class T>
using ForwardApart = StatusCode(ZORJ_CALL*)(const T*, int32_t, const TileRect*, T* const[4], const int32_t[4], void*);
template <class T>
using InverseApart = StatusCode(ZORJ_CALL*)(const T* const[4], const int32_t[4], T*, int32_t, const TileRect*, void*);
using BufferSize = StatusCode(ZORJ_CALL*)(const TileRect*, int32_t*);

// How many samples before the first and after the last of a line or band of a phase a filter reads.
struct Border {
  int before;
  int after;
};

// The borders of a wavelet's one-dimensional functions, by phase.
struct Borders {
  Border x[2];
  Border low[2];
  Border high[2];
};

template <class T>
struct TileFunctions {
  const char* what;
  InPlace<T> forwardInPlace, inverseInPlace;
  ForwardApart<T> forwardApart;
  InverseApart<T> inverseApart;
  BufferSize sizeInPlace, sizeApart;
};

// Data whose sums mostly fit the type, and some whose sums do not; floats of several magnitudes.
template <class T>
void fillForWavelets(T* samples, size_t count, Random& random, int round) {
  if constexpr (std::is_same_v<T, float>) {
    for (size_t i = 0; i < count; ++i) samples[i] = static_cast<float>(random.between(-1'000'000, 1'000'000)) / 3000.0f;
  } else {
    fillSamples(samples, count, random, round);
    for (size_t i = 0; i < count && round % 2 != 0; ++i) samples[i] = static_cast<T>(samples[i] / 8);
  }
}

template <class T>
OperandSpec waveletImage(OperandSpec::Role role, int width, int height) {
  OperandSpec spec = sourceImage<T>(width, height);
  spec.role = role;
  return filledWith<T>(spec, &fillForWavelets<T>);
}

// ---- Rows and columns with borders

// Lines of an operand: along its rows, or down its columns; `before` samples of each are border.
template <class T>
struct Lines {
  const Operands& operands;
  size_t operand;
  bool down;
  int before;

  T at(int line, int i) const {
    return down ? sampleAt<T>(operands, operand, line, i + before) : sampleAt<T>(operands, operand, i + before, line);
  }
  void set(int line, int i, T sample) const {
    down ? storeSample(operands, operand, line, i + before, sample)
         : storeSample(operands, operand, i + before, line, sample);
  }
  T* first() const {
    const ptrdiff_t offset = down ? ptrdiff_t{before} * operands.step(operand) : before * ptrdiff_t{sizeof(T)};
    return reinterpret_cast<T*>(operands.at<uint8_t>(operand) + offset);
  }
  int32_t step() const { return operands.step(operand); }
};

template <class T>
OperandSpec linesSpec(OperandSpec::Role role, bool down, int lines, int length, Border border) {
  const int total = length + border.before + border.after;
  return waveletImage<T>(role, down ? lines : total, down ? total : lines);
}

inline RoiSize bandSize(bool down, int lines, int n) { return down ? RoiSize{lines, n} : RoiSize{n, lines}; }

template <class W, class T = typename W::Sample>
void expectForwardBandsEqualModel(const std::string& what, ForwardBands<T> subject, bool down, const Borders& borders,
                                  int n, int lines, int phase) {
  using Role = OperandSpec::Role;
  const Border border = borders.x[phase];
  expectEqualsModel(
      what + ", n " + std::to_string(n) + ", phase " + std::to_string(phase),
      {linesSpec<T>(Role::kSource, down, lines, 2 * n, border),
       linesSpec<T>(Role::kDestination, down, lines, n, {0, 0}),
       linesSpec<T>(Role::kDestination, down, lines, n, {0, 0})},
      static_cast<uint64_t>(n), n,
      [&](const Operands& o) {
        const Lines<T> x{o, 0, down, border.before};
        // Any phase but 0 is odd.
        EXPECT_EQ(subject(x.first(), x.step(), o.at<T>(1), o.step(1), o.at<T>(2), o.step(2), bandSize(down, lines, n),
                          phase * (n % 2 == 0 ? -2 : 1)),
                  StatusOk);
      },
      [&](const Operands& o) {
        const Lines<T> x{o, 0, down, border.before}, low{o, 1, down, 0}, high{o, 2, down, 0};
        for (int line = 0; line < lines; ++line) {
          const At<T> at = [&](int c) { return x.at(line, c + phase); };
          for (int k = 0; k < n; ++k) {
            low.set(line, k, W::low(at, k));
            high.set(line, k, W::high(at, k - phase));
          }
        }
      });
}

template <class W, class T = typename W::Sample>
void expectInverseBandsEqualModel(const std::string& what, InverseBands<T> subject, bool down, const Borders& borders,
                                  int n, int lines, int phase) {
  using Role = OperandSpec::Role;
  expectEqualsModel(
      what + ", n " + std::to_string(n) + ", phase " + std::to_string(phase),
      {linesSpec<T>(Role::kSource, down, lines, n, borders.low[phase]),
       linesSpec<T>(Role::kSource, down, lines, n, borders.high[phase]),
       linesSpec<T>(Role::kDestination, down, lines, 2 * n, {0, 0})},
      static_cast<uint64_t>(n), n,
      [&](const Operands& o) {
        const Lines<T> low{o, 0, down, borders.low[phase].before}, high{o, 1, down, borders.high[phase].before};
        EXPECT_EQ(subject(low.first(), low.step(), high.first(), high.step(), bandSize(down, lines, n), o.at<T>(2),
                          o.step(2), phase),
                  StatusOk);
      },
      [&](const Operands& o) {
        const Lines<T> low{o, 0, down, borders.low[phase].before}, high{o, 1, down, borders.high[phase].before};
        const Lines<T> x{o, 2, down, 0};
        for (int line = 0; line < lines; ++line) {
          const At<T> lowAt = [&](int k) { return low.at(line, k); };
          const At<T> highAt = [&](int k) { return high.at(line, k + phase); };
          for (int k = 0; k < n; ++k) {
            x.set(line, 2 * k + phase, W::even(lowAt, highAt, k));
            x.set(line, 2 * k + 1 - phase, W::odd(lowAt, highAt, k - phase));
          }
        }
      });
}

// The lengths of bands and numbers of lines that every kernel must master: around vectors and blocks.
template <class Test>
void forEachBandSize(bool down, const Test& test) {
  for (int phase = 0; phase < 2; ++phase) {
    for (int n = 1; n <= 40; ++n) test(n, down ? 1 + n * 7 % 75 : 2, phase);
    for (const int n : {511, 512, 515, 1030}) test(n, 1 + n % 2, phase);
    for (const int lines : {1030, 2200}) test(3, down ? lines : 1, phase);
  }
}

template <class W, class T = typename W::Sample>
void expectBandsEqualModel(const std::string& what, ForwardBands<T> forward, InverseBands<T> inverse, bool down,
                           const Borders& borders) {
  forEachBandSize(down, [&](int n, int lines, int phase) {
    expectForwardBandsEqualModel<W>(what + " forward", forward, down, borders, n, lines, phase);
    expectInverseBandsEqualModel<W>(what + " inverse", inverse, down, borders, n, lines, phase);
  });
}

// ---- Tiles

// The buffer a function asks for, and not a byte more.
class Buffer {
 public:
  Buffer(BufferSize function, const TileRect& tile, Placement placement) : memory_(size(function, tile), placement) {}
  void* data() const { return memory_.data(); }

 private:
  static size_t size(BufferSize function, const TileRect& tile) {
    int32_t bytes = -1;
    EXPECT_EQ(function(&tile, &bytes), StatusOk);
    return static_cast<size_t>(bytes);
  }
  GuardedMemory memory_;
};

template <class T>
Tile<T> tileOf(const Operands& o, size_t operand, int width, int height) {
  Tile<T> tile(static_cast<size_t>(height), std::vector<T>(static_cast<size_t>(width)));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x)
      tile[static_cast<size_t>(y)][static_cast<size_t>(x)] = sampleAt<T>(o, operand, x, y);
  }
  return tile;
}

template <class T>
void storeTile(const Operands& o, size_t operand, const Tile<T>& tile) {
  for (size_t y = 0; y < tile.size(); ++y) {
    for (size_t x = 0; x < tile[y].size(); ++x) {
      storeSample(o, operand, static_cast<int>(x), static_cast<int>(y), tile[y][x]);
    }
  }
}

// The sizes of the subbands as they are copied out, whatever the origin; empty ones still are operands of one sample.
struct BandSizes {
  explicit BandSizes(const TileRect& tile)
      : left((tile.width + 1) / 2), right(tile.width / 2), top((tile.height + 1) / 2), bottom(tile.height / 2) {}
  int left, right, top, bottom;

  int width(int band) const { return band < 2 ? left : right; }
  int height(int band) const { return band % 2 == 0 ? top : bottom; }
};

template <class T>
std::vector<OperandSpec> bandSpecs(OperandSpec::Role role, const TileRect& tile) {
  const BandSizes sizes(tile);
  std::vector<OperandSpec> specs;
  for (int band = 0; band < 4; ++band) {
    specs.push_back(waveletImage<T>(role, std::max(1, sizes.width(band)), std::max(1, sizes.height(band))));
  }
  return specs;
}

// Visits the sample of every subband and its place in a tile where they lie side by side.
template <class Visit>
void forEachBandSample(const TileRect& tile, const Visit& visit) {
  const BandSizes sizes(tile);
  for (int band = 0; band < 4; ++band) {
    for (int y = 0; y < sizes.height(band); ++y) {
      for (int x = 0; x < sizes.width(band); ++x) {
        visit(static_cast<size_t>(band), x, y, static_cast<size_t>(band < 2 ? x : sizes.left + x),
              static_cast<size_t>(band % 2 == 0 ? y : sizes.top + y));
      }
    }
  }
}

template <class W, class T = typename W::Sample>
void expectTileEqualsModel(const TileFunctions<T>& functions, const TileRect& tile, int round) {
  using Role = OperandSpec::Role;
  const int width = tile.width, height = tile.height, parityX = tile.x & 1, parityY = tile.y & 1;
  const auto placement = round % 2 == 0 ? Placement::kAtEnd : Placement::kAtStart;
  const std::string what = std::string(functions.what) + " tile " + std::to_string(width) + "x" +
                           std::to_string(height) + " at " + std::to_string(parityX) + "," + std::to_string(parityY);
  const auto image = waveletImage<T>(Role::kInPlace, width, height);
  const uint64_t seed = static_cast<uint64_t>(width) * 1000 + static_cast<uint64_t>(height);
  for (const bool forward : {true, false}) {
    const auto level = [&](const Tile<T>& from) {
      return forward ? reference::forwardLevel<W>(from, parityX, parityY)
                     : reference::inverseLevel<W>(from, parityX, parityY);
    };
    expectEqualsModel(
        what + (forward ? " forward in place" : " inverse in place"), {image}, seed, round,
        [&](const Operands& o) {
          const Buffer buffer(functions.sizeInPlace, tile, placement);
          const InPlace<T> subject = forward ? functions.forwardInPlace : functions.inverseInPlace;
          EXPECT_EQ(subject(o.at<T>(0), o.step(0), &tile, buffer.data()), StatusOk);
        },
        [&](const Operands& o) { storeTile(o, 0, level(tileOf<T>(o, 0, width, height))); });

    auto specs = bandSpecs<T>(forward ? Role::kDestination : Role::kSource, tile);
    specs.push_back(waveletImage<T>(forward ? Role::kSource : Role::kDestination, width, height));
    expectEqualsModel(
        what + (forward ? " forward apart" : " inverse apart"), specs, seed, round,
        [&](const Operands& o) {
          const Buffer buffer(functions.sizeApart, tile, placement);
          T* const bands[4] = {o.at<T>(0), o.at<T>(1), o.at<T>(2), o.at<T>(3)};
          const int32_t steps[4] = {o.step(0), o.step(1), o.step(2), o.step(3)};
          EXPECT_EQ(forward ? functions.forwardApart(o.at<T>(4), o.step(4), &tile, bands, steps, buffer.data())
                            : functions.inverseApart(bands, steps, o.at<T>(4), o.step(4), &tile, buffer.data()),
                    StatusOk);
        },
        [&](const Operands& o) {
          if (forward) {
            const Tile<T> result = level(tileOf<T>(o, 4, width, height));
            forEachBandSample(tile, [&](size_t band, int x, int y, size_t tileX, size_t tileY) {
              storeSample(o, band, x, y, result[tileY][tileX]);
            });
          } else {
            Tile<T> bands(static_cast<size_t>(height), std::vector<T>(static_cast<size_t>(width)));
            forEachBandSample(tile, [&](size_t band, int x, int y, size_t tileX, size_t tileY) {
              bands[tileY][tileX] = sampleAt<T>(o, band, x, y);
            });
            storeTile(o, 4, level(bands));
          }
        });
  }
}

template <class W, class T = typename W::Sample>
void expectTilesEqualModel(const TileFunctions<T>& functions) {
  int round = 0;
  const auto expect = [&](int width, int height, int origin) {
    expectTileEqualsModel<W>(functions, {origin & 1, (origin >> 1) - 2, width, height}, round++);
  };
  for (int width = 1; width <= 7; ++width) {
    for (int height = 1; height <= 7; ++height) {
      for (int origin = 0; origin < 4; ++origin) expect(width, height, origin);
    }
  }
  for (int i = 0; i < 32; ++i) expect(8 + i * 5, 8 + i * 37 % 61, i);
  // Beyond a block of a row, a strip of columns.
  for (int origin = 0; origin < 4; ++origin) {
    expect(1027 + origin, 5, origin);
    expect(2100 - origin, 4, origin);
    expect(3, 300 + origin, origin);
  }
}

template <class T>
void expectTileArgumentOrder(const TileFunctions<T>& functions) {
  std::array<T, 64> image = {}, source = {};
  std::array<T, 256> buffer = {};
  const TileRect tile = {0, 0, 4, 4};
  const auto written = [&] { return image != std::array<T, 64>{} || buffer != std::array<T, 256>{}; };
  for (const InPlace<T> function : {functions.forwardInPlace, functions.inverseInPlace}) {
    expectArgumentOrder(
        functions.what, {StatusNullPointer, StatusBadStep, StatusNullPointer, StatusNullPointer},
        [&](const Faults& f) {
          return function(f.pointer(0, image.data()), f.value(1, 16, 0), f.pointer(2, &tile),
                          f.pointer(3, buffer.data()));
        },
        written);
    for (const TileRect& empty : {TileRect{0, 0, 0, 4}, TileRect{1, 1, 4, -1}}) {
      EXPECT_EQ(function(image.data(), 16, &empty, buffer.data()), StatusOk);
      EXPECT_FALSE(written());
    }
  }
  const std::vector<StatusCode> order = {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusNullPointer,
                                         StatusNullPointer, StatusBadStep,     StatusNullPointer, StatusNullPointer,
                                         StatusBadStep,     StatusBadStep,     StatusBadSize,     StatusBadSize};
  for (const bool forward : {true, false}) {
    expectArgumentOrder(
        functions.what, order,
        [&](const Faults& f) {
          const TileRect rect = {0, 0, f.value(10, 4, 0), f.value(11, 4, -4)};
          T* const bands[4] = {&image[0], f.pointer(6, &image[4]), &image[8], f.pointer(7, &image[12])};
          const T* const sources[4] = {&source[0], f.pointer(6, &source[4]), &source[8], f.pointer(7, &source[12])};
          const int32_t steps[4] = {f.value(8, 8, 0), 8, 8, f.value(9, 8, -1)};
          return forward
                     ? functions.forwardApart(f.pointer(0, source.data()), f.value(5, 16, 0), f.pointer(1, &rect),
                                              f.pointer(2, bands), f.pointer(3, steps), f.pointer(4, buffer.data()))
                     : functions.inverseApart(f.pointer(2, sources), f.pointer(3, steps), f.pointer(0, image.data()),
                                              f.value(5, 16, 0), f.pointer(1, &rect), f.pointer(4, buffer.data()));
        },
        written);
  }
  for (const BufferSize function : {functions.sizeInPlace, functions.sizeApart}) {
    int32_t size = 77;
    EXPECT_EQ(function(nullptr, &size), StatusNullPointer);
    EXPECT_EQ(function(&tile, nullptr), StatusNullPointer);
    EXPECT_EQ(size, 77);
  }
}

// The smallest tiles whose buffers are too large, and larger ones whose sizes wrap; `border` samples are around a line.
template <class T>
void expectRefusesTilesWithoutBuffer(const TileFunctions<T>& functions, int32_t border) {
  std::array<T, 64> image = {}, buffer = {};
  T* const bands[4] = {&image[0], &image[4], &image[8], &image[12]};
  const T* const sources[4] = {&image[0], &image[4], &image[8], &image[12]};
  const int32_t steps[4] = {1, 1, 1, 1};
  constexpr int32_t kBytes = sizeof(T);
  const int32_t longest = INT32_MAX / kBytes - border + 1;
  const int32_t highest = (INT32_MAX - border * kBytes) / (32 + kBytes) + 1;
  for (const TileRect& tile : {TileRect{0, 0, longest, 1}, TileRect{1, 1, 2, longest}, TileRect{0, 0, INT32_MAX, 3}}) {
    for (const InPlace<T> function : {functions.forwardInPlace, functions.inverseInPlace}) {
      EXPECT_EQ(function(image.data(), 1, &tile, buffer.data()), StatusBadSize) << functions.what << tile.width;
    }
  }
  for (const TileRect& tile : {TileRect{0, 0, 32 / kBytes, highest}, TileRect{0, 0, 65536, 32768},
                               TileRect{0, 0, INT32_MAX, INT32_MAX}, TileRect{0, 0, longest, 1}}) {
    EXPECT_EQ(functions.forwardApart(image.data(), 1, &tile, bands, steps, buffer.data()), StatusBadSize)
        << functions.what << tile.width;
    EXPECT_EQ(functions.inverseApart(sources, steps, image.data(), 1, &tile, buffer.data()), StatusBadSize)
        << functions.what << tile.width;
  }
}

template <class T>
void expectBandsArgumentOrder(const std::string& what, ForwardBands<T> forward, InverseBands<T> inverse) {
  const std::array<T, 128> source = {};
  std::array<T, 64> image = {};
  const T* const x = &source[64];
  const std::vector<StatusCode> order = {StatusNullPointer, StatusNullPointer, StatusNullPointer, StatusBadStep,
                                         StatusBadStep,     StatusBadStep,     StatusBadSize,     StatusBadSize};
  const auto written = [&] { return image != std::array<T, 64>{}; };
  expectArgumentOrder(
      what, order,
      [&](const Faults& f) {
        return forward(f.pointer(0, x), f.value(3, 4, 0), f.pointer(1, &image[0]), f.value(4, 4, -1),
                       f.pointer(2, &image[32]), f.value(5, 4, 0), {f.value(6, 1, 0), f.value(7, 1, -1)}, 0);
      },
      written);
  expectArgumentOrder(
      what, order,
      [&](const Faults& f) {
        return inverse(f.pointer(0, x), f.value(3, 4, 0), f.pointer(1, x), f.value(4, 4, -1),
                       {f.value(6, 1, 0), f.value(7, 1, -1)}, f.pointer(2, &image[0]), f.value(5, 4, 0), 0);
      },
      written);
}

}  // namespace zorj::test
