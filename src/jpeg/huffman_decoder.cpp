#include <algorithm>
#include <utility>

#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/bit_reader.h"
#include "jpeg/huffman_decode_kernels.h"
#include "jpeg/zigzag.h"

namespace zorj {
namespace {

// Where the data of a block ended.
enum class Shortage { kNone, kBeforeSymbol, kExtraBits };

struct BlockResult {
  StatusCode status;
  Shortage shortage = Shortage::kNone;
};

BlockResult symbolFailure(const BitReader& reader, StatusCode status) {
  return {status, reader.endedBeforeSymbol() ? Shortage::kBeforeSymbol : Shortage::kNone};
}

// Decodes a baseline block. `lastPosition` becomes the number of zig-zag positions reached, 0 when the DC value or the
// extra bits of a coefficient are missing; a run that leads outside the block leaves it alone.
BlockResult decodeBlock(BitReader& reader, int16_t* block, int16_t& lastDc, const HuffmanDecodeSpec& dcSpec,
                        const HuffmanDecodeSpec& acSpec, int32_t& lastPosition) {
  std::memset(block, 0, kBlockSize * sizeof *block);
  const int32_t positionBefore = std::exchange(lastPosition, 0);
  uint32_t symbol = 0;
  int32_t value = 0;
  if (const StatusCode status = reader.decodeSymbol(dcSpec, symbol)) return symbolFailure(reader, status);
  if (const uint32_t size = symbol & 15) {
    if (const StatusCode status = reader.decodeExtraBits(size, value)) return {status, Shortage::kExtraBits};
    lastDc = static_cast<int16_t>(lastDc + value);
  }
  storeUnaligned(block, lastDc);

  int32_t k = 1;
  while (k < kBlockSize) {
    if (const StatusCode status = reader.decodeSymbol(acSpec, symbol)) {
      lastPosition = k;
      return symbolFailure(reader, status);
    }
    const uint32_t run = symbol >> 4, size = symbol & 15;
    if (size == 0) {
      if (run != 15) break;  // end of block
      k += 16;
      continue;
    }
    if (const StatusCode status = reader.decodeExtraBits(size, value)) return {status, Shortage::kExtraBits};
    const uint8_t index = kNaturalOrder[static_cast<size_t>(k) + run];
    if (index == kOutsideBlock) {
      lastPosition = positionBefore;
      return {StatusBlockOverrun};
    }
    storeUnaligned(block + index, static_cast<int16_t>(value));
    k += static_cast<int32_t>(run) + 1;
  }
  lastPosition = k;
  return {StatusOk};
}

// The Direct decoder has no length to run out of: it stops without complaint where a marker ends the data before a
// symbol.
StatusCode directStatus(const BlockResult& result) {
  if (result.shortage == Shortage::kBeforeSymbol) return StatusOk;
  return result.shortage == Shortage::kExtraBits ? StatusBufferEnd : result.status;
}

// Decodes a difference of the lossless process; category 16 has no extra bits (T.81 H.2.2).
StatusCode decodeDifference(BitReader& reader, const HuffmanDecodeSpec& spec, int16_t* difference) {
  uint32_t size = 0;
  int32_t value = 0;
  if (const StatusCode status = reader.decodeSymbol(spec, size)) return status;
  if (size > 15) {
    value = -32768;
  } else if (size > 0) {
    if (const StatusCode status = reader.decodeExtraBits(size, value)) return status;
  }
  storeUnaligned(difference, static_cast<int16_t>(value));
  return StatusOk;
}

// How much of a source the fast path may decode. A last byte 0xFF ends the careful path, which reads ahead, before it
// has used all bits: it reads no further than 4 bytes.
int32_t fastLength(const SourceBytes& source) {
  const uint8_t* const end = source.bytes + source.length;
  if (source.length < 8 || end[-1] != 0xFF) return source.length;
  return end[-2] == 0xFF ? 0 : source.length - 8;
}

StatusCode decodeRow(SourceBytes& source, HuffmanDecodeState& state, int16_t* const rows[], int32_t samples,
                     int32_t components, const HuffmanDecodeSpec* const specs[]) {
  const int64_t count = int64_t{samples} * components;
  int64_t i = 0;
  const int32_t length = fastLength(source);
  if (canDecodeFast(length, source.position, source.marker)) {
    const Differences done = huffmanDecodeKernels().differences(source.bytes + source.position, source.bytes + length,
                                                                state, rows, count, components, specs);
    i = done.count;
    source.position = static_cast<int32_t>(done.next - source.bytes);
  }
  BitReader reader(source, state);
  StatusCode status = StatusOk;
  for (; i < count && status == StatusOk; ++i) {
    const auto c = static_cast<size_t>(i % components);
    status = decodeDifference(reader, *specs[c], rows[c] + i / components);
  }
  reader.finish(source.position, source.marker, state);
  return status;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriDecodeHuffmanStateGetBufSize_JPEG_8u(int32_t* pSize) {
  return reportSize<HuffmanDecodeState>(pSize);
}

StatusCode ZORJ_CALL zoriDecodeHuffmanStateInit_JPEG_8u(HuffmanDecodeState* pState) { return initialiseState(pState); }

StatusCode ZORJ_CALL zoriDecodeHuffmanStateInitAlloc_JPEG_8u(HuffmanDecodeState** ppState) {
  return allocateState(ppState);
}

StatusCode ZORJ_CALL zoriDecodeHuffmanStateFree_JPEG_8u(HuffmanDecodeState* pState) { return freeObject(pState); }

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength, int32_t* pSrcPosition,
                                                        int16_t* pDst, int16_t* pLastDC, int32_t* pMarker,
                                                        const HuffmanDecodeSpec* pDcSpec,
                                                        const HuffmanDecodeSpec* pAcSpec, HuffmanDecodeState* pState) {
  if (anyNull(pSrc)) return StatusNullPointer;
  if (srcLength < 0) return StatusBadArgument;
  if (anyNull(pSrcPosition, pDst, pLastDC, pMarker, pDcSpec, pAcSpec, pState)) return StatusNullPointer;
  if (canDecodeFast(srcLength, *pSrcPosition, *pMarker)) [[likely]] {
    const uint8_t* const next =
        huffmanDecodeKernels().block(pSrc + *pSrcPosition, pSrc + srcLength, *pState, pDst, *pDcSpec, *pAcSpec);
    if (next) [[likely]] {
      *pSrcPosition = static_cast<int32_t>(next - pSrc);
      *pLastDC = static_cast<int16_t>(*pLastDC + loadUnaligned(pDst));
      storeUnaligned(pDst, *pLastDC);
      return StatusOk;
    }
  }
  BitReader reader({pSrc, srcLength, *pSrcPosition, *pMarker}, *pState);
  const BlockResult result = decodeBlock(reader, pDst, *pLastDC, *pDcSpec, *pAcSpec, pState->lastPosition);
  reader.finish(*pSrcPosition, *pMarker, *pState);
  return result.status;
}

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t* pSrcBitPosition,
                                                               int16_t* pDst, int16_t* pLastDC, int32_t* pMarker,
                                                               uint32_t* pPrefetchedBits, int32_t* pPrefetchedCount,
                                                               const HuffmanDecodeSpec* pDcSpec,
                                                               const HuffmanDecodeSpec* pAcSpec) {
  if (anyNull(pSrc, pSrcBitPosition)) return StatusNullPointer;
  if (*pSrcBitPosition < 0) return StatusBadArgument;
  if (anyNull(pDst, pLastDC, pMarker, pPrefetchedBits, pPrefetchedCount)) return StatusNullPointer;
  if (*pPrefetchedCount < 0) return StatusBadArgument;
  if (anyNull(pDcSpec, pAcSpec)) return StatusNullPointer;
  HuffmanDecodeState state = {};
  state.bitBuffer = *pPrefetchedBits;
  state.bitCount = std::min(*pPrefetchedCount, 32);
  BitReader reader({pSrc, kNoLength, *pSrcBitPosition >> 3, *pMarker}, state);
  const BlockResult result = decodeBlock(reader, pDst, *pLastDC, *pDcSpec, *pAcSpec, state.lastPosition);
  int32_t position = 0;
  reader.finish(position, *pMarker, state);
  *pSrcBitPosition = static_cast<int32_t>(static_cast<uint32_t>(position) << 3) | (*pSrcBitPosition & 7);
  *pPrefetchedBits = state.bitBuffer;
  *pPrefetchedCount = state.bitCount;
  return directStatus(result);
}

StatusCode ZORJ_CALL zoriDecodeHuffmanOne_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength, int32_t* pSrcPosition,
                                                        int16_t* pDst, int32_t* pMarker, const HuffmanDecodeSpec* pSpec,
                                                        HuffmanDecodeState* pState) {
  if (anyNull(pSrc)) return StatusNullPointer;
  if (srcLength < 1) return StatusBadSize;
  if (anyNull(pSrcPosition, pDst, pMarker, pSpec, pState)) return StatusNullPointer;
  BitReader reader({pSrc, srcLength, *pSrcPosition, *pMarker}, *pState);
  const StatusCode status = decodeDifference(reader, *pSpec, pDst);
  reader.finish(*pSrcPosition, *pMarker, *pState);
  return status;
}

StatusCode ZORJ_CALL zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(const uint8_t* pSrc, int32_t srcLength, int32_t* pSrcPosition,
                                                          int16_t* const pDst[], int32_t samples, int32_t components,
                                                          int32_t* pMarker, const HuffmanDecodeSpec* const pSpecs[],
                                                          HuffmanDecodeState* pState) {
  if (anyNull(pSrc)) return StatusNullPointer;
  if (srcLength < 1) return StatusBadSize;
  if (anyNull(pSrcPosition, pDst)) return StatusNullPointer;
  if (samples < 1 || components < 1) return StatusBadSize;
  if (anyNull(pMarker, pSpecs, pState)) return StatusNullPointer;
  const int32_t used = std::min(components, kMaxComponents);
  for (int32_t c = 0; c < used; ++c) {
    if (anyNull(pDst[c], pSpecs[c])) return StatusNullPointer;
  }
  SourceBytes source = {pSrc, srcLength, *pSrcPosition, *pMarker};
  const StatusCode status = decodeRow(source, *pState, pDst, samples, used, pSpecs);
  *pSrcPosition = source.position;
  *pMarker = source.marker;
  return status;
}
