// The lossless process: samples predicted from their neighbours (T.81 Annex H).
#pragma once

#include "jpeg/codec.h"
#include "jpeg/deep_pixels.h"
#include "jpeg/marker_reader.h"

namespace examples::jpeg {

// The reader is at the first scan. Planes hold the frame's components in order.
DecodeReport decodeLossless(MarkerReader& reader, std::vector<SamplePlane>& planes);

}  // namespace examples::jpeg
