#include "jpeg2k/block_coder.h"

#include <array>
#include <bit>
#include <cmath>
#include <type_traits>

#include "common/error.h"
#include "jpeg2k/library_style.h"

namespace examples::jpeg2k {
namespace {

constexpr int32_t kPredictableTermination = 2, kShortestTermination = 1;

void check(StatusCode status) {
  if (status != StatusOk) throw Error("a code-block cannot be coded");
}

template <class T>
constexpr int32_t kFraction = std::is_same_v<T, float> ? kFractionBits : 0;

// Sign and magnitude of a row of coefficients.
void quantiseRow(const float* from, size_t count, float scale, int32_t* to) {
  for (size_t i = 0; i < count; ++i) {
    const auto magnitude = static_cast<uint32_t>(static_cast<int32_t>(std::fabs(from[i]) * scale));
    to[i] = static_cast<int32_t>(magnitude | (std::bit_cast<uint32_t>(from[i]) & 0x80000000u));
  }
}
template <class T>
void quantiseRow(const T* from, size_t count, float, int32_t* to) {
  for (size_t i = 0; i < count; ++i) {
    const int32_t value = from[i], sign = value >> 31;
    to[i] = static_cast<int32_t>(static_cast<uint32_t>((value ^ sign) - sign) | (static_cast<uint32_t>(sign) << 31));
  }
}

}  // namespace

bool endsSegment(uint32_t style, int32_t pass) {
  if ((style & block_style::termall) != 0) return true;
  // From the tenth pass on, cleanups and the raw passes before them take turns (T.800 Table D.9).
  return (style & block_style::bypass) != 0 && pass >= 9 && pass % 3 != 1;
}

BlockCoder::BlockCoder(Extent largest, uint32_t style, Results results) : style_(style), results_(results) {
  J2kEncodeState* state = nullptr;
  if (zoriEncodeInitAlloc_JPEG2K(&state, {largest.width, largest.height}) != StatusOk) throw std::bad_alloc();
  state_.reset(state);
  const size_t samples = static_cast<size_t>(largest.width) * static_cast<size_t>(largest.height);
  samples_ = std::make_unique<int32_t[]>(samples);
  codeword_.resize(samples * 2);
}

template <class T>
void BlockCoder::quantise(const BlockJob<T>& job) {
  const auto width = static_cast<size_t>(job.size.width);
  const float scale = std::ldexp(job.inverseStep, kFraction<T> - job.lowestPlane);
  for (int32_t y = 0; y < job.size.height; ++y)
    quantiseRow(job.samples + y * job.step, width, scale, samples_.get() + static_cast<size_t>(y) * width);
}

template <class T>
CodedBlock BlockCoder::code(const BlockJob<T>& job) {
  quantise(job);
  constexpr bool kLossless = !std::is_same_v<T, float>;
  const int32_t termination = (style_ & block_style::pterm) != 0 ? kPredictableTermination : kShortestTermination;
  int32_t planes = 0, passes = 0, segments = 0;
  check(zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(samples_.get(), job.size.width * int32_t{sizeof(int32_t)}, job.size,
                                               state_.get(), job.kind, 31 - kFraction<T>, termination, 0,
                                               libraryStyle(style_) | (kLossless ? uint32_t{CbLosslessLastPlane} : 0u),
                                               &planes, &passes, &segments));
  CodedBlock block;
  block.planes = std::max(planes - kFraction<T> + job.lowestPlane, 0);
  const double weight = std::ldexp(job.weight, 2 * job.lowestPlane);
  if (results_ == Results::hullsAndErrors) {
    const size_t count = static_cast<size_t>(job.size.width) * static_cast<size_t>(job.size.height);
    block.error = std::ldexp(leftOver(count, kFraction<T>), -2 * kFraction<T>) * weight;
  }
  if (passes == 0) return block;
  store();
  rates_.resize(static_cast<size_t>(passes));
  for (int32_t pass = 0; pass < passes; ++pass)
    check(zoriEncodeGetRate_JPEG2K(state_.get(), pass, &rates_[static_cast<size_t>(pass)]));
  block.codeword = codewords_.copy(std::span<const uint8_t>(codeword_.data(), length_));
  block.rates = allRates_.copy(rates_);
  if (results_ != Results::codewords) findHull(weight, block);
  return block;
}

void BlockCoder::store() {
  length_ = 0;
  int32_t unfinished = 1;
  while (unfinished != 0) {
    if (length_ == codeword_.size()) codeword_.resize(2 * length_);
    auto length = static_cast<int32_t>(codeword_.size() - length_);
    check(zoriEncodeStoreBits_JPEG2K_1u(codeword_.data() + length_, &length, state_.get(), &unfinished));
    length_ += static_cast<size_t>(length);
  }
}

void BlockCoder::findHull(double weight, CodedBlock& block) {
  points_.clear();
  double gain = 0;
  const auto passes = static_cast<int32_t>(block.rates.size());
  for (int32_t pass = 0; pass < passes; ++pass) {
    check(zoriEncodeGetDist_JPEG2K(state_.get(), pass, &gain));
    // Where decoders may check how a segment ends, it has to end there.
    if ((style_ & block_style::pterm) != 0 && pass + 1 < passes && !endsSegment(style_, pass)) continue;
    points_.push_back({pass + 1, block.rates[static_cast<size_t>(pass)], gain * weight});
  }
  block.error += gain * weight;
  convexHull(points_, hull_);
  block.hull = hulls_.copy(hull_);
}

template <class T>
void BlockCoder::countBits(const BlockJob<T>& job, std::span<int64_t, 33> counts) {
  quantise(job);
  const size_t count = static_cast<size_t>(job.size.width) * static_cast<size_t>(job.size.height);
  for (size_t i = 0; i < count; ++i)
    ++counts[static_cast<size_t>(std::bit_width(static_cast<uint32_t>(samples_[i]) << 1 >> (1 + kFraction<T>)))];
}

// The sum of squares of what the decoder misses if it has all passes down to a plane of `samples_`.
double BlockCoder::leftOver(size_t count, int32_t lowest) const {
  const int32_t middle = (1 << lowest) >> 1;
  double sum = 0;
  for (size_t i = 0; i < count; ++i) {
    const int32_t magnitude = samples_[i] & INT32_MAX, decoded = magnitude >> lowest << lowest;
    const double error = magnitude - (decoded == 0 ? 0 : decoded + middle);
    sum += error * error;
  }
  return sum;
}

template CodedBlock BlockCoder::code(const BlockJob<int16_t>&);
template CodedBlock BlockCoder::code(const BlockJob<int32_t>&);
template CodedBlock BlockCoder::code(const BlockJob<float>&);
template void BlockCoder::countBits(const BlockJob<int16_t>&, std::span<int64_t, 33>);
template void BlockCoder::countBits(const BlockJob<int32_t>&, std::span<int64_t, 33>);
template void BlockCoder::countBits(const BlockJob<float>&, std::span<int64_t, 33>);

}  // namespace examples::jpeg2k
