// Writes inputs that are files of the codecs to DIRECTORY/TARGET/, for the fuzzers to start from.
#include <zorj.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "common/files.h"
#include "dds/codec.h"
#include "interop/pictures.h"
#include "jpeg/codec.h"
#include "jpeg2k/codec.h"
#include "tiff/codec.h"

namespace {

namespace dds = examples::dds;
namespace jpeg = examples::jpeg;
namespace jpeg2k = examples::jpeg2k;
namespace tiff = examples::tiff;
using File = std::vector<uint8_t>;

class Seeds {
 public:
  Seeds(const std::string& directory, const std::string& target) : path_(directory + "/" + target + "/") {
    std::filesystem::create_directories(path_);
  }
  // The input's first bytes are choices; the file follows them.
  void add(const File& choices, const File& file) {
    examples::OutputFile out(path_ + std::to_string(count_++));
    out.write(choices);
    out.write(file);
    out.commit();
  }

 private:
  std::string path_;
  int count_ = 0;
};

void writeJpegSeeds(const std::string& directory) {
  Seeds seeds(directory, "jpeg_decode");
  uint8_t choices = 0;
  const auto add = [&](const auto& image, const jpeg::EncodeOptions& options) {
    File file;
    jpeg::encode(image, options, file);
    seeds.add({static_cast<uint8_t>(choices % 5), choices}, file);
    choices = static_cast<uint8_t>(choices + 37);
  };
  for (const int32_t channels : {1, 3, 4}) {
    for (const jpeg::Sampling sampling : {jpeg::Sampling::s444, jpeg::Sampling::s422, jpeg::Sampling::s420}) {
      jpeg::EncodeOptions options{50, sampling, channels - 1};
      const examples::Image image = interop::picture(19, 18, channels);
      add(image, options);
      options.progressive = true;
      add(image, options);
      options.progressive = false;
      options.precision = 12;
      options.optimize = true;
      add(image, options);
    }
    for (int32_t predictor = 1; predictor <= 7; ++predictor) {
      jpeg::EncodeOptions options;
      options.predictor = predictor;
      const examples::Image image = interop::picture(11, 7, channels);
      options.restartInterval = predictor % 2 * image.width;
      add(image, options);
    }
  }
}

void writeDdsSeeds(const std::string& directory) {
  Seeds seeds(directory, "dds");
  for (int i = 0; i < 8; ++i) {
    const auto format = static_cast<dds::Format>(i / 2);
    const auto choice = static_cast<uint8_t>(i);
    seeds.add({choice, choice, choice}, dds::encode(interop::picture(10, 7, 3), format, i % 2 != 0));
  }
  // Any blocks are blocks of BC7.
  dds::Texture texture;
  texture.format = dds::Format::bc7;
  texture.width = 9;
  texture.height = 6;
  texture.dx10 = true;
  File file = dds::makeHeaders(texture);
  interop::Random random(1);
  for (size_t i = texture.level(0).bytes; i > 0; --i) file.push_back(static_cast<uint8_t>(random.next()));
  seeds.add({0, 0, 0}, file);
}

void writeTiffSeeds(const std::string& directory) {
  Seeds seeds(directory, "tiff");
  for (uint8_t i = 0; i < 12; ++i) {
    const examples::Image picture = interop::picture(9, 13, i % 3 == 0 ? 1 : i % 3 == 1 ? 3 : 4);
    examples::DeepImage image(picture.width, picture.height, picture.channels);
    image.precision = i % 2 == 0 ? 8 : 16;
    std::copy(picture.samples.begin(), picture.samples.end(), image.samples.begin());
    File file;
    tiff::encode(image, i / 6 == 0 ? tiff::Compression::none : tiff::Compression::packBits, file);
    seeds.add({i, i}, file);
  }
}

void writeJpeg2kSeeds(const std::string& directory) {
  Seeds seeds(directory, "jpeg2k_decode");
  for (uint8_t i = 0; i < 24; ++i) {
    jpeg2k::EncodeOptions options;
    if (i % 4 == 1) options.ratio = 6;
    options.levels = i % 5;
    if (i % 3 == 1) options.tile = {16, 11};
    if (i % 3 == 2) options.precinct = {16, 16};
    options.block = {16, 8};
    options.layers = 1 + i % 3;
    options.progression = static_cast<jpeg2k::Progression>(i % 5);
    options.style = i < 12 ? 0 : 1u << i % 6;
    options.sop = options.eph = i % 7 == 0;
    options.codestreamOnly = i % 2 == 0;
    File file;
    jpeg2k::encode(interop::picture(19, 18, i % 3 == 0 ? 1 : i % 3 == 1 ? 3 : 4), options, file);
    seeds.add({i, static_cast<uint8_t>(37 * i)}, file);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: fuzz_seeds DIRECTORY\n");
    return 2;
  }
  writeJpegSeeds(arguments[1]);
  writeDdsSeeds(arguments[1]);
  writeTiffSeeds(arguments[1]);
  writeJpeg2kSeeds(arguments[1]);
}
