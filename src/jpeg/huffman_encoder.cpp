#include <algorithm>

#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/bit_writer.h"
#include "jpeg/huffman_encode_kernels.h"
#include "jpeg/zigzag.h"

namespace zorj {
namespace {

// A code, then the extra bits of its value.
template <class Writer>
StatusCode putValue(Writer& writer, TableEntry entry, int32_t value, uint32_t category) {
  if (const StatusCode status = writer.putCode(entry)) return status;
  return category == 0 ? StatusOk : writer.put(extraBits(value), category);
}

// The magnitude of -32768 has 16 bits: after 15 zeros its symbol is one too large to have a code.
TableEntry acEntry(const HuffmanEncodeSpec& spec, uint32_t run, uint32_t category) {
  const uint32_t symbol = (run << 4) + category;
  return symbol < 256 ? spec.codes[symbol] : TableEntry{};
}

template <class Writer>
StatusCode encodeBlock(Writer& writer, const int16_t* block, int32_t difference, const HuffmanEncodeSpec& dcSpec,
                       const HuffmanEncodeSpec& acSpec) {
  const uint32_t dcCategory = magnitudeCategory(difference);
  if (const StatusCode status = putValue(writer, dcSpec.codes[dcCategory], difference, dcCategory)) return status;

  uint32_t run = 0;
  for (size_t k = 1; k < kBlockSize; ++k) {
    const int16_t value = loadUnaligned(block + kNaturalOrder[k]);
    if (value == 0) {
      ++run;
      continue;
    }
    for (; run > 15; run -= 16) {
      if (const StatusCode status = writer.putCode(acSpec.codes[kZeroRun16])) return status;
    }
    const uint32_t category = magnitudeCategory(value);
    if (const StatusCode status = putValue(writer, acEntry(acSpec, run, category), value, category)) return status;
    run = 0;
  }
  return run == 0 ? StatusOk : writer.putCode(acSpec.codes[kEndOfBlock]);
}

// Category 16 has no extra bits in the lossless process (T.81 H.1.2.2).
StatusCode encodeDifference(BitWriter& writer, int32_t difference, const HuffmanEncodeSpec& spec) {
  const uint32_t category = magnitudeCategory(difference);
  return putValue(writer, spec.codes[category], difference, category % 16);
}

StatusCode encodeRow(BitWriter& writer, const int16_t* const rows[], int32_t samples, int32_t components,
                     const HuffmanEncodeSpec* const specs[], const Destination& destination,
                     HuffmanEncodeState& state) {
  const int64_t count = int64_t{samples} * components;
  int64_t i = huffmanEncodeKernels().differences(rows, count, components, specs, destination, state);
  for (; i < count; ++i) {
    const auto c = static_cast<size_t>(i % components);
    const int32_t difference = loadUnaligned(rows[c] + i / components);
    if (const StatusCode status = encodeDifference(writer, difference, *specs[c])) return status;
  }
  return StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriEncodeHuffmanStateGetBufSize_JPEG_8u(int32_t* pSize) {
  return reportSize<HuffmanEncodeState>(pSize);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanStateInit_JPEG_8u(HuffmanEncodeState* pState) { return initialiseState(pState); }

StatusCode ZORJ_CALL zoriEncodeHuffmanStateInitAlloc_JPEG_8u(HuffmanEncodeState** ppState) {
  return allocateState(ppState);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanStateFree_JPEG_8u(HuffmanEncodeState* pState) { return freeObject(pState); }

StatusCode ZORJ_CALL zoriEncodeHuffman8x8_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                        int32_t* pDstPosition, int16_t* pLastDC,
                                                        const HuffmanEncodeSpec* pDcSpec,
                                                        const HuffmanEncodeSpec* pAcSpec, HuffmanEncodeState* pState,
                                                        int32_t flush) {
  if (anyNull(pDst)) return StatusNullPointer;
  if (dstLength < 1) return StatusBadSize;
  if (anyNull(pDstPosition, pState)) return StatusNullPointer;
  const Destination destination = {pDst, dstLength, *pDstPosition};
  BitWriter writer(destination, *pState);
  if (flush) return writer.flush();
  if (anyNull(pSrc, pLastDC, pDcSpec, pAcSpec)) return StatusNullPointer;
  const int32_t difference = advanceDc(pSrc, 0, *pLastDC);
  if (huffmanEncodeKernels().block(pSrc, difference, *pDcSpec, *pAcSpec, destination, *pState)) return StatusOk;
  return encodeBlock(writer, pSrc, difference, *pDcSpec, *pAcSpec);
}

StatusCode ZORJ_CALL zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                               int32_t* pDstBitPosition, int16_t* pLastDC,
                                                               const HuffmanEncodeSpec* pDcSpec,
                                                               const HuffmanEncodeSpec* pAcSpec) {
  if (anyNull(pSrc, pDst, pDstBitPosition, pLastDC, pDcSpec, pAcSpec)) return StatusNullPointer;
  const int32_t difference = advanceDc(pSrc, 0, *pLastDC);
  if (huffmanEncodeKernels().directBlock(pSrc, difference, *pDcSpec, *pAcSpec, pDst, *pDstBitPosition)) return StatusOk;
  DirectBitWriter writer(pDst, *pDstBitPosition);
  encodeBlock(writer, pSrc, difference, *pDcSpec, *pAcSpec);
  *pDstBitPosition = writer.finish();
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeHuffmanOne_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                        int32_t* pDstPosition, const HuffmanEncodeSpec* pSpec,
                                                        HuffmanEncodeState* pState, int32_t flush) {
  if (anyNull(pDst)) return StatusNullPointer;
  if (dstLength < 1) return StatusBadSize;
  if (anyNull(pDstPosition, pState)) return StatusNullPointer;
  const Destination destination = {pDst, dstLength, *pDstPosition};
  BitWriter writer(destination, *pState);
  if (flush) return writer.flush();
  if (anyNull(pSrc, pSpec)) return StatusNullPointer;
  return encodeDifference(writer, loadUnaligned(pSrc), *pSpec);
}

StatusCode ZORJ_CALL zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(const int16_t* const pSrc[], int32_t samples,
                                                          int32_t components, uint8_t* pDst, int32_t dstLength,
                                                          int32_t* pDstPosition,
                                                          const HuffmanEncodeSpec* const pSpecs[],
                                                          HuffmanEncodeState* pState, int32_t flush) {
  if (anyNull(pDst)) return StatusNullPointer;
  if (dstLength < 1) return StatusBadSize;
  if (anyNull(pDstPosition, pState)) return StatusNullPointer;
  const Destination destination = {pDst, dstLength, *pDstPosition};
  BitWriter writer(destination, *pState);
  if (flush) return writer.flush();
  if (anyNull(pSrc)) return StatusNullPointer;
  if (samples < 1 || components < 1) return StatusBadSize;
  if (anyNull(pSpecs)) return StatusNullPointer;
  const int32_t used = std::min(components, kMaxComponents);
  for (int32_t c = 0; c < used; ++c) {
    if (anyNull(pSrc[c], pSpecs[c])) return StatusNullPointer;
  }
  return encodeRow(writer, pSrc, samples, used, pSpecs, destination, *pState);
}
