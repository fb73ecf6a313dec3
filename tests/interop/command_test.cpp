// The program zorjpeg: exit codes, messages of one line, and no half-written files.
#include "interop/program_test.h"

namespace interop {
namespace {

class ZorjpegCommand : public ProgramTest {
 protected:
  ZorjpegCommand() : ProgramTest(ZORJPEG_PROGRAM) {}
};

TEST_F(ZorjpegCommand, EncodesAndDecodes) {
  for (const char* sampling : {"444", "422", "420", "411"}) {
    ASSERT_EQ(run(std::string("encode in.png a.jpg --quality 95 --restart 3 --sampling ") + sampling), 0) << message();
    for (const char* name : {"b.png", "b.ppm"}) {
      ASSERT_EQ(run(std::string("decode a.jpg ") + name), 0) << message();
      EXPECT_GT(psnr(examples::readImage(path(name)), picture(70, 50, 3)), 20);
    }
  }
  ASSERT_EQ(run("encode grey.pgm a.jpg"), 0) << message();
  for (const char* name : {"b.png", "b.pgm"}) {
    ASSERT_EQ(run(std::string("decode a.jpg ") + name), 0) << message();
    EXPECT_GT(psnr(examples::readImage(path(name)), picture(70, 50, 1)), 30);
  }
  ASSERT_EQ(run("decode a.jpg b.ppm"), 0);
  EXPECT_EQ(examples::readImage(path("b.ppm")).channels, 3);
}

TEST_F(ZorjpegCommand, DecodesAsAsked) {
  ASSERT_EQ(run("encode in.png a.jpg --sampling 420 --restart 2"), 0) << message();
  const auto decoded = [&](const std::string& options) {
    EXPECT_EQ(run("decode a.jpg b.ppm " + options), 0) << options << ": " << message();
    return examples::readImage(path("b.ppm"));
  };
  const Image usual = decoded("");
  EXPECT_EQ(decoded("--upsample triangle --scale 1 --threads 1").samples, usual.samples);
  EXPECT_EQ(decoded("--threads 3").samples, usual.samples);
  EXPECT_NE(decoded("--upsample box").samples, usual.samples);
  EXPECT_EQ(decoded("--scale 1/2").width, 35);
  EXPECT_EQ(decoded("--scale 1/4").width, 18);
  EXPECT_EQ(decoded("--scale 1/8").height, 7);
}

TEST_F(ZorjpegCommand, CodesCmyk) {
  const Image cmyk = picture(70, 50, 4);
  examples::writeImage(path("in.pam"), cmyk);
  for (const char* options : {"", "--sampling 420", "--no-conversion"}) {
    ASSERT_EQ(run(std::string("encode in.pam a.jpg --quality 95 ") + options), 0) << message();
    ASSERT_EQ(run("decode a.jpg b.pam"), 0) << message();
    EXPECT_GT(psnr(examples::readImage(path("b.pam")), cmyk), 20) << options;
    ASSERT_EQ(run("decode a.jpg b.png"), 0) << message();
    EXPECT_EQ(examples::readImage(path("b.png")).samples,
              examples::cmykToRgb(examples::readImage(path("b.pam"))).samples);
  }
}

TEST_F(ZorjpegCommand, RefusesBadCommandLines) {
  for (const char* arguments :
       {"", "encode", "encode in.png", "transmogrify in.png a.jpg", "encode in.png a.jpg --quality 0",
        "encode in.png a.jpg --quality 101", "encode in.png a.jpg --quality good", "encode in.png a.jpg --sampling 410",
        "encode in.png a.jpg --sampling 1", "encode in.png a.jpg --restart -1", "encode in.png a.jpg --fast",
        "decode a.jpg b.png c.png", "decode a.jpg b.png --scale 1/3", "decode a.jpg b.png --upsample linear",
        "decode a.jpg b.png --threads 0"}) {
    expectFailure(arguments, 2, "");
  }
  EXPECT_EQ(run("encode --help"), 0);
  EXPECT_EQ(message(), "");
}

TEST_F(ZorjpegCommand, RefusesBadFiles) {
  ASSERT_EQ(run("encode in.png good.jpg"), 0);
  const std::vector<uint8_t> good = examples::readFile(path("good.jpg"));
  write("empty", {});
  write("headers.jpg", std::span(good).first(100));
  expectFailure("encode missing.png a.jpg", 1, "missing.png: No such file");
  expectFailure("encode empty a.jpg", 1, "neither a PNG");
  expectFailure("encode good.jpg a.jpg", 1, "neither a PNG");
  expectFailure("encode in.png no/such/a.jpg", 1, "cannot be written");
  expectFailure("decode in.png b.png", 1, "in.png: not a JPEG file");
  expectFailure("decode empty b.png", 1, "empty: not a JPEG file");
  expectFailure("decode headers.jpg b.png", 1, "headers.jpg: the file ends");
  expectFailure("decode good.jpg b.tiff", 1, "b.tiff");
  expectFailure("decode good.jpg b.pgm", 1, "does not fit");
  expectFailure("decode good.jpg no/such/b.png", 1, "cannot be written");
}

TEST_F(ZorjpegCommand, SaysWhatIsMissing) {
  ASSERT_EQ(run("encode in.png good.jpg"), 0);
  const std::vector<uint8_t> good = examples::readFile(path("good.jpg"));
  write("half.jpg", std::span(good).first(good.size() - 1000));
  EXPECT_EQ(run("decode half.jpg b.png"), 3);
  EXPECT_EQ(message().rfind("zorjpeg: half.jpg: the file ends before its end-of-image marker: about ", 0), 0u)
      << message();
  EXPECT_EQ(examples::readImage(path("b.png")).height, 50);
}

TEST_F(ZorjpegCommand, ReplacesFilesAndWritesToDevices) {
  write("old.jpg", std::vector<uint8_t>(10));
  fs::create_symlink("old.jpg", directory_ / "link.jpg");
  EXPECT_EQ(run("encode in.png link.jpg"), 0);
  EXPECT_TRUE(fs::is_symlink(directory_ / "link.jpg"));
  EXPECT_GT(fs::file_size(directory_ / "old.jpg"), 1000u);
  EXPECT_EQ(run("encode in.png /dev/null"), 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace interop
