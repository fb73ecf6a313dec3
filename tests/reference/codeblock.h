// A model of the coding of code-blocks: T.800 Annex D sample by sample.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "reference/mq_coder.h"
#include "zorj/jpeg2k_codeblock.h"

namespace zorj::reference {

// What the passes know of a block, and the decisions they ask for. A coder has `int decide(int context, int known)`,
// to which an encoder answers with what is known and a decoder with what it reads.
class BlockModel {
 public:
  BlockModel(RoiSize size, int subband, uint32_t flags)
      : width_(size.width),
        height_(size.height),
        subband_(subband),
        causal_((flags & CbVerticallyCausal) != 0),
        states_(static_cast<size_t>(width_) * static_cast<size_t>(height_)) {}

  // The block's bit(x, y) and sign(x, y) are what is known of a sample; become(x, y, negative) and refine(x, y, bit)
  // take what was decided.
  template <class Coder, class Block>
  void significancePass(Coder& coder, Block& block, bool raw) {
    forEachSample([&](int x, int y, int) {
      if (at(x, y).significant || label(x, y) == 0) return;
      at(x, y).visited = true;
      if (coder.decide(2 + label(x, y), block.bit(x, y))) becomeSignificant(coder, block, x, y, raw);
    });
  }

  template <class Coder, class Block>
  void refinementPass(Coder& coder, Block& block) {
    forEachSample([&](int x, int y, int) {
      State& state = at(x, y);
      if (!state.significant || state.visited) return;
      const int context = state.refined ? 18 : label(x, y) > 0 ? 17 : 16;
      state.refined = true;
      block.refine(x, y, coder.decide(context, block.bit(x, y)));
    });
  }

  template <class Coder, class Block>
  void cleanupPass(Coder& coder, Block& block) {
    int runX = -1, runY = -1, runRow = 0;  // the run that the samples of a column belong to, and the row that ends it
    forEachSample([&](int x, int y, int top) {
      if (y == top && isRun(x, top)) {
        int first = 0;
        while (first < 4 && !block.bit(x, top + first)) ++first;
        runX = x;
        runY = top;
        runRow = 4;
        if (coder.decide(1, first < 4)) {
          runRow = 2 * coder.decide(0, first >> 1 & 1);
          runRow += coder.decide(0, first & 1);
        }
      }
      const bool inRun = runX == x && runY == top;
      if (inRun && y - top < runRow) return;
      const bool endsRun = inRun && y - top == runRow;
      if (!endsRun && (at(x, y).significant || at(x, y).visited)) return;
      if (endsRun || coder.decide(2 + label(x, y), block.bit(x, y))) becomeSignificant(coder, block, x, y, false);
    });
    for (State& state : states_) state.visited = false;
  }

 private:
  struct State {
    bool significant = false;
    bool negative = false;
    bool visited = false;
    bool refined = false;
  };

  State& at(int x, int y) {
    return states_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
  }

  template <class Visit>
  void forEachSample(const Visit& visit) const {
    for (int top = 0; top < height_; top += 4) {
      for (int x = 0; x < width_; ++x) {
        for (int y = top; y < std::min(top + 4, height_); ++y) visit(x, y, top);
      }
    }
  }

  // 1 or -1 for a significant neighbour of (x, y), which is positive or negative; 0 for any other.
  int neighbour(int x, int y, int dx, int dy) {
    const int nx = x + dx, ny = y + dy;
    if (nx < 0 || nx >= width_ || ny < 0 || ny >= height_) return 0;
    if (causal_ && dy > 0 && ny % 4 == 0) return 0;
    return !at(nx, ny).significant ? 0 : at(nx, ny).negative ? -1 : 1;
  }
  int count(int x, int y, std::initializer_list<std::array<int, 2>> directions) {
    int sum = 0;
    for (const auto& [dx, dy] : directions) sum += std::abs(neighbour(x, y, dx, dy));
    return sum;
  }

  // Table D.1: the first row that fits. -1 fits anything, and 10 + n is n or more.
  int label(int x, int y) {
    static constexpr int kLowPass[9][3] = {{2, -1, -1}, {1, 11, -1}, {1, 0, 11}, {1, 0, 0}, {0, 2, -1},
                                           {0, 1, -1},  {0, 0, 12},  {0, 0, 1},  {0, 0, 0}};
    static constexpr int kDiagonal[9][2] = {{-1, 13}, {11, 2}, {0, 2}, {12, 1}, {1, 1},
                                            {0, 1},   {12, 0}, {1, 0}, {0, 0}};
    const auto fits = [](int value, int rule) { return rule < 0 || (rule >= 10 ? value >= rule - 10 : value == rule); };
    int h = count(x, y, {{-1, 0}, {1, 0}}), v = count(x, y, {{0, -1}, {0, 1}});
    const int d = count(x, y, {{-1, -1}, {1, -1}, {-1, 1}, {1, 1}});
    if (subband_ == SubbandHL) std::swap(h, v);
    int row = 0;
    if (subband_ == SubbandHH) {
      while (!fits(h + v, kDiagonal[row][0]) || !fits(d, kDiagonal[row][1])) ++row;
    } else {
      while (!fits(h, kLowPass[row][0]) || !fits(v, kLowPass[row][1]) || !fits(d, kLowPass[row][2])) ++row;
    }
    return 8 - row;
  }

