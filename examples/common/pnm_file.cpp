#include "common/pnm_file.h"

#include <algorithm>
#include <bit>
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

// Every sample `times` times; those of more than 8 bits are two bytes, the high one first.
template <class Sample>
void writeSamples(const BasicImage<Sample>& image, int32_t times, OutputFile& file) {
  std::vector<uint8_t> row;
  const size_t length = static_cast<size_t>(image.width) * static_cast<size_t>(image.channels);
  for (int32_t y = 0; y < image.height; ++y) {
    row.clear();
    for (const Sample sample : std::span(image.at(0, y), length)) {
      for (int32_t n = 0; n < times; ++n) {
        if (image.precision > 8) row.push_back(static_cast<uint8_t>(sample >> 8));
        row.push_back(static_cast<uint8_t>(sample));
      }
    }
    file.write(row);
  }
}

}  // namespace

bool isPnm(std::span<const uint8_t> bytes) {
  return bytes.size() >= 2 && bytes[0] == 'P' && bytes[1] >= '5' && bytes[1] <= '7';
}

DeepImage readPnm(std::span<const uint8_t> bytes) {
  HeaderReader reader(bytes);
  const Header header = bytes[1] == '7' ? readPamHeader(reader) : readPnmHeader(reader, bytes[1] == '5' ? 1 : 3);
  const int32_t width = header.width, height = header.height;
  if (header.maximum < 1 || header.maximum > 65535) throw Error("the largest sample must be 1 to 65535");
  if (width < 1 || height < 1 || width > kMaxDimension || height > kMaxDimension) throw Error("bad width or height");
  const std::span<const uint8_t> samples = reader.rest();
  const size_t bytesPerSample = header.maximum > 255 ? 2 : 1;
  const uint64_t needed = uint64_t(width) * uint64_t(height) * uint64_t(header.channels) * bytesPerSample;
  if (samples.size() < needed) throw Error("the file ends before its last pixel");
  DeepImage image(width, height, header.channels);
  const auto next = static_cast<uint32_t>(header.maximum) + 1;
  image.precision = std::has_single_bit(next) ? std::countr_zero(next) : 16;
  for (size_t i = 0; i < image.samples.size(); ++i) {
    const int64_t sample = bytesPerSample == 1 ? samples[i] : samples[2 * i] << 8 | samples[2 * i + 1];
    if (sample > header.maximum) throw Error("a sample is above the largest value");
    image.samples[i] = static_cast<uint16_t>((sample * image.largest() + header.maximum / 2) / header.maximum);
  }
  return image;
}

template <class Sample>
void writePam(const BasicImage<Sample>& image, OutputFile& file) {
  writeText("P7\nWIDTH " + std::to_string(image.width) + "\nHEIGHT " + std::to_string(image.height) + "\nDEPTH " +
                std::to_string(image.channels) + "\nMAXVAL " + std::to_string(image.largest()) + "\nTUPLTYPE " +
                kTupleTypes[image.channels] + "\nENDHDR\n",
            file);
  writeSamples(image, 1, file);
}

template <class Sample>
void writePnm(const BasicImage<Sample>& image, int32_t channels, OutputFile& file) {
  writeText(std::string(channels == 1 ? "P5" : "P6") + "\n" + std::to_string(image.width) + " " +
                std::to_string(image.height) + "\n" + std::to_string(image.largest()) + "\n",
            file);
  writeSamples(image, channels / image.channels, file);
}

template void writePam(const Image&, OutputFile&);
template void writePam(const DeepImage&, OutputFile&);
template void writePnm(const Image&, int32_t, OutputFile&);
template void writePnm(const DeepImage&, int32_t, OutputFile&);

}  // namespace examples
