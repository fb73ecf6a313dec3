#include "jpeg/deep_pixels.h"

#include <zorj/jpeg_dct.h>

#include <algorithm>

namespace examples::jpeg {
namespace {

// A plane's samples over the whole image.
class Upsampled {
 public:
  Upsampled(const Frame& frame, const Component& component, const SamplePlane& plane, Upsampling upsampling)
      : plane_(plane),
        width_(frame.samplesWide(component)),
        height_(frame.samplesHigh(component)),
        maxHorizontal_(frame.maxHorizontal()),
        maxVertical_(frame.maxVertical()),
        horizontal_(component.horizontal),
        vertical_(component.vertical),
        doubled_(upsampling == Upsampling::triangle && maxHorizontal_ == 2 * horizontal_),
        doubledDown_(upsampling == Upsampling::triangle && maxVertical_ == 2 * vertical_ &&
                     (doubled_ || maxHorizontal_ == horizontal_)) {}

  // The triangle filter gives the nearer sample three parts of four in each direction (zorj/jpeg_sampling.h).
  int32_t at(int32_t x, int32_t y) const {
    if (doubled_ && doubledDown_) {
      const int32_t near = 3 * sample(x / 2, y / 2) + sample(x / 2, beside(y));
      const int32_t far = 3 * sample(beside(x), y / 2) + sample(beside(x), beside(y));
      return (3 * near + far + (x % 2 == 0 ? 8 : 7)) >> 4;
    }
    if (doubled_) return (3 * row(x / 2, y) + row(beside(x), y) + (x % 2 == 0 ? 1 : 2)) >> 2;
    if (doubledDown_) return (3 * sample(x, y / 2) + sample(x, beside(y)) + (y % 2 == 0 ? 1 : 2)) >> 2;
    return row(x * horizontal_ / maxHorizontal_, y);
  }

 private:
  // The neighbour of the source sample of an output that lies next to it.
  static int32_t beside(int32_t output) { return output % 2 == 0 ? output / 2 - 1 : output / 2 + 1; }

  int32_t sample(int32_t x, int32_t y) const {
    return plane_.at(std::clamp(x, 0, width_ - 1), std::clamp(y, 0, height_ - 1));
  }
  int32_t row(int32_t x, int32_t y) const { return sample(x, y * vertical_ / maxVertical_); }

