#include "gallery/gallery.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>

#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"

namespace examples::gallery {
namespace {

double psnr(const Image& a, const Image& b) {
  if (a.width != b.width || a.height != b.height || a.channels != b.channels) {
    throw Error("a decoded picture has another size than the original");
  }
  double squares = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) {
    const double difference = a.samples[i] - b.samples[i];
    squares += difference * difference;
  }
  if (squares == 0) return std::numeric_limits<double>::infinity();
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.samples.size()) / squares);
}

double bitsPerPixel(size_t bytes, double megapixels) { return static_cast<double>(bytes) * 8e-6 / megapixels; }

// The start of a line, there while the work that the line is about goes on.
void announce(const std::string& family, const std::string& name) {
  std::printf("%-10s %-29s ", family.c_str(), name.c_str());
  std::fflush(stdout);
}

}  // namespace

std::string format(const char* pattern, ...) {
  va_list arguments, again;
  va_start(arguments, pattern);
  va_copy(again, arguments);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): clang-tidy says so where it reads another file first
  std::string text(static_cast<size_t>(std::vsnprintf(nullptr, 0, pattern, arguments)), '\0');
  std::vsnprintf(text.data(), text.size() + 1, pattern, again);
  va_end(again);
  va_end(arguments);
  return text;
}

std::vector<std::string> numbers(const Exhibit& exhibit, double megapixels) {
  const bool none = exhibit.bytes == 0;
  const auto speed = [&](double seconds) {
    return format(seconds < megapixels / 100 ? "%.0f" : "%.1f", megapixels / seconds);
  };
  return {none ? "-" : format("%.1f KB", static_cast<double>(exhibit.bytes) / 1e3),
          none ? "-" : format("%.2f", bitsPerPixel(exhibit.bytes, megapixels)),
          std::isinf(exhibit.psnr) ? "exact" : format("%.2f dB", exhibit.psnr),
          exhibit.decodedOnly ? "-" : speed(exhibit.encodeSeconds), speed(exhibit.decodeSeconds)};
}

std::string Verdict::words() const {
  if (decoder.empty()) return "-";
  if (!canRead) return decoder + " cannot read it";
  return format("%s: %d (at most %d)", decoder.c_str(), difference, allowed);
}

bool Exhibit::agrees() const { return verdict.agrees() && (!exact || std::isinf(psnr)); }

Gallery::Gallery(Image original, std::filesystem::path directory, bool quick)
    : original_(std::move(original)), directory_(std::move(directory)), quick_(quick) {}

double Gallery::medianSeconds(const std::function<void()>& call) const {
  std::vector<double> seconds;
  double sum = 0;
  while (seconds.empty() || (!quick_ && sum < 1 && (sum < 0.15 || seconds.size() < 3))) {
    const auto start = std::chrono::steady_clock::now();
    call();
    seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    sum += seconds.back();
  }
  const auto median = seconds.begin() + static_cast<ptrdiff_t>(seconds.size() / 2);
  std::nth_element(seconds.begin(), median, seconds.end());
  return *median;
}

const Exhibit& Gallery::show(Exhibit exhibit, const Encode& encode, const Decode& decode, const Judge& judge) {
  announce(exhibit.family, exhibit.name);
  Bytes file;
  exhibit.encodeSeconds = medianSeconds([&] { file = encode(original_); });
  exhibit.decodeSeconds = medianSeconds([&] { exhibit.picture = decode(file); });
  exhibit.psnr = psnr(original_, exhibit.picture);
  exhibit.bytes = file.size();
  if (!exhibit.fileName.empty()) {
    OutputFile output(path(exhibit.fileName));
    output.write(file);
    output.commit();
    writeImage(path(exhibit.fileName + ".png"), exhibit.picture);
  }
  exhibit.verdict = judge(exhibit, file);
  for (const std::string& number : numbers(exhibit, megapixels())) std::printf(" %10s", number.c_str());
  std::printf("   %s%s\n", exhibit.verdict.words().c_str(), exhibit.agrees() ? "" : " WRONG");
  exhibits_.push_back(std::move(exhibit));
  return exhibits_.back();
}

void Gallery::draw(const Exhibit& exhibit) {
  curves_.push_back({exhibit.name, {{bitsPerPixel(exhibit.bytes, megapixels()), exhibit.psnr}}});
}

void Gallery::draw(const std::string& family, const std::string& name, const std::vector<Encode>& encodes,
                   const Decode& decode) {
  announce(family, name + ", curve");
  Curve curve{family + " " + name, {}};
  for (const Encode& encode : encodes) {
    const Bytes file = encode(original_);
    curve.points.push_back({bitsPerPixel(file.size(), megapixels()), psnr(original_, decode(file))});
  }
  std::printf("%zu points\n", curve.points.size());
  curves_.push_back(std::move(curve));
}

void Gallery::show(Plate plate) {
  writeImage(path(plate.fileName), plate.picture);
  plates_.push_back(std::move(plate));
}

int64_t Gallery::faults() const {
  return std::count_if(exhibits_.begin(), exhibits_.end(), [](const Exhibit& exhibit) { return !exhibit.agrees(); });
}

}  // namespace examples::gallery
