#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include "core/checks.h"
#include "core/memory.h"
#include "jpeg2k/codeblock_encode_kernels.h"
#include "jpeg2k/raw_bits.h"
#include "zorj/jpeg2k_codeblock.h"

using namespace zorj;

namespace {

constexpr uint32_t kMagic = 0x4C4D5344;
constexpr int32_t kMostPlanes = 31;
constexpr int32_t kMostPasses = 3 * kMostPlanes - 2;

// The longest list of decisions: four per column and plane, a sign per sample, and once per column the row that ends a
// run; the segmentation symbols come on top.
constexpr int64_t kDecisionsPerColumn = 4 * kMostPlanes + 4 + 2;
constexpr int64_t kMoreDecisions = 4 * kMostPlanes + int64_t{kDecisionSlack};
// A decision takes less than a byte on average, whatever the decisions are: no context gets to states in which one
// takes more without many that take much less. What ends a segment is within this.
constexpr int64_t kBytesToTerminate = 8;

struct EncodedPass {
  Decision* end;       // of its decisions; they begin where those of the pass before end
  int32_t distortion;  // by how much it falls, in units of 2^exponent
  int32_t exponent;
  int32_t rate;
  bool isRaw;
  bool endsSegment;
  bool resetsContexts;
};

// Where the parts of a state lie behind its head.
struct StateLayout {
  int64_t map;
  int64_t samples;
  int64_t bits;
  int64_t decisions;
  int64_t codeword;
  int64_t end;
};

}  // namespace

// Behind it lie the map, the samples, their bits by planes, the decisions and the codeword.
struct J2kEncodeState {
  uint32_t magic;
  uint8_t* map;
  uint32_t* samples;
  CellBits* bits;
  Decision* decisions;
  uint8_t* codeword;

  Termination termination;
  bool isCoded;
  int32_t passCount;
  int32_t segmentCount;
  int32_t segmentLengths[kMostPasses];
  const uint8_t* stored;  // up to where the caller has it
  const uint8_t* end;
  EncodedPass passes[kMostPasses];
};

namespace {

StateLayout layoutOf(RoiSize size) {
  constexpr int64_t kAlignment = 64;
  const int64_t stripes = (int64_t{size.height} + 3) / 4;
  const int64_t cells = stripes * ((int64_t{size.width} + kCellColumns - 1) / kCellColumns);
  const int64_t decisions = kDecisionsPerColumn * size.width * stripes + kMoreDecisions;
  int64_t end = sizeof(J2kEncodeState);
  const auto place = [&end](int64_t bytes) {
    const int64_t at = (end + kAlignment - 1) / kAlignment * kAlignment;
    end = at + bytes;
    return at;
  };
  StateLayout layout;
  layout.map = place(stripeMapBytes(size));
  layout.samples = place(cells * kCellBits * int64_t{sizeof(uint32_t)});
  layout.bits = place(cells * (kMostPlanes + 1) * int64_t{sizeof(CellBits)});
  layout.decisions = place(decisions);
  layout.codeword = place(1 + decisions + kMostPasses * kBytesToTerminate) + 1;  // one in front for the MQ coder
  layout.end = end;
  return layout;
}

// Finds the decisions of all passes.
class BlockModeller {
 public:
  BlockModeller(J2kEncodeState& state, RoiSize size, int32_t subband, int32_t lowestPlane, uint32_t flags)
      : state_(state),
        kernels_(codeBlockEncodeKernels()),
        map_(state.map, size),
        zeroCoding_(zeroCodingTableOf(subband)),
        lowestPlane_(lowestPlane),
        flags_(flags),
        causal_((flags & CbVerticallyCausal) != 0) {}

  // Returns how many planes are significant.
  int32_t model(const int32_t* source, int32_t step, RoiSize size) {
    state_.passCount = 0;
    const uint32_t all = kernels_.load(reinterpret_cast<const uint8_t*>(source), step, size, map_, state_.samples);
    const int32_t planes = std::bit_width(all & 0x7FFFFFFFu);
    if (planes <= lowestPlane_) return planes;
    cells_ = static_cast<size_t>(map_.stripes()) * static_cast<size_t>(map_.cellsInRow());
    kernels_.splitPlanes(state_.samples, cells_, planes, state_.bits);
    signs_ = state_.bits + static_cast<size_t>(planes) * cells_;
    std::memset(state_.map, 0, static_cast<size_t>(stripeMapBytes(size)));
    next_ = state_.decisions;
    addPass(planes - 1, kernels_.cleanup[causal_], false, true);
    for (int32_t plane = planes - 2; plane >= lowestPlane_; --plane) {
      const bool isRaw = (flags_ & CbBypass) && plane < planes - 4;
      addPass(plane, (isRaw ? kernels_.rawSignificance : kernels_.significance)[causal_], isRaw, false);
      addPass(plane, isRaw ? kernels_.rawRefinement : kernels_.refinement[causal_], isRaw, false);
      addPass(plane, kernels_.cleanup[causal_], false, true);
    }
    *next_ = 0;
    return planes;
  }

