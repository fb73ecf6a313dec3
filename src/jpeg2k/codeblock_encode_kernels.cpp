#include "jpeg2k/codeblock_encode_kernels.h"

#include <cstring>

#include "core/isa.h"
#include "core/row_address.h"
#include "core/unaligned.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "jpeg2k/codeblock_encode_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

uint32_t load(const uint8_t* source, int32_t step, RoiSize size, const StripeMap& map, uint32_t* samples) {
  uint32_t all = 0;
  for (int32_t stripe = 0; stripe < map.stripes(); ++stripe) {
    const int32_t rows = std::min(size.height - 4 * stripe, 4);
    const size_t stripeSamples = static_cast<size_t>(map.cellsInRow()) * kCellBits;
    std::memset(samples, 0, stripeSamples * sizeof *samples);
    for (int32_t row = 0; row < rows; ++row) {
      const auto* from = reinterpret_cast<const uint32_t*>(rowAt(source, step, 4 * stripe + row));
      for (int32_t x = 0; x < size.width; ++x) {
        const uint32_t sample = loadUnaligned(from + x);
        samples[4 * x + row] = sample;
        all |= sample;
      }
    }
    samples += stripeSamples;
  }
  return all;
}

#if ZORJ_SIMD

using Words = hn::Vec128<int32_t>;

// Bits 8 * kByte to 8 * kByte + 7 of 16 words.
template <int kByte>
hn::Vec128<uint8_t> bytesOf(const Words (&words)[4]) {
  const hn::Repartition<int16_t, hn::DFromV<Words>> d16;
  const auto byte = [](Words word) {
    const Words low =
        hn::BitCast(hn::DFromV<Words>(), hn::ShiftRight<8 * kByte>(hn::BitCast(hn::Full128<uint32_t>(), word)));
    return hn::And(low, hn::Set(hn::DFromV<Words>(), 0xFF));
  };
  return packUnsigned(hn::ReorderDemote2To(d16, byte(words[0]), byte(words[1])),
                      hn::ReorderDemote2To(d16, byte(words[2]), byte(words[3])));
}

// Takes those of the planes 8 * kByte to 8 * kByte + 7 that are below `planes`.
template <int kByte>
void splitBytes(const Words (&words)[4], int32_t planes, size_t cells, uint8_t* bits) {
  constexpr int32_t kLowest = 8 * kByte;
  const hn::Full128<int8_t> d;
  auto rest = hn::BitCast(d, bytesOf<kByte>(words));
  for (int32_t plane = kLowest + 7; plane >= kLowest; --plane, rest = hn::Add(rest, rest)) {
    if (plane >= planes) continue;
    hn::StoreMaskBits(d, hn::Lt(rest, hn::Zero(d)), bits + static_cast<size_t>(plane) * cells * sizeof(CellBits));
  }
}

void splitPlanes(const uint32_t* samples, size_t cells, int32_t planes, CellBits* bits) {
  const hn::Full128<int32_t> d;
  constexpr size_t kSamples = 16;
  const auto* from = reinterpret_cast<const int32_t*>(samples);
  auto* to = reinterpret_cast<uint8_t*>(bits);
  uint8_t* signs = reinterpret_cast<uint8_t*>(bits + static_cast<size_t>(planes) * cells);
  for (size_t i = 0; i < cells * kCellBits;
       i += kSamples, from += kSamples, to += kSamples / 8, signs += kSamples / 8) {
    const Words words[4] = {hn::Load(d, from), hn::Load(d, from + 4), hn::Load(d, from + 8), hn::Load(d, from + 12)};
    splitBytes<0>(words, planes, cells, to);
    if (planes > 8) splitBytes<1>(words, planes, cells, to);
    if (planes > 16) splitBytes<2>(words, planes, cells, to);
    if (planes > 24) splitBytes<3>(words, planes, cells, to);
    const auto top = hn::BitCast(hn::Full128<int8_t>(), bytesOf<3>(words));
    hn::StoreMaskBits(hn::Full128<int8_t>(), hn::Lt(top, hn::Zero(hn::Full128<int8_t>())), signs);
  }
}

#else

