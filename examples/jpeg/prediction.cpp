#include "jpeg/prediction.h"

#include <zorj/jpeg_lossless.h>

#include <cstddef>

namespace examples::jpeg {
namespace {

// The library halves samples as signed values, so with the predictors that do, samples of 16 bits are left to plain
// code.
bool needsUnsignedHalves(const Prediction& p) { return p.predictor >= 5 && p.precision - p.pointTransform == 16; }

int32_t unsignedPrediction(int32_t predictor, int16_t leftSample, int16_t aboveSample, int16_t aboveLeftSample) {
  const int32_t left = static_cast<uint16_t>(leftSample), above = static_cast<uint16_t>(aboveSample);
  const int32_t aboveLeft = static_cast<uint16_t>(aboveLeftSample);
  if (predictor == 5) return left + ((above - aboveLeft) >> 1);
  if (predictor == 6) return above + ((left - aboveLeft) >> 1);
  return (left + above) >> 1;
}

int32_t widthOf(std::span<const int16_t> row) { return static_cast<int32_t>(row.size()); }

}  // namespace

void predictFirstRow(const Prediction& p, std::span<const int16_t> samples, std::span<int16_t> differences) {
  zoriDiffPredFirstRow_JPEG_16s_C1(samples.data(), differences.data(), widthOf(samples), p.precision, p.pointTransform);
}

void predictRow(const Prediction& p, std::span<const int16_t> samples, std::span<const int16_t> above,
                std::span<int16_t> differences) {
  if (!needsUnsignedHalves(p)) {
    zoriDiffPredRow_JPEG_16s_C1(samples.data(), above.data(), differences.data(), widthOf(samples), p.predictor);
    return;
  }
  differences[0] = static_cast<int16_t>(samples[0] - above[0]);
  for (size_t x = 1; x < samples.size(); ++x) {
    const int32_t predicted = unsignedPrediction(p.predictor, samples[x - 1], above[x], above[x - 1]);
    differences[x] = static_cast<int16_t>(samples[x] - predicted);
  }
}

void reconstructFirstRow(const Prediction& p, std::span<const int16_t> differences, std::span<int16_t> samples) {
  zoriReconstructPredFirstRow_JPEG_16s_C1(differences.data(), samples.data(), widthOf(samples), p.precision,
                                          p.pointTransform);
}

void reconstructRow(const Prediction& p, std::span<const int16_t> differences, std::span<const int16_t> above,
                    std::span<int16_t> samples) {
  if (!needsUnsignedHalves(p)) {
    zoriReconstructPredRow_JPEG_16s_C1(differences.data(), above.data(), samples.data(), widthOf(samples), p.predictor);
    return;
  }
  samples[0] = static_cast<int16_t>(differences[0] + above[0]);
  for (size_t x = 1; x < samples.size(); ++x) {
    const int32_t predicted = unsignedPrediction(p.predictor, samples[x - 1], above[x], above[x - 1]);
    samples[x] = static_cast<int16_t>(differences[x] + predicted);
  }
}

}  // namespace examples::jpeg
