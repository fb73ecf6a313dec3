// The inverse wavelets, strip by strip: 5/3 on integers, 9/7 on floats (T.800 Annex F).
#pragma once

#include <cstdint>

#include "jpeg2k/wavelet_level.h"

namespace examples::jpeg2k {

// Rows [begin, end) of what a level was made of; they go to row(0) and following of the destination. Strips of a level
// are independent of each other.
template <class T>
void joinBands(const WaveletLevel<T>& level, int32_t begin, int32_t end, const Plane<T>& destination);

}  // namespace examples::jpeg2k
