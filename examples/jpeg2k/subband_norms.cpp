#include "jpeg2k/subband_norms.h"

#include <zorj.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace examples::jpeg2k {
namespace {

using Filter = std::vector<double>;

struct SynthesisFilters {
  Filter low, high;  // symmetric
};

// T.800 Annex F: what the inverse lifting makes of a single low and of a single high sample.
const SynthesisFilters& synthesis(WaveletKind wavelet) {
  static const SynthesisFilters k53 = {{0.5, 1, 0.5}, {-0.125, -0.25, 0.75, -0.25, -0.125}};
  static const SynthesisFilters k97 = {
      {-0.09127176311424948, -0.05754352622849957, 0.5912717631142470, 1.115087052456994, 0.5912717631142470,
       -0.05754352622849957, -0.09127176311424948},
      {0.02674875741080976, 0.01686411844287495, -0.07822326652898785, -0.2668641184428723, 0.6029490182363579,
       -0.2668641184428723, -0.07822326652898785, 0.01686411844287495, 0.02674875741080976}};
  return wavelet == WaveletKind::reversible53 ? k53 : k97;
}

// The samples with zeros between them, filtered.
Filter interpolate(const Filter& samples, const Filter& low) {
  Filter result(2 * samples.size() + low.size() - 2);
  for (size_t i = 0; i < samples.size(); ++i) {
    for (size_t j = 0; j < low.size(); ++j) result[2 * i + j] += samples[i] * low[j];
  }
  return result;
}

double energy(const Filter& samples) {
  double sum = 0;
  for (const double sample : samples) sum += sample * sample;
  return sum;
}

// From this level on, energies double from level to level.
constexpr size_t kLevels = 10;

struct LineEnergies {
  std::array<double, kLevels + 1> low, high;  // by level
};

LineEnergies lineEnergies(WaveletKind wavelet) {
  const SynthesisFilters& filters = synthesis(wavelet);
  LineEnergies energies = {};
  energies.low[0] = 1;
  Filter low = filters.low, high = filters.high;
  for (size_t level = 1; level <= kLevels; ++level) {
    energies.low[level] = energy(low);
    energies.high[level] = energy(high);
    low = interpolate(low, filters.low);
    high = interpolate(high, filters.low);
  }
  return energies;
}

}  // namespace

double subbandNorm(WaveletKind wavelet, int32_t level, int32_t kind) {
  static const LineEnergies k53 = lineEnergies(WaveletKind::reversible53);
  static const LineEnergies k97 = lineEnergies(WaveletKind::irreversible97);
  const LineEnergies& energies = wavelet == WaveletKind::reversible53 ? k53 : k97;
  const size_t tabled = std::min(static_cast<size_t>(level), kLevels);
  const double across = kind == SubbandHL || kind == SubbandHH ? energies.high[tabled] : energies.low[tabled];
  const double down = kind == SubbandLH || kind == SubbandHH ? energies.high[tabled] : energies.low[tabled];
  return std::ldexp(std::sqrt(across * down), level - static_cast<int32_t>(tabled));
}

double colourWeight(WaveletKind wavelet, int32_t component) {
  // The sums of squares of the columns of the inverse transforms (T.800 G.2, G.3); for the reversible one without its
  // rounding: G = Y - (U + V) / 4, R = V + G, B = U + G.
  static constexpr double k53[] = {3, 0.6875, 0.6875};
  static constexpr double k97[] = {3, 0.34413 * 0.34413 + 1.772 * 1.772, 1.402 * 1.402 + 0.71414 * 0.71414};
  if (component >= 3) return 1;
  return (wavelet == WaveletKind::reversible53 ? k53 : k97)[component];
}

}  // namespace examples::jpeg2k