void splitPlanes(const uint32_t* samples, size_t cells, int32_t planes, CellBits* bits) {
  for (size_t cell = 0; cell < cells; ++cell, samples += kCellBits) {
    const auto bitsOf = [samples](int32_t plane) {
      CellBits ones = 0;
      for (int32_t i = 0; i < kCellBits; ++i) ones |= CellBits{samples[i] >> plane & 1} << i;
      return ones;
    };
    for (int32_t plane = 0; plane < planes; ++plane) bits[static_cast<size_t>(plane) * cells + cell] = bitsOf(plane);
    bits[static_cast<size_t>(planes) * cells + cell] = bitsOf(31);
  }
}

#endif

// A pass over the block, cell by cell.
template <bool kCausal, bool kRaw>
class Pass {
 public:
  Pass(ModelledBlock& block, Decision* decisions)
      : block_(block),
        map_(block.map),
        next_(decisions),
        up_(block.map.up()),
        magnitudeUp_(block.plane < 6 ? static_cast<uint32_t>(6 - block.plane) : 0),
        magnitudeDown_(block.plane < 6 ? 0 : static_cast<uint32_t>(block.plane - 6)) {}

  Decision* significance() {
    return forEachCell([this](Cell& cell, int32_t stripe, int32_t index) {
      const CellBits insignificant = map_.existing(stripe, index) & ~cell.significant;
      CellBits candidates = map_.template neighbourhood<kCausal>(stripe, index) & insignificant;
      CellBits visited = 0;
      while (candidates != 0) {
        const auto bit = static_cast<uint32_t>(std::countr_zero(candidates));
        const CellBits sample = CellBits{1} << bit;
        visited |= sample;
        candidates ^= sample;
        if (codeSignificance(bit)) candidates |= (StripeMap::laterNeighbours(bit & 3) << bit) & insignificant;
      }
      cell.significant |= visited & ones_;
      cell.visited = visited;
    });
  }

  Decision* refinement() {
    return forEachCell([this](Cell& cell, int32_t stripe, int32_t index) {
      CellBits members = cell.significant & ~cell.visited;
      if (members == 0) return;
      const CellBits before = cell.refined;
      const CellBits known = before | map_.template neighbourhood<kCausal>(stripe, index);
      cell.refined = before | members;
      while (members != 0) {
        const auto bit = static_cast<uint32_t>(std::countr_zero(members));
        members &= members - 1;
        code(static_cast<uint32_t>(kFirstRefinementContext + (known >> bit & 1) + (before >> bit & 1)), oneAt(bit));
        distortion_ += static_cast<uint32_t>(block_.distortions.refinement[magnitudeFrom(bit) & 127]);
      }
    });
  }

  Decision* cleanup() {
    return forEachCell([this](Cell& cell, int32_t stripe, int32_t index) {
      CellBits members = map_.existing(stripe, index) & ~cell.significant & ~cell.visited;
      // What keeps a column from being coded as a run.
      CellBits busy = map_.isFull(stripe)
                          ? map_.template neighbourhood<kCausal>(stripe, index) | cell.significant | cell.visited
                          : ~CellBits{0};
      cell.significant |= members & ones_;
      cell.visited = 0;
      while (members != 0) {
        auto bit = static_cast<uint32_t>(std::countr_zero(members));
        if ((bit & 3) == 0 && (busy >> bit & 15) == 0) {
          const auto column = static_cast<uint32_t>(ones_ >> bit & 15);
          code(kRunLengthContext, column != 0);
          if (column == 0) {
            members &= ~(CellBits{15} << bit);
            continue;
          }
          const auto row = static_cast<uint32_t>(std::countr_zero(column));
          code(kUniformContext, row >> 1);
          code(kUniformContext, row & 1);
          bit += row;
          becomeSignificant(bit);
        } else if (!codeSignificance(bit)) {
          members &= members - 1;
          continue;
        }
        members &= ~CellBits{1} << bit;
        busy |= StripeMap::laterNeighbours(bit & 3) << bit;
      }
    });
  }

 private:
  template <class Visit>
  Decision* forEachCell(const Visit& visit) {
    for (int32_t stripe = 0; stripe < map_.stripes(); ++stripe) {
      Cell* const cells = map_.cells(stripe);
      down_ = map_.down(stripe);
      uint32_t* const words = map_.words(stripe);
      for (int32_t index = 0; index < map_.cellsInRow(); ++index) {
        const size_t at = block_.cellIndex(stripe, index);
        words_ = words + index * kCellColumns;
        samples_ = block_.samples + at * kCellBits;
        ones_ = block_.bits[at];
        signs_ = block_.signs[at];
        visit(cells[index], stripe, index);
      }
    }
    block_.distortion = distortion_;
    return next_;
  }

