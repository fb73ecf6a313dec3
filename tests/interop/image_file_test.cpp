// The image files that the example codecs read.
#include "common/image_file.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <filesystem>

#include "common/files.h"
#include "interop/pictures.h"

namespace interop {
namespace {

std::string temporary(const std::string& name) { return testing::TempDir() + "/zorj_image_file_" + name; }

Image readBytes(const std::string& bytes) {
  const std::string path = temporary("bytes");
  examples::OutputFile file(path);
  file.write(std::span(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
  file.commit();
  Image image = examples::readImage(path);
  std::filesystem::remove(path);
  return image;
}

TEST(ImageFile, ReadsPnmHeaders) {
  using Samples = std::vector<uint8_t>;
  EXPECT_EQ(readBytes("P5\n2 1\n255\n\x01#").samples, (Samples{1, '#'}));
  EXPECT_EQ(readBytes("P5 # a comment 7\n2#\n\t1 255 \n ").samples, (Samples{'\n', ' '}));
  EXPECT_EQ(readBytes("P6 1 1 255\rabc").samples, (Samples{'a', 'b', 'c'}));
  for (const char* bad : {"P5", "P5 2 1 255\nx", "P5 2 1 65536\nxxxx", "P5 2 1 65535\nxxx", "P5 1 1 100\ne",
                          "P5 0 1 255\n", "P5 2 x 255\nxx", "P3 1 1 255 1 1 1", "P5 -1 1 255\nx",
                          "P5 99999999999999999999 1 255\nx", "P5 16777216 16777216 255\nx", "P5 1 #"}) {
    EXPECT_THROW(readBytes(bad), std::runtime_error) << bad;
  }
}

TEST(ImageFile, KeepsDeepSamples) {
  for (const int32_t precision : {1, 7, 8, 9, 12, 16}) {
    for (const char* const name : {"deep.pgm", "deep.pam", "deep.png"}) {
      DeepImage image(5, 1, 1);
      image.precision = precision;
      const auto largest = static_cast<uint16_t>(image.largest());
      image.samples = {0, 1, largest, static_cast<uint16_t>(largest / 2), static_cast<uint16_t>(largest / 3)};
      examples::writeImage(temporary(name), image);
      const DeepImage read = examples::readDeepImage(temporary(name));
      if (name != std::string("deep.png")) {
        EXPECT_EQ(read.precision, precision);
        EXPECT_EQ(read.samples, image.samples);
      } else {
        EXPECT_EQ(read.precision, precision <= 8 ? 8 : 16);
        EXPECT_EQ(examples::withPrecision<uint16_t>(read, precision).samples, image.samples);
      }
      std::filesystem::remove(temporary(name));
    }
  }
}

TEST(ImageFile, ScalesSamples) {
  using Samples = std::vector<uint8_t>;
  EXPECT_EQ(readBytes("P5 3 1 65535\n" + std::string("\0\0\x80\0\xff\xff", 6)).samples, (Samples{0, 128, 255}));
  EXPECT_EQ(readBytes("P5 3 1 15\n" + std::string("\0\x07\x0f", 3)).samples, (Samples{0, 119, 255}));
  EXPECT_EQ(readBytes("P5 2 1 100\n" + std::string("\x32\x64")).samples, (Samples{128, 255}));
}

TEST(ImageFile, ReadsAndWritesPam) {
  const Image cmyk = readBytes("P7\n# ink\nWIDTH 1\nHEIGHT 2\nDEPTH 4\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\nabcd#fgh");
  EXPECT_EQ(cmyk.samples, (std::vector<uint8_t>{'a', 'b', 'c', 'd', '#', 'f', 'g', 'h'}));
  for (const int32_t channels : {1, 3, 4}) {
    const std::string path = temporary("written.pam");
    examples::writeImage(path, picture(5, 3, channels));
    EXPECT_EQ(examples::readImage(path).channels, channels);
    EXPECT_EQ(examples::readImage(path).samples, picture(5, 3, channels).samples);
    std::filesystem::remove(path);
  }
  const std::string start = "P7\nWIDTH 1\nHEIGHT 1\nMAXVAL 255\n";
  for (const char* bad : {"", "DEPTH 4\nENDHDR\nabcd", "DEPTH 4\nTUPLTYPE RGB_ALPHA\nENDHDR\nabcd",
                          "DEPTH 3\nTUPLTYPE CMYK\nENDHDR\nabcd", "DEPTH 4\nTUPLTYPE CMYK\nENDHDR\nabc",
                          "DEPTH 4\nTUPLTYPE CMYK\nCOLOR 1\nENDHDR\nabcd", "DEPTH 2\nTUPLTYPE \nENDHDR\nab"}) {
    EXPECT_THROW(readBytes(start + bad), std::runtime_error) << bad;
  }
}

TEST(ImageFile, MultipliesInksOut) {
  Image cmyk(4, 1, 4);
  cmyk.samples = {0, 0, 0, 0, 255, 0, 100, 0, 10, 20, 30, 255, 0, 51, 255, 55};
  EXPECT_EQ(examples::cmykToRgb(cmyk).samples,
            (std::vector<uint8_t>{255, 255, 255, 0, 255, 155, 0, 0, 0, 200, 160, 0}));
}

// One row of samples of a PNG of the given sort; the palette is red, green, blue, and green is transparent.
std::vector<uint8_t> readPngRow(int colorType, int depth, uint32_t width, std::vector<uint8_t> row) {
  const std::string path = temporary("sort.png");
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, width, 1, depth, colorType, PNG_INTERLACE_ADAM7, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  if (colorType == PNG_COLOR_TYPE_PALETTE) {
    const png_color palette[3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    const png_byte alpha[2] = {255, 0};
    png_set_PLTE(png, info, palette, std::min(3, 1 << depth));
    png_set_tRNS(png, info, alpha, 2, nullptr);
  }
  png_write_info(png, info);
  png_bytep rows[1] = {row.data()};
  png_write_image(png, rows);
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
  Image image = examples::readImage(path);
  std::filesystem::remove(path);
  EXPECT_EQ(image.width, static_cast<int32_t>(width));
  return image.samples;
}

TEST(ImageFile, ConvertsEverySortOfPng) {
  using Samples = std::vector<uint8_t>;
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_GRAY, 8, 2, {7, 200}), (Samples{7, 200}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_GRAY, 2, 4, {0b00011011}), (Samples{0, 85, 170, 255}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_GRAY, 16, 2, {0x80, 0x00, 0x01, 0xff}), (Samples{128, 2}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_GRAY_ALPHA, 8, 3, {9, 255, 9, 0, 5, 51}), (Samples{9, 255, 205}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_RGB, 8, 1, {1, 2, 3}), (Samples{1, 2, 3}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_RGB_ALPHA, 8, 2, {1, 2, 3, 255, 1, 2, 3, 0}), (Samples{1, 2, 3, 255, 255, 255}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_RGB_ALPHA, 16, 1, {1, 1, 2, 2, 3, 3, 0xff, 0xff}), (Samples{1, 2, 3}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_GRAY_ALPHA, 16, 1, {1, 1, 0, 0}), (Samples{255}));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_PALETTE, 8, 3, {2, 1, 0}), (Samples{0, 0, 255, 255, 255, 255, 255, 0, 0}));
}

// Of few bits a sample, a small file holds many.
TEST(ImageFile, ReadsBlankBilevelPng) {
  constexpr uint32_t kWidth = 100'000;
  const std::vector<uint8_t> row(kWidth / 8, 0xff);
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_GRAY, 1, kWidth, row), std::vector<uint8_t>(kWidth, 255));
  EXPECT_EQ(readPngRow(PNG_COLOR_TYPE_PALETTE, 1, kWidth, row), std::vector<uint8_t>(3 * kWidth, 255));
}

