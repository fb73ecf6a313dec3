#include "common/image_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "common/error.h"
#include "common/files.h"
#include "common/png_file.h"
#include "common/pnm_file.h"

namespace examples {

Image readImage(const std::string& path) {
  const std::vector<uint8_t> bytes = readFile(path);
  try {
    if (isPng(bytes)) return readPng(bytes);
    if (isPnm(bytes)) return readPnm(bytes);
  } catch (const Error& error) {
    throw Error(path + ": " + error.what());
  }
  throw Error(path + ": neither a PNG nor a binary PGM, PPM or PAM file");
}

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

Image cmykToRgb(const Image& cmyk) {
  Image rgb(cmyk.width, cmyk.height, 3);
  const uint8_t* ink = cmyk.samples.data();
  uint8_t* primary = rgb.samples.data();
  for (const uint8_t* const end = primary + rgb.samples.size(); primary != end; ++ink) {
    const int32_t light = 255 - ink[3];
    for (int32_t i = 0; i < 3; ++i) *primary++ = static_cast<uint8_t>(((255 - *ink++) * light + 127) / 255);
  }
  return rgb;
}

void writeImage(const std::string& path, const Image& image) {
  const ImageFormat format = imageFormatOf(path);
  if (image.channels == 4 && format != ImageFormat::pam) return writeImage(path, cmykToRgb(image));
  if (format == ImageFormat::pgm && image.channels != 1) throw Error(path + ": a colour image does not fit a PGM file");
  OutputFile file(path);
  switch (format) {
    case ImageFormat::png:
      writePng(image, file);
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

}  // namespace examples