  bool isRun(int x, int top) {
    if (top + 4 > height_) return false;
    for (int y = top; y < top + 4; ++y) {
      if (at(x, y).significant || at(x, y).visited || label(x, y) != 0) return false;
    }
    return true;
  }

  template <class Coder, class Block>
  void becomeSignificant(Coder& coder, Block& block, int x, int y, bool raw) {
    // Tables D.2 and D.3.
    const int h = std::clamp(neighbour(x, y, -1, 0) + neighbour(x, y, 1, 0), -1, 1);
    const int v = std::clamp(neighbour(x, y, 0, -1) + neighbour(x, y, 0, 1), -1, 1);
    static constexpr int kContexts[9] = {15, 14, 13, 12, 11, 12, 13, 14, 15};
    const int flip = !raw && 3 * h + v < 0;
    const bool negative = (coder.decide(kContexts[4 + 3 * h + v], block.sign(x, y) ^ flip) ^ flip) != 0;
    at(x, y).significant = true;
    at(x, y).negative = negative;
    block.become(x, y, negative);
  }

  int width_;
  int height_;
  int subband_;
  bool causal_;
  std::vector<State> states_;
};

struct MqDecisions {
  MqEncoderModel& mq;
  std::array<MqContextModel, 19>& contexts;
  int decide(int context, int known) {
    mq.encode(contexts[static_cast<size_t>(context)], known);
    return known;
  }
};
struct RawDecisions {
  RawEncoderModel& raw;
  int decide(int, int known) {
    raw.encode(known);
    return known;
  }
};

// --- Encoding ---------------------------------------------------------------------------------------------------

// One plane of a block that is encoded, and what its passes gain.
struct EncodedPlane {
  const std::vector<int32_t>& samples;
  int width;
  int plane;
  bool exact;
  int32_t distortion = 0;  // in units of 1/8192

  uint32_t word(int x, int y) const {
    return static_cast<uint32_t>(samples[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)]);
  }
  int bit(int x, int y) const { return static_cast<int>(word(x, y) >> plane & 1); }
  int sign(int x, int y) const { return static_cast<int>(word(x, y) >> 31); }
  // The magnitude in units of the plane, with six bits behind the point and one (refinement) or none before it.
  double fraction(int x, int y, int modulus) const {
    const double value = std::floor(std::ldexp(word(x, y) & 0x7FFFFFFF, 6 - plane));
    return std::fmod(value, 64.0 * modulus) / 64;
  }
  void become(int x, int y, bool) {
    const double v = 1 + fraction(x, y, 1);
    distortion += static_cast<int32_t>(std::lround(8192 * (exact ? v * v : v * v - (v - 1.5) * (v - 1.5))));
  }
  void refine(int x, int y, int bit) {
    const double v = fraction(x, y, 2), error = exact ? 0 : v - 0.5 - bit;
    distortion += static_cast<int32_t>(std::lround(8192 * ((v - 1) * (v - 1) - error * error)));
  }
};

struct EncodedBlock {
  int planes = 0;
  int passes = 0;
  std::vector<double> distortions;  // of the passes up to each
  std::vector<int> rates;
  std::vector<int> segmentLengths;
  CodedBytes codeword;
};

// Whether a pass is raw: the first is a cleanup of the topmost plane, then three follow for each plane.
inline bool isRawPass(int pass, uint32_t flags) { return (flags & CbBypass) && pass >= 10 && pass % 3 != 0; }

