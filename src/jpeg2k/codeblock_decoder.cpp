#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "core/checks.h"
#include "core/memory.h"
#include "core/row_address.h"
#include "core/unaligned.h"
#include "jpeg2k/codeblock_decode_kernels.h"
#include "zorj/jpeg2k_codeblock.h"

namespace zorj {
namespace {

constexpr uint32_t kMagic = 0x434D4150;
constexpr uint32_t kSign = 0x80000000u;
// What a state takes besides the map: the header, and up to 31 bytes that align the map.
constexpr int32_t kFixedBytes = 388;
constexpr uintptr_t kMapAlignment = 32;

// The pass that a block goes on with.
enum class NextPass : uint8_t {
  kCleanup,
  kRefinement,
  kSignificance,
  kCleanupAfterRaw,
  kRawRefinement,
  kRawSignificance
};

// The head of a state. States lie at any address, so it is copied out and in.
struct DecodeHeader {
  uint32_t magic;
  bool attached;
  bool failed;
  NextPass next;
  MqContexts contexts;
  int32_t plane;
  int32_t passes;  // that remain
  int32_t bypassThreshold;
  uint32_t flags;
  int32_t subband;
  int32_t step;
  RoiSize size;
  int32_t* samples;
};
static_assert(sizeof(DecodeHeader) <= kFixedBytes - (kMapAlignment - 1));

DecodeHeader loadHeader(const J2kDecodeState* state) {
  return loadUnaligned(reinterpret_cast<const DecodeHeader*>(state));
}
void storeHeader(J2kDecodeState* state, const DecodeHeader& header) {
  storeUnaligned(reinterpret_cast<DecodeHeader*>(state), header);
}
bool hasMagic(const J2kDecodeState* state) { return loadUnaligned(reinterpret_cast<const uint32_t*>(state)) == kMagic; }

uint8_t* mapMemory(J2kDecodeState* state) {
  const uintptr_t end = reinterpret_cast<uintptr_t>(state) + sizeof(DecodeHeader);
  const uintptr_t padding = (kMapAlignment - end % kMapAlignment) % kMapAlignment;
  return reinterpret_cast<uint8_t*>(state) + sizeof(DecodeHeader) + padding;
}

// 0 where the size is no number of 32 bits.
int32_t stateBytes(RoiSize size) {
  const int64_t rows = (int64_t{size.height} + 1) / 2 + 2;
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  if (stripeMapPitch(size.width) > (kMost - kFixedBytes) / rows) return 0;
  return static_cast<int32_t>(stripeMapBytes(size)) + kFixedBytes;
}

void initialise(J2kDecodeState* state) {
  DecodeHeader header{};
  header.magic = kMagic;
  storeHeader(state, header);
}

void attach(J2kDecodeState* state, int32_t* samples, int32_t step, RoiSize size, int32_t subband, int32_t nbp,
            uint32_t flags) {
  DecodeHeader header{};
  header.magic = kMagic;
  header.attached = true;
  header.next = NextPass::kCleanup;
  header.contexts = kInitialContexts;
  header.plane = std::max(nbp, 0) - 1;
  header.bypassThreshold = (flags & CbBypass) && nbp >= 4 ? nbp - 4 : 0;
  header.flags = flags;
  header.subband = subband;
  header.step = step;
  header.size = size;
  header.samples = samples;
  storeHeader(state, header);
  if (!(flags & CbKeepDestination)) {
    for (int32_t y = 0; y < size.height; ++y) {
      std::memset(static_cast<void*>(rowAt(samples, step, y)), 0, static_cast<size_t>(size.width) * sizeof *samples);
    }
  }
  if (!(flags & CbContextsClear)) std::memset(mapMemory(state), 0, static_cast<size_t>(stripeMapBytes(size)));
}

// Decodes the passes of one segment.
class SegmentDecoder {
 public:
  SegmentDecoder(DecodeHeader& header, uint8_t* map, const uint8_t* data, int32_t length)
      : header_(header),
        data_(data),
        length_(length),
        block_{reinterpret_cast<uint8_t*>(header.samples), header.step,    header.plane, StripeMap(map, header.size),
               zeroCodingTableOf(header.subband),          header.contexts},
        kernels_(codeBlockDecodeKernels()),
        causal_((header.flags & CbVerticallyCausal) != 0) {}

  bool decode() {
    if (header_.flags & CbTermAll) return decodePass();
    switch (header_.next) {
      case NextPass::kCleanupAfterRaw:
        return decodeCleanupAfterRaw();
      case NextPass::kRawSignificance:
        return decodeRawPasses();
      default:
        return decodeFirstSegment();
    }
  }

