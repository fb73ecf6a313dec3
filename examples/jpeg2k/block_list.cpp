#include "jpeg2k/block_list.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "jpeg2k/parallel.h"

namespace examples::jpeg2k {
namespace {

using BitCounts = std::array<int64_t, 33>;

double entropy(double probability) {
  if (probability <= 0 || probability >= 1) return 0;
  return -probability * std::log2(probability) - (1 - probability) * std::log2(1 - probability);
}

// A guess at how many bits the planes from the lowest one up take, from how many coefficients have how many bits: the
// significance of each plane by itself, signs and refinements as they are.
double guessBits(const BitCounts& counts, size_t lowestPlane) {
  double insignificant = static_cast<double>(std::accumulate(counts.begin(), counts.end(), int64_t{0}));
  double significant = 0, bits = 0;
  for (size_t plane = counts.size() - 1; plane-- > lowestPlane;) {
    const auto now = static_cast<double>(counts[plane + 1]);
    if (insignificant > 0) bits += insignificant * entropy(now / insignificant);
    bits += significant + now;
    significant += now;
    insignificant -= now;
  }
  return bits;
}

// The best passes of a plane gain about six squares of the plane's step per byte: a sample that becomes significant
// gains 2.2 for two to three bits. Planes of which only a few passes would gain what the slope asks for are not missed:
// these are the gains at which a plane is worth coding, and worth coding blocks again.
constexpr double kWorthCoding = 4.5, kWorthCodingAgain = 3;

// The lowest plane that gains as much as `slope` per byte, if planes gain `gain` in squares of their steps.
int32_t lowestPlane(double slope, double weight, double gain) {
  if (slope <= 0) return 0;
  return static_cast<int32_t>(std::clamp(std::ceil(std::log2(slope / (weight * gain)) / 2), 0.0, 30.0));
}

// A slope guessed from some blocks can be too large by this.
constexpr double kGuessMargin = 0.8;

}  // namespace

template <class T>
BlockList<T>::BlockList(const EncodeSettings& settings, std::span<TileBlocks> tiles, const TileTransform<T>& transform,
                        const EncodeOptions& options)
    : threads_(options.threads) {
  for (size_t tile = 0; tile < tiles.size(); ++tile) addBlocks(settings, tile, tiles[tile], transform);
  coded_.resize(jobs_.size());
  using Results = BlockCoder::Results;
  const Results results = options.psnr > 0                          ? Results::hullsAndErrors
                          : options.layers > 1 || options.ratio > 0 ? Results::hulls
                                                                    : Results::codewords;
  for (int32_t i = 0; i < threads_; ++i) coders_.emplace_back(options.block, options.style, results);
}

template <class T>
void BlockList<T>::addBlocks(const EncodeSettings& settings, size_t tile, TileBlocks& blocks,
                             const TileTransform<T>& transform) {
  const size_t before = jobs_.size();
  for (size_t c = 0; c < blocks.tile.components.size(); ++c) {
    const std::vector<Resolution>& resolutions = blocks.tile.components[c].resolutions;
    for (size_t r = 0; r < resolutions.size(); ++r) {
      const auto component = static_cast<int32_t>(c), resolution = static_cast<int32_t>(r);
      for (int32_t precinct = 0; precinct < resolutions[r].precincts(); ++precinct) {
        for (int32_t b = 0; b < 3; ++b) {
          blocks.first.push_back(jobs_.size());
          if (b >= resolutions[r].bandCount) continue;
          const Subband& band = resolutions[r].bands[b];
          const Plane<T> plane = transform.subband(tile, component, resolution, band.kind);
          const BlockGrid grid = resolutions[r].blocks(precinct, b);
          BlockJob<T> job;
          job.step = plane.step;
          job.kind = band.kind;
          job.inverseStep = static_cast<float>(1 / quantizerStep(settings, band));
          job.weight = stepWeight(settings, component, resolution, band);
          for (int32_t i = 0; i < grid.count(); ++i) {
            const Rect rect = grid.block(i);
            job.samples = plane.row(rect.y0 - band.rect.y0) + (rect.x0 - band.rect.x0);
            job.size = {rect.width(), rect.height()};
            jobs_.push_back(job);
            bands_.push_back(band.number);
          }
        }
      }
    }
  }
  blocks.blockCount = jobs_.size() - before;
}

template <class T>
void BlockList<T>::code(const std::vector<size_t>& numbers) {
  inParallel(static_cast<int64_t>(numbers.size()), threads_, [&](int64_t i, int32_t thread) {
    const size_t number = numbers[static_cast<size_t>(i)];
    coded_[number] = coders_[static_cast<size_t>(thread)].code(jobs_[number]);
  });
}

template <class T>
std::vector<size_t> BlockList<T>::all() const {
  std::vector<size_t> numbers(jobs_.size());
  std::iota(numbers.begin(), numbers.end(), size_t{0});
  return numbers;
}

template <class T>
void BlockList<T>::codeEverything() {
  code(all());
}

// One or two hundred blocks from everywhere.
template <class T>
std::vector<size_t> BlockList<T>::sample() const {
  constexpr size_t kSamples = 128;
  const size_t stride = std::max<size_t>(jobs_.size() / kSamples, 1);
  std::vector<size_t> numbers;
  uint32_t random = 1;
  for (size_t first = 0; first < jobs_.size(); first += stride) {
    random = random * 1664525u + 1013904223u;
    numbers.push_back(std::min(first + (random >> 8) % stride, jobs_.size() - 1));
  }
  return numbers;
}

// What part of all coefficients they have.
template <class T>
double BlockList<T>::shareOf(const std::vector<size_t>& numbers) const {
  const auto area = [&](size_t i) { return static_cast<double>(jobs_[i].size.width) * jobs_[i].size.height; };
  double some = 0, most = 0;
  for (const size_t i : numbers) some += area(i);
  for (size_t i = 0; i < jobs_.size(); ++i) most += area(i);
  return some / most;
}

template <class T>
void BlockList<T>::codeForBytes(int64_t bytes) {
  const std::vector<size_t> some = sample();
  const double wanted = static_cast<double>(bytes) * shareOf(some);
  BitCounts counts = {};
  for (const size_t i : some) coders_[0].countBits(jobs_[i], counts);
  int32_t plane = 30;
  while (plane > 0 && guessBits(counts, static_cast<size_t>(plane)) < 8 * wanted) --plane;
  for (const size_t i : some) jobs_[i].lowestPlane = std::max(plane - 1, 0);
  code(some);
  codeRest(some, [&](std::span<const Hull> hulls) { return slopeForBytes(hulls, static_cast<int64_t>(wanted)); });
}

template <class T>
void BlockList<T>::codeForError(double squaredError) {
  const std::vector<size_t> some = sample();
  const double allowed = squaredError * shareOf(some);
  double count = 0;
  for (const size_t i : some) count += static_cast<double>(jobs_[i].size.width) * jobs_[i].size.height;
  for (const size_t i : some) {
    // With this plane the error of a coefficient is at most that of an equal distribution around zero.
    const double squares = 3 * allowed / count / jobs_[i].weight;
    jobs_[i].lowestPlane = static_cast<int32_t>(std::clamp(std::floor(std::log2(squares) / 2), 0.0, 30.0));
  }
  code(some);
  codeRest(some, [&](std::span<const Hull> hulls) {
    double error = 0;
    for (const size_t i : some) error += coded_[i].error;
    return slopeForGain(hulls, error - allowed);
  });
}

// Codes the other blocks down to the planes needed by the slope that some blocks, already coded, find best; and these
// again where they have not come so far.
template <class T>
template <class FindSlope>
void BlockList<T>::codeRest(const std::vector<size_t>& some, const FindSlope& findSlope) {
  if (some.size() == jobs_.size()) return;
  std::vector<Hull> hulls;
  std::vector<bool> isCoded(jobs_.size());
  for (const size_t i : some) {
    hulls.push_back(coded_[i].hull);
    isCoded[i] = true;
  }
  const double slope = kGuessMargin * findSlope(hulls);
  std::vector<size_t> rest;
  for (size_t i = 0; i < jobs_.size(); ++i) {
    const int32_t plane = lowestPlane(slope, jobs_[i].weight, kWorthCoding);
    if (isCoded[i] && jobs_[i].lowestPlane <= plane) continue;
    jobs_[i].lowestPlane = plane;
    rest.push_back(i);
  }
  code(rest);
}

template <class T>
bool BlockList<T>::codeFurther(double slope) {
  std::vector<size_t> numbers;
  for (size_t i = 0; i < jobs_.size(); ++i) {
    const int32_t plane = lowestPlane(slope, jobs_[i].weight, kWorthCodingAgain);
    if (plane >= jobs_[i].lowestPlane || plane >= coded_[i].planes) continue;
    jobs_[i].lowestPlane = plane;
    numbers.push_back(i);
  }
  code(numbers);
  return !numbers.empty();
}

template <class T>
int32_t BlockList<T>::guardBits(const Quantization& quantization) const {
  int32_t guard = quantization.guardBits;
  for (size_t i = 0; i < coded_.size(); ++i)
    guard = std::max(guard, coded_[i].planes - quantization.steps[static_cast<size_t>(bands_[i])].exponent + 1);
  return guard;
}

template <class T>
double BlockList<T>::error() const {
  double sum = 0;
  for (const CodedBlock& block : coded_) sum += block.error;
  return sum;
}

template class BlockList<int16_t>;
template class BlockList<int32_t>;
template class BlockList<float>;

}  // namespace examples::jpeg2k
