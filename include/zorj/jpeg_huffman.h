/**
 * @file jpeg_huffman.h
 * Huffman coding of JPEG: tables, and the sequential coding of blocks and of lossless differences.
 *
 * A code list as a DHT segment holds it (16 counts by code length, then the symbols in order of increasing length)
 * becomes a prepared table, one for encoding and one for decoding. A coder then turns blocks of 64 quantised
 * coefficients, in row-major order, into entropy-coded bytes and back, block by block. Zero bytes after data bytes 0xFF
 * are written and removed here; markers are the caller's. All else that lasts from block to block is the caller's
 * too: the byte position in the stream, the last DC value of each component, and the state with the bits of the byte
 * that is begun. One state serves one stream.
 *
 * @code
 * HuffmanEncodeState* state;
 * zoriEncodeHuffmanStateInitAlloc_JPEG_8u(&state);
 * int32_t position = 0;
 * int16_t lastDC = 0;
 * for (int i = 0; i < blocks; ++i) {
 *   zoriEncodeHuffman8x8_JPEG_16s1u_C1(block[i], bytes, length, &position, &lastDC, dc, ac, state, 0);
 * }
 * zoriEncodeHuffman8x8_JPEG_16s1u_C1(NULL, bytes, length, &position, NULL, NULL, NULL, state, 1);  // flush
 * zoriEncodeHuffmanStateFree_JPEG_8u(state);
 * @endcode
 *
 * Tables and states are opaque. The caller either provides the memory, as many bytes as GetBufSize tells and aligned to
 * 4, or lets InitAlloc allocate it and releases it with Free. A table is only read once it is built, so any number of
 * calls may share it. Coders trust tables and states to be initialised.
 */
#ifndef ZORJ_JPEG_HUFFMAN_H
#define ZORJ_JPEG_HUFFMAN_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Table for encoding: the code of each symbol. */
typedef struct HuffmanEncodeSpec HuffmanEncodeSpec;
/** Table for decoding: the symbol of each code. */
typedef struct HuffmanDecodeSpec HuffmanDecodeSpec;
/** What an encoder keeps between calls: the bits that do not fill a byte yet. */
typedef struct HuffmanEncodeState HuffmanEncodeState;
/** What a decoder keeps between calls: the bits read but not used yet. */
typedef struct HuffmanDecodeState HuffmanDecodeState;

/** @name Tables
 * Codes are assigned in the canonical way (T.81 Annex C): the first of the shortest length is 0, those of one length
 * follow one another, and on going to the next length the next code is doubled.
 * @{ */

