// Progressive files and optimised tables, in both directions and byte for byte.
#include "interop/compare.h"
#include "interop/pictures.h"
#include "jpeg/headers.h"
#include "jpeg/script.h"

namespace interop {
namespace {

namespace marker = jpeg::marker;

using Segment = std::vector<uint8_t>;

// What makes up the scans of a file: Huffman tables, scan headers, entropy-coded data.
std::vector<Segment> scanSegments(std::span<const uint8_t> file) {
  std::vector<Segment> segments;
  size_t at = 2;
  while (file[at + 1] != marker::EOI) {
    const uint8_t code = file[at + 1];
    const size_t end = at + 2 + file[at + 2] * size_t{256} + file[at + 3];
    if (code == marker::DHT || code == marker::SOS)
      segments.emplace_back(file.begin() + ptrdiff_t(at), file.begin() + ptrdiff_t(end));
    at = end;
    if (code != marker::SOS) continue;
    while (file[at] != 0xff || file[at + 1] == 0x00 || marker::isRestart(file[at + 1])) ++at;
    segments.emplace_back(file.begin() + ptrdiff_t(end), file.begin() + ptrdiff_t(at));
  }
  return segments;
}

const char* const kScripts[] = {
    "0,1,2: 0-0, 0, 0; 0: 1-63, 0, 0; 1: 1-63, 0, 0; 2: 1-63, 0, 0;",
    "0: 0-0, 0, 3; 1,2: 0-0, 0, 1; 2: 1-5, 0, 3; 0: 1-63, 0, 2; 0: 0-0, 3, 2; 1: 1-63, 0, 0; 2: 6-63, 0, 0;\n"
    "2: 1-5, 3, 2; 0: 1-63, 2, 1; 0: 0-0, 2, 1; 1,2: 0-0, 1, 0; 0: 0-0, 1, 0; 2: 1-5, 2, 1; 2: 1-5, 1, 0; # end\n"
    "0: 1-30, 1, 0; 0: 31-63, 1, 0;",
};

std::vector<std::vector<jpeg::Scan>> scripts(const jpeg::CoefficientImage& coefficients) {
  std::vector<std::vector<jpeg::Scan>> all = {jpeg::usualScript(coefficients.frame)};
  if (coefficients.frame.components.size() == 3) {
    for (const char* const script : kScripts) all.push_back(jpeg::parseScript(script));
  }
  return all;
}

// Pictures of all sorts whose coefficients the peer's coder is given too, with no more blocks than the image needs.
TEST(Progressive, EqualsThePeerByteForByte) {
  int restart = 0;
  for (const int quality : {20, 75, 100}) {
    for (const int32_t channels : {1, 3, 4}) {
      for (const jpeg::Sampling sampling : {jpeg::Sampling::s444, jpeg::Sampling::s422, jpeg::Sampling::s420}) {
        SCOPED_TRACE(testing::Message() << "quality " << quality << ", channels " << channels << ", sampling "
                                        << int(sampling) << ", restart " << restart);
        jpeg::EncodeOptions options{quality, sampling, 0};
        jpeg::CoefficientImage coefficients = jpeg::transform(picture(112, 80, channels), options);
        std::vector<uint8_t> baseline, ours;
        jpeg::encodeCoefficients(coefficients, options, baseline);
        options.restartInterval = restart;
        PeerSettings settings;
        settings.restartInterval = restart;
        settings.optimise = options.optimize = true;
        jpeg::encodeCoefficients(coefficients, options, ours);
        EXPECT_EQ(scanSegments(ours), scanSegments(peerTranscode(baseline, settings)));
        options.progressive = true;
        for (const std::vector<jpeg::Scan>& script : scripts(coefficients)) {
          settings.script = options.script = script;
          jpeg::encodeCoefficients(coefficients, options, ours);
          EXPECT_EQ(scanSegments(ours), scanSegments(peerTranscode(baseline, settings)));
        }
        restart = (restart + 5) % 11;
      }
    }
  }
}

// Long runs of empty blocks, and many corrections held back.
TEST(Progressive, EqualsThePeerAtTheLimitsOfRuns) {
  Random random(8);
  jpeg::EncodeOptions options;
  jpeg::CoefficientImage coefficients = jpeg::transform(Image(8 * 260, 8 * 260, 1), options);
  const jpeg::Blocks blocks = coefficients.mcus.blocks(0, 0, 0);
  for (int32_t y = 0; y < 260; ++y) {
    for (int32_t x = 0; x < 260; ++x) {
      int16_t* const block = blocks.at(x, y).values;
      // Two runs of more than 32767 blocks, then blocks of corrections alone.
      if (y == 0 || y > 254) {
        for (int k = 1; k < 64; ++k) block[k] = static_cast<int16_t>(random.between(2, 3) * (random.oneIn(2) ? 1 : -1));
      }
    }
  }
  std::vector<uint8_t> baseline, ours;
  jpeg::encodeCoefficients(coefficients, options, baseline);
  options.progressive = true;
  jpeg::encodeCoefficients(coefficients, options, ours);
  PeerSettings settings;
  settings.optimise = true;
  settings.script = jpeg::usualScript(coefficients.frame);
  EXPECT_EQ(scanSegments(ours), scanSegments(peerTranscode(baseline, settings)));
  jpeg::CoefficientImage decoded;
  EXPECT_EQ(jpeg::decodeCoefficients(ours, decoded).problem, "");
  expectSameCoefficients(decoded, peerCoefficients(baseline));
}

TEST(Progressive, PeerReadsEverySize) {
  int restart = 0;
  for (const Size size : oddSizes()) {
    for (const int32_t channels : {1, 3, 4}) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", channels " << channels);
      jpeg::EncodeOptions options{60, jpeg::Sampling::s420, restart};
      options.optimize = true;
      options.progressive = channels != 1 || restart % 2 == 0;
      const Image image = picture(size.width, size.height, channels);
      std::vector<uint8_t> file;
      jpeg::encode(image, options, file);
      jpeg::CoefficientImage coded = jpeg::transform(image, options);
      expectSameCoefficients(coded, peerCoefficients(file));
      expectSameDecodes(file, channels > 1);
      restart = (restart + 1) % 4;
    }
  }
}

