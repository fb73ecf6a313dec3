// How often the encoders would write each symbol.
#include "core/checks.h"
#include "core/unaligned.h"
#include "jpeg/progressive_encode_kernels.h"
#include "jpeg/symbols.h"
#include "zorj/jpeg_progressive.h"

namespace zorj {
namespace {

// Counters are unsigned.
uint32_t* asUnsigned(int32_t* counters) { return reinterpret_cast<uint32_t*>(counters); }

StatusCode countCategory(int32_t value, uint32_t largest, int32_t* counters) {
  const uint32_t category = magnitudeCategory(value);
  if (category > largest) return StatusHuffmanDataError;
  return SymbolCounter(asUnsigned(counters)).putSymbol(category);
}

using AcCounter = StatusCode (*)(const int16_t*, const SpectralBand&, uint32_t*, HuffmanEncodeState&);

StatusCode countAc(const int16_t* block, int32_t* counters, const SpectralBand& band, HuffmanEncodeState* state,
                   int32_t flush, AcCounter count) {
  if (anyNull(counters, state)) return StatusNullPointer;
  if (flush) {
    const StatusCode status = progressiveEncodeKernels().countRun(asUnsigned(counters), *state);
    clearState(*state);
    return status;
  }
  if (anyNull(block)) return StatusNullPointer;
  if (!band.isLegal()) return StatusBadArgument;
  return count(block, band, asUnsigned(counters), *state);
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_JPEG_16s_C1(const int16_t* pSrc, int32_t* pDcStatistics,
                                                             int32_t* pAcStatistics, int16_t* pLastDC) {
  if (anyNull(pSrc, pDcStatistics, pAcStatistics, pLastDC)) return StatusNullPointer;
  if (const StatusCode status = countCategory(advanceDc(pSrc, 0, *pLastDC), 15, pDcStatistics)) return status;
  return progressiveEncodeKernels().countAc(pSrc, asUnsigned(pAcStatistics));
}

StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const int16_t* pSrc, int32_t* pDcStatistics,
                                                                     int16_t* pLastDC, int32_t Al) {
  if (anyNull(pSrc, pDcStatistics, pLastDC)) return StatusNullPointer;
  if (!isPointTransform(Al)) return StatusBadArgument;
  return countCategory(advanceDc(pSrc, Al, *pLastDC), 11, pDcStatistics);
}

StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const int16_t* pSrc, int32_t* pAcStatistics,
                                                                     int32_t Ss, int32_t Se, int32_t Al,
                                                                     HuffmanEncodeState* pState, int32_t flush) {
  return countAc(pSrc, pAcStatistics, {Ss, Se, Al}, pState, flush, progressiveEncodeKernels().countAcFirst);
}

StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const int16_t* pSrc, int32_t* pAcStatistics,
                                                                      int32_t Ss, int32_t Se, int32_t Al,
                                                                      HuffmanEncodeState* pState, int32_t flush) {
  return countAc(pSrc, pAcStatistics, {Ss, Se, Al}, pState, flush, progressiveEncodeKernels().countAcRefine);
}

StatusCode ZORJ_CALL zoriGetHuffmanStatisticsOne_JPEG_16s_C1(const int16_t* pSrc, int32_t* pStatistics) {
  if (anyNull(pSrc, pStatistics)) return StatusNullPointer;
  return countCategory(loadUnaligned(pSrc), 16, pStatistics);
}
