/**
 * @file jpeg2k_codeblock.h
 * Coding of JPEG 2000 code-blocks (T.800 Annexes C and D): the quantised coefficients of a block to the bytes of its
 * codeword and back.
 *
 * A sample is a word of 32 bits with the sign in bit 31 (set for negative) and the magnitude in bits 0 to 30; bit plane
 * p is the bit of weight 2^p. A block of n significant planes is coded in 3n - 2 passes at the most, numbered from 0: a
 * cleanup of plane n - 1, then significance propagation, magnitude refinement and cleanup of each plane below.
 * Consecutive passes form segments, which are terminated and can be decoded each by itself:
 *
 * | CodeBlockStyle | segments                                                                                    |
 * |----------------|---------------------------------------------------------------------------------------------|
 * | CbTermAll      | one per pass                                                                                |
 * | CbBypass       | passes 0 to 9; then the two raw passes of a plane and its cleanup in turn                   |
 * | neither        | a single one                                                                                |
 *
 * @code
 * J2kEncodeState* state;
 * zoriEncodeInitAlloc_JPEG2K(&state, (RoiSize){64, 64});
 * int32_t planes, passes, segments, length = sizeof codeword, unfinished;
 * zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(samples, 64 * 4, (RoiSize){64, 64}, state, SubbandHL, 31, 0, 0, 0, &planes,
 *                                        &passes, &segments);
 * zoriEncodeStoreBits_JPEG2K_1u(codeword, &length, state, &unfinished);
 * zoriEncodeFree_JPEG2K(state);
 *
 * zoriDecodeGetBufSize_JPEG2K((RoiSize){64, 64}, &size);
 * uint8_t* memory = malloc(size);
 * zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(codeword, decoded, 64 * 4, (RoiSize){64, 64}, SubbandHL, planes, passes,
 * &length, 1, 0, NULL, memory);
 * @endcode
 *
 * States are opaque, serve one block at a time, and carry a mark that every function with a state checks
 * (StatusBadContext), except zoriEncodeFree_JPEG2K. They may be attached or loaded again for the next block.
 */
#ifndef ZORJ_JPEG2K_CODEBLOCK_H
#define ZORJ_JPEG2K_CODEBLOCK_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Options of a block, to be combined. The bits are not those of the codestream's code-block style. Others are ignored.
 */
typedef enum CodeBlockStyle {
  CbVerticallyCausal = 0x1,     /**< Contexts do not look into the next stripe. */
  CbBypass = 0x2,               /**< Significance and refinement bits are raw from the fifth plane on. */
  CbTermAll = 0x4,              /**< Every pass is a segment. */
  CbResetContexts = 0x8,        /**< Contexts are reset after every pass that is not raw. */
  CbSegmentationSymbol = 0x10,  /**< Every cleanup pass ends with a symbol that tells errors. */
  CbLosslessLastPlane = 0x20,   /**< Encoder: the distortions of the lowest coded plane are those of exact samples. */
  CbTruncateOnError = 0x10000,  /**< One-shot decoder: after an error, samples are cut at the plane in error. */
  CbKeepDestination = 0x20000,  /**< Decoders: the destination is not set to zero first. */
  CbKeepMidpoint = 0x40000,     /**< One-shot decoder: bits below the last decoded plane stay. */
  CbContextsClear = 0x80000,    /**< Decoders: the state's memory behind the header is zero; do not clear it. */
  CbCheckTermination = 0x100000 /**< Decoders: a segment must end as predictable termination leaves it. */
} CodeBlockStyle;

/** The sub-band of a block, which selects its contexts. Other values are taken for LL. */
typedef enum SubbandKind {
  SubbandLL = 0, /**< Low-pass in both directions. */
  SubbandLH = 1, /**< High-pass vertically. */
  SubbandHL = 2, /**< High-pass horizontally. */
  SubbandHH = 3  /**< High-pass in both directions. */
} SubbandKind;

/** What an encoder keeps of a block. */
typedef struct J2kEncodeState J2kEncodeState;
/** What a progressive decoder keeps of a block. */
typedef struct J2kDecodeState J2kDecodeState;

/** @name Encoding
 * A block is loaded, which finds every decision of every pass, and then stored, which codes them. Each of the queries
 * tells of passes that have been stored, the distortions of all.
 * @{ */

