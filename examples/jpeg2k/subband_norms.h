// How much an error in a subband's coefficient counts in the picture.
#pragma once

#include <cstdint>

namespace examples::jpeg2k {

enum class WaveletKind { reversible53, irreversible97 };

// The L2 norm of what one coefficient of value 1 becomes in the picture. `kind` is zorj's SubbandKind; the level counts
// from 1 for the largest subbands, 0 for a picture without transform.
double subbandNorm(WaveletKind wavelet, int32_t level, int32_t kind);

// The same for a sample of a component that the inverse colour transform makes part of three; squared.
double colourWeight(WaveletKind wavelet, int32_t component);

}  // namespace examples::jpeg2k
