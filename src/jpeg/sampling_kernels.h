// Rows of chroma down- and up-sampling.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zorj {

// Sample i of a source row means its last sample where i lies past the end, and its first where i is -1.
struct SamplingKernels {
  // Boxes: dst[i] = (the sum of samples 2i and 2i + 1 of every source row + bias) >> (1 for one row, 2 for two). The
  // rows that the next call will need lie `nextRows` bytes further on; 0 where that is not known.
  using Box = void (*)(uint8_t* dst, size_t dstWidth, size_t srcWidth, ptrdiff_t nextRows, const uint8_t* src);
  using Box2 = void (*)(uint8_t* dst, size_t dstWidth, size_t srcWidth, ptrdiff_t nextRows, const uint8_t* upper,
                        const uint8_t* lower);
  Box boxH2V1;              // bias 1
  Box2 boxH2V2;             // bias 3
  Box alternatingBoxH2V1;   // bias 0 for even i, 1 for odd i
  Box2 alternatingBoxH2V2;  // bias 1 for even i, 2 for odd i

  // Triangles: dst[2i] = (3 s[i] + s[i - 1] + 1) >> 2, dst[2i + 1] = (3 s[i] + s[i + 1] + 2) >> 2.
  void (*triangleH2V1)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* src);
  // The same, reading the neighbours of the first and the last sample from the memory around the row.
  void (*borderedTriangleH2V1)(uint8_t* dst, size_t dstWidth, const uint8_t* src);
  // dst[2i] = (3 c[i] + c[i - 1] + 8) >> 4, dst[2i + 1] = (3 c[i] + c[i + 1] + 7) >> 4 with c = 3 near + far.
  void (*triangleH2V2)(uint8_t* dst, size_t dstWidth, size_t srcWidth, const uint8_t* near, const uint8_t* far);
};

const SamplingKernels& samplingKernels();

}  // namespace zorj
