// The ways pixels lie in memory.
#pragma once

#include "reference/color.h"
#include "support/samples.h"

namespace zorj::test {

using reference::Channels;

// How pixels lie in an image whose planes are operands from `first` on.
struct Format {
  int planes;
  int (*rowBytes)(int width);
  bool isArray;
  Channels (*load)(const Operands&, size_t first, int x, int y);
  void (*store)(const Operands&, size_t first, int x, int y, const Channels&);
};

template <int kBytes>
int bytesOf(int width) {
  return kBytes * width;
}

// kOrder holds the byte of each channel.
template <int... kOrder>
struct Interleaved {
  static constexpr int kBytes = sizeof...(kOrder);
  static constexpr int kByte[] = {kOrder...};

  static Channels load(const Operands& o, size_t first, int x, int y) {
    Channels pixel{};
    for (int i = 0; i < kBytes; ++i) {
      pixel[static_cast<size_t>(i)] = sampleAt<uint8_t>(o, first, kBytes * x + kByte[i], y);
    }
    return pixel;
  }
  static void store(const Operands& o, size_t first, int x, int y, const Channels& pixel) {
    for (int i = 0; i < kBytes; ++i) {
      storeSample(o, first, kBytes * x + kByte[i], y, static_cast<uint8_t>(pixel[static_cast<size_t>(i)]));
    }
  }
  static constexpr Format format() { return {1, &bytesOf<kBytes>, false, &load, &store}; }
};

template <size_t kPlanes, bool kIsArray = true>
struct Planar {
  static Channels load(const Operands& o, size_t first, int x, int y) {
    Channels pixel{};
    for (size_t i = 0; i < kPlanes; ++i) pixel[i] = sampleAt<uint8_t>(o, first + i, x, y);
    return pixel;
  }
  static void store(const Operands& o, size_t first, int x, int y, const Channels& pixel) {
    for (size_t i = 0; i < kPlanes; ++i) storeSample(o, first + i, x, y, static_cast<uint8_t>(pixel[i]));
  }
  static constexpr Format format() { return {kPlanes, &bytesOf<1>, kIsArray, &load, &store}; }
};

template <int kGreenBits, bool kRedLowest>
struct Packed {
  static constexpr size_t kLow = kRedLowest ? 0 : 2, kHigh = 2 - kLow;

  static Channels load(const Operands& o, size_t first, int x, int y) {
    const unsigned word = sampleAt<uint16_t>(o, first, x, y);
    Channels pixel{};
    pixel[kLow] = static_cast<int>(word % 32 * 8);
    pixel[1] = static_cast<int>((word / 32 % (1u << kGreenBits)) << (8 - kGreenBits));
    pixel[kHigh] = static_cast<int>((word >> (5 + kGreenBits)) % 32 * 8);
    return pixel;
  }
  static void store(const Operands& o, size_t first, int x, int y, const Channels& pixel) {
    const int green = pixel[1] >> (8 - kGreenBits);
    const int word = pixel[kLow] / 8 + 32 * green + (pixel[kHigh] / 8 << (5 + kGreenBits));
    storeSample(o, first, x, y, static_cast<uint16_t>(word));
  }
  static constexpr Format format() { return {1, &bytesOf<2>, false, &load, &store}; }
};

inline Channels loadOf422(const Operands& o, size_t first, int x, int y) {
  const int pair = x / 2 * 4;
  return {sampleAt<uint8_t>(o, first, 2 * x, y), sampleAt<uint8_t>(o, first, pair + 1, y),
          sampleAt<uint8_t>(o, first, pair + 3, y), 0};
}

inline void storeOf422(const Operands& o, size_t first, int x, int y, const Channels& pixel) {
  const int pair = x / 2 * 4;
  storeSample(o, first, 2 * x, y, static_cast<uint8_t>(pixel[0]));
  storeSample(o, first, pair + 1, y, static_cast<uint8_t>(pixel[1]));
  storeSample(o, first, pair + 3, y, static_cast<uint8_t>(pixel[2]));
}

inline constexpr Format kRgb = Interleaved<0, 1, 2>::format(), kBgr = Interleaved<2, 1, 0>::format(),
                        kCmyk = Interleaved<0, 1, 2, 3>::format(), kPlanes3 = Planar<3>::format(),
                        kPlanes4 = Planar<4>::format(), kLuma = Planar<1, false>::format(),
                        kBgr555 = Packed<5, false>::format(), kBgr565 = Packed<6, false>::format(),
                        kRgb555 = Packed<5, true>::format(), kRgb565 = Packed<6, true>::format(),
                        kYcc422 = {1, [](int width) { return 4 * ((width + 1) / 2); }, false, &loadOf422, &storeOf422};

}  // namespace zorj::test
