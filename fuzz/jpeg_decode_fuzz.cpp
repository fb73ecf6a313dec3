// Files through the JPEG codec: the same pixels at every level and from any number of threads, and whole files coded
// again without loss.
#include "common/error.h"
#include "jpeg/codec.h"
#include "support/coefficients.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

namespace jpeg = examples::jpeg;
using File = std::span<const uint8_t>;

struct Outcome {
  std::vector<uint8_t> samples;
  std::string problem;
  bool operator==(const Outcome&) const = default;
};

Outcome decoded(File file, const jpeg::DecodeOptions& options) {
  Outcome outcome;
  try {
    examples::Image image;
    outcome.problem = jpeg::decode(file, options, image).problem;
    EXPECT_EQ(image.samples.size(), size_t(image.width) * size_t(image.height) * size_t(image.channels));
    outcome.samples = image.samples;
  } catch (const examples::Error& error) {
    outcome.problem = error.what();
  }
  return outcome;
}

void expectSameCodedAgain(File file, const jpeg::EncodeOptions& options) {
  jpeg::CoefficientImage before, after;
  if (!jpeg::decodeCoefficients(file, before).complete()) return;
  Bytes again;
  try {
    jpeg::encodeCoefficients(before, options, again);
  } catch (const examples::Error&) {
    return;  // coefficients that the process has no symbols for
  }
  EXPECT_EQ(jpeg::decodeCoefficients(again, after).problem, "");
  EXPECT_TRUE(coefficientsOf(before) == coefficientsOf(after));
}

void expectSameLossless(File file, int32_t predictor, int32_t restartInterval) {
  examples::DeepImage before, after;
  if (!jpeg::decode(file, {}, before).complete()) return;
  jpeg::EncodeOptions options;
  options.predictor = predictor;
  options.restartInterval = restartInterval * before.width;
  Bytes again;
  try {
    jpeg::encode(before, options, again);
  } catch (const examples::Error&) {
    return;  // a restart interval that is too long
  }
  EXPECT_EQ(jpeg::decode(again, {}, after).problem, "");
  EXPECT_TRUE(before.samples == after.samples);
}

}  // namespace

void fuzz(Input& input) {
  constexpr int64_t kMaxPixels = 1 << 14;
  chooseLevel(input);
  const uint8_t choices = input.byte();
  const jpeg::DecodeOptions options = {choices % 2 != 0 ? jpeg::Upsampling::box : jpeg::Upsampling::triangle,
                                       1 << (choices / 2 % 4), 1};
  const Exact<uint8_t> memory(input.rest());
  const File file(memory.data(), memory.size());
  try {
    const jpeg::Frame frame = jpeg::describe(file);
    if (int64_t{frame.width} * frame.height > kMaxPixels) return;
    const Outcome outcome = sameAtPortableLevel([&] { return decoded(file, options); });
    if (choices / 8 % 4 == 0) {
      jpeg::DecodeOptions threaded = options;
      threaded.threads = 3;
      EXPECT_TRUE(decoded(file, threaded) == outcome) << "another number of threads";
    }
    if (frame.process != jpeg::Process::lossless) {
      jpeg::EncodeOptions encoding;
      encoding.optimize = true;
      encoding.progressive = choices / 32 % 2 != 0 && frame.precision == 8;
      encoding.restartInterval = choices / 64;
      expectSameCodedAgain(file, encoding);
    } else {
      expectSameLossless(file, 1 + choices / 32 % 7, choices % 2);
    }
  } catch (const examples::Error&) {
  }
}

}  // namespace zorj::fuzz
