// The model of lossless prediction (T.81 Annex H), sample by sample.
#pragma once

#include <cstdint>

namespace zorj::reference {

inline int floorHalf(int sum) { return (sum - (sum % 2 != 0 && sum < 0 ? 1 : 0)) / 2; }

// The prediction from the samples to the left (a), above (b) and above left (c), before its reduction modulo 65536.
inline int prediction(int predictor, int a, int b, int c) {
  switch (predictor) {
    case 1:
      return a;
    case 2:
      return b;
    case 3:
      return c;
    case 4:
      return a + b - c;
    case 5:
      return a + floorHalf(b - c);
    case 6:
      return b + floorHalf(a - c);
    default:
      return floorHalf(a + b);
  }
}

inline int firstPrediction(int precision, int pointTransform) {
  const int shift = (precision - pointTransform - 1) & 31;
  return shift < 16 ? 1 << shift : 0;
}

}  // namespace zorj::reference
