// Rows of chroma down- and up-sampling.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj {

// Sample i of a source row means its last sample where i lies past the end, and its first where i is -1.
struct SamplingKernels {
  // Boxes: dst[i] = (the sum of samples 2i and 2i + 1 of every source row + bias) >> (1 for one row, 2 for two).
  // Bias 1.
  void (*boxH2V1)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* src);
  // Bias 3.
  void (*boxH2V2)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* upper, const uint8_t* lower);
  // Bias 0 for even i, 1 for odd i.
  void (*alternatingBoxH2V1)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* src);
  // Bias 1 for even i, 2 for odd i.
  void (*alternatingBoxH2V2)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* upper,
                             const uint8_t* lower);

  // Triangles: dst[2i] = (3 s[i] + s[i - 1] + 1) >> 2, dst[2i + 1] = (3 s[i] + s[i + 1] + 2) >> 2.
  void (*triangleH2V1)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* src);
  // The same, reading the neighbours of the first and the last sample from the memory around the row.
  void (*borderedTriangleH2V1)(uint8_t* dst, size_t dstWidth, const uint8_t* src);
  // dst[2i] = (3 c[i] + c[i - 1] + 8) >> 4, dst[2i + 1] = (3 c[i] + c[i + 1] + 7) >> 4 with c = 3 near + far.
  void (*triangleH2V2)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* near, const uint8_t* far);
};

const SamplingKernels& samplingKernels();

}  // namespace zorj
