#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/progressive_encode_kernels.h"
#include "jpeg/symbols.h"
#include "zorj/jpeg_progressive.h"

namespace zorj {
namespace {

constexpr uint32_t kLargestDcCategory = 11;

using AcEncoder = StatusCode (*)(const int16_t*, const SpectralBand&, const HuffmanEncodeSpec&, const Destination&,
                                 HuffmanEncodeState&);

StatusCode encodeAc(const int16_t* block, uint8_t* dst, int32_t length, int32_t* position, const SpectralBand& band,
                    const HuffmanEncodeSpec* spec, HuffmanEncodeState* state, int32_t flush, AcEncoder encode) {
  if (anyNull(dst)) return StatusNullPointer;
  if (length < 1) return StatusBadSize;
  if (anyNull(position, spec, state)) return StatusNullPointer;
  const Destination destination = {dst, length, *position};
  if (flush) return progressiveEncodeKernels().flush(*spec, destination, *state);
  if (anyNull(block)) return StatusNullPointer;
  if (!band.isLegal()) return StatusBadArgument;
  return encode(block, band, *spec, destination, *state);
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                int32_t* pDstPosition, int16_t* pLastDC, int32_t Al,
                                                                const HuffmanEncodeSpec* pDcSpec,
                                                                HuffmanEncodeState* pState, int32_t flush) {
  if (anyNull(pDst)) return StatusNullPointer;
  if (dstLength < 1) return StatusBadSize;
  if (anyNull(pDstPosition, pState)) return StatusNullPointer;
  const Destination destination = {pDst, dstLength, *pDstPosition};
  if (flush) return BitWriter(destination, *pState).flush();
  if (anyNull(pSrc, pLastDC)) return StatusNullPointer;
  if (!isPointTransform(Al)) return StatusBadArgument;
  if (anyNull(pDcSpec)) return StatusNullPointer;
  const int32_t difference = advanceDc(pSrc, Al, *pLastDC);
  const uint32_t category = magnitudeCategory(difference);
  if (category > kLargestDcCategory) return StatusHuffmanDataError;
  return SymbolWriter(destination, *pDcSpec, *pState).putSymbol(category, extraBits(difference), category);
}

StatusCode ZORJ_CALL zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                 int32_t* pDstPosition, int32_t Al,
                                                                 HuffmanEncodeState* pState, int32_t flush) {
  if (anyNull(pDst)) return StatusNullPointer;
  if (dstLength < 1) return StatusBadSize;
  if (anyNull(pDstPosition, pState)) return StatusNullPointer;
  BitWriter writer({pDst, dstLength, *pDstPosition}, *pState);
  if (flush) return writer.flush();
  if (anyNull(pSrc)) return StatusNullPointer;
  if (!isPointTransform(Al)) return StatusBadArgument;
  return writer.put(static_cast<uint32_t>(loadUnaligned(pSrc) >> Al) & 1, 1);
}

StatusCode ZORJ_CALL zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                int32_t* pDstPosition, int32_t Ss, int32_t Se,
                                                                int32_t Al, const HuffmanEncodeSpec* pAcSpec,
                                                                HuffmanEncodeState* pState, int32_t flush) {
  return encodeAc(pSrc, pDst, dstLength, pDstPosition, {Ss, Se, Al}, pAcSpec, pState, flush,
                  progressiveEncodeKernels().acFirst);
}

StatusCode ZORJ_CALL zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                 int32_t* pDstPosition, int32_t Ss, int32_t Se,
                                                                 int32_t Al, const HuffmanEncodeSpec* pAcSpec,
                                                                 HuffmanEncodeState* pState, int32_t flush) {
  return encodeAc(pSrc, pDst, dstLength, pDstPosition, {Ss, Se, Al}, pAcSpec, pState, flush,
                  progressiveEncodeKernels().acRefine);
}
