// How far to code each block: the convex hull of a block's rates and distortions, and the slope at which the hulls of
// all blocks together reach a size or a quality (T.800 J.14).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace examples::jpeg2k {

// What the passes of a block up to one of them cost and gain.
struct PassPoint {
  int32_t passes = 0;
  int32_t bytes = 0;
  double gain = 0;  // by how much they reduce the squared error of the picture
};

// A pass on the hull, and what it gains per byte since the pass on the hull before it.
struct HullPoint {
  int32_t passes = 0;
  int32_t bytes = 0;
  double gain = 0;
  double slope = 0;
};

// The points at which it can pay to stop, in the order of passes: their slopes decrease. All of their rates and gains
// are above zero. Points that are not on the hull are left out.
void convexHull(std::span<const PassPoint> passes, std::vector<HullPoint>& hull);

using Hull = std::span<const HullPoint>;

// How many points of a hull gain at least `slope` per byte.
size_t pointsAbove(Hull hull, double slope);

// What blocks cost and gain if each stops where a further byte would gain less than the slope.
struct Yield {
  int64_t bytes = 0;
  double gain = 0;
};
Yield yieldAt(std::span<const Hull> hulls, double slope);

// The least slope at which all blocks together have no more than `bytes`: 0 if they never have more.
double slopeForBytes(std::span<const Hull> hulls, int64_t bytes);
// The largest slope at which they gain no less than `gain`: 0 if they never gain as much.
double slopeForGain(std::span<const Hull> hulls, double gain);

}  // namespace examples::jpeg2k