/**
 * Makes the best list of codes of at most 16 bits for given frequencies (T.81 K.2; of equally rare symbols the one with
 * the highest number comes first). Symbols that occur more than 1,000,000,000 times are left out. Where all together
 * occur more often than that, the list may be one that zoriEncodeHuffmanSpecInit_JPEG_8u refuses.
 *
 * @param pStatistics How often each of the 256 symbols occurs, as unsigned numbers.
 * @param pBits Receives the number of codes of each length from 1 to 16 (16 bytes).
 * @param pValues Receives the symbols that have a code, in order of increasing length: up to 256 bytes; those behind
 *                the last symbol are not touched.
 * @return StatusNullPointer for a null argument; StatusBadHuffmanTable, with the outputs untouched, where nothing was
 *         counted, where a code would have more than 32 bits before the limit of 16 is imposed, or where all 256
 *         symbols would have codes of one length.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanRawTableInit_JPEG_8u(const int32_t* pStatistics, uint8_t* pBits,
                                                                    uint8_t* pValues);
/**
 * Tells the size of a HuffmanEncodeSpec.
 *
 * @param pSize Receives the size in bytes: 1024.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecGetBufSize_JPEG_8u(int32_t* pSize);
/**
 * Builds a table for encoding. Of a symbol listed twice, the later code counts.
 *
 * @param pBits The number of codes of each length from 1 to 16 (16 bytes).
 * @param pValues The symbols, as many as the counts add up to.
 * @param pSpec Memory for the table.
 * @return StatusNullPointer for a null argument. StatusBadHuffmanTable, with the table all zero (no symbol has a code),
 *         for more than 256 codes, for more codes than fit, and where a code consists of ones alone.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecInit_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                HuffmanEncodeSpec* pSpec);
/**
 * Allocates a table with zorMalloc, stores its address to `ppSpec` and builds it as zoriEncodeHuffmanSpecInit_JPEG_8u
 * does. A list that is refused still leaves the caller with the table to free.
 *
 * @param pBits The number of codes of each length from 1 to 16 (16 bytes).
 * @param pValues The symbols, as many as the counts add up to.
 * @param ppSpec Receives the address.
 * @return StatusNullPointer for a null argument, and, with `ppSpec` untouched, if there is no memory; else as there.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                     HuffmanEncodeSpec** ppSpec);
/**
 * Releases memory.
 *
 * @param pSpec What zoriEncodeHuffmanSpecInitAlloc_JPEG_8u allocated.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecFree_JPEG_8u(HuffmanEncodeSpec* pSpec);
/**
 * Tells the size of a HuffmanDecodeSpec.
 *
 * @param pSize Receives the size in bytes: 1644.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecGetBufSize_JPEG_8u(int32_t* pSize);
/**
 * Builds a table for decoding. Of a symbol listed twice, both codes count.
 *
 * @param pBits The number of codes of each length from 1 to 16 (16 bytes).
 * @param pValues The symbols, as many as the counts add up to.
 * @param pSpec Memory for the table.
 * @return StatusNullPointer for a null argument. StatusBadHuffmanTable for more than 256 codes, and for more codes of
 *         up to 8 bits than fit (one of 8 bits too many is let pass). With more of the longer codes than fit the table
 *         is accepted, and what it decodes to is unspecified. A code of 16 ones is accepted but never found.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecInit_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                HuffmanDecodeSpec* pSpec);
/**
 * Allocates a table with zorMalloc, stores its address to `ppSpec` and builds it as zoriDecodeHuffmanSpecInit_JPEG_8u
 * does. A list that is refused still leaves the caller with the table to free.
 *
 * @param pBits The number of codes of each length from 1 to 16 (16 bytes).
 * @param pValues The symbols, as many as the counts add up to.
 * @param ppSpec Receives the address.
 * @return StatusNullPointer for a null argument, and, with `ppSpec` untouched, if there is no memory; else as there.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                     HuffmanDecodeSpec** ppSpec);
/**
 * Releases memory.
 *
 * @param pSpec What zoriDecodeHuffmanSpecInitAlloc_JPEG_8u allocated.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecFree_JPEG_8u(HuffmanDecodeSpec* pSpec);

/** @} */

/** @name Sequential encoding
 * A call with a `flush` other than 0 looks at nothing but the destination and the state: it completes a begun byte with
 * ones and initialises the state. Flush before every marker and at the end of a scan.
 *
 * Without room for all of it, an encoder returns StatusBufferEnd; outside the destination there is none. The bytes
 * written until then stay, `pDstPosition` points behind them, and the stream is broken. A symbol without a code gives
 * StatusBadHuffmanTable, with what came before it written. No byte from the returned position on is changed.
 * @{ */

