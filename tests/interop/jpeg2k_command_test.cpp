// The program zorj2k: exit codes, messages of one line, and no half-written files.
#include "interop/program_test.h"

namespace interop {
namespace {

class Zorj2kCommand : public ProgramTest {
 protected:
  Zorj2kCommand() : ProgramTest(ZORJ2K_PROGRAM) {}

  Image decoded(const std::string& options) {
    EXPECT_EQ(run("decode a.jp2 b.ppm " + options), 0) << options << ": " << message();
    return examples::readImage(path("b.ppm"));
  }
};

TEST_F(Zorj2kCommand, EncodesAndDecodes) {
  for (const char* name : {"in.png", "grey.pgm"}) {
    for (const char* file : {"a.jp2", "a.j2k"}) {
      ASSERT_EQ(run("encode " + std::string(name) + " " + file), 0) << message();
      ASSERT_EQ(run(std::string("decode ") + file + " b.png"), 0) << message();
      EXPECT_EQ(examples::readImage(path("b.png")).samples, examples::readImage(path(name)).samples);
    }
  }
  for (const char* option : {"--ratio 6", "--psnr 35"}) {
    ASSERT_EQ(run(std::string("encode in.png a.jp2 ") + option), 0) << message();
    EXPECT_GT(psnr(decoded(""), picture(70, 50, 3)), 25) << option;
  }
}

TEST_F(Zorj2kCommand, KeepsDeepAndCmykSamples) {
  DeepImage deep(30, 20, 3);
  for (size_t i = 0; i < deep.samples.size(); ++i) deep.samples[i] = static_cast<uint16_t>(i * 77);
  examples::writeImage(path("deep.png"), deep);
  ASSERT_EQ(run("encode deep.png a.jp2"), 0) << message();
  ASSERT_EQ(run("decode a.jp2 b.png"), 0) << message();
  EXPECT_EQ(examples::readDeepImage(path("b.png")).samples, deep.samples);
  const Image cmyk = picture(70, 50, 4);
  examples::writeImage(path("in.pam"), cmyk);
  ASSERT_EQ(run("encode in.pam a.jp2"), 0) << message();
  ASSERT_EQ(run("decode a.jp2 b.pam"), 0) << message();
  EXPECT_EQ(examples::readImage(path("b.pam")).samples, cmyk.samples);
}

TEST_F(Zorj2kCommand, DecodesAsAsked) {
  ASSERT_EQ(run("encode in.png a.jp2 --layers 3 --tile 40x30 --levels 3"), 0) << message();
  const Image whole = decoded("");
  EXPECT_EQ(decoded("--threads 3").samples, whole.samples);
  EXPECT_NE(decoded("--layers 1").samples, whole.samples);
  EXPECT_EQ(decoded("--reduce 2").width, 18);
  EXPECT_EQ(decoded("--tile 1").width, 30);
  const Image part = decoded("--region 35,10,20,30");
  ASSERT_EQ(part.width, 20);
  ASSERT_EQ(part.height, 30);
  for (int32_t y = 0; y < 30; ++y) {
    EXPECT_TRUE(std::equal(part.at(0, y), part.at(0, y) + part.step(), whole.at(35, 10 + y)));
  }
}

TEST_F(Zorj2kCommand, RefusesBadCommandLines) {
  for (const char* arguments :
       {"", "decode a.jp2", "decode a.jp2 b.png c.png", "decode a.jp2 b.png --reduce -1",
        "decode a.jp2 b.png --layers 0", "decode a.jp2 b.png --region 1,2,3", "decode a.jp2 b.png --region 0,0,0,5",
        "decode a.jp2 b.png --threads 0", "encode in.png a.jp2 --progression XYZ", "encode in.png a.jp2 --mode fast",
        "encode in.png a.jp2 --block 64by64", "encode in.png a.jp2 --ratio -1"}) {
    expectFailure(arguments, 2, "");
  }
}

TEST_F(Zorj2kCommand, RefusesBadFiles) {
  ASSERT_EQ(run("encode in.png good.jp2 --levels 2"), 0) << message();
  const std::vector<uint8_t> good = examples::readFile(path("good.jp2"));
  write("empty", {});
  write("headers.jp2", std::span(good).first(120));
  expectFailure("encode missing.png a.jp2", 1, "missing.png: No such file");
  expectFailure("decode in.png b.png", 1, "in.png: not a JPEG 2000 file");
  expectFailure("decode empty b.png", 1, "empty: not a JPEG 2000 file");
  expectFailure("decode headers.jp2 b.png", 1, "headers.jp2: the file ends");
  expectFailure("decode good.jp2 b.tiff", 1, "b.tiff");
  expectFailure("decode good.jp2 b.png --reduce 3", 1, "resolutions");
  expectFailure("decode good.jp2 b.png --region 70,0,5,5", 1, "nothing of the picture");
  expectFailure("decode good.jp2 b.png --tile 1", 1, "no such tile");
}

TEST_F(Zorj2kCommand, SaysWhatIsMissing) {
  ASSERT_EQ(run("encode in.png good.jp2"), 0);
  const std::vector<uint8_t> good = examples::readFile(path("good.jp2"));
  write("half.jp2", std::span(good).first(good.size() / 2));
  EXPECT_EQ(run("decode half.jp2 b.png"), 3);
  EXPECT_EQ(message(), "zorj2k: half.jp2: the file ends before its last tile does: 1 of 1 tiles are incomplete\n");
  EXPECT_EQ(examples::readImage(path("b.png")).height, 50);
}

}  // namespace
}  // namespace interop
