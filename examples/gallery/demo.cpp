// zorj-demo: takes a picture through the example codecs, checks the results with an independent decoder, and measures.
#include <turbojpeg.h>
#include <zorcore.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "jpeg/codec.h"

namespace {

using examples::Error;
using examples::Image;
namespace jpeg = examples::jpeg;

// Median seconds of a call, repeated for a while.
template <class Call>
double medianSeconds(const Call& call) {
  using Clock = std::chrono::steady_clock;
  std::vector<double> seconds;
  const auto start = Clock::now();
  while (seconds.size() < 5 || Clock::now() - start < std::chrono::milliseconds(300)) {
    const auto before = Clock::now();
    call();
    seconds.push_back(std::chrono::duration<double>(Clock::now() - before).count());
  }
  std::nth_element(seconds.begin(), seconds.begin() + static_cast<ptrdiff_t>(seconds.size() / 2), seconds.end());
  return seconds[seconds.size() / 2];
}

double psnr(const Image& a, const Image& b) {
  double squares = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) {
    const double difference = a.samples[i] - b.samples[i];
    squares += difference * difference;
  }
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.samples.size()) / squares);
}

struct CloseTurbo {
  void operator()(void* handle) const { tjDestroy(handle); }
};

// The largest difference between the samples of our decoder and of libjpeg-turbo's, before up-sampling and colour
// conversion.
int largestDifference(const std::vector<uint8_t>& file) {
  const std::unique_ptr<void, CloseTurbo> turbo(tjInitDecompress());
  int width = 0, height = 0, subsampling = 0, colorspace = 0;
  const auto fail = [&] { throw Error(std::string("libjpeg-turbo: ") + tjGetErrorStr2(turbo.get())); };
  if (tjDecompressHeader3(turbo.get(), file.data(), file.size(), &width, &height, &subsampling, &colorspace)) fail();

  jpeg::CoefficientImage coefficients;
  const jpeg::DecodeReport report = jpeg::decodeCoefficients(file, coefficients);
  if (!report.complete()) throw Error(report.problem);
  const auto ours = jpeg::inverseTransform(coefficients);

  std::vector<std::vector<uint8_t>> planes(ours.size());
  unsigned char* pointers[3] = {};
  int steps[3] = {};
  for (int c = 0; c < static_cast<int>(ours.size()); ++c) {
    const auto at = static_cast<size_t>(c);
    steps[c] = tjPlaneWidth(c, width, subsampling);
    planes[at].resize(static_cast<size_t>(steps[c]) * static_cast<size_t>(tjPlaneHeight(c, height, subsampling)));
    pointers[c] = planes[at].data();
  }
  if (tjDecompressToYUVPlanes(turbo.get(), file.data(), file.size(), pointers, width, steps, height,
                              TJFLAG_ACCURATEDCT)) {
    fail();
  }
  int largest = 0;
  for (size_t c = 0; c < ours.size(); ++c) {
    const auto step = static_cast<size_t>(steps[c]), rows = planes[c].size() / step;
    for (size_t y = 0; y < rows; ++y) {
      for (size_t x = 0; x < step; ++x) {
        const int our = ours[c].samples[y * static_cast<size_t>(ours[c].width) + x];
        largest = std::max(largest, std::abs(our - planes[c][y * step + x]));
      }
    }
  }
  return largest;
}

struct Setting {
  const char* name;
  jpeg::Sampling sampling;
  int32_t quality;
};
constexpr Setting kSettings[] = {
    {"444", jpeg::Sampling::s444, 95}, {"444", jpeg::Sampling::s444, 90}, {"444", jpeg::Sampling::s444, 75},
    {"422", jpeg::Sampling::s422, 90}, {"420", jpeg::Sampling::s420, 90}, {"420", jpeg::Sampling::s420, 75},
    {"420", jpeg::Sampling::s420, 50},
};

