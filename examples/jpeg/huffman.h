// The library's Huffman objects, owned.
#pragma once

#include <zorj/jpeg_huffman.h>

#include <memory>

#include "jpeg/tables.h"

namespace examples::jpeg {

template <auto free>
struct FreeBy {
  void operator()(auto* object) const { free(object); }
};

using EncodeSpec = std::unique_ptr<HuffmanEncodeSpec, FreeBy<zoriEncodeHuffmanSpecFree_JPEG_8u>>;
using DecodeSpec = std::unique_ptr<HuffmanDecodeSpec, FreeBy<zoriDecodeHuffmanSpecFree_JPEG_8u>>;
using EncodeState = std::unique_ptr<HuffmanEncodeState, FreeBy<zoriEncodeHuffmanStateFree_JPEG_8u>>;
using DecodeState = std::unique_ptr<HuffmanDecodeState, FreeBy<zoriDecodeHuffmanStateFree_JPEG_8u>>;

// They throw Error for lists that make no code.
EncodeSpec makeEncodeSpec(const HuffmanLists& lists);
DecodeSpec makeDecodeSpec(const HuffmanLists& lists);

// The tables that one component of a scan is coded with.
struct DecodeTables {
  const HuffmanDecodeSpec* dc;
  const HuffmanDecodeSpec* ac;
};

EncodeState makeEncodeState();
DecodeState makeDecodeState();

}  // namespace examples::jpeg