 private:
  void addPass(int32_t plane, CodeBlockEncodeKernels::Pass find, bool isRaw, bool isCleanup) {
    const bool exact = (flags_ & CbLosslessLastPlane) && plane == lowestPlane_;
    ModelledBlock block{map_,
                        zeroCoding_,
                        state_.samples,
                        signs_,
                        state_.bits + static_cast<size_t>(plane) * cells_,
                        plane,
                        exact ? kExactDistortions : kMidpointDistortions,
                        0};
    next_ = find(block, next_);
    if (isCleanup && (flags_ & CbSegmentationSymbol)) addSymbol();
    EncodedPass& pass = state_.passes[state_.passCount++];
    pass = {};
    pass.end = next_;
    pass.distortion = static_cast<int32_t>(block.distortion);
    pass.exponent = 2 * (plane - lowestPlane_) - 13;
    pass.isRaw = isRaw;
    pass.resetsContexts = (flags_ & CbResetContexts) && !isRaw;
  }

  void addSymbol() {
    for (const int decision : {1, 0, 1, 0}) *next_++ = static_cast<Decision>(2 * kUniformContext + decision);
  }

  J2kEncodeState& state_;
  const CodeBlockEncodeKernels& kernels_;
  const StripeMap map_;
  const ZeroCodingTable& zeroCoding_;
  const int32_t lowestPlane_;
  const uint32_t flags_;
  const bool causal_;
  size_t cells_ = 0;
  const CellBits* signs_ = nullptr;
  Decision* next_ = nullptr;
};

void markSegments(J2kEncodeState& state, bool terminateAll) {
  state.segmentCount = terminateAll ? 0 : state.passCount == 0;
  std::ranges::fill(state.segmentLengths, 0);
  for (int32_t i = 0; i < state.passCount; ++i) {
    EncodedPass& pass = state.passes[i];
    pass.endsSegment = terminateAll || i + 1 == state.passCount || pass.isRaw != state.passes[i + 1].isRaw;
    state.segmentCount += pass.endsSegment;
  }
}

// Codes the decisions of all passes.
class BlockCoder {
 public:
  explicit BlockCoder(J2kEncodeState& state)
      : state_(state), kernels_(codeBlockEncodeKernels()), end_(state.codeword), decisions_(state.decisions) {}

  void code() {
    for (int32_t i = 0; i < state_.passCount; ++i) {
      EncodedPass& pass = state_.passes[i];
      if (pass.isRaw) {
        codeRawPass(pass);
      } else {
        codeMqPass(pass);
      }
      segmentOpen_ = !pass.endsSegment;
      decisions_ = pass.end;
    }
    settleRates();
    state_.end = end_;
  }

 private:
  void codeMqPass(EncodedPass& pass) {
    if (!segmentOpen_) mq_.start(end_);
    kernels_.encode(decisions_, pass.end, contexts_, mq_);
    if (pass.resetsContexts) contexts_ = kInitialContexts;
    if (pass.endsSegment) {
      endSegment(pass, mq_.terminate(state_.termination));
    } else {
      pass.rate = codewordLength() + static_cast<int32_t>(mq_.bytesNeeded());
    }
  }

  void codeRawPass(EncodedPass& pass) {
    if (!segmentOpen_) raw_.start(end_);
    for (const Decision* decision = decisions_; decision != pass.end; ++decision) raw_.encode(*decision);
    if (pass.endsSegment) {
      endSegment(pass, raw_.terminate());
    } else {
      pass.rate = static_cast<int32_t>(raw_.end() - state_.codeword);
    }
  }

  void endSegment(EncodedPass& pass, uint8_t* end) {
    state_.segmentLengths[segment_++] = static_cast<int32_t>(end - end_);
    end_ = end;
    pass.rate = codewordLength();
  }

  // No pass needs more than what the passes behind it end with, and 0xFF, which decoders assume behind the end.
  void settleRates() {
    int32_t most = codewordLength();
    for (int32_t i = state_.passCount - 1; i >= 0; --i) {
      EncodedPass& pass = state_.passes[i];
      if (pass.endsSegment) most = pass.rate;
      pass.rate = std::min(pass.rate, most);
      pass.rate -= pass.rate > 0 && state_.codeword[pass.rate - 1] == 0xFF;
    }
  }

  // Without the open segment.
  int32_t codewordLength() const { return static_cast<int32_t>(end_ - state_.codeword); }

  J2kEncodeState& state_;
  const CodeBlockEncodeKernels& kernels_;
  MqContexts contexts_ = kInitialContexts;
  MqEncoder mq_;
  RawEncoder raw_;
  uint8_t* end_;  // of the segments before the open one
  const Decision* decisions_;
  int32_t segment_ = 0;
  bool segmentOpen_ = false;
};

Termination terminationOf(int32_t mode) {
  return mode == 1 ? Termination::kShortest : mode == 2 ? Termination::kPredictable : Termination::kFlush;
}

}  // namespace

