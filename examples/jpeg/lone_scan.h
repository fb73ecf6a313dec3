// Files whose one scan holds all components are decoded to pixels directly: only the coefficients at hand are kept.
#pragma once

#include "common/image.h"
#include "jpeg/decode_options.h"
#include "jpeg/marker_reader.h"

namespace examples::jpeg {

struct LoneScanEnd {
  int64_t lostMcus;
  size_t position;  // of the first byte after the scan's data
};

// The reader is at the scan, which the image has the shape for.
LoneScanEnd decodeLoneScan(const MarkerReader& reader, const DecodeOptions& options, Image& image);

}  // namespace examples::jpeg
