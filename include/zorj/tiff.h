/**
 * @file tiff.h
 * Rows of TIFF strips: PackBits run-length coding (TIFF 6.0, section 9), and the split of rows of 16-bit samples into
 * planes of high and low bytes, which packs better, with its reverse.
 *
 * A PackBits row is a sequence of packets, a header byte and what it says:
 *
 * | header     | packet                                                     |
 * |------------|------------------------------------------------------------|
 * | 0 to 127   | literal: the next header + 1 bytes                         |
 * | 129 to 255 | replicate: the next byte, 257 - header (2 to 128) times    |
 * | 128        | nothing; the next byte is a header again                   |
 *
 * Rows are packed one by one; positions into the caller's buffers go in and come back advanced, so that the rows of a
 * strip follow one another. A packed row has at most (length + 127) / 128 bytes more than the row.
 *
 * @code
 * int32_t position = 0;
 * for (int32_t y = 0; y < height && status == StatusOk; ++y) {
 *   status = zoriPackBitsRow_TIFF_8u_C1(pixels + (size_t)y * rowBytes, rowBytes, strip, &position, stripCapacity);
 * }
 * @endcode
 */
#ifndef ZORJ_TIFF_H
#define ZORJ_TIFF_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Packs a row. Two equal bytes where a packet begins are replicated, with all that follow them, up to 128. Other bytes
 * are literal up to 128, or to the first three equal ones; a pair within a literal stays in it.
 *
 * @param pSrc          the row
 * @param srcLength     its length in bytes
 * @param pDst          receives the packets; may not overlap the row
 * @param pDstPosition  where to write, in bytes from `pDst`; receives the position after the last packet
 * @param dstLength     bytes of the destination, counted from `pDst`
 * @return In this order: StatusNullPointer for a null pointer; StatusBadSize for a length below 1; StatusPackBitsError
 *         for a position below 0, and where a packet does not fit. The packets before that one are written then,
 *         nothing is written of it or behind it, and the position is where it would have begun.
 */
ZORJ_API StatusCode ZORJ_CALL zoriPackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int32_t srcLength, uint8_t* pDst,
                                                         int32_t* pDstPosition, int32_t dstLength);

/**
 * Unpacks one row.
 *
 * @param pSrc          the packets. One byte after the source must be readable: it is what a replicate header repeats
 *                      that is the last byte of the source.
 * @param pSrcPosition  where to read, in bytes from `pSrc`; receives the position after the row's last packet, which
 *                      may then be one beyond `srcLength`
 * @param srcLength     bytes of the source, counted from `pSrc`
 * @param pDst          receives the row; may not overlap the source
 * @param dstLength     its length in bytes
 * @return In this order: StatusNullPointer for a null pointer; StatusBadSize for a length below 1; StatusPackBitsError
 *         for a position below 0, if the source ends before the row is full, with the position at or beyond
 *         `srcLength`, or where a packet leads beyond the source or the row, with the position after its header. The
 *         packets before that one are unpacked then, and the rest of the row is left as it was.
 */
ZORJ_API StatusCode ZORJ_CALL zoriUnpackBitsRow_TIFF_8u_C1(const uint8_t* pSrc, int32_t* pSrcPosition,
                                                           int32_t srcLength, uint8_t* pDst, int32_t dstLength);

/**
 * Splits a row of 16-bit samples into its high and its low bytes.
 *
 * @param pSrc   the samples, little-endian, at any byte address
 * @param pDst   two planes of `width` bytes: the first receives the high bytes, the second the low ones; may overlap
 *               neither the samples nor one another
 * @param width  samples of the row
 * @return In this order: StatusNullPointer for a null pointer, planes included; StatusBadStep for a width below 1.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriSplitRow_TIFF_16u8u_C1(const uint16_t* pSrc, uint8_t* const pDst[2], int32_t width);

/**
 * Joins high and low bytes to a row of 16-bit samples.
 *
 * @param pSrc   two planes of `width` bytes: the high bytes, then the low ones
 * @param pDst   receives the samples, little-endian, at any byte address; may not overlap the planes
 * @param width  samples of the row
 * @return In this order: StatusNullPointer for a null pointer, planes included; StatusBadStep for a width below 1.
 *         Nothing is written on failure.
 */
ZORJ_API StatusCode ZORJ_CALL zoriJoinRow_TIFF_8u16u_C1(const uint8_t* const pSrc[2], uint16_t* pDst, int32_t width);

#ifdef __cplusplus
}
#endif

#endif