  void code(uint32_t context, uint32_t decision) {
    *next_++ = static_cast<Decision>((kRaw ? 0 : 2 * context) + decision);
  }

  uint32_t oneAt(uint32_t bit) const { return static_cast<uint32_t>(ones_ >> bit & 1); }
  // The magnitude with the sixth bit below the plane in bit 0.
  uint32_t magnitudeFrom(uint32_t bit) const { return samples_[bit] << magnitudeUp_ >> magnitudeDown_; }

  bool codeSignificance(uint32_t bit) {
    const ColumnWord word{words_[bit / 4]};
    const uint32_t one = oneAt(bit);
    code(block_.zeroCoding[word.neighbours(bit & 3)], one);
    if (one) becomeSignificant(bit);
    return one != 0;
  }

  void becomeSignificant(uint32_t bit) {
    uint32_t* const word = words_ + bit / 4;
    const auto negative = static_cast<uint32_t>(signs_ >> bit & 1);
    const uint32_t entry = kRaw ? 0 : kSignCodingTable[ColumnWord{*word}.signs(bit & 3)];
    code(entry & 0x7F, negative ^ entry >> 7);
    StripeMap::setSignificant<kCausal>(word, up_, down_, bit & 3, negative);
    distortion_ += static_cast<uint32_t>(block_.distortions.significance[magnitudeFrom(bit) & 63]);
  }

  ModelledBlock& block_;
  const StripeMap map_;
  Decision* next_;
  const ptrdiff_t up_;
  ptrdiff_t down_ = 0;
  const uint32_t magnitudeUp_;
  const uint32_t magnitudeDown_;
  uint32_t distortion_ = 0;
  uint32_t* words_ = nullptr;          // of the cell's first column
  const uint32_t* samples_ = nullptr;  // the cell's first
  CellBits ones_ = 0;
  CellBits signs_ = 0;
};

template <bool kCausal>
Decision* significance(ModelledBlock& block, Decision* decisions) {
  return Pass<kCausal, false>(block, decisions).significance();
}
template <bool kCausal>
Decision* refinement(ModelledBlock& block, Decision* decisions) {
  return Pass<kCausal, false>(block, decisions).refinement();
}
template <bool kCausal>
Decision* cleanup(ModelledBlock& block, Decision* decisions) {
  return Pass<kCausal, false>(block, decisions).cleanup();
}
template <bool kCausal>
Decision* rawSignificance(ModelledBlock& block, Decision* decisions) {
  return Pass<kCausal, true>(block, decisions).significance();
}
Decision* rawRefinement(ModelledBlock& block, Decision* decisions) {
  return Pass<false, true>(block, decisions).refinement();
}

void encode(const Decision* decisions, const Decision* end, MqContexts& contexts, MqEncoder& encoder) {
  MqEncoder local = encoder;
  MqContexts states = contexts;
  uint32_t index = *decisions >> 1;
  MqContext context = states[index];
  // A context is loaded while the decision before is coded: two in a row that share it must not wait for its way
  // through memory. There is a decision to look at behind the last one.
  while (decisions != end) {
    const uint32_t decision = *decisions & 1;
    const uint32_t nextIndex = *++decisions >> 1;
    const MqContext next = states[nextIndex];
    const MqContext after = local.encode(context, decision);
    states[index] = after;
    context.word = selectIfNegative((nextIndex ^ index) - 1, after.word, next.word);
    index = nextIndex;
  }
  contexts = states;
  encoder = local;
}

constexpr CodeBlockEncodeKernels kernels = {&load,
                                            &splitPlanes,
                                            {&significance<false>, &significance<true>},
                                            {&refinement<false>, &refinement<true>},
                                            {&cleanup<false>, &cleanup<true>},
                                            {&rawSignificance<false>, &rawSignificance<true>},
                                            &rawRefinement,
                                            &encode};

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zorj {

static constexpr PerIsa<const CodeBlockEncodeKernels> perIsa{ZORJ_PER_ISA(kernels)};

const CodeBlockEncodeKernels& codeBlockEncodeKernels() { return *perIsa; }

}  // namespace zorj
#endif