TEST(ImageFile, RefusesDamagedPng) {
  const std::string path = temporary("whole.png");
  examples::writeImage(path, picture(40, 30, 3));
  const std::vector<uint8_t> whole = examples::readFile(path);
  std::filesystem::remove(path);
  const std::string text(whole.begin(), whole.end());
  EXPECT_EQ(readBytes(text).samples, picture(40, 30, 3).samples);
  for (size_t length = 8; length + 12 < text.size(); length += 97) {
    EXPECT_THROW(readBytes(text.substr(0, length)), std::runtime_error) << length;
  }
}

TEST(OutputFile, AppearsOnlyWhenComplete) {
  const std::filesystem::path directory = temporary("output");
  std::filesystem::create_directory(directory);
  const std::string path = (directory / "file").string();
  { examples::OutputFile(path).write(std::vector<uint8_t>(100000)); }
  EXPECT_TRUE(std::filesystem::is_empty(directory));
  {
    examples::OutputFile file(path);
    file.write(std::vector<uint8_t>(100000));
    EXPECT_FALSE(std::filesystem::exists(path));
    file.commit();
  }
  EXPECT_EQ(std::filesystem::file_size(path), 100000u);
  EXPECT_EQ(std::filesystem::remove_all(directory), 2u);
}

}  // namespace
}  // namespace interop
