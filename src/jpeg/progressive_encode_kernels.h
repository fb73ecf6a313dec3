// The AC encoders of the progressive process, and the statistics of AC coefficients.
#pragma once

#include "jpeg/bit_writer.h"
#include "jpeg/spectral_band.h"

namespace zorj {

struct ProgressiveEncodeKernels {
  // The first scan of a band (T.81 G.1.2.2) and its refinements (G.1.2.3).
  StatusCode (*acFirst)(const int16_t* block, const SpectralBand& band, const HuffmanEncodeSpec& spec,
                        const Destination& dst, HuffmanEncodeState& state);
  StatusCode (*acRefine)(const int16_t* block, const SpectralBand& band, const HuffmanEncodeSpec& spec,
                         const Destination& dst, HuffmanEncodeState& state);
  // Ends a scan: the run that is pending, then the last byte.
  StatusCode (*flush)(const HuffmanEncodeSpec& spec, const Destination& dst, HuffmanEncodeState& state);
  // Count the symbols that these write.
  StatusCode (*countAcFirst)(const int16_t* block, const SpectralBand& band, uint32_t* counters,
                             HuffmanEncodeState& state);
  StatusCode (*countAcRefine)(const int16_t* block, const SpectralBand& band, uint32_t* counters,
                              HuffmanEncodeState& state);
  StatusCode (*countRun)(uint32_t* counters, HuffmanEncodeState& state);
  // Counts the symbols of a block of the sequential process.
  StatusCode (*countAc)(const int16_t* block, uint32_t* counters);
};

const ProgressiveEncodeKernels& progressiveEncodeKernels();

}  // namespace zorj