/**
 * Tells the size of a HuffmanEncodeState.
 *
 * @param pSize Receives the size in bytes: 1048.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateGetBufSize_JPEG_8u(int32_t* pSize);
/**
 * Makes the state that of a stream not begun.
 *
 * @param pState Memory for the state.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateInit_JPEG_8u(HuffmanEncodeState* pState);
/**
 * Allocates a state with zorMalloc and initialises it.
 *
 * @param ppState Receives the address.
 * @return StatusNullPointer for a null argument, and, with `ppState` untouched, if there is no memory.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateInitAlloc_JPEG_8u(HuffmanEncodeState** ppState);
/**
 * Releases memory.
 *
 * @param pState What zoriEncodeHuffmanStateInitAlloc_JPEG_8u allocated.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateFree_JPEG_8u(HuffmanEncodeState* pState);
/**
 * Encodes a block of the baseline or extended sequential process (T.81 F.1.2).
 *
 * @param pSrc 64 quantised coefficients in row-major order.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param pLastDC DC value of the component's block before; receives this block's, whatever the status.
 * @param pDcSpec Table for the DC difference.
 * @param pAcSpec Table for the other coefficients.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return In this order: StatusNullPointer for a null destination; StatusBadSize for a length below 1;
 *         StatusNullPointer for a null position or state; the flush; StatusNullPointer for another null pointer; then
 * as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                 int32_t* pDstPosition, int16_t* pLastDC,
                                                                 const HuffmanEncodeSpec* pDcSpec,
                                                                 const HuffmanEncodeSpec* pAcSpec,
                                                                 HuffmanEncodeState* pState, int32_t flush);
/**
 * Encodes a block at a bit position, without a state and without a look at the room, of which the caller has to provide
 * enough. A symbol without a code writes nothing; what follows it is written all the same.
 *
 * @param pSrc 64 quantised coefficients in row-major order.
 * @param pDst The destination. The bits before the position in a begun byte are read and kept, those behind the last
 *             bit written become 0.
 * @param pDstBitPosition Where to write: 8 times the byte, plus the bit, counted from the most significant one;
 *                        receives where the written bits end. A zero byte after 0xFF counts 8 bits. Behind 256 MiB it
 *                        overflows, which is not checked.
 * @param pLastDC DC value of the component's block before; receives this block's.
 * @param pDcSpec Table for the DC difference.
 * @param pAcSpec Table for the other coefficients.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                                        int32_t* pDstBitPosition, int16_t* pLastDC,
                                                                        const HuffmanEncodeSpec* pDcSpec,
                                                                        const HuffmanEncodeSpec* pAcSpec);
/**
 * Encodes a difference of the lossless process (T.81 H.1.2.2): the code of its category, then its extra bits. The
 * category of -32768 is 16, which has none.
 *
 * @param pSrc The difference.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param pSpec Table for the categories.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return As zoriEncodeHuffman8x8_JPEG_16s1u_C1 does, with the same order of checks.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanOne_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                 int32_t* pDstPosition, const HuffmanEncodeSpec* pSpec,
                                                                 HuffmanEncodeState* pState, int32_t flush);
/**
 * Encodes rows of differences of the lossless process, the samples of the components in turn.
 *
 * @param pSrc The row of each component.
 * @param samples Differences in each row.
 * @param components Number of components; of more than four the first four are encoded.
 * @param pDst The destination.
 * @param dstLength Its length in bytes, counted from `pDst`.
 * @param pDstPosition Where to write, in bytes from `pDst`; receives where the written bytes end.
 * @param pSpecs Table of each component.
 * @param pState State of the stream.
 * @param flush Not 0: flush instead.
 * @return In this order: StatusNullPointer for a null destination; StatusBadSize for a length below 1;
 *         StatusNullPointer for a null position or state; the flush; StatusNullPointer for a null `pSrc`; StatusBadSize
 *         for samples or components below 1; StatusNullPointer for a null `pSpecs`, row or table; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(const int16_t* const pSrc[], int32_t samples,
                                                                   int32_t components, uint8_t* pDst, int32_t dstLength,
                                                                   int32_t* pDstPosition,
                                                                   const HuffmanEncodeSpec* const pSpecs[],
                                                                   HuffmanEncodeState* pState, int32_t flush);

/** @} */

/** @name Sequential decoding
 * Bytes are read a few ahead of the bits that are used. The first marker ends the reading: its second byte (0x01 to
 * 0xFE) goes to `pMarker` and the position points behind it. Bytes 0xFF before a marker are skipped. Nothing more is
 * read while `pMarker` is not 0, so the caller clears it after dealing with the marker, initialises the state and, at a
 * restart marker, sets the last DC values to 0. Nothing at or beyond `srcLength` is read.
 *
 * Corrupt data: StatusBufferEnd where the input ends, or the position lies outside it, although bits are needed, and as
 * soon as the reading ahead comes upon a 0xFF that ends the input; StatusHuffmanDataError where a marker comes although
 * bits are needed, or no code matches. What was decoded before stays; position, marker and
 * state tell how far the reading went.
 * @{ */

