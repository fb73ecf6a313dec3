// What a decoder may be asked for.
#pragma once

#include <cstdint>

namespace examples::jpeg {

// How chroma samples that several pixels share are spread: interpolated between neighbours, or repeated.
enum class Upsampling { triangle, box };

struct DecodeOptions {
  Upsampling upsampling = Upsampling::triangle;
  int32_t scale = 1;    // the image is decoded at a 1st, 2nd, 4th or 8th of its width and height
  int32_t threads = 1;  // the result does not depend on their number
};

}  // namespace examples::jpeg
