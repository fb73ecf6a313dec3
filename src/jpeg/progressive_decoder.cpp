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

StatusCode decodeDcRefine(BitReader& reader, int16_t* block, int32_t shift) {
  if (const StatusCode status = reader.require(1)) return status;
  storeUnaligned(block, static_cast<int16_t>(loadUnaligned(block) | reader.take(1) << shift));
  return StatusOk;
}

using AcDecoder = decltype(ProgressiveDecodeKernels::acFirst);

StatusCode decodeAc(const uint8_t* src, int32_t length, int32_t* position, int16_t* block, int32_t* marker,
                    SpectralBand band, const HuffmanDecodeSpec* spec, HuffmanDecodeState* state, AcDecoder decode) {
  if (anyNull(src)) return StatusNullPointer;
  if (length < 1) return StatusBadSize;
  if (anyNull(position, block, marker)) return StatusNullPointer;
  if (!band.isLegal()) return StatusBadArgument;
  if (anyNull(spec, state)) return StatusNullPointer;
  return decode({src, length, *position, *marker}, *position, *marker, *state, block, band, *spec);
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
  return decodeAc(pSrc, srcLength, pSrcPosition, pDst, pMarker, {Ss, Se, Al}, pAcSpec, pState,
                  progressiveDecodeKernels().acFirst);
}

StatusCode ZORJ_CALL zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int32_t* pMarker,
                                                                 int32_t Ss, int32_t Se, int32_t Al,
                                                                 const HuffmanDecodeSpec* pAcSpec,
                                                                 HuffmanDecodeState* pState) {
  return decodeAc(pSrc, srcLength, pSrcPosition, pDst, pMarker, {Ss, Se, Al}, pAcSpec, pState,
                  progressiveDecodeKernels().acRefine);
}
