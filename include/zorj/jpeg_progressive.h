/**
 * @file jpeg_progressive.h
 * Huffman coding of progressive JPEG (T.81 Annex G), and the statistics that optimised tables are made of.
 *
 * A progressive image comes in scans, each of which codes a part of every block: the DC value, or a band of the zig-zag
 * positions `Ss` to `Se` of the others, first without its low `Al` bits, later one of these bits at a time. There is
 * one function for each kind of scan; it codes one block per call. Tables, states, byte positions, markers and last DC
 * values are those of zorj/jpeg_huffman.h, with one state per scan: it also holds how many blocks in a row ended with
 * nothing left to code (the end-of-band run).
 *
 * Before a table can be made for a scan, its symbols are counted: 256 counters per table, unsigned, which the caller
 * sets to 0. The functions that count take the same blocks in the same order, and a state of their own.
 *
 * @code
 * int32_t statistics[256] = {0};
 * for (int i = 0; i < blocks; ++i) {
 *   zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(block[i], statistics, 1, 63, 1, state, 0);
 * }
 * zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(NULL, statistics, 0, 0, 0, state, 1);  // the last run
 * zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics, bits, values);
 * zoriEncodeHuffmanSpecInit_JPEG_8u(bits, values, ac);
 * for (int i = 0; i < blocks; ++i) {
 *   zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(block[i], bytes, length, &position, 1, 63, 1, ac, state, 0);
 * }
 * zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(NULL, bytes, length, &position, 0, 0, 0, ac, state, 1);  // flush
 * @endcode
 *
 * The point transform divides DC values by 2 to the power of `Al`, rounding down, and the magnitudes of the others,
 * rounding towards 0. Blocks are 64 quantised coefficients in row-major order.
 */
#ifndef ZORJ_JPEG_PROGRESSIVE_H
#define ZORJ_JPEG_PROGRESSIVE_H

