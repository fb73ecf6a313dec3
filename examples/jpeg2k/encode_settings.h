// What the headers of a file are to say, from what an encoder is asked for.
#pragma once

#include "jpeg2k/encode_options.h"
#include "jpeg2k/geometry.h"
#include "jpeg2k/parameters.h"

namespace examples::jpeg2k {

struct EncodeSettings {
  ImageSize size;
  TileCoding coding;
};

// For an image of unsigned samples. Throws Error if an option or the image's size is outside what the format allows.
EncodeSettings makeSettings(int32_t width, int32_t height, int32_t channels, int32_t precision,
                            const EncodeOptions& options);

// The quantiser's step for a subband; 1 for reversible coding.
double quantizerStep(const EncodeSettings& settings, const Subband& band);
// The squared error in the picture that a squared step makes.
double stepWeight(const EncodeSettings& settings, int32_t component, int32_t resolution, const Subband& band);

}  // namespace examples::jpeg2k
