// What zorj calls the options of a code-block style.
#pragma once

#include <zorj/jpeg2k_codeblock.h>

#include <utility>

#include "jpeg2k/encode_options.h"

namespace examples::jpeg2k {

inline uint32_t libraryStyle(uint32_t style) {
  constexpr std::pair<uint32_t, uint32_t> kOptions[] = {
      {block_style::bypass, CbBypass},          {block_style::reset, CbResetContexts},
      {block_style::termall, CbTermAll},        {block_style::vcausal, CbVerticallyCausal},
      {block_style::pterm, CbCheckTermination}, {block_style::segsym, CbSegmentationSymbol}};
  uint32_t flags = 0;
  for (const auto& [option, flag] : kOptions) flags |= (style & option) != 0 ? flag : 0u;
  return flags;
}

}  // namespace examples::jpeg2k