  const SamplePlane& plane_;
  int32_t width_, height_;
  int32_t maxHorizontal_, maxVertical_, horizontal_, vertical_;
  bool doubled_, doubledDown_;
};

// JFIF's matrix with 16 fractional bits, rounded; `largest` is the largest sample.
void toRgb(int32_t* pixel, int32_t largest) {
  const int32_t y = pixel[0], cb = pixel[1] - (largest + 1) / 2, cr = pixel[2] - (largest + 1) / 2;
  const auto channel = [&](int64_t difference) {
    return std::clamp(y + static_cast<int32_t>((difference + 32768) >> 16), 0, largest);
  };
  pixel[0] = channel(int64_t{91881} * cr);
  pixel[1] = channel(int64_t{-22554} * cb - int64_t{46802} * cr);
  pixel[2] = channel(int64_t{116130} * cb);
}

void convert(const Frame& frame, int32_t* pixel) {
  const int32_t largest = (1 << frame.precision) - 1;
  if (frame.coding == ColorCoding::yCbCr || frame.coding == ColorCoding::ycck) toRgb(pixel, largest);
  // YCCK codes the complements of the inks as RGB.
  if (frame.coding == ColorCoding::ycck) {
    for (int32_t c = 0; c < 3; ++c) pixel[c] = largest - pixel[c];
  }
  if (frame.inverted) {
    for (int32_t c = 0; c < 4; ++c) pixel[c] = largest - pixel[c];
  }
}

// JFIF's matrix with 16 fractional bits, rounded.
void toYcc(int32_t* pixel, int32_t largest) {
  const int64_t red = pixel[0], green = pixel[1], blue = pixel[2];
  const auto channel = [&](int64_t sum, int32_t centre) {
    return std::clamp(static_cast<int32_t>((sum + 32768) >> 16) + centre, 0, largest);
  };
  pixel[0] = channel(19595 * red + 38470 * green + 7471 * blue, 0);
  pixel[1] = channel(-11059 * red - 21709 * green + 32768 * blue, (largest + 1) / 2);
  pixel[2] = channel(32768 * red - 27439 * green - 5329 * blue, (largest + 1) / 2);
}

// The mean of a component over some pixels; the image's last ones stand in for those beyond its edges.
uint16_t averageSample(const DeepImage& image, const Frame& frame, size_t component, int32_t left, int32_t top,
                       int32_t across, int32_t down) {
  const int32_t largest = image.largest();
  int32_t sum = across * down / 2;
  for (int32_t y = top; y < top + down; ++y) {
    for (int32_t x = left; x < left + across; ++x) {
      const uint16_t* const at = image.at(std::min(x, image.width - 1), std::min(y, image.height - 1));
      int32_t pixel[kMaxComponents] = {};
      std::copy_n(at, image.channels, pixel);
      // What converts back is its own inverse but for the matrix.
      if (frame.inverted) std::transform(pixel, pixel + 4, pixel, [=](int32_t ink) { return largest - ink; });
      if (frame.coding == ColorCoding::ycck) {
        std::transform(pixel, pixel + 3, pixel, [=](int32_t ink) { return largest - ink; });
      }
      if (frame.coding == ColorCoding::yCbCr || frame.coding == ColorCoding::ycck) toYcc(pixel, largest);
      sum += pixel[component];
    }
  }
  return static_cast<uint16_t>(sum / (across * down));
}

// Averages of squares of `scale` pixels; those at the right and bottom edges may be smaller.
DeepImage reduced(const DeepImage& image, int32_t scale) {
  DeepImage result(divideUp(image.width, scale), divideUp(image.height, scale), image.channels);
  result.precision = image.precision;
  for (int32_t y = 0; y < result.height; ++y) {
    for (int32_t x = 0; x < result.width; ++x) {
      const int32_t right = std::min(scale * (x + 1), image.width), bottom = std::min(scale * (y + 1), image.height);
      const int32_t count = (right - scale * x) * (bottom - scale * y);
      for (int32_t c = 0; c < image.channels; ++c) {
        int32_t sum = count / 2;
        for (int32_t row = scale * y; row < bottom; ++row) {
          for (int32_t column = scale * x; column < right; ++column) sum += image.at(column, row)[c];
        }
        result.at(x, y)[c] = static_cast<uint16_t>(sum / count);
      }
    }
  }
  return result;
}

// The library truncates samples of 12 bits: half of one, eight times in the DC coefficient, makes that rounding.
void inverseTransformRounded(const int16_t* block, uint16_t dcStep, const float (&multipliers)[64], uint16_t* samples,
                             int32_t step) {
  int16_t coefficients[64];
  std::copy_n(block, 64, coefficients);
  coefficients[0] = static_cast<int16_t>(std::clamp(block[0] * dcStep + 8 / 2, -32768, 32767));
  zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(coefficients, samples, step, multipliers);
}

}  // namespace

std::vector<SamplePlane> inverseTransformDeep(CoefficientImage& coefficients) {
  const Frame& frame = coefficients.frame;
  std::vector<SamplePlane> planes;
  for (size_t c = 0; c < frame.components.size(); ++c) {
    const Component& component = frame.components[c];
    SamplePlane plane{8 * frame.blocksWide(component), 8 * frame.blocksHigh(component), {}};
    plane.samples.resize(size_t(plane.width) * size_t(plane.height));
    const Blocks blocks = coefficients.mcus.blocks(c, 0, 0);
    const int32_t step = 2 * plane.width;
    const QuantTable& steps = coefficients.quantTables[c];
    float multipliers[64];
    std::copy(steps.begin(), steps.end(), multipliers);
    multipliers[0] = 1;
    for (int32_t y = 0; y < plane.height; y += 8) {
      for (int32_t x = 0; x < plane.width; x += 8) {
        const int16_t* const block = blocks.at(x / 8, y / 8).values;
        uint16_t* const samples = plane.samples.data() + ptrdiff_t{y} * plane.width + x;
        if (frame.precision == 12) {
          inverseTransformRounded(block, steps[0], multipliers, samples, step);
          continue;
        }
        uint8_t bytes[64];
        zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, bytes, 8, steps.data());
        for (int32_t i = 0; i < 64; ++i) samples[ptrdiff_t{i / 8} * plane.width + i % 8] = bytes[i];
      }
    }
    planes.push_back(std::move(plane));
  }
  return planes;
}

void toPixels(const Frame& frame, const std::vector<SamplePlane>& planes, const DecodeOptions& options,
              DeepImage& image) {
  const auto channels = static_cast<int32_t>(planes.size());
  image.reshape(frame.width, frame.height, channels);
  image.precision = frame.precision;
  std::vector<Upsampled> components;
  for (size_t c = 0; c < planes.size(); ++c) {
    components.emplace_back(frame, frame.components[c], planes[c], options.upsampling);
  }
  for (int32_t y = 0; y < frame.height; ++y) {
    for (int32_t x = 0; x < frame.width; ++x) {
      int32_t pixel[kMaxComponents] = {};
      for (size_t c = 0; c < components.size(); ++c) pixel[c] = components[c].at(x, y);
      convert(frame, pixel);
      std::copy_n(pixel, channels, image.at(x, y));
    }
  }
  if (options.scale > 1) image = reduced(image, options.scale);
}

void transformDeep(const DeepImage& image, CoefficientImage& coefficients) {
  const Frame& frame = coefficients.frame;
  for (size_t c = 0; c < frame.components.size(); ++c) {
    const Component& component = frame.components[c];
    const int32_t across = frame.maxHorizontal() / component.horizontal,
                  down = frame.maxVertical() / component.vertical;
    float multipliers[64];
    std::transform(coefficients.quantTables[c].begin(), coefficients.quantTables[c].end(), multipliers,
                   [](uint16_t step) { return 1.0F / static_cast<float>(step); });
    const Blocks blocks = coefficients.mcus.blocks(c, 0, 0);
    for (int32_t row = 0; row < frame.mcusHigh() * component.vertical; ++row) {
      for (int32_t column = 0; column < frame.mcusWide() * component.horizontal; ++column) {
        uint16_t samples[64];
        for (int32_t i = 0; i < 64; ++i) {
          samples[i] =
              averageSample(image, frame, c, (8 * column + i % 8) * across, (8 * row + i / 8) * down, across, down);
        }
        zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(samples, 16, blocks.at(column, row).values, multipliers);
      }
    }
  }
}

}  // namespace examples::jpeg
