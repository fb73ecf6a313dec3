// Rows of RGBA or YCoCg pixels to DXT blocks.
#pragma once

#include "texture/block_image.h"

namespace zorj {

// The block formats and the choice of colours and indices are those of the comments in zorj/texture.h.
struct DxtEncodeKernels {
  EncodeBlocks dxt1;
  EncodeBlocks dxt3;
  EncodeBlocks dxt5;
  EncodeBlocks dxt5YCoCg;
};

const DxtEncodeKernels& dxtEncodeKernels();

}  // namespace zorj
