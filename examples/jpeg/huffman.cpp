#include "jpeg/huffman.h"

#include <new>

#include "common/error.h"

namespace examples::jpeg {
namespace {

template <class Owner, class Create>
Owner make(Create create) {
  typename Owner::pointer object = nullptr;
  const StatusCode status = create(&object);
  Owner owner(object);  // a failed build hands its memory out too
  if (!owner) throw std::bad_alloc();
  if (status != StatusOk) throw Error("bad Huffman table");
  return owner;
}

}  // namespace

EncodeSpec makeEncodeSpec(const HuffmanLists& lists) {
  return make<EncodeSpec>([&](HuffmanEncodeSpec** spec) {
    return zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(lists.bits.data(), lists.values.data(), spec);
  });
}

DecodeSpec makeDecodeSpec(const HuffmanLists& lists) {
  return make<DecodeSpec>([&](HuffmanDecodeSpec** spec) {
    return zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(lists.bits.data(), lists.values.data(), spec);
  });
}

EncodeState makeEncodeState() { return make<EncodeState>(zoriEncodeHuffmanStateInitAlloc_JPEG_8u); }
DecodeState makeDecodeState() { return make<DecodeState>(zoriDecodeHuffmanStateInitAlloc_JPEG_8u); }

}  // namespace examples::jpeg
