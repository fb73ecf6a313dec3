// The model of the photo core transform, block by block, in numbers that wrap.
#pragma once

#include <array>
#include <cstdint>

namespace zorj::reference {

// A 32-bit integer whose arithmetic wraps.
struct Wrapping {
  uint32_t bits = 0;

  static Wrapping of(int64_t value) { return {static_cast<uint32_t>(value)}; }
  int64_t value() const { return bits >= 0x80000000u ? int64_t{bits} - (int64_t{1} << 32) : int64_t{bits}; }
};
inline Wrapping operator+(Wrapping a, Wrapping b) { return {a.bits + b.bits}; }
inline Wrapping operator-(Wrapping a, Wrapping b) { return {a.bits - b.bits}; }
inline Wrapping operator-(Wrapping a) { return {0u - a.bits}; }
inline Wrapping operator*(uint32_t factor, Wrapping a) { return {factor * a.bits}; }
inline Wrapping operator+(Wrapping a, int b) { return {a.bits + static_cast<uint32_t>(b)}; }
// Division by 2^count, rounded down.
inline Wrapping operator>>(Wrapping a, int count) {
  const int64_t divisor = int64_t{1} << count, remainder = (a.value() % divisor + divisor) % divisor;
  return Wrapping::of((a.value() - remainder) / divisor);
}

using PhotoBlock = std::array<Wrapping, 16>;

inline void forwardPair(Wrapping& w, Wrapping& x, Wrapping& y, Wrapping& z, int rounding) {
  const Wrapping w1 = w + z, x1 = x - y, t = ((w1 - x1 + rounding) >> 1) - z;
  x = x1 + t;
  z = z - y + t;
  w = w1 - z;
  y = t;
}
inline void inversePair(Wrapping& w, Wrapping& x, Wrapping& y, Wrapping& z, int rounding) {
  const Wrapping t = y, w1 = w + z, x1 = x - t;
  const Wrapping oldZ = ((w1 - x1 + rounding) >> 1) - t;
  y = oldZ + t - z;
  z = oldZ;
  x = x1 + y;
  w = w1 - z;
}

inline void forwardRotation(Wrapping& c, Wrapping& d, Wrapping& g, Wrapping& h) {
  d = d - g;
  c = c + h;
  g = g + ((d + 1) >> 1);
  h = ((c + 1) >> 1) - h;
  d = d - ((3 * c + 4) >> 3);
  c = c + ((3 * d + 4) >> 3);
  h = h - ((3 * g + 4) >> 3);
  g = g + ((3 * h + 4) >> 3);
  h = h + (d >> 1);
  g = g - ((c + 1) >> 1);
  d = d - h;
  c = c + g;
}
inline void inverseRotation(Wrapping& c, Wrapping& d, Wrapping& g, Wrapping& h) {
  c = c - g;
  d = d + h;
  g = g + ((c + 1) >> 1);
  h = h - (d >> 1);
  g = g - ((3 * h + 4) >> 3);
  h = h + ((3 * g + 4) >> 3);
  c = c - ((3 * d + 4) >> 3);
  d = d + ((3 * c + 4) >> 3);
  h = ((c + 1) >> 1) - h;
  g = g - ((d + 1) >> 1);
  c = c - h;
  d = d + g;
}

inline void forwardCorner(Wrapping& k, Wrapping& l, Wrapping& o, Wrapping& p) {
  l = -l;
  o = -o;
  p = k + p;
  o = o - l;
  const Wrapping t1 = p >> 1, t2 = o >> 1;
  k = k - t1;
  k = k + ((3 * (l + t2) + 4) >> 3);
  const Wrapping u = (l + t2) - ((3 * k + 3) >> 2);
  l = u - t2;
  k = k + ((3 * u + 3) >> 3) + t1;
  o = o + l;
  p = p - k;
}
inline void inverseCorner(Wrapping& k, Wrapping& l, Wrapping& o, Wrapping& p) {
  p = p + k;
  o = o - l;
  const Wrapping t1 = p >> 1, t2 = o >> 1, u = l + t2;
  k = k - t1 - ((3 * u + 3) >> 3);
  const Wrapping sum = u + ((3 * k + 3) >> 2);
  k = k - ((3 * sum + 4) >> 3) + t1;
  l = sum - t2;
  p = p - k;
  o = -(o + l);
  l = -l;
}

inline void forwardPhotoCore(PhotoBlock& s) {
  auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p] = s;
  forwardPair(a, d, m, p, 0);
  forwardPair(b, c, n, o, 0);
  forwardPair(e, h, i, l, 0);
  forwardPair(f, g, j, k, 0);
  forwardPair(a, b, e, f, 1);
  forwardRotation(c, d, g, h);
  forwardRotation(i, m, j, n);
  forwardCorner(k, l, o, p);
}
inline void inversePhotoCore(PhotoBlock& s) {
  auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p] = s;
  inverseCorner(k, l, o, p);
  inverseRotation(i, m, j, n);
  inverseRotation(c, d, g, h);
  inversePair(a, b, e, f, 1);
  inversePair(f, g, j, k, 0);
  inversePair(e, h, i, l, 0);
  inversePair(b, c, n, o, 0);
  inversePair(a, d, m, p, 0);
}

}  // namespace zorj::reference
