// Rows of the lossless process: differences from predictions, and back.
#pragma once

#include <cstdint>
#include <span>

namespace examples::jpeg {

struct Prediction {
  int32_t predictor;  // 1 to 7
  int32_t precision;  // of the samples before the point transform
  int32_t pointTransform;
};

// The first row of a scan or restart segment, and the others. Samples are those after the point transform.
void predictFirstRow(const Prediction& prediction, std::span<const int16_t> samples, std::span<int16_t> differences);
void predictRow(const Prediction& prediction, std::span<const int16_t> samples, std::span<const int16_t> above,
                std::span<int16_t> differences);
void reconstructFirstRow(const Prediction& prediction, std::span<const int16_t> differences,
                         std::span<int16_t> samples);
void reconstructRow(const Prediction& prediction, std::span<const int16_t> differences, std::span<const int16_t> above,
                    std::span<int16_t> samples);

}  // namespace examples::jpeg
