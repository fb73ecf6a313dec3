#include "jpeg2k/rate_allocation.h"

#include <algorithm>
#include <cmath>

namespace examples::jpeg2k {
namespace {

double slopeBetween(const HullPoint& from, const PassPoint& to) {
  return (to.gain - from.gain) / (to.bytes - from.bytes);
}

// The end of [low, high] that `fits`, which is true of slopes on one side only, once both ends are as good as equal.
// Slopes are compared by their logarithms: they span many orders of magnitude.
template <class Fits>
double searchSlope(std::span<const Hull> hulls, bool wantLeast, const Fits& fits) {
  double low = 0, high = 0;
  for (const Hull hull : hulls) {
    if (hull.empty()) continue;
    high = std::max(high, hull.front().slope);
    low = low == 0 ? hull.back().slope : std::min(low, hull.back().slope);
  }
  if (high == 0) return 0;
  low = std::log(low) - 1e-6;
  high = std::log(high) + 1e-6;
  for (int i = 0; i < 60 && high - low > 1e-9; ++i) {
    const double middle = (low + high) / 2;
    const bool up = fits(std::exp(middle)) != wantLeast;
    (up ? low : high) = middle;
  }
  return std::exp(wantLeast ? high : low);
}

}  // namespace

void convexHull(std::span<const PassPoint> passes, std::vector<HullPoint>& hull) {
  hull.assign(1, HullPoint{});
  for (const PassPoint& pass : passes) {
    if (pass.gain <= hull.back().gain) continue;
    // Points that a straight line from before them to this one passes above are not on the hull.
    while (hull.size() > 1 && (pass.bytes <= hull.back().bytes || slopeBetween(hull.back(), pass) >= hull.back().slope))
      hull.pop_back();
    if (pass.bytes == hull.back().bytes) continue;
    hull.push_back({pass.passes, pass.bytes, pass.gain, slopeBetween(hull.back(), pass)});
  }
  hull.erase(hull.begin());
}

size_t pointsAbove(Hull hull, double slope) {
  size_t count = hull.size();
  while (count > 0 && hull[count - 1].slope < slope) --count;
  return count;
}

Yield yieldAt(std::span<const Hull> hulls, double slope) {
  Yield yield;
  for (const Hull hull : hulls) {
    const size_t count = pointsAbove(hull, slope);
    if (count == 0) continue;
    yield.bytes += hull[count - 1].bytes;
    yield.gain += hull[count - 1].gain;
  }
  return yield;
}

double slopeForBytes(std::span<const Hull> hulls, int64_t bytes) {
  if (yieldAt(hulls, 0).bytes <= bytes) return 0;
  return searchSlope(hulls, true, [&](double slope) { return yieldAt(hulls, slope).bytes <= bytes; });
}

double slopeForGain(std::span<const Hull> hulls, double gain) {
  if (yieldAt(hulls, 0).gain < gain) return 0;
  return searchSlope(hulls, false, [&](double slope) { return yieldAt(hulls, slope).gain >= gain; });
}

}  // namespace examples::jpeg2k