/**
 * Allocates an encoder with zorMalloc.
 *
 * @param ppState Receives the address.
 * @param maxSize The size of the largest block in samples.
 * @return In this order: StatusNullPointer for a null argument, StatusBadSize for a width or height below 1,
 *         StatusNoMemory, with a null address stored, if there is not as much memory or no number of 32 bits for it.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeInitAlloc_JPEG2K(J2kEncodeState** ppState, RoiSize maxSize);
/**
 * Releases an encoder. Its mark is not checked.
 *
 * @param pState What zoriEncodeInitAlloc_JPEG2K allocated.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeFree_JPEG2K(J2kEncodeState* pState);
/**
 * Finds the decisions of all passes of a block, and by how much each pass reduces the distortion.
 *
 * @param pSrc The samples.
 * @param srcStep Bytes from row to row.
 * @param roiSize Width and height in samples; at most what the state was allocated for, which is not checked.
 * @param pState The encoder.
 * @param subband A SubbandKind.
 * @param magnitudeBits Planes from 30 down to 31 - magnitudeBits are coded. More than 31 is taken for 31; with too few
 *                      for the block's samples there is no pass.
 * @param termMode How segments end: 2 by predictable termination (T.800 D.4.2), 1 in as few bytes as possible, any
 *                 other value by the flush of T.800 C.2.9. No segment ends with a byte 0xFF.
 * @param reserved Ignored.
 * @param flags CodeBlockStyle.
 * @param pNbp Receives the number of significant bit planes: 0 for a block of zeros.
 * @param pNPasses Receives the number of passes.
 * @param pNSegments Receives the number of segments. A block without passes has one, none with CbTermAll.
 * @return In this order: StatusNullPointer and StatusBadContext for the state, StatusNullPointer for a null pointer to
 * a result, StatusBadSize for a width or height below 1, StatusNullPointer for null samples, StatusBadStep for a step
 * below 1.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep,
                                                                     RoiSize roiSize, J2kEncodeState* pState,
                                                                     int32_t subband, int32_t magnitudeBits,
                                                                     int32_t termMode, int32_t reserved, uint32_t flags,
                                                                     int32_t* pNbp, int32_t* pNPasses,
                                                                     int32_t* pNSegments);
/**
 * Stores the codeword of the loaded block, or as much of it as there is room for; the next call goes on there. A call
 * that has not finished has filled the room.
 *
 * @param pDst Receives the bytes.
 * @param pDstLen The room in bytes; receives how many were written.
 * @param pState The encoder.
 * @param pNotFinished Receives 1 while there is more to store, else 0.
 * @return In this order: StatusNullPointer and StatusBadContext for the state, StatusNullPointer for another null
 *         argument, StatusBadSize for a room below 1.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeStoreBits_JPEG2K_1u(uint8_t* pDst, int32_t* pDstLen, J2kEncodeState* pState,
                                                            int32_t* pNotFinished);
/**
 * Tells by how much the passes up to one reduce the squared error, in squares of the lowest coded plane's step. A
 * pass's own sum has 32 bits, in units of 1/8192 at its plane: enough for blocks of 65536 samples.
 *
 * @param pState The encoder.
 * @param pass The last of the passes, from 0.
 * @param pDist Receives the reduction.
 * @return In this order: StatusNullPointer and StatusBadContext for the state, StatusNullPointer for a null result,
 *         StatusBadPassNumber where there is no such pass.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeGetDist_JPEG2K(J2kEncodeState* pState, int32_t pass, double* pDist);
/**
 * Tells after how many bytes of the codeword it can be cut so that the passes up to one can be decoded as from all of
 * it. Rates never decrease from pass to pass, and no byte before one is 0xFF.
 *
 * @param pState The encoder.
 * @param pass The last of the passes, from 0.
 * @param pRate Receives the number of bytes.
 * @return As zoriEncodeGetDist_JPEG2K.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeGetRate_JPEG2K(J2kEncodeState* pState, int32_t pass, int32_t* pRate);
/**
 * Tells the length of a segment.
 *
 * @param pState The encoder.
 * @param segment The segment, from 0.
 * @param pLen Receives its length in bytes.
 * @return As zoriEncodeGetDist_JPEG2K, StatusBadPassNumber where there is no such segment.
 */
ZORJ_API StatusCode ZORJ_CALL zoriEncodeGetTermPassLen_JPEG2K(J2kEncodeState* pState, int32_t segment, int32_t* pLen);

/** @} */

/** @name Decoding at once
 * @{ */

/**
 * Tells how much memory zoriDecodeCodeBlock_JPEG2K_1u32s_C1R needs.
 *
 * @param maxSize The size of the largest block in samples.
 * @param pSize Receives the size in bytes.
 * @return As zoriDecodeCBProgrGetStateSize_JPEG2K.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeGetBufSize_JPEG2K(RoiSize maxSize, int32_t* pSize);
/**
 * Decodes a block. Samples get the middle of the interval that their decoded bits leave open, of which the bits below
 * the last decoded plane are cleared in the end, unless CbKeepMidpoint is set.
 *
 * @param pSrc The segments, one behind the other.
 * @param pDst Receives the samples; set to zero first unless CbKeepDestination is set.
 * @param dstStep Bytes from row to row.
 * @param roiSize Width and height in samples.
 * @param subband A SubbandKind.
 * @param nbp The number of significant bit planes.
 * @param nPasses How many passes to decode. Those for which there are no planes are left out.
 * @param pSegLen The length of each segment in bytes; one below 0 is taken for 0. What passes need beyond a segment's
 *                end reads as 0xFF.
 * @param nSegments The number of segments.
 * @param flags CodeBlockStyle.
 * @param pErrorPlane Receives the bit plane in error on StatusCodeBlockError; not touched otherwise. May be null.
 * @param pState Memory of as many bytes as zoriDecodeGetBufSize_JPEG2K tells for this size, at any address.
 * @return In this order: StatusNullPointer for null `pSrc` or `pState`, StatusBadSize for a width or height below 1,
 *         StatusNullPointer for null `pSegLen` or `pDst`, StatusBadStep for a step below 1. StatusCodeBlockError, with
 *         what was decoded up to it, where the data are corrupt.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(const uint8_t* pSrc, int32_t* pDst, int32_t dstStep,
                                                                   RoiSize roiSize, int32_t subband, int32_t nbp,
                                                                   int32_t nPasses, const int32_t* pSegLen,
                                                                   int32_t nSegments, uint32_t flags,
                                                                   int32_t* pErrorPlane, uint8_t* pState);

/** @} */

