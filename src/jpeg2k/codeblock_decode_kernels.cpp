#include "jpeg2k/codeblock_decode_kernels.h"

#include "core/isa.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg2k/codeblock_decode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// There is no vector code here. The levels differ in the instructions for bits: counting zeros, shifting by a variable.

constexpr uint32_t kSign = 0x80000000u;

// Bits from `plane` up; planes of bits that a word does not have are possible in corrupt streams.
uint32_t bitsFrom(int32_t plane) { return plane < 32 ? ~0u << plane : 0; }

// A magnitude of which the lowest known bit is that of `plane`: half a step more is the best guess of the rest.
uint32_t withMidpoint(uint32_t bit, int32_t plane) {
  return plane < 34 ? static_cast<uint32_t>(uint64_t{2 * bit + 1} << plane >> 1) : 0;
}

// How the decisions of a pass are coded.
struct MqCoded {
  MqDecoder mq;
  MqContexts* contexts;
  [[gnu::always_inline]] uint32_t decide(uint32_t context) { return mq.decode((*contexts)[context]); }
  [[gnu::always_inline]] uint32_t sign(ColumnWord word, uint32_t row) {
    const uint32_t entry = kSignCodingTable[word.signs(row)];
    return decide(entry & 0x7F) ^ entry >> 7;
  }
};
struct RawCoded {
  RawDecoder raw;
  uint32_t decide(uint32_t) { return raw.bit(); }
  uint32_t sign(ColumnWord, uint32_t) { return raw.bit(); }
};

// A pass over the block, cell by cell.
template <bool kCausal, class Coded>
class Pass {
 public:
  Pass(const DecodedBlock& block, const Coded& coded)
      : block_(block),
        map_(block.map),
        coded_(coded),
        up_(block.map.up()),
        newMagnitude_(withMidpoint(1, block.plane)) {}

  const Coded& significance() {
    forEachCell([this](Cell& cell, int32_t stripe, int32_t index) {
      const CellBits insignificant = map_.existing(stripe, index) & ~cell.significant;
      const CellBits candidates = map_.template neighbourhood<kCausal>(stripe, index) & insignificant;
      if (candidates != 0) decodeSignificance(cell, candidates, insignificant);
    });
    return coded_;
  }

  const Coded& refinement() {
    forEachCell([this](Cell& cell, int32_t stripe, int32_t index) {
      const CellBits members = map_.existing(stripe, index) & cell.significant & ~cell.visited;
      if (members == 0) return;
      const CellBits before = cell.refined;
      cell.refined = before | members;
      decodeRefinement(members, before, before | map_.template neighbourhood<kCausal>(stripe, index));
    });
    return coded_;
  }

  const Coded& cleanup() {
    forEachCell([this](Cell& cell, int32_t stripe, int32_t index) {
      const CellBits members = map_.existing(stripe, index) & ~cell.significant & ~cell.visited;
      if (members != 0) {
        // What keeps a column from being coded as a run.
        decodeCleanup(
            cell, members,
            map_.isFull(stripe) ? map_.template neighbourhood<kCausal>(stripe, index) | ~members : ~CellBits{0});
      }
      cell.visited = 0;
    });
    return coded_;
  }

 private:
  // The work on one cell is kept apart, and its coder in variables, so that the compiler finds registers for it.

  [[gnu::noinline]] void decodeSignificance(Cell& cell, CellBits candidates, CellBits insignificant) {
    Coded coded = coded_;
    CellBits visited = cell.visited | candidates, significant = cell.significant;
    do {
      const auto bit = static_cast<uint32_t>(std::countr_zero(candidates));
      candidates &= candidates - 1;
      if (!decideSignificance(coded, bit)) continue;
      significant |= CellBits{1} << bit;
      const CellBits more = (StripeMap::laterNeighbours(bit & 3) << bit) & insignificant;
      candidates |= more;
      visited |= more;
    } while (candidates != 0);
    cell.significant = significant;
    cell.visited = visited;
    coded_ = coded;
  }

  [[gnu::noinline]] void decodeRefinement(CellBits members, CellBits before, CellBits known) {
    Coded coded = coded_;
    const uint32_t kept = kSign | (block_.plane < 31 ? bitsFrom(block_.plane + 1) : 0);
    const uint32_t refined[2] = {withMidpoint(0, block_.plane), withMidpoint(1, block_.plane)};
    do {
      const auto bit = static_cast<uint32_t>(std::countr_zero(members));
      members &= members - 1;
      const auto context = static_cast<uint32_t>(kFirstRefinementContext + (known >> bit & 1) + (before >> bit & 1));
      uint32_t* const at = sampleAt(bit);
      const uint32_t value = loadUnaligned(at);
      storeUnaligned(at, (value & kept) | refined[coded.decide(context)]);
    } while (members != 0);
    coded_ = coded;
  }

