#include "common/pnm_file.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "common/error.h"

namespace examples {
namespace {

constexpr int32_t kMaxDimension = 1 << 24;

// Reads the header: numbers between white space and comments that run from '#' to the end of their line.
class HeaderReader {
 public:
  explicit HeaderReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  int32_t number() {
    skipSpace();
    if (!more() || !std::isdigit(bytes_[at_])) throw Error("bad header");
    int32_t value = 0;
    for (; more() && std::isdigit(bytes_[at_]); ++at_) {
      value = std::min(value * 10 + (bytes_[at_] - '0'), kMaxDimension + 1);
    }
    return value;
  }

  // The samples start after the one white-space byte that ends the header.
  std::span<const uint8_t> rest() {
    if (!more() || !std::isspace(bytes_[at_])) throw Error("bad header");
    return bytes_.subspan(at_ + 1);
  }

 private:
  bool more() const { return at_ < bytes_.size(); }

  void skipSpace() {
    for (; more() && (std::isspace(bytes_[at_]) || bytes_[at_] == '#'); ++at_) {
      if (bytes_[at_] == '#') {
        while (more() && bytes_[at_] != '\n') ++at_;
        if (!more()) return;
      }
    }
  }

  std::span<const uint8_t> bytes_;
  size_t at_ = 2;
};

}  // namespace

bool isPnm(std::span<const uint8_t> bytes) {
  return bytes.size() >= 2 && bytes[0] == 'P' && (bytes[1] == '5' || bytes[1] == '6');
}

Image readPnm(std::span<const uint8_t> bytes) {
  const int32_t channels = bytes[1] == '5' ? 1 : 3;
  HeaderReader header(bytes);
  const int32_t width = header.number();
  const int32_t height = header.number();
  const int32_t maximum = header.number();
  if (maximum != 255) throw Error("only samples of 0 to 255 are supported, not 0 to " + std::to_string(maximum));
  if (width < 1 || height < 1 || width > kMaxDimension || height > kMaxDimension) throw Error("bad width or height");
  const std::span<const uint8_t> samples = header.rest();
  const uint64_t needed = uint64_t(width) * uint64_t(height) * uint64_t(channels);
  if (samples.size() < needed) throw Error("the file ends before its last pixel");
  Image image(width, height, channels);
  std::copy_n(samples.begin(), needed, image.samples.begin());
  return image;
}

void writePnm(const Image& image, int32_t channels, OutputFile& file) {
  const std::string header = std::string(channels == 1 ? "P5" : "P6") + "\n" + std::to_string(image.width) + " " +
                             std::to_string(image.height) + "\n255\n";
  file.write(std::span(reinterpret_cast<const uint8_t*>(header.data()), header.size()));
  if (channels == image.channels) {
    file.write(image.samples);
    return;
  }
  std::vector<uint8_t> row(static_cast<size_t>(image.width) * 3);
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x) std::fill_n(row.begin() + ptrdiff_t{3} * x, 3, *image.at(x, y));
    file.write(row);
  }
}

}  // namespace examples
