// Rows of DXT blocks to RGBA pixels.
#pragma once

#include "texture/block_image.h"

namespace zorj {

// The block formats and the formulas are those of the comments in zorj/texture.h.
struct DxtDecodeKernels {
  BlockDecoder dxt1;
  BlockDecoder dxt3;
  BlockDecoder dxt5;
};

const DxtDecodeKernels& dxtDecodeKernels();

}  // namespace zorj