 private:
  // The segment is one pass.
  bool decodePass() {
    const NextPass pass = header_.next;
    --header_.passes;
    switch (pass) {
      case NextPass::kSignificance:
        header_.next = NextPass::kRefinement;
        mq_.start(data_, length_);
        return runMqPass(kernels_.significance[causal_], checksTermination());
      case NextPass::kRefinement:
        header_.next = NextPass::kCleanup;
        mq_.start(data_, length_);
        return runMqPass(kernels_.refinement[causal_], checksTermination());
      case NextPass::kRawSignificance:
        header_.next = NextPass::kRawRefinement;
        raw_.start(data_, length_);
        runRawPass(kernels_.rawSignificance[causal_]);
        return raw_.endsPadded();
      case NextPass::kRawRefinement:
        header_.next = NextPass::kCleanupAfterRaw;
        raw_.start(data_, length_);
        runRawPass(kernels_.rawRefinement);
        return raw_.endsPadded();
      default:
        mq_.start(data_, length_);
        if (!runCleanup(checksTermination())) return false;
        --header_.plane;
        header_.next = pass != NextPass::kCleanupAfterRaw && header_.plane >= header_.bypassThreshold
                           ? NextPass::kSignificance
                           : NextPass::kRawSignificance;
        return true;
    }
  }

  bool decodeCleanupAfterRaw() {
    mq_.start(data_, length_);
    --header_.passes;
    if (!runCleanup(checksTermination())) return false;
    if (header_.passes > 0) goOnRaw();
    return true;
  }

  bool decodeRawPasses() {
    raw_.start(data_, length_);
    runRawPass(kernels_.rawSignificance[causal_]);
    if (--header_.passes < 1) return true;
    runRawPass(kernels_.rawRefinement);
    --header_.passes;
    if (!raw_.endsPadded()) return false;
    header_.next = NextPass::kCleanupAfterRaw;
    return true;
  }

  bool decodeFirstSegment() {
    mq_.start(data_, length_);
    while (true) {
      const bool isLastPlane = header_.plane <= header_.bypassThreshold;
      --header_.passes;
      if (!runCleanup(checksTermination() && header_.plane == header_.bypassThreshold)) return false;
      if (isLastPlane && header_.passes > 0) goOnRaw();
      if (isLastPlane || header_.passes < 1) return true;
      --header_.plane;
      runMqPass(kernels_.significance[causal_], false);
      if (--header_.passes < 1) return true;
      runMqPass(kernels_.refinement[causal_], false);
      if (--header_.passes < 1) return true;
    }
  }

  void goOnRaw() {
    --header_.plane;
    header_.next = NextPass::kRawSignificance;
  }

  bool checksTermination() const { return (header_.flags & CbCheckTermination) != 0; }

  bool runMqPass(CodeBlockDecodeKernels::MqPass pass, bool endsSegment) {
    block_.plane = header_.plane;
    pass(block_, mq_);
    return endMqPass(endsSegment);
  }

  bool runCleanup(bool endsSegment) {
    block_.plane = header_.plane;
    kernels_.cleanup[causal_](block_, mq_);
    if ((header_.flags & CbSegmentationSymbol) && decodeSymbol() != 0b1010) return false;
    return endMqPass(endsSegment);
  }

  void runRawPass(CodeBlockDecodeKernels::RawPass pass) {
    block_.plane = header_.plane;
    pass(block_, raw_);
  }

  uint32_t decodeSymbol() {
    uint32_t symbol = 0;
    for (int i = 0; i < 4; ++i) symbol = symbol << 1 | mq_.decode(header_.contexts[kUniformContext]);
    return symbol;
  }

  bool endMqPass(bool checkEnd) {
    if (header_.flags & CbResetContexts) header_.contexts = kInitialContexts;
    return !checkEnd || mq_.endsPredictably();
  }

  DecodeHeader& header_;
  const uint8_t* data_;
  int32_t length_;
  DecodedBlock block_;
  const CodeBlockDecodeKernels& kernels_;
  bool causal_;
  MqDecoder mq_;
  RawDecoder raw_;
};

StatusCode step(J2kDecodeState* state, const uint8_t* segment, int32_t length) {
  DecodeHeader header = loadHeader(state);
  if (!header.attached) return StatusNotAttached;
  if (header.failed) return StatusCodeBlockError;
  if (header.passes < 1 || header.plane < 0) return StatusOk;
  header.failed = !SegmentDecoder(header, mapMemory(state), segment, length).decode();
  storeHeader(state, header);
  return header.failed ? StatusCodeBlockError : StatusOk;
}

StatusCode decodeSegments(J2kDecodeState* state, const uint8_t* bytes, const int32_t* lengths, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    if (const StatusCode status = step(state, bytes, lengths[i])) return status;
    bytes += std::max(lengths[i], 0);
  }
  return StatusOk;
}

template <class Change>
void changeSamples(int32_t* samples, int32_t step, RoiSize size, const Change& change) {
  for (int32_t y = 0; y < size.height; ++y) {
    int32_t* const row = rowAt(samples, step, y);
    for (int32_t x = 0; x < size.width; ++x) {
      storeUnaligned(row + x, static_cast<int32_t>(change(static_cast<uint32_t>(loadUnaligned(row + x)))));
    }
  }
}

}  // namespace
}  // namespace zorj

