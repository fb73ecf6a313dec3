// Files through the JPEG 2000 codec: the same samples at every level and from any number of threads, and whole ones
// coded again without loss.
#include "common/error.h"
#include "jpeg2k/codec.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

namespace jpeg2k = examples::jpeg2k;
using File = std::span<const uint8_t>;

struct Outcome {
  examples::DeepImage image;
  std::string problem;

  bool operator==(const Outcome& other) const {
    return problem == other.problem && image.samples == other.image.samples;
  }
};

Outcome decoded(File file, const jpeg2k::DecodeOptions& options) {
  Outcome outcome;
  try {
    outcome.problem = jpeg2k::decode(file, options, outcome.image).problem;
    const examples::DeepImage& image = outcome.image;
    EXPECT_EQ(image.samples.size(), size_t(image.width) * size_t(image.height) * size_t(image.channels));
    EXPECT_TRUE(std::all_of(image.samples.begin(), image.samples.end(),
                            [&](uint16_t sample) { return sample <= image.largest(); }));
  } catch (const examples::Error& error) {
    outcome = {{}, error.what()};
  }
  return outcome;
}

}  // namespace

void fuzz(Input& input) {
  constexpr int64_t kMaxPixels = 1 << 14;
  chooseLevel(input);
  const uint8_t choices = input.byte();
  jpeg2k::DecodeOptions options;
  options.reduce = choices % 4 == 3 ? 1 : 0;
  options.layers = choices / 4 % 4 == 3 ? 1 : 0;
  const Exact<uint8_t> memory(input.rest());
  const File file(memory.data(), memory.size());
  try {
    const jpeg2k::Description description = jpeg2k::describe(file);
    if (int64_t{description.width} * description.height > kMaxPixels) return;
    const Outcome outcome = sameAtPortableLevel([&] { return decoded(file, options); });
    if (choices / 16 % 4 == 0) {
      jpeg2k::DecodeOptions threaded = options;
      threaded.threads = 3;
      EXPECT_TRUE(decoded(file, threaded) == outcome) << "another number of threads";
    }
    if (outcome.image.samples.empty() || choices / 64 == 0) return;
    Bytes again;
    jpeg2k::encode(outcome.image, {}, again);
    EXPECT_TRUE(decoded(again, {}) == (Outcome{outcome.image, ""})) << "coded again";
  } catch (const examples::Error&) {
  }
}

}  // namespace zorj::fuzz
