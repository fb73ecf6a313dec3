/** @file jpeg_huffman.h */
#ifndef ZORJ_JPEG_HUFFMAN_H
#define ZORJ_JPEG_HUFFMAN_H

#include "zorj/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct HuffmanEncodeSpec HuffmanEncodeSpec;
typedef struct HuffmanDecodeSpec HuffmanDecodeSpec;
typedef struct HuffmanEncodeState HuffmanEncodeState;
typedef struct HuffmanDecodeState HuffmanDecodeState;

ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanRawTableInit_JPEG_8u(const int32_t* pStatistics, uint8_t* pBits,
                                                                    uint8_t* pValues);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecGetBufSize_JPEG_8u(int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecInit_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                HuffmanEncodeSpec* pSpec);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                     HuffmanEncodeSpec** ppSpec);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanSpecFree_JPEG_8u(HuffmanEncodeSpec* pSpec);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecGetBufSize_JPEG_8u(int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecInit_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                HuffmanDecodeSpec* pSpec);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(const uint8_t* pBits, const uint8_t* pValues,
                                                                     HuffmanDecodeSpec** ppSpec);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanSpecFree_JPEG_8u(HuffmanDecodeSpec* pSpec);

ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateGetBufSize_JPEG_8u(int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateInit_JPEG_8u(HuffmanEncodeState* pState);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateInitAlloc_JPEG_8u(HuffmanEncodeState** ppState);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanStateFree_JPEG_8u(HuffmanEncodeState* pState);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                 int32_t* pDstPosition, int16_t* pLastDC,
                                                                 const HuffmanEncodeSpec* pDcSpec,
                                                                 const HuffmanEncodeSpec* pAcSpec,
                                                                 HuffmanEncodeState* pState, int32_t flush);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst,
                                                                        int32_t* pDstBitPosition, int16_t* pLastDC,
                                                                        const HuffmanEncodeSpec* pDcSpec,
                                                                        const HuffmanEncodeSpec* pAcSpec);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanOne_JPEG_16s1u_C1(const int16_t* pSrc, uint8_t* pDst, int32_t dstLength,
                                                                 int32_t* pDstPosition, const HuffmanEncodeSpec* pSpec,
                                                                 HuffmanEncodeState* pState, int32_t flush);
ZORJ_API StatusCode ZORJ_CALL zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(const int16_t* const pSrc[], int32_t samples,
                                                                   int32_t components, uint8_t* pDst, int32_t dstLength,
                                                                   int32_t* pDstPosition,
                                                                   const HuffmanEncodeSpec* const pSpecs[],
                                                                   HuffmanEncodeState* pState, int32_t flush);

ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateGetBufSize_JPEG_8u(int32_t* pSize);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateInit_JPEG_8u(HuffmanDecodeState* pState);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateInitAlloc_JPEG_8u(HuffmanDecodeState** ppState);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanStateFree_JPEG_8u(HuffmanDecodeState* pState);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int16_t* pLastDC,
                                                                 int32_t* pMarker, const HuffmanDecodeSpec* pDcSpec,
                                                                 const HuffmanDecodeSpec* pAcSpec,
                                                                 HuffmanDecodeState* pState);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t* pSrcBitPosition,
                                                                        int16_t* pDst, int16_t* pLastDC,
                                                                        int32_t* pMarker, uint32_t* pPrefetchedBits,
                                                                        int32_t* pPrefetchedCount,
                                                                        const HuffmanDecodeSpec* pDcSpec,
                                                                        const HuffmanDecodeSpec* pAcSpec);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanOne_JPEG_1u16s_C1(const uint8_t* pSrc, int32_t srcLength,
                                                                 int32_t* pSrcPosition, int16_t* pDst, int32_t* pMarker,
                                                                 const HuffmanDecodeSpec* pSpec,
                                                                 HuffmanDecodeState* pState);
ZORJ_API StatusCode ZORJ_CALL zoriDecodeHuffmanRow_JPEG_1u16s_C1P4(
    const uint8_t* pSrc, int32_t srcLength, int32_t* pSrcPosition, int16_t* const pDst[], int32_t samples,
    int32_t components, int32_t* pMarker, const HuffmanDecodeSpec* const pSpecs[], HuffmanDecodeState* pState);

#ifdef __cplusplus
}
#endif

#endif