#include "zorj/jpeg_huffman.h"
#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @name Progressive encoding
 * Destination, position, `flush` and the statuses for a full destination and for a symbol without a code are those of
 * the sequential encoders. A flush writes the pending end-of-band run first; where that fails, its status is returned
 * and nothing else is done.
 * @{ */

/**
 * Encodes the DC value of a block in the first scan (T.81 G.1.2.1).
 *
 * @param pSrc The block.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param pLastDC DC value, after the point transform, of the component's block before; receives this block's, whatever
 *                the status.
 * @param Al Point transform, 0 to 13.
 * @param pDcSpec Table for the DC difference.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return In this order: StatusNullPointer for a null destination; StatusBadSize for a length below 1;
 *         StatusNullPointer for a null position or state; the flush; StatusNullPointer for a null block or last DC
 *         value; StatusBadArgument for `Al`; StatusNullPointer for a null table; StatusHuffmanDataError, with nothing
 *         written, for a difference of more than 11 bits; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                                         int32_t dstLength, int32_t* pDstPosition,
                                                                         int16_t* pLastDC, int32_t Al,
                                                                         const HuffmanEncodeSpec* pDcSpec,
                                                                         HuffmanEncodeState* pState, int32_t flush);
/**
 * Encodes a further bit of the DC value of a block (T.81 G.1.2.1.1).
 *
 * @param pSrc The block.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param Al Which bit, 0 to 13.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return In this order: StatusNullPointer for a null destination; StatusBadSize for a length below 1;
 *         StatusNullPointer for a null position or state; the flush; StatusNullPointer for a null block;
 *         StatusBadArgument for `Al`; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                                          int32_t dstLength, int32_t* pDstPosition,
                                                                          int32_t Al, HuffmanEncodeState* pState,
                                                                          int32_t flush);
/**
 * Encodes a band of a block in its first scan (T.81 G.1.2.2). A block with nothing left to code joins the run, which is
 * written before the next coefficient, when it reaches 32767 blocks, and by the flush. Where a run of that length could
 * not be written, no block joins it until it is: each call tries that first, and returns the failure.
 *
 * @param pSrc The block.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param Ss First zig-zag position of the band, 1 to 63.
 * @param Se Last zig-zag position of the band, `Ss` to 63.
 * @param Al Point transform, 0 to 13.
 * @param pAcSpec Table for the symbols; a flush needs it too.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return In this order: StatusNullPointer for a null destination; StatusBadSize for a length below 1;
 *         StatusNullPointer for a null position, table or state; the flush; StatusNullPointer for a null block;
 *         StatusBadArgument for `Al`, `Ss` or `Se`; StatusHuffmanDataError for a coefficient of more than 10 bits, with
 *         what precedes it written; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                                         int32_t dstLength, int32_t* pDstPosition,
                                                                         int32_t Ss, int32_t Se, int32_t Al,
                                                                         const HuffmanEncodeSpec* pAcSpec,
                                                                         HuffmanEncodeState* pState, int32_t flush);
/**
 * Encodes a further bit of a band of a block (T.81 G.1.2.3): the sign of each coefficient that is not zero for the
 * first time, a correction bit of each of the others that are not zero. The correction bits of the blocks of a run are
 * held back until it is written, which also happens as soon as they are more than 937; where that fails, no block joins
 * either.
 *
 * @param pSrc The block.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param Ss First zig-zag position of the band, 1 to 63.
 * @param Se Last zig-zag position of the band, `Ss` to 63.
 * @param Al Which bit, 0 to 13.
 * @param pAcSpec Table for the symbols; a flush needs it too.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return As zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 does, with the same order of checks, but no coefficient is too
 *         large.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                                          int32_t dstLength, int32_t* pDstPosition,
                                                                          int32_t Ss, int32_t Se, int32_t Al,
                                                                          const HuffmanEncodeSpec* pAcSpec,
                                                                          HuffmanEncodeState* pState, int32_t flush);

/** @} */

/** @name Progressive decoding
 * Source, position, marker and the statuses for corrupt data are those of the sequential decoders. A block within an
 * end-of-band run reads nothing but correction bits. Initialise the state at the start of a scan and after a restart
 * marker: that ends the run too.
 * @{ */

/**
 * Decodes the DC value of a block in the first scan (T.81 G.2.1).
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst The block, of which only the first coefficient is written.
 * @param pLastDC DC value, before its multiplication, of the component's block before; receives this block's.
 * @param pMarker The marker met, 0 if none.
 * @param Al Point transform, 0 to 13: the DC value is multiplied by 2 to this power, to the low 16 bits.
 * @param pDcSpec Table for the DC difference; of a symbol the low four bits count.
 * @param pState State of the segment.
 * @return In this order: StatusNullPointer for a null source; StatusBadSize for a length below 1; StatusNullPointer for
 *         a null position, block, last DC value or marker; StatusBadArgument for `Al`; StatusNullPointer for a null
 *         table or state; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                         int32_t* pSrcPosition, int16_t* pDst,
                                                                         int16_t* pLastDC, int32_t* pMarker, int32_t Al,
                                                                         const HuffmanDecodeSpec* pDcSpec,
                                                                         HuffmanDecodeState* pState);
/**
 * Decodes a further bit of the DC value of a block (T.81 G.2.1).
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst The block, of whose first coefficient bit `Al` is set if the bit read is 1.
 * @param pMarker The marker met, 0 if none.
 * @param Al Which bit, 0 to 13.
 * @param pState State of the segment.
 * @return In this order: StatusNullPointer for a null source; StatusBadSize for a length below 1; StatusNullPointer for
 *         a null position, block or marker; StatusBadArgument for `Al`; StatusNullPointer for a null state; then as
 *         said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                          int32_t* pSrcPosition, int16_t* pDst,
                                                                          int32_t* pMarker, int32_t Al,
                                                                          HuffmanDecodeState* pState);
/**
 * Decodes a band of a block in its first scan (T.81 G.2.2). A run of zeros that leads beyond the band is no fault: the
 * coefficient is stored where it lands, in the last of the block if that is outside.
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst The block, of which the coefficients that are not zero are written, up to the first fault.
 * @param pMarker The marker met, 0 if none.
 * @param Ss First zig-zag position of the band, 1 to 63.
 * @param Se Last zig-zag position of the band, `Ss` to 63.
 * @param Al Point transform, 0 to 13: values are multiplied by 2 to this power, to the low 16 bits.
 * @param pAcSpec Table for the symbols.
 * @param pState State of the segment.
 * @return In this order: StatusNullPointer for a null source; StatusBadSize for a length below 1; StatusNullPointer for
 *         a null position, block or marker; StatusBadArgument for `Al`, `Ss` or `Se`; StatusNullPointer for a null
 *         table or state; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                         int32_t* pSrcPosition, int16_t* pDst,
                                                                         int32_t* pMarker, int32_t Ss, int32_t Se,
                                                                         int32_t Al, const HuffmanDecodeSpec* pAcSpec,
                                                                         HuffmanDecodeState* pState);
/**
 * Decodes a further bit of a band of a block (T.81 G.2.3). A coefficient that is not zero gets bit `Al` of its
 * magnitude set where its correction bit is 1; a new one becomes plus or minus 2 to the power of `Al`. A run that leads
 * beyond the band is no fault: the new coefficient is stored in the position that follows the band, or in the last.
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst The block as the scans before left it; refined up to the first fault.
 * @param pMarker The marker met, 0 if none.
 * @param Ss First zig-zag position of the band, 1 to 63.
 * @param Se Last zig-zag position of the band, `Ss` to 63.
 * @param Al Which bit, 0 to 13.
 * @param pAcSpec Table for the symbols; a category above 1 is taken as 1.
 * @param pState State of the segment.
 * @return As zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1 does, with the same order of checks.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                          int32_t* pSrcPosition, int16_t* pDst,
                                                                          int32_t* pMarker, int32_t Ss, int32_t Se,
                                                                          int32_t Al, const HuffmanDecodeSpec* pAcSpec,
                                                                          HuffmanDecodeState* pState);

/** @} */

/** @name Statistics
 * Each function adds to the counters what its encoder would write of a block. Counters are unsigned numbers of 32 bits
 * and come round.
 * @{ */

/**
 * Counts the symbols of a block of the sequential process.
 *
 * @param pSrc The block.
 * @param pDcStatistics 256 counters of DC categories.
 * @param pAcStatistics 256 counters of AC symbols.
 * @param pLastDC DC value of the component's block before; receives this block's, whatever the status.
 * @return StatusNullPointer for a null argument; StatusHuffmanDataError, with what precedes it counted, for a DC
 *         difference of more than 15 bits or another coefficient of more than 14.
 */
ZORJ_API StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_JPEG_16s_C1(const int16_t* pSrc, int32_t* pDcStatistics,
                                                                      int32_t* pAcStatistics, int16_t* pLastDC);
/**
 * Counts the symbol that zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1 would write.
 *
 * @param pSrc The block.
 * @param pDcStatistics 256 counters of DC categories.
 * @param pLastDC DC value, after the point transform, of the component's block before; receives this block's, whatever
 *                the status.
 * @param Al Point transform, 0 to 13.
 * @return In this order: StatusNullPointer for a null argument; StatusBadArgument for `Al`; StatusHuffmanDataError,
 *         with nothing counted, for a difference of more than 11 bits.
 */
ZORJ_API StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const int16_t* pSrc,
                                                                              int32_t* pDcStatistics, int16_t* pLastDC,
                                                                              int32_t Al);
