// Lossless and 12-bit files against the independent coder of dcmtk, whose tools wrap them into DICOM files.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "common/files.h"
#include "common/image_file.h"
#include "interop/pictures.h"
#include "jpeg/codec.h"

namespace interop {
namespace {

namespace fs = std::filesystem;
namespace jpeg = examples::jpeg;

using Bytes = std::vector<uint8_t>;

class Dicom : public testing::Test {
 protected:
  void SetUp() override {
    directory_ = fs::path(testing::TempDir()) / "zorj_dicom";
    fs::create_directories(directory_);
  }
  void TearDown() override { fs::remove_all(directory_); }

  void run(const std::string& command) const {
    const std::string line = "cd '" + directory_.string() + "' && " + command + " >log 2>&1";
    ASSERT_EQ(std::system(line.c_str()), 0) << command;
  }
  void write(const std::string& name, std::span<const uint8_t> bytes) const {
    examples::OutputFile file((directory_ / name).string());
    file.write(bytes);
    file.commit();
  }
  Bytes read(const std::string& name) const { return examples::readFile((directory_ / name).string()); }

  // Makes the DICOM file `name`.dcm around pixel data, which `element` describes to the tool.
  void wrap(const std::string& name, const DeepImage& image, const std::string& syntax,
            const std::string& element) const {
    const auto field = [](const char* tag, const std::string& value) { return tag + (" " + value) + "\n"; };
    const auto number = [&](const char* tag, int32_t value) { return field(tag, "US " + std::to_string(value)); };
    const std::string text =
        field("(0002,0010)", "UI =" + syntax) + field("(0008,0016)", "UI =SecondaryCaptureImageStorage") +
        field("(0008,0018)", "UI [1.2.3.4]") + number("(0028,0002)", image.channels) +
        field("(0028,0004)", image.channels == 3 ? "CS [RGB]" : "CS [MONOCHROME2]") +
        (image.channels == 3 ? number("(0028,0006)", 0) : "") + number("(0028,0010)", image.height) +
        number("(0028,0011)", image.width) + number("(0028,0100)", image.precision > 8 ? 16 : 8) +
        number("(0028,0101)", image.precision) + number("(0028,0102)", image.precision - 1) + number("(0028,0103)", 0) +
        element;
    write(name + ".dump", std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
    run("dump2dcm " + name + ".dump " + name + ".dcm");
  }

  // The samples of a file of such an image, as dcmtk decodes it.
  Bytes decodedByDcmtk(Bytes file, const DeepImage& image, const std::string& syntax) const {
    file.resize(file.size() + file.size() % 2);
    write("ours.jpg", file);
    wrap("ours", image, syntax,
         "(7fe0,0010) OB (PixelSequence #=2)\n(fffe,e000) pi\n(fffe,e000) pi =ours.jpg\n(fffe,e0dd) na\n");
    run("dcmdjpeg ours.dcm decoded.dcm");
    const Bytes decoded = read("decoded.dcm");
    const auto size = static_cast<ptrdiff_t>(std::min(decoded.size(), rawOf(image).size()));
    return {decoded.end() - size, decoded.end()};
  }

  // Samples as DICOM has them: little-endian, an even number of bytes in all.
  static Bytes rawOf(const DeepImage& image) {
    Bytes raw;
    for (const uint16_t sample : image.samples) {
      raw.push_back(static_cast<uint8_t>(sample));
      if (image.precision > 8) raw.push_back(static_cast<uint8_t>(sample >> 8));
    }
    raw.resize(raw.size() + raw.size() % 2);
    return raw;
  }

 private:
  fs::path directory_;
};

std::vector<DeepImage> pictures() {
  std::vector<DeepImage> result;
  Random random(5);
  for (const auto& [channels, precision] : {std::pair(1, 8), std::pair(1, 12), std::pair(1, 16), std::pair(3, 8)}) {
    DeepImage image = examples::withPrecision<uint16_t>(picture(37, 22, channels), precision);
    for (uint16_t& sample : image.samples) sample ^= static_cast<uint16_t>(random.next() & 7);
    result.push_back(std::move(image));
  }
  return result;
}

TEST_F(Dicom, FilesOfAnotherEncoderDecodeExactly) {
  for (const DeepImage& image : pictures()) {
    const std::string name = "source";
    write("source.raw", rawOf(image));
    wrap(name, image, "LittleEndianExplicit",
         std::string("(7fe0,0010) ") + (image.precision > 8 ? "OW" : "OB") + " =source.raw\n");
    for (int predictor = 1; predictor <= 7; ++predictor) {
      SCOPED_TRACE(testing::Message() << image.precision << " bits, channels " << image.channels << ", predictor "
                                      << predictor);
      run("dcmcjpeg +el +sv " + std::to_string(predictor) + " source.dcm coded.dcm");
      const Bytes coded = read("coded.dcm");
      const uint8_t start[] = {0xff, 0xd8, 0xff};
      const auto found = std::search(coded.begin(), coded.end(), start, start + 3);
      DeepImage decoded;
      EXPECT_EQ(jpeg::decode(std::span(found, coded.end()), {}, decoded).problem, "");
      EXPECT_EQ(decoded.samples, image.samples);
    }
  }
}

TEST_F(Dicom, AnotherDecoderReadsFilesExactly) {
  for (const DeepImage& image : pictures()) {
    for (int predictor = 1; predictor <= 7; ++predictor) {
      SCOPED_TRACE(testing::Message() << image.precision << " bits, channels " << image.channels << ", predictor "
                                      << predictor);
      jpeg::EncodeOptions options;
      options.predictor = predictor;
      options.restartInterval = predictor == 4 ? 5 * image.width : 0;
      Bytes file;
      jpeg::encode(image, options, file);
      EXPECT_EQ(decodedByDcmtk(file, image, "JPEGLossless:Non-hierarchical:Process14"), rawOf(image));
    }
  }
}

// Both decoders round what is within a small part of a unit of the exact inverse transform.
TEST_F(Dicom, AnotherDecoderReadsTwelveBitsAlike) {
  const DeepImage image = examples::withPrecision<uint16_t>(picture(200, 150, 1), 12);
  jpeg::EncodeOptions options;
  options.precision = 12;
  Bytes file;
  jpeg::encode(image, options, file);
  DeepImage ours;
  EXPECT_EQ(jpeg::decode(file, {}, ours).problem, "");
  const Bytes theirs = decodedByDcmtk(file, image, "JPEGExtended:Process2+4");
  ASSERT_EQ(theirs.size(), 2 * ours.samples.size());
  int different = 0;
  for (size_t i = 0; i < ours.samples.size(); ++i) {
    const int difference = ours.samples[i] - (theirs[2 * i] | theirs[2 * i + 1] << 8);
    ASSERT_LE(std::abs(difference), 1) << i;
    different += difference != 0;
  }
  EXPECT_LT(different, static_cast<int>(ours.samples.size()) / 10);
}

}  // namespace
}  // namespace interop
