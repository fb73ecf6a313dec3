// Scripts of progressive scans.
#pragma once

#include <vector>

#include "jpeg/scan.h"

namespace examples::jpeg {

// A picture early, then finer ones: DC values but for a bit, low and then high frequencies but for two bits, and the
// bits that are left. The colours of YCbCr come before the details of the luminance, as the Independent JPEG Group's
// usual script has them.
std::vector<Scan> usualScript(const Frame& frame);

// Throws Error unless the scans can follow one another and code all of an image of so many components.
void checkScript(const std::vector<Scan>& scans, size_t components);

}  // namespace examples::jpeg