TEST(Progressive, ReadsWhatThePeerWrites) {
  int restart = 0;
  for (const Size size : oddSizes()) {
    for (const Factors luma : {Factors{1, 1}, Factors{2, 1}, Factors{1, 2}, Factors{2, 2}, Factors{4, 1}}) {
      PeerSettings settings;
      settings.quality = 40 + 8 * restart;
      settings.factors = {luma, {1, 1}, {1, 1}};
      settings.restartInterval = restart;
      settings.script = jpeg::parseScript(kScripts[restart % 2]);
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", factors " << luma.horizontal
                                      << luma.vertical << ", restart " << restart);
      const std::vector<uint8_t> file = peerEncode(picture(size.width, size.height, 3), settings);
      jpeg::CoefficientImage coefficients;
      EXPECT_EQ(jpeg::decodeCoefficients(file, coefficients).problem, "");
      expectSameCoefficients(coefficients, peerCoefficients(file));
      expectSameDecodes(file, true);
      restart = (restart + 1) % 7;
    }
  }
}

// Cut anywhere, or without some of its scans, a file shows what is there.
TEST(Progressive, DecodesDamagedFilesAsFarAsTheyGo) {
  jpeg::EncodeOptions options;
  options.progressive = true;
  const Image image = picture(120, 90, 3);
  std::vector<uint8_t> file;
  jpeg::encode(image, options, file);
  const size_t header = file.size() - scanSegments(file)[0].size();
  double quality = 0;
  for (size_t length = 700; length < file.size() - 2; length += header / 40) {
    Image decoded;
    jpeg::DecodeReport report;
    try {
      report = jpeg::decode(std::span(file).first(length), {}, decoded);
    } catch (const std::runtime_error&) {
      continue;  // not a scan is there
    }
    EXPECT_FALSE(report.complete()) << length;
    const double now = psnr(image, decoded);
    EXPECT_GT(now, quality - 3) << length;
    quality = std::max(quality, now);
  }
  EXPECT_GT(quality, 25);
  Random random(4);
  for (int i = 0; i < 300; ++i) {
    std::vector<uint8_t> damaged = file;
    for (int n = 0; n < 3; ++n) damaged[random.next() % damaged.size()] = static_cast<uint8_t>(random.next());
    Image decoded;
    try {
      jpeg::decode(damaged, {}, decoded);
    } catch (const std::runtime_error&) {
      continue;
    }
    EXPECT_EQ(decoded.samples.size(), size_t(decoded.width) * size_t(decoded.height) * size_t(decoded.channels));
  }
}

