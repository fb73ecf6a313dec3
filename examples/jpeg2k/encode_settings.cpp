#include "jpeg2k/encode_settings.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "common/error.h"
#include "jpeg2k/subband_norms.h"

namespace examples::jpeg2k {
namespace {

void require(bool condition, const char* message) {
  if (!condition) throw Error(message);
}

bool isPowerOf2(int32_t value) { return value > 0 && std::has_single_bit(static_cast<uint32_t>(value)); }
int32_t exponentOf(int32_t value) { return std::countr_zero(static_cast<uint32_t>(value)); }

void checkOptions(const EncodeOptions& options) {
  const auto isBlockSide = [](int32_t side) { return isPowerOf2(side) && side >= 4 && side <= 1024; };
  const auto isPrecinctSide = [](int32_t side) {
    return side == 0 || (isPowerOf2(side) && side >= 2 && side <= 32768);
  };
  require(options.levels >= 0 && options.levels <= kMaxLevels, "levels must be 0 to 32");
  require(isBlockSide(options.block.width) && isBlockSide(options.block.height) &&
              options.block.width * options.block.height <= 4096,
          "sides of blocks must be powers of 2 from 4 to 1024, with at most 4096 samples in a block");
  require(options.tile.width >= 0 && options.tile.height >= 0, "the size of tiles must not be negative");
  require(isPrecinctSide(options.precinct.width) && isPrecinctSide(options.precinct.height),
          "sides of precincts must be powers of 2 from 2 to 32768");
  require(options.layers >= 1 && options.layers <= 65535, "layers must be 1 to 65535");
  require(options.style < 64, "no such option of code-blocks");
  require(options.ratio >= 0 && options.psnr >= 0, "ratio and PSNR must not be negative");
  require(options.ratio == 0 || options.psnr == 0, "a ratio and a PSNR cannot both be reached");
  require(options.threads >= 1, "there must be a thread");
}

ImageSize imageSize(int32_t width, int32_t height, int32_t channels, int32_t precision, Extent tile) {
  require(width >= 1 && height >= 1, "the image is empty");
  require(channels >= 1 && channels <= 4, "images must have 1 to 4 channels");
  require(precision >= 1 && precision <= 16, "samples must have 1 to 16 bits");
  ImageSize size;
  size.image = {0, 0, width, height};
  size.tileWidth = tile.width == 0 ? width : std::min(tile.width, width);
  size.tileHeight = tile.height == 0 ? height : std::min(tile.height, height);
  size.components.assign(static_cast<size_t>(channels), {precision, false, 1, 1});
  require(tileCount(size) <= 65535, "there are more than 65535 tiles");
  return size;
}

CodingStyle codingStyle(const EncodeOptions& options) {
  CodingStyle style;
  style.levels = options.levels;
  style.blockWidth = exponentOf(options.block.width);
  style.blockHeight = exponentOf(options.block.height);
  style.blockStyle = options.style;
  style.reversible = options.ratio == 0 && options.psnr == 0;
  CodingStyle::Precinct& precinct = style.precincts[0];
  if (options.precinct.width > 0) precinct.width = static_cast<uint8_t>(exponentOf(options.precinct.width));
  if (options.precinct.height > 0) precinct.height = static_cast<uint8_t>(exponentOf(options.precinct.height));
  style.precincts.fill(precinct);
  return style;
}

// Whatever the target, blocks are cut where their coding stops paying; the steps are only to be finer than that.
double finestStep(int32_t precision) { return std::ldexp(1, std::max(precision - 12, 0) - 4); }

// Coefficients must fit their words: steps that are much finer than the subband's range are made coarser.
constexpr int32_t kLargestExponent = 23;

Quantization::Step nearestStep(double step, int32_t range) {
  int32_t exponent = 0;
  const double mantissa = 2 * std::frexp(step, &exponent) - 1;  // step = 2^(exponent - 1) (1 + mantissa)
  const int32_t below = range - (exponent - 1);
  if (below > kLargestExponent) return {static_cast<uint8_t>(kLargestExponent), 0};
  return {static_cast<uint8_t>(std::max(below, 0)), static_cast<uint16_t>(mantissa * 2048)};
}

int32_t levelOf(const CodingStyle& style, int32_t resolution) {
  return resolution == 0 ? style.levels : style.levels + 1 - resolution;
}

int32_t subbandNumber(int32_t resolution, int32_t kind) {
  // HL, LH, HH
  constexpr int32_t kOrder[] = {0, 1, 0, 2};
  return resolution == 0 ? 0 : 3 * (resolution - 1) + 1 + kOrder[kind];
}

Quantization quantization(const CodingStyle& style, int32_t precision) {
  Quantization result;
  result.style = style.reversible ? QuantizationStyle::none : QuantizationStyle::expounded;
  for (int32_t resolution = 0; resolution <= style.levels; ++resolution) {
    for (const SubbandKind kind : {SubbandLL, SubbandHL, SubbandLH, SubbandHH}) {
      if ((resolution == 0) != (kind == SubbandLL)) continue;
      const int32_t gain = Subband{kind, {}, 0}.gain();
      Quantization::Step& step = result.steps[static_cast<size_t>(subbandNumber(resolution, kind))];
      const double norm = subbandNorm(WaveletKind::irreversible97, levelOf(style, resolution), kind);
      step = style.reversible ? Quantization::Step{static_cast<uint8_t>(precision + gain), 0}
                              : nearestStep(finestStep(precision) / norm, precision + gain);
    }
  }
  return result;
}

}  // namespace

EncodeSettings makeSettings(int32_t width, int32_t height, int32_t channels, int32_t precision,
                            const EncodeOptions& options) {
  checkOptions(options);
  EncodeSettings settings;
  settings.size = imageSize(width, height, channels, precision, options.tile);
  settings.coding.order = options.progression;
  settings.coding.layers = options.layers;
  settings.coding.colorTransform = options.convertColors && channels == 3;
  settings.coding.sop = options.sop;
  settings.coding.eph = options.eph;
  const CodingStyle style = codingStyle(options);
  settings.coding.components.assign(static_cast<size_t>(channels), {style, quantization(style, precision), 0});
  return settings;
}

double quantizerStep(const EncodeSettings& settings, const Subband& band) {
  const ComponentCoding& coding = settings.coding.components[0];
  if (coding.style.reversible) return 1;
  const Quantization::Step& step = coding.quantization.steps[static_cast<size_t>(band.number)];
  const int32_t range = settings.size.components[0].precision + band.gain();
  return std::ldexp(1 + step.mantissa / 2048.0, range - step.exponent);
}

double stepWeight(const EncodeSettings& settings, int32_t component, int32_t resolution, const Subband& band) {
  const CodingStyle& style = settings.coding.components[0].style;
  const WaveletKind wavelet = style.reversible ? WaveletKind::reversible53 : WaveletKind::irreversible97;
  const double norm = subbandNorm(wavelet, levelOf(style, resolution), band.kind) * quantizerStep(settings, band);
  return norm * norm * (settings.coding.colorTransform ? colourWeight(wavelet, component) : 1);
}

}  // namespace examples::jpeg2k
