#include "common/image_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "common/error.h"
#include "common/files.h"
#include "common/png_file.h"
#include "common/pnm_file.h"

namespace examples {
namespace {

// PNG files have samples of 8 or 16 bits, or of fewer than these libraries write.
void writeScaledPng(const Image& image, OutputFile& file) { writePng(image, file.stream()); }
void writeScaledPng(const DeepImage& image, OutputFile& file) {
  if (image.precision <= 8) {
    writePng(withPrecision<uint8_t>(image, 8), file.stream());
  } else {
    writePng(withPrecision<uint16_t>(image, 16), file.stream());
  }
}

template <class Sample>
void write(const std::string& path, const BasicImage<Sample>& image) {
  const ImageFormat format = imageFormatOf(path);
  if (image.hasOpacity && format != ImageFormat::png) throw Error(path + ": opacity fits a PNG file alone");
  if (image.channels == 4 && !image.hasOpacity && format != ImageFormat::pam) return write(path, cmykToRgb(image));
  if (format == ImageFormat::pgm && image.channels != 1) throw Error(path + ": a colour image does not fit a PGM file");
  OutputFile file(path);
  switch (format) {
    case ImageFormat::png:
      writeScaledPng(image, file);
      break;
    case ImageFormat::pam:
      writePam(image, file);
      break;
    case ImageFormat::pgm:
    case ImageFormat::ppm:
      writePnm(image, format == ImageFormat::pgm ? 1 : 3, file);
      break;
  }
  file.commit();
}

DeepImage readAny(const std::string& path, Opacity opacity) {
  const std::vector<uint8_t> bytes = readFile(path);
  try {
    if (isPng(bytes)) return readPng(bytes, opacity);
    if (isPnm(bytes)) return readPnm(bytes);
  } catch (const Error& error) {
    throw Error(path + ": " + error.what());
  }
  throw Error(path + ": neither a PNG nor a binary PGM, PPM or PAM file");
}

}  // namespace

Image readImage(const std::string& path, Opacity opacity) { return withPrecision<uint8_t>(readAny(path, opacity), 8); }
DeepImage readDeepImage(const std::string& path) { return readAny(path, Opacity::overWhite); }

ImageFormat imageFormatOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".png") return ImageFormat::png;
  if (extension == ".pgm") return ImageFormat::pgm;
  if (extension == ".ppm") return ImageFormat::ppm;
  if (extension == ".pam") return ImageFormat::pam;
  throw Error(path + ": the name must end in .png, .ppm, .pgm or .pam");
}

template <class Sample>
BasicImage<Sample> cmykToRgb(const BasicImage<Sample>& cmyk) {
  BasicImage<Sample> rgb(cmyk.width, cmyk.height, 3);
  rgb.precision = cmyk.precision;
  const int64_t largest = cmyk.largest();
  const Sample* ink = cmyk.samples.data();
  Sample* primary = rgb.samples.data();
  for (const Sample* const end = primary + rgb.samples.size(); primary != end; ++ink) {
    const int64_t light = largest - ink[3];
    for (int32_t i = 0; i < 3; ++i) {
      *primary++ = static_cast<Sample>(((largest - *ink++) * light + largest / 2) / largest);
    }
  }
  return rgb;
}
template Image cmykToRgb(const Image&);
template DeepImage cmykToRgb(const DeepImage&);

template <class To, class From>
BasicImage<To> withPrecision(const BasicImage<From>& image, int32_t precision) {
  BasicImage<To> result(image.width, image.height, image.channels);
  result.precision = precision;
  result.hasOpacity = image.hasOpacity;
  const int64_t from = image.largest(), to = result.largest();
  std::transform(image.samples.begin(), image.samples.end(), result.samples.begin(),
                 [=](From sample) { return static_cast<To>((sample * to + from / 2) / from); });
  return result;
}
template Image withPrecision(const DeepImage&, int32_t);
template DeepImage withPrecision(const DeepImage&, int32_t);
template DeepImage withPrecision(const Image&, int32_t);

void writeImage(const std::string& path, const Image& image) { write(path, image); }
void writeImage(const std::string& path, const DeepImage& image) { write(path, image); }

}  // namespace examples
