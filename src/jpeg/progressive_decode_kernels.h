// The AC decoders of the progressive process.
#pragma once

#include "jpeg/bit_reader.h"
#include "jpeg/spectral_band.h"

namespace zorj {

struct ProgressiveDecodeKernels {
  // The first scan of a band (T.81 G.2.2, Figure G.3) outside end-of-band runs, and its refinements (G.2.3, Figure
  // G.7).
  StatusCode (*acFirst)(const uint8_t* bytes, int32_t length, int32_t& position, int32_t& marker,
                        HuffmanDecodeState& state, int16_t* block, const SpectralBand& band,
                        const HuffmanDecodeSpec& spec);
  StatusCode (*acRefine)(const uint8_t* bytes, int32_t length, int32_t& position, int32_t& marker,
                         HuffmanDecodeState& state, int16_t* block, const SpectralBand& band,
                         const HuffmanDecodeSpec& spec);
};

const ProgressiveDecodeKernels& progressiveDecodeKernels();

}  // namespace zorj
