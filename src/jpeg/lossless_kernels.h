// Rows of lossless prediction.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj {

struct LosslessKernels {
  // Row functions of the predictors 1 to 7, in this order. The first output is input[0] minus (differences) or plus
  // (samples) `first`; input i is a sample or a difference, `above` is the row above.
  using Row = void (*)(const int16_t* input, const int16_t* above, int16_t first, int16_t* output, size_t width);
  Row differences[7];  // d[i] = x[i] - p(x[i - 1], above[i], above[i - 1])
  Row samples[7];      // x[i] = d[i] + p(x[i - 1], above[i], above[i - 1])
};

const LosslessKernels& losslessKernels();

}  // namespace zorj
