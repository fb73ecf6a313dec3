// Pictures for zorj2k, and its files seen by the peer.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "interop/openjpeg.h"
#include "interop/pictures.h"

namespace interop {

namespace jpeg2k = examples::jpeg2k;

// picture() with samples of 1 to 16 bits, whose lowest bits are noise.
inline DeepImage deepPicture(Size size, int32_t channels, int32_t precision, uint64_t seed = 1) {
  const Image eight = picture(size.width, size.height, channels, seed);
  Random random(seed + 1);
  DeepImage image(size.width, size.height, channels);
  image.precision = precision;
  for (size_t i = 0; i < image.samples.size(); ++i) {
    const auto bits = eight.samples[i] << 8 | static_cast<int32_t>(random.between(0, 255));
    image.samples[i] = static_cast<uint16_t>(bits >> (16 - precision));
  }
  return image;
}

inline std::vector<uint8_t> encoded(const DeepImage& image, const jpeg2k::EncodeOptions& options) {
  std::vector<uint8_t> file;
  jpeg2k::encode(image, options, file);
  return file;
}

inline std::vector<jpeg2k::ComponentSamples> decoded(std::span<const uint8_t> file) {
  std::vector<jpeg2k::ComponentSamples> components;
  EXPECT_EQ(jpeg2k::decodeComponents(file, {}, components).problem, "");
  return components;
}

inline DeepImage asImage(const std::vector<jpeg2k::ComponentSamples>& components) {
  DeepImage image(components[0].width, components[0].height, static_cast<int32_t>(components.size()));
  image.precision = components[0].precision;
  for (size_t i = 0; i < image.samples.size(); ++i)
    image.samples[i] = components[i % components.size()].samples[i / components.size()];
  return image;
}

inline void expectSamples(const DeepImage& expected, const std::vector<jpeg2k::ComponentSamples>& components,
                          int32_t tolerance = 0) {
  ASSERT_EQ(components.size(), static_cast<size_t>(expected.channels));
  ASSERT_EQ(components[0].width, expected.width);
  ASSERT_EQ(components[0].height, expected.height);
  ASSERT_EQ(components[0].precision, expected.precision);
  const DeepImage image = asImage(components);
  int32_t largest = 0;
  for (size_t i = 0; i < image.samples.size(); ++i)
    largest = std::max(largest, std::abs(int32_t{image.samples[i]} - expected.samples[i]));
  EXPECT_LE(largest, tolerance);
}

inline double psnr(const DeepImage& a, const DeepImage& b) {
  double sum = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) sum += std::pow(double{1} * a.samples[i] - b.samples[i], 2);
  return 10 * std::log10(std::pow(a.largest(), 2) * static_cast<double>(a.samples.size()) / std::max(sum, 1e-9));
}

}  // namespace interop