inline EncodedBlock encodeBlock(const std::vector<int32_t>& samples, RoiSize size, int subband, int magnitudeBits,
                                int termination, uint32_t flags) {
  EncodedBlock result;
  uint32_t largest = 0;
  for (const int32_t sample : samples) largest = std::max(largest, static_cast<uint32_t>(sample) & 0x7FFFFFFF);
  result.planes = static_cast<int>(std::bit_width(largest));
  const int lowest = 31 - std::clamp(magnitudeBits, 0, 31);
  result.passes = std::max(3 * (result.planes - lowest) - 2, 0);
  BlockModel model(size, subband, flags);
  auto contexts = initialContexts();
  MqEncoderModel mq;
  RawEncoderModel raw;
  double distortion = 0;
  for (int pass = 0; pass < result.passes; ++pass) {
    const int plane = result.planes - 1 - (pass + 2) / 3;
    const bool isRaw = isRawPass(pass, flags);
    EncodedPlane block{samples, size.width, plane, (flags & CbLosslessLastPlane) && plane == lowest};
    MqDecisions mqCoder{mq, contexts};
    RawDecisions rawCoder{raw};
    if (pass % 3 == 0) {
      model.cleanupPass(mqCoder, block);
      for (const int bit : {1, 0, 1, 0}) {
        if (flags & CbSegmentationSymbol) mqCoder.decide(0, bit);
      }
    } else if (pass % 3 == 1) {
      isRaw ? model.significancePass(rawCoder, block, true) : model.significancePass(mqCoder, block, false);
    } else {
      isRaw ? model.refinementPass(rawCoder, block) : model.refinementPass(mqCoder, block);
    }
    if ((flags & CbResetContexts) && !isRaw) contexts = initialContexts();
    distortion += std::ldexp(block.distortion, 2 * (plane - lowest) - 13);
    result.distortions.push_back(distortion);

    const int before = static_cast<int>(result.codeword.size());
    if (!(flags & CbTermAll) && pass + 1 < result.passes && isRaw == isRawPass(pass + 1, flags)) {
      result.rates.push_back(before + (isRaw ? raw.rate() : mq.rate()));
      continue;
    }
    const CodedBytes segment = isRaw ? raw.ended() : mq.ended(termination);
    result.codeword.insert(result.codeword.end(), segment.begin(), segment.end());
    result.segmentLengths.push_back(static_cast<int>(segment.size()));
    result.rates.push_back(before + static_cast<int>(segment.size()));
    for (int& rate : result.rates) rate = std::min(rate, result.rates.back());
    mq = {};
    raw = {};
  }
  if (result.passes == 0 && !(flags & CbTermAll)) result.segmentLengths.push_back(0);
  for (int& rate : result.rates) rate -= rate > 0 && result.codeword[static_cast<size_t>(rate - 1)] == 0xFF;
  return result;
}

// --- Decoding ---------------------------------------------------------------------------------------------------

// One plane of a block that is decoded.
struct DecodedPlane {
  std::vector<int32_t>& samples;
  int width;
  int plane;

