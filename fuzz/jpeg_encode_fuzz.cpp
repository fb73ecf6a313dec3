// Pictures through the JPEG codec and back, in every kind of file and with any script of scans: the coefficients come
// back as they went in, and the samples of lossless files too.
#include "common/error.h"
#include "jpeg/codec.h"
#include "support/coefficients.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

namespace jpeg = examples::jpeg;

// A script in few bytes; most cannot be, some can.
std::vector<jpeg::Scan> scriptOfInput(Input& input, size_t components) {
  std::vector<jpeg::Scan> script(static_cast<size_t>(input.between(0, 12)));
  for (jpeg::Scan& scan : script) {
    const uint8_t members = input.byte(), bits = input.byte();
    for (size_t c = 0; c < components; ++c) {
      if ((members >> c & 1) != 0) scan.components.push_back(c);
    }
    scan.first = (members >> 4) == 0 ? 0 : input.between(0, 64);
    scan.last = (members >> 4) == 0 ? 0 : input.between(0, 64);
    scan.highBit = bits >> 4;
    scan.lowBit = bits & 15;
  }
  return script;
}

template <class Image>
Image imageOfInput(Input& input, int32_t channels, int32_t precision) {
  const int32_t width = input.between(1, 40), height = input.between(1, 40);
  Image image(width, height, channels);
  image.precision = precision;
  input.fill(image.samples.data(), image.samples.size());
  for (auto& sample : image.samples) sample = static_cast<decltype(sample + 0)>(sample) & image.largest();
  return image;
}

template <class Image>
void codeCoefficients(const Image& image, const jpeg::EncodeOptions& options) {
  const Bytes file = sameAtPortableLevel([&] {
    Bytes bytes;
    jpeg::encode(image, options, bytes);
    return bytes;
  });
  jpeg::CoefficientImage before = jpeg::transform(image, options), after;
  EXPECT_EQ(jpeg::decodeCoefficients(file, after).problem, "");
  EXPECT_TRUE(coefficientsOf(before) == coefficientsOf(after));
}

void codeLossless(const examples::DeepImage& image, const jpeg::EncodeOptions& options) {
  const Bytes file = sameAtPortableLevel([&] {
    Bytes bytes;
    jpeg::encode(image, options, bytes);
    return bytes;
  });
  examples::DeepImage decoded;
  EXPECT_EQ(jpeg::decode(file, {}, decoded).problem, "");
  // Inks are stored inverted, so it is then that their low bits are dropped.
  const int32_t inversion = image.channels == 4 ? image.largest() : 0, shift = options.pointTransform;
  EXPECT_TRUE(
      std::equal(image.samples.begin(), image.samples.end(), decoded.samples.begin(), decoded.samples.end(),
                 [&](int32_t from, int32_t to) { return ((from ^ inversion) >> shift << shift) == (to ^ inversion); }));
}

}  // namespace

void fuzz(Input& input) {
  constexpr int32_t kChannels[] = {1, 3, 3, 4};
  chooseLevel(input);
  const int32_t channels = kChannels[input.byte() % 4];
  jpeg::EncodeOptions options;
  const uint8_t kind = input.byte();
  options.quality = input.between(0, 101);
  options.sampling = static_cast<jpeg::Sampling>(input.byte() % 3);
  options.restartInterval = input.between(0, 7);
  options.convertColors = input.coin();
  options.optimize = input.coin();
  try {
    switch (kind % 4) {
      case 0:
        return codeCoefficients(imageOfInput<examples::Image>(input, channels, 8), options);
      case 1:
        options.progressive = true;
        options.script = scriptOfInput(input, static_cast<size_t>(channels));
        return codeCoefficients(imageOfInput<examples::Image>(input, channels, 8), options);
      case 2:
        options.precision = 12;
        return codeCoefficients(imageOfInput<examples::DeepImage>(input, channels, input.between(1, 16)), options);
      default:
        options.predictor = input.between(1, 7);
        options.pointTransform = input.coin() ? input.between(0, 15) : 0;
        const auto image = imageOfInput<examples::DeepImage>(input, channels, input.between(2, 16));
        options.restartInterval *= image.width;
        return codeLossless(image, options);
    }
  } catch (const examples::Error&) {
  }
}

}  // namespace zorj::fuzz