using namespace zorj;

StatusCode ZORJ_CALL zoriDecodeGetBufSize_JPEG2K(RoiSize maxSize, int32_t* pSize) {
  return zoriDecodeCBProgrGetStateSize_JPEG2K(maxSize, pSize);
}

StatusCode ZORJ_CALL zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(const uint8_t* pSrc, int32_t* pDst, int32_t dstStep,
                                                          RoiSize roiSize, int32_t subband, int32_t nbp,
                                                          int32_t nPasses, const int32_t* pSegLen, int32_t nSegments,
                                                          uint32_t flags, int32_t* pErrorPlane, uint8_t* pState) {
  if (anyNull(pSrc, pState)) return StatusNullPointer;
  if (isEmpty(roiSize)) return StatusBadSize;
  if (anyNull(pSegLen, pDst)) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  const auto state = reinterpret_cast<J2kDecodeState*>(pState);
  attach(state, pDst, dstStep, roiSize, subband, nbp, flags);
  zoriDecodeCBProgrSetPassCounter_JPEG2K(nPasses, state);
  const StatusCode status = decodeSegments(state, pSrc, pSegLen, nSegments);
  const int32_t plane = loadHeader(state).plane;
  const uint32_t decoded = plane < 0 ? ~0u : plane < 32 ? ~0u << plane : 0;  // bits from that plane up
  if (status == StatusCodeBlockError) {
    if (pErrorPlane) *pErrorPlane = plane;
    if (flags & CbTruncateOnError) {
      changeSamples(pDst, dstStep, roiSize, [decoded](uint32_t sample) {
        const uint32_t cut = sample & decoded;
        return (cut & ~kSign) != 0 ? cut | (decoded & (~decoded + 1)) : 0;
      });
    }
  }
  if (!(flags & CbKeepMidpoint) && plane >= 1) {
    changeSamples(pDst, dstStep, roiSize, [decoded](uint32_t sample) { return sample & decoded; });
  }
  return status;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrGetStateSize_JPEG2K(RoiSize maxSize, int32_t* pSize) {
  if (isEmpty(maxSize)) return StatusBadSize;
  if (anyNull(pSize)) return StatusNullPointer;
  const int32_t bytes = stateBytes(maxSize);
  if (bytes == 0) return StatusNoMemory;
  *pSize = bytes;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrInit_JPEG2K(J2kDecodeState* pState) {
  if (anyNull(pState)) return StatusNullPointer;
  initialise(pState);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrInitAlloc_JPEG2K(J2kDecodeState** ppState, RoiSize maxSize) {
  if (anyNull(ppState)) return StatusNullPointer;
  if (isEmpty(maxSize)) return StatusBadSize;
  *ppState = static_cast<J2kDecodeState*>(zorjMalloc(stateBytes(maxSize)));
  if (anyNull(*ppState)) return StatusNoMemory;
  initialise(*ppState);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrFree_JPEG2K(J2kDecodeState* pState) {
  if (anyNull(pState)) return StatusNullPointer;
  if (!hasMagic(pState)) return StatusBadContext;
  zorjFree(pState);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(int32_t* pDst, int32_t dstStep, RoiSize roiSize,
                                                            J2kDecodeState* pState, int32_t subband, int32_t nbp,
                                                            uint32_t flags) {
  if (anyNull(pState)) return StatusNullPointer;
  if (!hasMagic(pState)) return StatusBadContext;
  if (anyNull(pDst)) return StatusNullPointer;
  if (dstStep < 1) return StatusBadStep;
  if (isEmpty(roiSize)) return StatusBadSize;
  attach(pState, pDst, dstStep, roiSize, subband, nbp, flags);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrSetPassCounter_JPEG2K(int32_t nPasses, J2kDecodeState* pState) {
  if (anyNull(pState)) return StatusNullPointer;
  if (!hasMagic(pState)) return StatusBadContext;
  DecodeHeader header = loadHeader(pState);
  header.passes = nPasses;
  storeHeader(pState, header);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrGetPassCounter_JPEG2K(const J2kDecodeState* pState, int32_t* pNPasses) {
  if (anyNull(pState, pNPasses)) return StatusNullPointer;
  if (!hasMagic(pState)) return StatusBadContext;
  *pNPasses = loadHeader(pState).passes;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrGetCurBitPlaneNum_JPEG2K(const J2kDecodeState* pState, int32_t* pPlane) {
  if (anyNull(pState)) return StatusNullPointer;
  if (!hasMagic(pState)) return StatusBadContext;
  if (anyNull(pPlane)) return StatusNullPointer;
  *pPlane = loadHeader(pState).plane;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriDecodeCBProgrStep_JPEG2K(const uint8_t* pSegment, int32_t segLen, J2kDecodeState* pState) {
  if (anyNull(pSegment, pState)) return StatusNullPointer;
  if (!hasMagic(pState)) return StatusBadContext;
  return step(pState, pSegment, segLen);
}
