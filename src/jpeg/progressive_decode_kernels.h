// The AC decoders of the progressive process.
#pragma once

#include "jpeg/bit_reader.h"
#include "jpeg/spectral_band.h"

namespace zorj {

struct ProgressiveDecodeKernels {
  // The first scan of a band (T.81 G.2.2, Figure G.3) and its refinements (G.2.3, Figure G.7), for a block that is not
  // within an end-of-band run.
  StatusCode (*acFirst)(SourceBytes& source, HuffmanDecodeState& state, int16_t* block, SpectralBand band,
                        const HuffmanDecodeSpec& spec);
  // For a block within a run too.
  StatusCode (*acRefine)(SourceBytes& source, HuffmanDecodeState& state, int16_t* block, SpectralBand band,
                         const HuffmanDecodeSpec& spec);
};

const ProgressiveDecodeKernels& progressiveDecodeKernels();

}  // namespace zorj
