#include "common/image_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "common/error.h"
#include "common/files.h"
#include "common/png_file.h"
#include "common/pnm_file.h"

namespace examples {

Image readImage(const std::string& path, Opacity opacity) {
  const std::vector<uint8_t> bytes = readFile(path);
  try {
    if (isPng(bytes)) return readPng(bytes, opacity);
    if (isPnm(bytes)) return readPnm(bytes);
  } catch (const Error& error) {
    throw Error(path + ": " + error.what());
  }
  throw Error(path + ": neither a PNG nor a binary PGM or PPM file");
}

ImageFormat imageFormatOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".png") return ImageFormat::png;
  if (extension == ".pgm") return ImageFormat::pgm;
  if (extension == ".ppm") return ImageFormat::ppm;
  throw Error(path + ": the name must end in .png, .ppm or .pgm");
}

void writeImage(const std::string& path, const Image& image) {
  const ImageFormat format = imageFormatOf(path);
  if (format != ImageFormat::png && image.channels % 2 == 0) throw Error(path + ": opacity fits a PNG file alone");
  if (format == ImageFormat::pgm && image.channels != 1) throw Error(path + ": a colour image does not fit a PGM file");
  OutputFile file(path);
  if (format == ImageFormat::png) {
    writePng(image, file);
  } else {
    writePnm(image, format == ImageFormat::pgm ? 1 : 3, file);
  }
  file.commit();
}

}  // namespace examples
