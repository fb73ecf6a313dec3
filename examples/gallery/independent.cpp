#include "gallery/independent.h"

#include <spawn.h>
#include <sys/wait.h>
#include <turbojpeg.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "common/error.h"
#include "common/files.h"
#include "jpeg/codec.h"

namespace examples::gallery {
namespace {

struct CloseTurbo {
  void operator()(void* handle) const { tjDestroy(handle); }
};

// Samples of a component, before up-sampling.
struct Plane {
  int32_t width = 0, height = 0;
  Bytes samples;
};

// Empty if libjpeg-turbo cannot read the file.
std::vector<Plane> planesOfTurbo(const Bytes& file) {
  const std::unique_ptr<void, CloseTurbo> turbo(tjInitDecompress());
  int width = 0, height = 0, sampling = 0, colours = 0;
  if (tjDecompressHeader3(turbo.get(), file.data(), file.size(), &width, &height, &sampling, &colours)) return {};
  std::vector<Plane> planes(colours == TJCS_GRAY ? 1 : 3);
  unsigned char* pointers[3] = {};
  for (size_t c = 0; c < planes.size(); ++c) {
    Plane& plane = planes[c];
    plane.width = tjPlaneWidth(static_cast<int>(c), width, sampling);
    plane.height = tjPlaneHeight(static_cast<int>(c), height, sampling);
    plane.samples.resize(static_cast<size_t>(plane.width) * static_cast<size_t>(plane.height));
    pointers[c] = plane.samples.data();
  }
  const int flags = TJFLAG_ACCURATEDCT | TJFLAG_STOPONWARNING;
  if (tjDecompressToYUVPlanes(turbo.get(), file.data(), file.size(), pointers, width, nullptr, height, flags))
    return {};
  return planes;
}

// Runs a program without a shell and quietly; returns its exit code.
constexpr int kNotThere = 127;
int run(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t quiet;
  posix_spawn_file_actions_init(&quiet);
  posix_spawn_file_actions_addopen(&quiet, STDERR_FILENO, "/dev/null", 1, 0);  // 1: for writing
  pid_t child = 0;
  int status = 0;
  const bool started = posix_spawnp(&child, arguments[0], &quiet, nullptr, arguments.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&quiet);
  if (!started) return kNotThere;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void write(const std::filesystem::path& path, std::span<const uint8_t> bytes) {
  OutputFile file(path);
  file.write(bytes);
  file.commit();
}

// A file that another program has written; it does not stay.
Bytes take(const std::filesystem::path& path) {
  Bytes bytes = readFile(path);
  std::filesystem::remove(path);
  return bytes;
}

// What the tool of dcmtk that makes DICOM files reads, for one around a JPEG file.
std::string dicomText(const DeepImage& image, const std::filesystem::path& jpeg) {
  const char* const colours = image.channels == 1 ? "MONOCHROME2" : image.precision == 8 ? "RGB" : "YBR_FULL";
  const char* const process =
      image.precision == 8 ? "JPEGLossless:Non-hierarchical:Process14" : "JPEGExtended:Process2+4";
  return format("(0002,0010) UI =%s\n(0008,0016) UI =SecondaryCaptureImageStorage\n(0008,0018) UI [1.2.3.4]\n",
                process) +
         format("(0028,0002) US %d\n(0028,0004) CS [%s]\n(0028,0006) US 0\n", image.channels, colours) +
         format("(0028,0010) US %d\n(0028,0011) US %d\n", image.height, image.width) +
         format("(0028,0100) US %d\n(0028,0101) US %d\n", image.precision == 8 ? 8 : 16, image.precision) +
         format("(0028,0102) US %d\n(0028,0103) US 0\n", image.precision - 1) +
         format("(7fe0,0010) OB (PixelSequence #=2)\n(fffe,e000) pi\n(fffe,e000) pi =%s\n(fffe,e0dd) na\n",
                jpeg.c_str());
}

}  // namespace

Verdict askLibjpegTurbo(const Bytes& file) {
  Verdict verdict{"libjpeg-turbo", true, 0, 1};
  const std::vector<Plane> theirs = planesOfTurbo(file);
  verdict.canRead = !theirs.empty();
  jpeg::CoefficientImage coefficients;
  const jpeg::DecodeReport report = jpeg::decodeCoefficients(file, coefficients);
  if (!report.complete()) throw Error(report.problem);
  const auto ours = jpeg::inverseTransform(coefficients);
  for (size_t c = 0; c < theirs.size(); ++c) {
    const auto width = static_cast<size_t>(theirs[c].width);
    for (size_t i = 0; i < theirs[c].samples.size(); ++i) {
      const int our = ours[c].samples[i / width * static_cast<size_t>(ours[c].width) + i % width];
      verdict.difference = std::max(verdict.difference, std::abs(our - theirs[c].samples[i]));
    }
  }
  return verdict;
}

Verdict askDcmtk(const Gallery& gallery, const Bytes& file) {
  DeepImage ours;
  const jpeg::DecodeReport report = jpeg::decode(file, {}, ours);
  if (!report.complete()) throw Error(report.problem);
  // Where all components' samples are off by 1, blue is off by 1 + 1.772, rounded.
  Verdict verdict{"dcmtk", true, 0, ours.precision == 8 ? 0 : ours.channels == 1 ? 1 : 3};

  const std::filesystem::path jpeg = gallery.path("dicom.jpg"), text = gallery.path("dicom.txt");
  const std::filesystem::path wrapped = gallery.path("wrapped.dcm"), decoded = gallery.path("decoded.dcm");
  Bytes even = file;
  even.resize(even.size() + even.size() % 2);
  write(jpeg, even);
  const std::string description = dicomText(ours, jpeg);
  write(text, {reinterpret_cast<const uint8_t*>(description.data()), description.size()});
  const int exitCode = run({"dump2dcm", text, wrapped});
  verdict.canRead = exitCode == 0 && run({"dcmdjpeg", wrapped, decoded}) == 0;
  for (const auto& path : {jpeg, text, wrapped}) std::filesystem::remove(path);
  if (exitCode == kNotThere) return {};
  if (!verdict.canRead) return verdict;

  // The pixels end the file: little-endian, an even number of bytes.
  const Bytes dicom = take(decoded);
  const size_t size = ours.precision == 8 ? 1 : 2, length = ours.samples.size() * size;
  if (dicom.size() < length + length % 2) throw Error("dcmtk leaves out pixels");
  const uint8_t* at = dicom.data() + (dicom.size() - length - length % 2);
  for (const uint16_t sample : ours.samples) {
    verdict.difference = std::max(verdict.difference, std::abs(sample - (at[0] | (size == 2 ? at[1] << 8 : 0))));
    at += size;
  }
  return verdict;
}

PillowPicture decodeWithPillow(const Gallery& gallery, const std::string& fileName) {
  const std::filesystem::path decoded = gallery.path("pillow.rgba");
  const char* const script =
      "import sys\n"
      "try: from PIL import Image\n"
      "except ImportError: sys.exit(127)\n"
      "open(sys.argv[2], 'wb').write(Image.open(sys.argv[1]).convert('RGBA').tobytes())\n";
  // The system's Python, which is the one that Debian's packages serve.
  const int exitCode = run({"/usr/bin/python3", "-c", script, gallery.path(fileName), decoded});
  if (exitCode != 0) return {exitCode != kNotThere, {}};
  return {true, take(decoded)};
}

Verdict askPillow(const Gallery& gallery, const Exhibit& exhibit, int allowed, const char* decoder) {
  const auto [installed, rgba] = decodeWithPillow(gallery, exhibit.fileName);
  if (!installed) return {};
  const Image& ours = exhibit.picture;
  Verdict verdict{decoder, true, 0, allowed};
  verdict.canRead = rgba.size() == size_t(ours.width) * size_t(ours.height) * 4;
  if (!verdict.canRead) return verdict;
  for (size_t i = 0; i < ours.samples.size(); ++i) {
    const auto channels = static_cast<size_t>(ours.channels);
    const int difference = ours.samples[i] - rgba[i / channels * 4 + i % channels];
    verdict.difference = std::max(verdict.difference, std::abs(difference));
  }
  return verdict;
}

}  // namespace examples::gallery
