// Codes the code-blocks of one thread.
#pragma once

#include <zorj.h>

#include <memory>
#include <span>
#include <vector>

#include "jpeg2k/arena.h"
#include "jpeg2k/encode_options.h"
#include "jpeg2k/rate_allocation.h"

namespace examples::jpeg2k {

// The codeword of a block and where it can be cut.
struct CodedBlock {
  int32_t planes = 0;  // significant bit planes of the quantised coefficients
  std::span<const uint8_t> codeword;
  std::span<const int32_t> rates;  // bytes of the codeword that passes up to each need
  Hull hull;
  double error = 0;  // squared, in the picture, without any of the passes
};

// A block's coefficients, and how they are coded.
template <class T>
struct BlockJob {
  const T* samples = nullptr;
  ptrdiff_t step = 0;  // samples from row to row
  RoiSize size = {0, 0};
  int32_t kind = SubbandLL;
  float inverseStep = 1;    // of the quantiser; integers are coded as they are
  double weight = 0;        // the squared error in the picture that a squared quantiser step makes
  int32_t lowestPlane = 0;  // of the quantised coefficients; those below are left out, which integers have none of
};

// Whether a pass, counted from 0, is the last of a segment of its block whatever follows.
bool endsSegment(uint32_t style, int32_t pass);

// Coefficients of floats have this many bits below the lowest plane, which improve the distortions.
constexpr int32_t kFractionBits = 6;

class BlockCoder {
 public:
  enum class Results { codewords, hulls, hullsAndErrors };

  // `style` is the code-block style of the codestream.
  BlockCoder(Extent largest, uint32_t style, Results results);

  template <class T>
  CodedBlock code(const BlockJob<T>& job);

  // How many of the quantised coefficients of a block have how many bits.
  template <class T>
  void countBits(const BlockJob<T>& job, std::span<int64_t, 33> counts);

 private:
  struct FreeState {
    void operator()(J2kEncodeState* state) const { zoriEncodeFree_JPEG2K(state); }
  };

  template <class T>
  void quantise(const BlockJob<T>& job);
  void store();
  void findHull(double weight, CodedBlock& block);
  double leftOver(size_t count, int32_t lowestPlane) const;

  uint32_t style_;
  Results results_;
  std::unique_ptr<J2kEncodeState, FreeState> state_;
  std::unique_ptr<int32_t[]> samples_;
  std::vector<uint8_t> codeword_;
  size_t length_ = 0;
  std::vector<int32_t> rates_;
  std::vector<PassPoint> points_;
  std::vector<HullPoint> hull_;

  Arena<uint8_t> codewords_;
  Arena<int32_t> allRates_;
  Arena<HullPoint> hulls_;
};

}  // namespace examples::jpeg2k