  [[gnu::noinline]] void decodeCleanup(Cell& cell, CellBits members, CellBits busy) {
    Coded coded = coded_;
    CellBits significant = cell.significant;
    while (members != 0) {
      auto bit = static_cast<uint32_t>(std::countr_zero(members));
      if ((bit & 3) == 0 && (busy >> bit & 15) == 0) {
        if (!coded.decide(kRunLengthContext)) {
          members &= ~(CellBits{15} << bit);
          continue;
        }
        const uint32_t high = coded.decide(kUniformContext);
        bit += 2 * high + coded.decide(kUniformContext);
        becomeSignificant(coded, bit);
      } else if (!decideSignificance(coded, bit)) {
        members &= members - 1;
        continue;
      }
      members &= ~CellBits{1} << bit;
      significant |= CellBits{1} << bit;
      busy |= StripeMap::laterNeighbours(bit & 3) << bit;
    }
    cell.significant = significant;
    coded_ = coded;
  }

  template <class Visit>
  void forEachCell(const Visit& visit) {
    for (int32_t stripe = 0; stripe < map_.stripes(); ++stripe) {
      Cell* const cells = map_.cells(stripe);
      down_ = map_.down(stripe);
      uint32_t* const words = map_.words(stripe);
      uint8_t* const samples = block_.samples + ptrdiff_t{4} * stripe * block_.step;
      for (int32_t index = 0; index < map_.cellsInRow(); ++index) {
        words_ = words + index * kCellColumns;
        samples_ = samples + ptrdiff_t{4} * index * kCellColumns;
        visit(cells[index], stripe, index);
      }
    }
  }

  uint32_t* sampleAt(uint32_t bit) const {
    return reinterpret_cast<uint32_t*>(samples_ + static_cast<ptrdiff_t>(bit & 3) * block_.step + (bit & ~3u));
  }

  [[gnu::always_inline]] bool decideSignificance(Coded& coded, uint32_t bit) {
    const ColumnWord word{words_[bit / 4]};
    if (!coded.decide(block_.zeroCoding[word.neighbours(bit & 3)])) return false;
    becomeSignificant(coded, bit);
    return true;
  }

  [[gnu::always_inline]] void becomeSignificant(Coded& coded, uint32_t bit) {
    uint32_t* const word = words_ + bit / 4;
    const uint32_t negative = coded.sign(ColumnWord{*word}, bit & 3);
    StripeMap::setSignificant<kCausal>(word, up_, down_, bit & 3, negative);
    storeUnaligned(sampleAt(bit), negative << 31 | newMagnitude_);
  }

  const DecodedBlock& block_;
  const StripeMap map_;
  Coded coded_;
  const ptrdiff_t up_;
  ptrdiff_t down_ = 0;
  const uint32_t newMagnitude_;
  uint32_t* words_ = nullptr;   // of the cell's first column
  uint8_t* samples_ = nullptr;  // the cell's first
};

template <bool kCausal>
void significance(DecodedBlock& block, MqDecoder& decoder) {
  decoder = Pass<kCausal, MqCoded>(block, {decoder, &block.contexts}).significance().mq;
}
template <bool kCausal>
void refinement(DecodedBlock& block, MqDecoder& decoder) {
  decoder = Pass<kCausal, MqCoded>(block, {decoder, &block.contexts}).refinement().mq;
}
template <bool kCausal>
void cleanup(DecodedBlock& block, MqDecoder& decoder) {
  decoder = Pass<kCausal, MqCoded>(block, {decoder, &block.contexts}).cleanup().mq;
}
template <bool kCausal>
void rawSignificance(DecodedBlock& block, RawDecoder& decoder) {
  decoder = Pass<kCausal, RawCoded>(block, {decoder}).significance().raw;
}
void rawRefinement(DecodedBlock& block, RawDecoder& decoder) {
  decoder = Pass<false, RawCoded>(block, {decoder}).refinement().raw;
}

constexpr CodeBlockDecodeKernels kernels = {{&significance<false>, &significance<true>},
                                            {&refinement<false>, &refinement<true>},
                                            {&cleanup<false>, &cleanup<true>},
                                            {&rawSignificance<false>, &rawSignificance<true>},
                                            &rawRefinement};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const CodeBlockDecodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const CodeBlockDecodeKernels& codeBlockDecodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