/**
 * Counts the symbols that zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 would write.
 *
 * @param pSrc The block.
 * @param pAcStatistics 256 counters of AC symbols.
 * @param Ss First zig-zag position of the band, 1 to 63.
 * @param Se Last zig-zag position of the band, `Ss` to 63.
 * @param Al Point transform, 0 to 13.
 * @param pState State of the scan.
 * @param flush Not 0: instead of a block, count the pending run and initialise the state.
 * @return In this order: StatusNullPointer for null counters or state; the flush; StatusNullPointer for a null block;
 *         StatusBadArgument for `Al`, `Ss` or `Se`; StatusHuffmanDataError for a coefficient of more than 10 bits, with
 *         what precedes it counted.
 */
ZORJ_API StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const int16_t* pSrc,
                                                                              int32_t* pAcStatistics, int32_t Ss,
                                                                              int32_t Se, int32_t Al,
                                                                              HuffmanEncodeState* pState,
                                                                              int32_t flush);
/**
 * Counts the symbols that zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1 would write.
 *
 * @param pSrc The block.
 * @param pAcStatistics 256 counters of AC symbols.
 * @param Ss First zig-zag position of the band, 1 to 63.
 * @param Se Last zig-zag position of the band, `Ss` to 63.
 * @param Al Which bit, 0 to 13.
 * @param pState State of the scan.
 * @param flush Not 0: instead of a block, count the pending run and initialise the state.
 * @return As zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1 does, but no coefficient is too large.
 */
ZORJ_API StatusCode ZORJ_CALL zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const int16_t* pSrc,
                                                                               int32_t* pAcStatistics, int32_t Ss,
                                                                               int32_t Se, int32_t Al,
                                                                               HuffmanEncodeState* pState,
                                                                               int32_t flush);
/**
 * Counts the category of a difference of the lossless process, 0 to 16.
 *
 * @param pSrc The difference.
 * @param pStatistics 256 counters of categories.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriGetHuffmanStatisticsOne_JPEG_16s_C1(const int16_t* pSrc, int32_t* pStatistics);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
