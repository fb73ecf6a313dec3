#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/progressive_decode_kernels.h"
#include "zorj/jpeg_progressive.h"

namespace zorj {
namespace {

StatusCode decodeDcFirst(BitReader& reader, int16_t* block, int16_t& lastDc, int32_t shift,
                         const HuffmanDecodeSpec& spec) {
  uint32_t symbol = 0;
  int32_t difference = 0;
  if (const StatusCode status = reader.decodeSymbol(spec, symbol)) return status;
  if (const uint32_t size = symbol & 15) {
    if (const StatusCode status = reader.decodeExtraBits(size, difference)) return status;
  }
  lastDc = static_cast<int16_t>(lastDc + difference);
  storeUnaligned(block, static_cast<int16_t>(static_cast<uint32_t>(lastDc) << shift));
  return StatusOk;
}

void refineDc(int16_t* block, uint32_t bit, int32_t shift) {
  storeUnaligned(block, static_cast<int16_t>(loadUnaligned(block) | bit << shift));
}

StatusCode decodeDcRefine(BitReader& reader, int16_t* block, int32_t shift) {
  if (const StatusCode status = reader.require(1)) return status;
  refineDc(block, reader.take(1), shift);
  return StatusOk;
}

// The same where the state holds the bit: nothing is to be read.
bool refinesDcFromHeld(HuffmanDecodeState& state, int16_t* block, int32_t shift) {
  if (state.bitCount < 1) return false;
  --state.bitCount;
  refineDc(block, state.bitBuffer >> state.bitCount & 1, shift);
  return true;
}

StatusCode checkAc(const uint8_t* src, int32_t length, const int32_t* position, const int16_t* block,
                   const int32_t* marker, const SpectralBand& band, const HuffmanDecodeSpec* spec,
                   const HuffmanDecodeState* state) {
  if (anyNull(src)) return StatusNullPointer;
  if (length < 1) return StatusBadSize;
  if (anyNull(position, block, marker)) return StatusNullPointer;
  if (!band.isLegal()) return StatusBadArgument;
  return anyNull(spec, state) ? StatusNullPointer : StatusOk;
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                int32_t* pSrcPosition, int16_t* pDst, int16_t* pLastDC,
                                                                int32_t* pMarker, int32_t Al,
                                                                const HuffmanDecodeSpec* pDcSpec,
                                                                HuffmanDecodeState* pState) {
  if (anyNull(pSrc)) return StatusNullPointer;
  if (srcLength < 1) return StatusBadSize;
  if (anyNull(pSrcPosition, pDst, pLastDC, pMarker)) return StatusNullPointer;
  if (!isPointTransform(Al)) return StatusBadArgument;
  if (anyNull(pDcSpec, pState)) return StatusNullPointer;
  BitReader reader({pSrc, srcLength, *pSrcPosition, *pMarker}, *pState);
  const StatusCode status = decodeDcFirst(reader, pDst, *pLastDC, Al, *pDcSpec);
  reader.finish(*pSrcPosition, *pMarker, *pState);
  return status;
}

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int32_t* pMarker,
                                                                 int32_t Al, HuffmanDecodeState* pState) {
  if (anyNull(pSrc)) return StatusNullPointer;
  if (srcLength < 1) return StatusBadSize;
  if (anyNull(pSrcPosition, pDst, pMarker)) return StatusNullPointer;
  if (!isPointTransform(Al)) return StatusBadArgument;
  if (anyNull(pState)) return StatusNullPointer;
  if (refinesDcFromHeld(*pState, pDst, Al)) return StatusOk;
  BitReader reader({pSrc, srcLength, *pSrcPosition, *pMarker}, *pState);
  const StatusCode status = decodeDcRefine(reader, pDst, Al);
  reader.finish(*pSrcPosition, *pMarker, *pState);
  return status;
}

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                int32_t* pSrcPosition, int16_t* pDst, int32_t* pMarker,
                                                                int32_t Ss, int32_t Se, int32_t Al,
                                                                const HuffmanDecodeSpec* pAcSpec,
                                                                HuffmanDecodeState* pState) {
  const SpectralBand band = {Ss, Se, Al};
  if (const StatusCode status = checkAc(pSrc, srcLength, pSrcPosition, pDst, pMarker, band, pAcSpec, pState)) {
    return status;
  }
  if (pState->eobRun > 0) {
    --pState->eobRun;
    return StatusOk;
  }
  return progressiveDecodeKernels().acFirst(pSrc, srcLength, *pSrcPosition, *pMarker, *pState, pDst, band, *pAcSpec);
}

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int32_t* pMarker,
                                                                 int32_t Ss, int32_t Se, int32_t Al,
                                                                 const HuffmanDecodeSpec* pAcSpec,
                                                                 HuffmanDecodeState* pState) {
  const SpectralBand band = {Ss, Se, Al};
  if (const StatusCode status = checkAc(pSrc, srcLength, pSrcPosition, pDst, pMarker, band, pAcSpec, pState)) {
    return status;
  }
  return progressiveDecodeKernels().acRefine(pSrc, srcLength, *pSrcPosition, *pMarker, *pState, pDst, band, *pAcSpec);
}