StatusCode ZORJ_CALL zoriEncodeInitAlloc_JPEG2K(J2kEncodeState** ppState, RoiSize maxSize) {
  if (anyNull(ppState)) return StatusNullPointer;
  if (isEmpty(maxSize)) return StatusBadSize;
  *ppState = nullptr;
  // One dimension alone may keep the sum from being a number of 64 bits.
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  if (int64_t{maxSize.width} * maxSize.height > kMost) return StatusNoMemory;
  const StateLayout layout = layoutOf(maxSize);
  if (layout.end > kMost) return StatusNoMemory;
  auto* const memory = static_cast<uint8_t*>(zorjMalloc(static_cast<int32_t>(layout.end)));
  if (anyNull(memory)) return StatusNoMemory;
  auto* const state = new (memory) J2kEncodeState{};
  state->map = memory + layout.map;
  state->samples = reinterpret_cast<uint32_t*>(memory + layout.samples);
  state->bits = reinterpret_cast<CellBits*>(memory + layout.bits);
  state->decisions = memory + layout.decisions;
  state->codeword = memory + layout.codeword;
  state->magic = kMagic;
  *ppState = state;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeFree_JPEG2K(J2kEncodeState* pState) {
  if (anyNull(pState)) return StatusNullPointer;
  zorjFree(pState);
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(const int32_t* pSrc, int32_t srcStep, RoiSize roiSize,
                                                            J2kEncodeState* pState, int32_t subband,
                                                            int32_t magnitudeBits, int32_t termMode, int32_t,
                                                            uint32_t flags, int32_t* pNbp, int32_t* pNPasses,
                                                            int32_t* pNSegments) {
  if (anyNull(pState)) return StatusNullPointer;
  if (pState->magic != kMagic) return StatusBadContext;
  if (anyNull(pNbp, pNPasses, pNSegments)) return StatusNullPointer;
  if (isEmpty(roiSize)) return StatusBadSize;
  if (anyNull(pSrc)) return StatusNullPointer;
  if (srcStep < 1) return StatusBadStep;
  const int32_t lowestPlane = kMostPlanes - std::clamp(magnitudeBits, 0, kMostPlanes);
  *pNbp = BlockModeller(*pState, roiSize, subband, lowestPlane, flags).model(pSrc, srcStep, roiSize);
  markSegments(*pState, (flags & CbTermAll) != 0);
  pState->termination = terminationOf(termMode);
  pState->isCoded = false;
  *pNPasses = pState->passCount;
  *pNSegments = pState->segmentCount;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeStoreBits_JPEG2K_1u(uint8_t* pDst, int32_t* pDstLen, J2kEncodeState* pState,
                                                   int32_t* pNotFinished) {
  if (anyNull(pState)) return StatusNullPointer;
  if (pState->magic != kMagic) return StatusBadContext;
  if (anyNull(pDst, pDstLen, pNotFinished)) return StatusNullPointer;
  if (*pDstLen < 1) return StatusBadSize;
  if (!pState->isCoded) {
    BlockCoder(*pState).code();
    pState->stored = pState->codeword;
    pState->isCoded = true;
  }
  const auto left = static_cast<int32_t>(pState->end - pState->stored);
  *pDstLen = std::min(*pDstLen, left);
  std::memcpy(pDst, pState->stored, static_cast<size_t>(*pDstLen));
  pState->stored += *pDstLen;
  *pNotFinished = *pDstLen < left;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeGetDist_JPEG2K(J2kEncodeState* pState, int32_t pass, double* pDist) {
  if (anyNull(pState)) return StatusNullPointer;
  if (pState->magic != kMagic) return StatusBadContext;
  if (anyNull(pDist)) return StatusNullPointer;
  if (pass < 0 || pass >= pState->passCount) return StatusBadPassNumber;
  double sum = 0;
  for (int32_t i = 0; i <= pass; ++i) sum += std::ldexp(pState->passes[i].distortion, pState->passes[i].exponent);
  *pDist = sum;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeGetRate_JPEG2K(J2kEncodeState* pState, int32_t pass, int32_t* pRate) {
  if (anyNull(pState)) return StatusNullPointer;
  if (pState->magic != kMagic) return StatusBadContext;
  if (anyNull(pRate)) return StatusNullPointer;
  if (pass < 0 || pass >= pState->passCount) return StatusBadPassNumber;
  *pRate = pState->passes[pass].rate;
  return StatusOk;
}

StatusCode ZORJ_CALL zoriEncodeGetTermPassLen_JPEG2K(J2kEncodeState* pState, int32_t segment, int32_t* pLen) {
  if (anyNull(pState)) return StatusNullPointer;
  if (pState->magic != kMagic) return StatusBadContext;
  if (anyNull(pLen)) return StatusNullPointer;
  if (segment < 0 || segment >= pState->segmentCount) return StatusBadPassNumber;
  *pLen = pState->segmentLengths[segment];
  return StatusOk;
}
