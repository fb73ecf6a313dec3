// Rows of BC7 blocks to RGBA pixels.
#pragma once

#include "texture/block_image.h"

namespace zorj {

// The formulas, with the fields that bc7_tables.h describes:
//   endpoint = its n bits, lowest bit included, at the top of 8 bits, and these moved down by n filling the rest
//   channel  = (first endpoint (64 - weight) + second endpoint weight + 32) >> 6
// and then alpha exchanged with red, green or blue for a rotation of 1, 2 or 3.
const BlockDecoder& bc7Decoder();

}  // namespace zorj
