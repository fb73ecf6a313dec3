// Files through the TIFF codec: the same samples at every level, and what is whole comes back from a file made of it.
#include "common/error.h"
#include "support/fuzzer.h"
#include "tiff/codec.h"

namespace zorj::fuzz {

namespace tiff = examples::tiff;

void fuzz(Input& input) {
  constexpr uint64_t kMaxPixels = 1 << 14;
  chooseLevel(input);
  const tiff::Compression compression = input.coin() ? tiff::Compression::packBits : tiff::Compression::none;
  const Exact<uint8_t> memory(input.rest());
  const std::span<const uint8_t> file(memory.data(), memory.size());
  try {
    if (tiff::countImages(file) == 0) EXPECT_THROW(tiff::describe(file), examples::Error);
  } catch (const examples::Error&) {
  }
  try {
    const tiff::Description description = tiff::describe(file);
    if (uint64_t{description.width} * description.height > kMaxPixels) return;
    examples::DeepImage image, again;
    tiff::DecodeReport report;
    sameAtPortableLevel([&] {
      report = tiff::decode(file, image);
      EXPECT_EQ(image.samples.size(), size_t(image.width) * size_t(image.height) * size_t(image.channels));
      return image.samples;
    });
    EXPECT_EQ(static_cast<uint32_t>(image.width), description.width);
    EXPECT_EQ(static_cast<uint32_t>(image.height), description.height);
    Bytes made;
    tiff::encode(image, compression, made);
    EXPECT_EQ(tiff::countImages(made), 1u);
    EXPECT_TRUE(tiff::decode(made, again).complete());
    EXPECT_EQ(again.precision, image.precision);
    EXPECT_TRUE(again.samples == image.samples);
  } catch (const examples::Error&) {
  }
}

}  // namespace zorj::fuzz