  int32_t& word(int x, int y) {
    return samples[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  uint32_t midpoint(int bit) const {
    return (plane == 0 ? 0 : (1u << plane) / 2) + static_cast<uint32_t>(bit << plane);
  }
  int bit(int, int) const { return 0; }
  int sign(int, int) const { return 0; }
  void become(int x, int y, bool negative) {
    word(x, y) = static_cast<int32_t>(midpoint(1) + (negative ? 0x80000000u : 0));
  }
  void refine(int x, int y, int bit) {
    const uint32_t step = 1u << plane, old = static_cast<uint32_t>(word(x, y));
    word(x, y) = static_cast<int32_t>(old - old % step - (old & step) + midpoint(bit));
  }
};

struct MqReadings {
  MqDecoderModel& mq;
  std::array<MqContextModel, 19>& contexts;
  int decide(int context, int) { return mq.decode(contexts[static_cast<size_t>(context)]); }
};
struct RawReadings {
  RawDecoderModel& raw;
  int decide(int, int) { return raw.decode(); }
};

// The decoder by segments. `samples` may hold something beforehand.
class ProgressiveDecoder {
 public:
  ProgressiveDecoder(RoiSize size, int subband, int planes, uint32_t flags, std::vector<int32_t> samples)
      : plane(planes - 1),
        samples_(std::move(samples)),
        width_(size.width),
        flags_(flags),
        threshold_((flags & CbBypass) && planes >= 4 ? planes - 4 : 0),
        model_(size, subband, flags) {}

  int passes = 0;
  int plane;
  const std::vector<int32_t>& samples() const { return samples_; }

  StatusCode step(const uint8_t* data, int length) {
    if (failed_) return StatusCodeBlockError;
    if (passes < 1 || plane < 0) return StatusOk;
    MqDecoderModel mq(data, length);
    RawDecoderModel raw(data, length);
    failed_ = !(flags_ & CbTermAll ? onePass(mq, raw) : onSegment(mq, raw));
    return failed_ ? StatusCodeBlockError : StatusOk;
  }

 private:
  enum Kind { kCleanup, kRefinement, kSignificance, kCleanupAfterRaw, kRawRefinement, kRawSignificance };

  bool onePass(MqDecoderModel& mq, RawDecoderModel& raw) {
    const Kind kind = kind_;
    --passes;
    switch (kind) {
      case kSignificance:
        kind_ = kRefinement;
        return mqPass(mq, kSignificance, true);
      case kRefinement:
        kind_ = kCleanup;
        return mqPass(mq, kRefinement, true);
      case kRawSignificance:
        kind_ = kRawRefinement;
        return rawPass(raw, kRawSignificance, true);
      case kRawRefinement:
        kind_ = kCleanupAfterRaw;
        return rawPass(raw, kRawRefinement, true);
      default:
        if (!mqPass(mq, kCleanup, true)) return false;
        --plane;
        kind_ = kind == kCleanupAfterRaw || plane < threshold_ ? kRawSignificance : kSignificance;
        return true;
    }
  }

  bool onSegment(MqDecoderModel& mq, RawDecoderModel& raw) {
    if (kind_ == kCleanupAfterRaw) {
      --passes;
      if (!mqPass(mq, kCleanup, true)) return false;
      if (passes > 0) lower();
      return true;
    }
    if (kind_ == kRawSignificance) {
      rawPass(raw, kRawSignificance, false);
      if (--passes == 0) return true;
      --passes;
      if (!rawPass(raw, kRawRefinement, true)) return false;
      kind_ = kCleanupAfterRaw;
      return true;
    }
    while (true) {
      --passes;
      if (!mqPass(mq, kCleanup, plane == threshold_)) return false;
      if (passes == 0) return true;
      if (plane <= threshold_) {
        lower();
        return true;
      }
      --plane;
      mqPass(mq, kSignificance, false);
      if (--passes == 0) return true;
      mqPass(mq, kRefinement, false);
      if (--passes == 0) return true;
    }
  }

  void lower() {
    --plane;
    kind_ = kRawSignificance;
  }

  bool mqPass(MqDecoderModel& mq, Kind kind, bool ends) {
    DecodedPlane block{samples_, width_, plane};
    MqReadings coder{mq, contexts_};
    if (kind == kSignificance) model_.significancePass(coder, block, false);
    if (kind == kRefinement) model_.refinementPass(coder, block);
    if (kind == kCleanup) model_.cleanupPass(coder, block);
    if (kind == kCleanup && (flags_ & CbSegmentationSymbol)) {
      for (const int expected : {1, 0, 1, 0}) symbolFits_ &= coder.decide(0, 0) == expected;
    }
    if (!symbolFits_) return false;
    if (flags_ & CbResetContexts) contexts_ = initialContexts();
    return !(ends && (flags_ & CbCheckTermination)) || mq.endsPredictably();
  }
  bool rawPass(RawDecoderModel& raw, Kind kind, bool ends) {
    DecodedPlane block{samples_, width_, plane};
    RawReadings coder{raw};
    if (kind == kRawSignificance) model_.significancePass(coder, block, true);
    if (kind == kRawRefinement) model_.refinementPass(coder, block);
    return !ends || raw.endsPadded();
  }

  std::vector<int32_t> samples_;
  int width_;
  uint32_t flags_;
  int threshold_;
  BlockModel model_;
  std::array<MqContextModel, 19> contexts_ = initialContexts();
  Kind kind_ = kCleanup;
  bool symbolFits_ = true;
  bool failed_ = false;
};

struct DecodedBlock {
  StatusCode status = StatusOk;
  std::optional<int> errorPlane;
  std::vector<int32_t> samples;
};

inline DecodedBlock decodeBlock(const CodedBytes& codeword, RoiSize size, int subband, int planes, int passes,
                                const std::vector<int>& segmentLengths, uint32_t flags,
                                const std::vector<int32_t>& before) {
  ProgressiveDecoder decoder(size, subband, planes, flags,
                             (flags & CbKeepDestination) ? before : std::vector<int32_t>(before.size()));
  decoder.passes = passes;
  DecodedBlock result;
  size_t position = 0;
  for (const int length : segmentLengths) {
    result.status = decoder.step(codeword.data() + position, length);
    if (result.status != StatusOk) break;
    position += static_cast<size_t>(std::max(length, 0));
  }
  result.samples = decoder.samples();
  const uint32_t known = decoder.plane < 1 ? ~0u : ~((1u << decoder.plane) - 1);
  for (int32_t& sample : result.samples) {
    auto word = static_cast<uint32_t>(sample);
    if (result.status == StatusCodeBlockError && (flags & CbTruncateOnError)) {
      word &= ~((1u << decoder.plane) - 1);
      word = (word & 0x7FFFFFFF) == 0 ? 0 : word | 1u << decoder.plane;
    }
    if (!(flags & CbKeepMidpoint)) word &= known;
    sample = static_cast<int32_t>(word);
  }
  if (result.status == StatusCodeBlockError) result.errorPlane = decoder.plane;
  return result;
}

}  // namespace zorj::reference