TEST(Progressive, SaysWhichScansAreMissing) {
  const std::vector<jpeg::Scan> whole = jpeg::parseScript(kScripts[0]);
  PeerSettings settings;
  settings.script = {whole[0], whole[1]};
  const std::vector<uint8_t> file = peerEncode(picture(40, 40, 3), settings);
  Image decoded;
  EXPECT_NE(jpeg::decode(file, {}, decoded).problem.find("scans are missing"), std::string::npos);
  expectSamePixels(decoded, peerDecode(file, jpeg::Upsampling::triangle), kColorTolerance);
}

// A scan of each bit of each coefficient of an empty picture: as many blocks for each byte of a file as can make sense.
TEST(Progressive, DecodesTheMostScansThereCanBe) {
  jpeg::EncodeOptions options;
  options.progressive = true;
  for (int32_t k = 0; k < 64; ++k) {
    for (int32_t bit = 13; bit >= 0; --bit) options.script.push_back({{0}, k, k, bit == 13 ? 0 : bit + 1, bit});
  }
  jpeg::CoefficientImage coefficients = jpeg::transform(Image(1120, 1120, 1), options), decoded;
  std::vector<uint8_t> file;
  jpeg::encodeCoefficients(coefficients, options, file);
  EXPECT_EQ(jpeg::decodeCoefficients(file, decoded).problem, "");
  expectSameCoefficients(decoded, peerCoefficients(file));
}

// Scans of some bytes that go through a large picture, each for another coefficient: runs of empty blocks.
TEST(Progressive, StopsAtMoreScansThanTheFileIsWorth) {
  constexpr uint8_t kDc[2] = {0, 1}, kRuns[2] = {0xe0, 0};  // 0xe0: from 16384 blocks on
  const auto problemOf = [&](int32_t scans) {
    jpeg::Frame frame;
    frame.process = jpeg::Process::progressive;
    frame.width = frame.height = 4096;
    frame.components.resize(1);
    std::vector<uint8_t> file;
    jpeg::writeHeaders(frame, {}, 0, file);
    jpeg::MarkerWriter writer(file);
    writer.huffmanTable(false, 0, {{1, 1}, kDc});
    writer.huffmanTable(true, 0, {{1, 1}, kRuns});
    writer.scan(frame, {{0}, 0, 0, 0, 0});
    for (int32_t i = 0; i < scans; ++i) {
      const int32_t k = 1 + i % 63, bit = 13 - i / 63;
      writer.scan(frame, {{0}, k, k, bit == 13 ? 0 : bit + 1, bit});
      file.insert(file.end(), 16 * 15 / 8, 0);
    }
    writer.marker(marker::EOI);
    jpeg::CoefficientImage decoded;
    return jpeg::decodeCoefficients(file, decoded).problem;
  };
  EXPECT_EQ(problemOf(60).find("too small for so many scans"), std::string::npos);
  EXPECT_NE(problemOf(70).find("too small for so many scans"), std::string::npos);
}

TEST(Progressive, RefusesBadScripts) {
  for (const char* const script :
       {"", "0 0-0, 0, 0;", "0: 0-0, 0, 0", "0: 0-, 0, 0;", "x", "0: 0-0 0, 0;", "# only this"}) {
    EXPECT_THROW(jpeg::parseScript(script), std::runtime_error) << script;
  }
  for (const char* const script : {"0: 0-63, 0, 0;", "0: 1-63, 0, 0; 0: 0-0, 0, 0;", "0: 0-0, 0, 0;",
                                   "0: 0-0, 0, 1; 0: 1-63, 0, 0;", "0: 0-0, 0, 0; 0: 1-63, 0, 2; 0: 1-63, 2, 0;",
                                   "1: 0-0, 0, 0;", "0: 0-0, 0, 0; 0: 1-64, 0, 0;", "0: 0-0, 0, 0; 0: 1-63, 0, 14;"}) {
    EXPECT_THROW(jpeg::checkScript(jpeg::parseScript(script), 1), std::runtime_error) << script;
  }
}

}  // namespace
}  // namespace interop
