// The lossless process: samples predicted from their neighbours (T.81 Annex H).
#pragma once

#include <vector>

#include "jpeg/codec.h"

namespace examples::jpeg {

template <class Sample>
void encodeLossless(const BasicImage<Sample>& image, const Frame& frame, const EncodeOptions& options,
                    std::vector<uint8_t>& jpeg);

}  // namespace examples::jpeg
