#include "common/pnm_file.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "common/error.h"

namespace examples {
namespace {

constexpr int32_t kMaxDimension = 1 << 24;
constexpr size_t kMaxWord = 40;

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

  // A word of a PAM header, which has a line for each field; '#' begins a comment line.
  std::string word() {
    skipSpace();
    std::string text;
    for (; more() && !std::isspace(bytes_[at_]) && text.size() < kMaxWord; ++at_)
      text += static_cast<char>(bytes_[at_]);
    return text;
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

struct Header {
  int32_t width = 0;
  int32_t height = 0;
  int32_t channels = 0;
  int32_t maximum = 0;
};

Header readPnmHeader(HeaderReader& reader, int32_t channels) {
  Header header;
  header.width = reader.number();
  header.height = reader.number();
  header.channels = channels;
  header.maximum = reader.number();
  return header;
}

// Tuple types by number of channels.
constexpr const char* kTupleTypes[5] = {"", "GRAYSCALE", "", "RGB", "CMYK"};

Header readPamHeader(HeaderReader& reader) {
  Header header;
  std::string tupleType;
  for (std::string field = reader.word(); field != "ENDHDR"; field = reader.word()) {
    if (field == "WIDTH") {
      header.width = reader.number();
    } else if (field == "HEIGHT") {
      header.height = reader.number();
    } else if (field == "DEPTH") {
      header.channels = reader.number();
    } else if (field == "MAXVAL") {
      header.maximum = reader.number();
    } else if (field == "TUPLTYPE") {
      tupleType = reader.word();
    } else {
      throw Error("bad header");
    }
  }
  const int32_t channels = header.channels;
  if (channels < 1 || channels > 4 || tupleType.empty() || tupleType != kTupleTypes[channels]) {
    throw Error("only the tuple types GRAYSCALE, RGB and CMYK are supported");
  }
  return header;
}

void writeText(const std::string& text, OutputFile& file) {
  file.write(std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

}  // namespace

bool isPnm(std::span<const uint8_t> bytes) {
  return bytes.size() >= 2 && bytes[0] == 'P' && bytes[1] >= '5' && bytes[1] <= '7';
}

Image readPnm(std::span<const uint8_t> bytes) {
  HeaderReader reader(bytes);
  const Header header = bytes[1] == '7' ? readPamHeader(reader) : readPnmHeader(reader, bytes[1] == '5' ? 1 : 3);
  const int32_t width = header.width, height = header.height;
  if (header.maximum != 255) {
    throw Error("only samples of 0 to 255 are supported, not 0 to " + std::to_string(header.maximum));
  }
  if (width < 1 || height < 1 || width > kMaxDimension || height > kMaxDimension) throw Error("bad width or height");
  const std::span<const uint8_t> samples = reader.rest();
  const uint64_t needed = uint64_t(width) * uint64_t(height) * uint64_t(header.channels);
  if (samples.size() < needed) throw Error("the file ends before its last pixel");
  Image image(width, height, header.channels);
  std::copy_n(samples.begin(), needed, image.samples.begin());
  return image;
}

void writePam(const Image& image, OutputFile& file) {
  writeText("P7\nWIDTH " + std::to_string(image.width) + "\nHEIGHT " + std::to_string(image.height) + "\nDEPTH " +
                std::to_string(image.channels) + "\nMAXVAL 255\nTUPLTYPE " + kTupleTypes[image.channels] + "\nENDHDR\n",
            file);
  file.write(image.samples);
}

void writePnm(const Image& image, int32_t channels, OutputFile& file) {
  writeText(std::string(channels == 1 ? "P5" : "P6") + "\n" + std::to_string(image.width) + " " +
                std::to_string(image.height) + "\n255\n",
            file);
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