// One line of the table. Returns whether the independent decoder agrees.
bool demonstrate(const Image& image, const Setting& setting, const std::filesystem::path& directory) {
  const jpeg::EncodeOptions options = {setting.quality, setting.sampling, 0};
  std::vector<uint8_t> file;
  Image decoded;
  const double encodeSeconds = medianSeconds([&] { jpeg::encode(image, options, file); });
  const double decodeSeconds = medianSeconds([&] { jpeg::decode(file, {}, decoded); });
  const int difference = largestDifference(file);
  const double pixels = static_cast<double>(image.width) * image.height, bytes = static_cast<double>(file.size());
  std::printf("%8s %8d %10.1f KB %10.2f %9.2f dB %8.1f MP/s %8.1f MP/s %8d %s\n", setting.name, setting.quality,
              bytes / 1e3, bytes * 8 / pixels, psnr(image, decoded), pixels / encodeSeconds / 1e6,
              pixels / decodeSeconds / 1e6, difference, difference <= 1 ? "ok" : "DIFFERS");
  std::fflush(stdout);

  const auto stem = directory / (std::string(setting.name) + "-q" + std::to_string(setting.quality));
  examples::OutputFile output(stem.string() + ".jpg");
  output.write(file);
  output.commit();
  examples::writeImage(stem.string() + ".png", decoded);
  return difference <= 1;
}

// The ways there are to decode a file, which all start from the same coefficients.
void demonstrateDecoding(const Image& image, int threads, const std::filesystem::path& directory) {
  const struct {
    std::string name;
    jpeg::DecodeOptions options;
  } ways[] = {{"triangle", {}},
              {"box", {jpeg::Upsampling::box}},
              {"1/2", {jpeg::Upsampling::triangle, 2}},
              {"1/4", {jpeg::Upsampling::triangle, 4}},
              {"1/8", {jpeg::Upsampling::triangle, 8}},
              {std::to_string(threads) + " threads", {jpeg::Upsampling::triangle, 1, threads}}};
  std::vector<uint8_t> file;
  jpeg::encode(image, {90, jpeg::Sampling::s420, (image.width + 15) / 16}, file);
  std::printf("\nDecoding of 420 at quality 90 with restart markers, in pixels of the whole picture:\n\n");
  for (const auto& way : ways) {
    Image decoded;
    const double seconds = medianSeconds([&] { jpeg::decode(file, way.options, decoded); });
    std::printf("%10s %5d x %-5d %9.2f ms %8.1f MP/s\n", way.name.c_str(), decoded.width, decoded.height, seconds * 1e3,
                static_cast<double>(image.width) * image.height / seconds / 1e6);
    if (way.options.scale > 1) {
      examples::writeImage(directory / ("420-q90-of-" + std::to_string(way.options.scale) + ".png"), decoded);
    }
  }
}

int run(const std::string& picture, const std::filesystem::path& directory) {
  const Image image = examples::readImage(picture);
  std::filesystem::create_directories(directory);
  std::printf("%s: %d x %d, %.1f megapixels\n\nBaseline JPEG, one thread, in memory:\n\n", picture.c_str(), image.width,
              image.height, static_cast<double>(image.width) * image.height / 1e6);
  std::printf("%8s %8s %13s %10s %12s %13s %13s %8s\n", "sampling", "quality", "size", "bits/pixel", "PSNR", "encode",
              "decode", "check*");
  const int threads = ownGetNumThreads();
  zorSetNumThreads(1);
  bool agrees = true;
  for (const Setting& setting : kSettings) agrees &= demonstrate(image, setting, directory);
  demonstrateDecoding(image, threads, directory);
  std::printf(
      "\n* Largest difference of a decoded sample from libjpeg-turbo's; at most 1 is within rounding.\n"
      "The files and their decoded pictures are in %s.\n",
      directory.c_str());
  if (!agrees) std::fprintf(stderr, "zorj-demo: the independent decoder does not agree\n");
  return agrees ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: zorj-demo IMAGE.png|ppm|pgm DIRECTORY\n");
    return EXIT_FAILURE;
  }
  try {
    return run(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zorj-demo: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
