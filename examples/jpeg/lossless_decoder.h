// The lossless process: samples predicted from their neighbours (T.81 Annex H).
#pragma once

#include <functional>
#include <span>

#include "jpeg/codec.h"
#include "jpeg/marker_reader.h"

namespace examples::jpeg {

// Takes row y of a component: its samples, which are to be moved up by the bits that the point transform dropped, and
// in a damaged file may have bits beyond the precision.
using TakeRow = std::function<void(size_t component, int32_t y, std::span<const int16_t> samples, int32_t dropped)>;

// The reader is at the first scan. Rows that are lost are not given.
DecodeReport decodeLossless(MarkerReader& reader, const TakeRow& takeRow);

}  // namespace examples::jpeg
