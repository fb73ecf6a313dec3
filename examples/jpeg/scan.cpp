#include "jpeg/scan.h"

#include <algorithm>

#include "common/error.h"

namespace examples::jpeg {

bool Progress::add(const Scan& scan) {
  const bool isDc = scan.first == 0;
  if (scan.first < 0 || scan.last < scan.first || scan.last > 63) throw Error("a scan's band is out of range");
  if (isDc && scan.last != 0) throw Error("a scan codes DC and AC coefficients");
  if (!isDc && scan.components.size() != 1) throw Error("a scan codes AC coefficients of several components");
  if (scan.lowBit < 0 || scan.lowBit > 13) throw Error("a scan's lowest bit is out of range");
  if (scan.highBit != 0 && scan.highBit != scan.lowBit + 1) throw Error("a scan refines by more than a bit");
  const int8_t expected = scan.highBit == 0 ? kUnknown : static_cast<int8_t>(scan.highBit);
  bool follows = true;
  for (const size_t component : scan.components) {
    int8_t* const lowBits = lowBits_.data() + 64 * component;
    if (!isDc && lowBits[0] == kUnknown) follows = false;
    for (int32_t k = scan.first; k <= scan.last; ++k) {
      if (lowBits[k] != expected) follows = false;
      lowBits[k] = static_cast<int8_t>(scan.lowBit);
    }
  }
  return follows;
}

bool Progress::complete() const {
  return std::all_of(lowBits_.begin(), lowBits_.end(), [](int8_t lowBit) { return lowBit == 0; });
}

}  // namespace examples::jpeg
