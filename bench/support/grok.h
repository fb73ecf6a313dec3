// Grok, a second peer of zorj2k, in memory.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/image.h"

namespace zorj::bench::grok {

// To be called first; only the first call counts.
void useThreads(uint32_t threads);

// Blocks of 64 x 64, one layer; the 9/7 wavelet where there is a ratio to reach, else without loss.
std::vector<uint8_t> encode(const examples::Image& image, int32_t levels, double ratio);
void decode(std::span<const uint8_t> file, examples::Image& image);

}  // namespace zorj::bench::grok