/**
 * Tells the size of a HuffmanDecodeState.
 *
 * @param pSize Receives the size in bytes: 24.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateGetBufSize_JPEG_8u(int32_t* pSize);
/**
 * Makes the state that of a segment not begun: at the start of a scan and after a restart marker.
 *
 * @param pState Memory for the state.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateInit_JPEG_8u(HuffmanDecodeState* pState);
/**
 * Allocates a state with zorMalloc and initialises it.
 *
 * @param ppState Receives the address.
 * @return StatusNullPointer for a null argument, and, with `ppState` untouched, if there is no memory.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateInitAlloc_JPEG_8u(HuffmanDecodeState** ppState);
/**
 * Releases memory.
 *
 * @param pState What zoriDecodeHuffmanStateInitAlloc_JPEG_8u allocated.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateFree_JPEG_8u(HuffmanDecodeState* pState);
/**
 * Decodes a block of the baseline or extended sequential process (T.81 F.2.2).
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`; may be 0.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst Receives 64 quantised coefficients in row-major order. A coefficient 1 to 8 positions beyond the block
 *             goes to the last; a run of 16 zeros may lead anywhere.
 * @param pLastDC DC value of the component's block before; receives this block's once it is known.
 * @param pMarker The marker met, 0 if none.
 * @param pDcSpec Table for the DC difference.
 * @param pAcSpec Table for the other coefficients.
 * @param pState State of the segment.
 * @return In this order: StatusNullPointer for a null source; StatusBadArgument for a length below 0;
 *         StatusNullPointer for another null pointer; StatusBlockOverrun for a coefficient further than 8 positions
 *         beyond the block; else as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int16_t* pLastDC,
                                                                 int32_t* pMarker, const HuffmanDecodeSpec* pDcSpec,
                                                                 const HuffmanDecodeSpec* pAcSpec,
                                                                 HuffmanDecodeState* pState);
/**
 * Decodes a block at a bit position, without a state. There is no length: the caller sees to it that a marker follows,
 * or four bytes more than needed, none of them 0xFF.
 *
 * @param pSrc The source.
 * @param pSrcBitPosition Where to read: 8 times the byte. Grows by 8 for every byte read; the low 3 bits are ignored
 * and kept.
 * @param pDst Receives 64 quantised coefficients in row-major order.
 * @param pLastDC DC value of the component's block before; receives this block's once it is known.
 * @param pMarker The marker met, 0 if none.
 * @param pPrefetchedBits Bits read but not used yet, right-aligned.
 * @param pPrefetchedCount Their number; more than 32 are taken for 32.
 * @param pDcSpec Table for the DC difference.
 * @param pAcSpec Table for the other coefficients.
 * @return In this order: StatusNullPointer for a null source or position; StatusBadArgument for a position below 0;
 *         StatusNullPointer for a null block, last DC value, marker, prefetched bits or count; StatusBadArgument for a
 *         count below 0; StatusNullPointer for a null table. Where a marker ends the data: StatusOk before a symbol,
 *         with the block as far as it was decoded, StatusHuffmanDataError in a code, StatusBufferEnd in extra bits.
 *         Where no code matches, StatusHuffmanDataError; StatusBlockOverrun as above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t* pSrcBitPosition,
                                                                        int16_t* pDst, int16_t* pLastDC,
                                                                        int32_t* pMarker, uint32_t* pPrefetchedBits,
                                                                        int32_t* pPrefetchedCount,
                                                                        const HuffmanDecodeSpec* pDcSpec,
                                                                        const HuffmanDecodeSpec* pAcSpec);
/**
 * Decodes a difference of the lossless process (T.81 H.2.2). A category of 16 or more gives -32768. What cannot be
 * decoded is not stored.
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst Receives the difference.
 * @param pMarker The marker met, 0 if none.
 * @param pSpec Table for the categories.
 * @param pState State of the segment.
 * @return In this order: StatusNullPointer for a null source; StatusBadSize for a length below 1; StatusNullPointer for
 *         another null pointer; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanOne_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int32_t* pMarker,
                                                                 const HuffmanDecodeSpec* pSpec,
                                                                 HuffmanDecodeState* pState);
/**
 * Decodes rows of differences of the lossless process, the samples of the components in turn. What cannot be decoded is
 * not stored.
 *
 * @param pSrc The source.
 * @param srcLength Its length in bytes, counted from `pSrc`.
 * @param pSrcPosition Where to read, in bytes from `pSrc`; receives where the reading stopped.
 * @param pDst The row of each component.
 * @param samples Differences in each row.
 * @param components Number of components; of more than four the first four are decoded.
 * @param pMarker The marker met, 0 if none.
 * @param pSpecs Table of each component.
 * @param pState State of the segment.
 * @return In this order: StatusNullPointer for a null source; StatusBadSize for a length below 1; StatusNullPointer for
 *         a null position or `pDst`; StatusBadSize for samples or components below 1; StatusNullPointer for a null
 *         marker, `pSpecs` or state, and for a null row or table; then as said above.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(
    const uint8_t* pSrc, int32_t srcLength, int32_t* pSrcPosition, int16_t* const pDst[], int32_t samples,
    int32_t components, int32_t* pMarker, const HuffmanDecodeSpec* const pSpecs[], HuffmanDecodeState* pState);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