/** @name Decoding segment by segment
 * Initialise a state once; then attach a block, set its number of passes, and call Step with each segment in turn.
 * @{ */

/**
 * Tells the size of a state: with p = (width + 2) * 4 rounded up to a multiple of 32, it is
 * p * ((height + 1) / 2 + 2) + 388 bytes.
 *
 * @param maxSize The size of the largest block in samples.
 * @param pSize Receives the size in bytes.
 * @return In this order: StatusBadSize for a width or height below 1, StatusNullPointer for a null argument,
 *         StatusNoMemory where the size is no number of 32 bits.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrGetStateSize_JPEG2K(RoiSize maxSize, int32_t* pSize);
/**
 * Initialises a state.
 *
 * @param pState Memory of as many bytes as zoriDecodeCBProgrGetStateSize_JPEG2K tells, at any address.
 * @return StatusNullPointer for a null argument.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrInit_JPEG2K(J2kDecodeState* pState);
/**
 * Allocates a state with zorMalloc and initialises it.
 *
 * @param ppState Receives the address.
 * @param maxSize The size of the largest block in samples.
 * @return In this order: StatusNullPointer for a null argument, StatusBadSize for a width or height below 1,
 *         StatusNoMemory, with a null address stored, if there is not as much memory or no number of 32 bits for it.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrInitAlloc_JPEG2K(J2kDecodeState** ppState, RoiSize maxSize);
/**
 * Releases a state.
 *
 * @param pState What zoriDecodeCBProgrInitAlloc_JPEG2K allocated.
 * @return StatusNullPointer for a null argument, StatusBadContext for what is no state.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrFree_JPEG2K(J2kDecodeState* pState);
/**
 * Begins a block: no passes remain, and an error is forgotten.
 *
 * @param pDst Receives the samples, in this call zeros unless CbKeepDestination is set.
 * @param dstStep Bytes from row to row.
 * @param roiSize Width and height in samples; at most what the state is for, which is not checked.
 * @param pState The state.
 * @param subband A SubbandKind.
 * @param nbp The number of significant bit planes.
 * @param flags CodeBlockStyle.
 * @return In this order: StatusNullPointer and StatusBadContext for the state, StatusNullPointer for a null
 * destination, StatusBadStep for a step below 1, StatusBadSize for a width or height below 1.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(int32_t* pDst, int32_t dstStep, RoiSize roiSize,
                                                                     J2kDecodeState* pState, int32_t subband,
                                                                     int32_t nbp, uint32_t flags);
/**
 * Sets how many passes remain to be decoded.
 *
 * @param nPasses The number; any is accepted.
 * @param pState The state.
 * @return In this order: StatusNullPointer, StatusBadContext.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrSetPassCounter_JPEG2K(int32_t nPasses, J2kDecodeState* pState);
/**
 * Tells how many passes remain to be decoded.
 *
 * @param pState The state.
 * @param pNPasses Receives the number.
 * @return In this order: StatusNullPointer, StatusBadContext.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrGetPassCounter_JPEG2K(const J2kDecodeState* pState, int32_t* pNPasses);
/**
 * Tells the bit plane of the pass decoded last, or of the next one where decoding a pass leads to the next plane: the
 * cleanup with CbTermAll, and any pass that is followed by one of another plane in the same segment.
 *
 * @param pState The state.
 * @param pPlane Receives the plane.
 * @return In this order: StatusNullPointer and StatusBadContext for the state, StatusNullPointer for a null result.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrGetCurBitPlaneNum_JPEG2K(const J2kDecodeState* pState, int32_t* pPlane);
/**
 * Decodes the next segment. Without passes or planes left it does nothing.
 *
 * @param pSegment The segment's bytes.
 * @param segLen Their number. What passes need beyond it reads as 0xFF.
 * @param pState The state.
 * @return In this order: StatusNullPointer, StatusBadContext, StatusNotAttached before the first block,
 *         StatusCodeBlockError where the block's data are corrupt, from then on until the next block is attached.
 */
ZORJ_API StatusCode ZORJ_CALL zoriDecodeCBProgrStep_JPEG2K(const uint8_t* pSegment, int32_t segLen,
                                                           J2kDecodeState* pState);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
