// Between samples of any precision and pixels, by plain loops: 12-bit and lossless images are rare.
#pragma once

#include <cstdint>
#include <vector>

#include "common/image.h"
#include "jpeg/coefficients.h"
#include "jpeg/decode_options.h"

namespace examples::jpeg {

// A component's samples, rows without padding.
struct SamplePlane {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint16_t> samples;

  uint16_t at(int32_t x, int32_t y) const { return samples[size_t(y) * size_t(width) + size_t(x)]; }
};

// The samples of 8-bit or 12-bit coefficients.
std::vector<SamplePlane> inverseTransformDeep(CoefficientImage& coefficients);

// Up-samples, converts and scales as the decoder of 8-bit images does; a scaled image is the average of the whole one.
void toPixels(const Frame& frame, const std::vector<SamplePlane>& planes, const DecodeOptions& options,
              DeepImage& image);

// The quantised coefficients of a 12-bit image, by the plain formulas too. The frame and the tables are there already.
void transformDeep(const DeepImage& image, CoefficientImage& coefficients);

}  // namespace examples::jpeg
