#include "gallery/gallery.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"

namespace examples::gallery {

double medianSeconds(const std::function<void()>& call) {
  using Clock = std::chrono::steady_clock;
  std::vector<double> seconds;
  const auto start = Clock::now();
  while (seconds.size() < 3 || Clock::now() - start < std::chrono::milliseconds(200)) {
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
  if (squares == 0) return std::numeric_limits<double>::infinity();
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.samples.size()) / squares);
}

int largestDifference(const Image& a, const Image& b) {
  if (a.samples.size() != b.samples.size()) throw Error("a decoded picture has another size than the original");
  int largest = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) largest = std::max(largest, std::abs(a.samples[i] - b.samples[i]));
  return largest;
}

Gallery::Gallery(Image original, std::filesystem::path directory)
    : original_(std::move(original)), directory_(std::move(directory)) {}

Exhibit Gallery::take(Exhibit exhibit, const Encode& encode, const Decode& decode) const {
  std::vector<uint8_t> file;
  exhibit.encodeSeconds = medianSeconds([&] { file = encode(); });
  exhibit.decodeSeconds = medianSeconds([&] { exhibit.picture = decode(file); });
  exhibit.bytes = file.size();
  OutputFile output(path(exhibit.fileName));
  output.write(file);
  output.commit();
  return exhibit;
}

void Gallery::show(Exhibit exhibit) {
  exhibit.psnr = psnr(original_, exhibit.picture);
  exhibit.agrees &= !exhibit.exact || std::isinf(exhibit.psnr);
  const auto speed = [&](double seconds) { return pixels() / seconds / 1e6; };
  std::printf("%-12s %-32s %8.0f KB %6.2f ", exhibit.family.c_str(), exhibit.name.c_str(),
              static_cast<double>(exhibit.bytes) / 1e3, static_cast<double>(exhibit.bytes) * 8 / pixels());
  if (std::isinf(exhibit.psnr)) {
    std::printf("    exact ");
  } else {
    std::printf("%6.2f dB ", exhibit.psnr);
  }
  std::printf("%8.1f %8.1f   %s%s\n", speed(exhibit.encodeSeconds), speed(exhibit.decodeSeconds), exhibit.check.c_str(),
              exhibit.agrees ? "" : " DIFFERS");
  std::fflush(stdout);
  writeImage(path(exhibit.fileName + ".png"), exhibit.picture);
  exhibits_.push_back(std::move(exhibit));
}

void Gallery::show(Plate plate) {
  writeImage(path(plate.fileName), plate.picture);
  plates_.push_back(std::move(plate));
}

Curve::Point Gallery::point(size_t bytes, const Image& decoded) const {
  return {static_cast<double>(bytes) * 8 / pixels(), psnr(original_, decoded)};
}

bool Gallery::agrees() const {
  return std::all_of(exhibits_.begin(), exhibits_.end(), [](const Exhibit& exhibit) { return exhibit.agrees; });
}

}  // namespace examples::gallery
