#include "gallery/independent.h"

#include <spawn.h>
#include <sys/wait.h>
#include <turbojpeg.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "common/error.h"
#include "common/image_file.h"
#include "jpeg/codec.h"

namespace examples::gallery {
namespace {

struct CloseTurbo {
  void operator()(void* handle) const { tjDestroy(handle); }
};

// The largest difference between the samples of our decoder and of libjpeg-turbo's, before up-sampling and colour
// conversion.
int largestDifferenceOfSamples(const std::vector<uint8_t>& file) {
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

// Runs a program without a shell; returns whether it succeeded.
bool run(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, STDERR_FILENO, "/dev/null", 1, 0);  // 1: for writing
  pid_t child = 0;
  int status = -1;
  const bool started = posix_spawnp(&child, arguments[0], &quiet, nullptr, arguments.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&quiet);
  return started && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

void checkWithLibjpegTurbo(const std::vector<uint8_t>& file, Exhibit& exhibit) {
  const int difference = largestDifferenceOfSamples(file);
  exhibit.check = "libjpeg-turbo: " + std::to_string(difference);
  exhibit.agrees = difference <= 1;
}

void checkWithPillow(const Gallery& gallery, int allowed, Exhibit& exhibit) {
  const std::filesystem::path decoded = gallery.path("independent.png");
  const char* const mode = exhibit.picture.channels == 1 ? "L" : "RGB";
  const std::string script = "import sys\nfrom PIL import Image\nImage.open(sys.argv[1]).convert('" +
                             std::string(mode) + "').save(sys.argv[2])\n";
  // The system's Python, which is the one that Debian's packages serve.
  if (!run({"/usr/bin/python3", "-c", script, gallery.path(exhibit.fileName).string(), decoded.string()})) {
    exhibit.check = "no Pillow";
    return;
  }
  const int difference = largestDifference(exhibit.picture, readImage(decoded.string()));
  std::filesystem::remove(decoded);
  exhibit.check = "Pillow: " + std::to_string(difference);
  exhibit.agrees = difference <= allowed;
}

}  // namespace examples::gallery
