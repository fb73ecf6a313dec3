// Pictures through the JPEG 2000 codec and back, with options of all sorts: without loss, or as small as asked for.
#include "common/error.h"
#include "jpeg2k/codec.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {

namespace jpeg2k = examples::jpeg2k;

void fuzz(Input& input) {
  constexpr int32_t kChannels[] = {1, 3, 3, 4};
  chooseLevel(input);
  examples::DeepImage image(input.between(1, 33), input.between(1, 33), kChannels[input.byte() % 4]);
  image.precision = input.between(1, 16);
  jpeg2k::EncodeOptions options;
  const bool lossless = input.coin();
  if (!lossless) options.ratio = input.between(1, 60) / 2.0;
  options.levels = input.between(0, 7);
  options.block = {4 << input.between(0, 5), 4 << input.between(0, 5)};
  if (input.coin()) options.tile = {input.between(8, 60), input.between(8, 60)};
  if (input.coin()) options.precinct = {1 << input.between(0, 7), 1 << input.between(0, 7)};
  options.layers = input.between(1, 4);
  options.progression = static_cast<jpeg2k::Progression>(input.byte() % 5);
  options.style = input.byte() & 0x3Fu;
  const uint8_t flags = input.byte();
  options.convertColors = (flags & 1) != 0;
  options.sop = (flags & 2) != 0;
  options.eph = (flags & 4) != 0;
  options.codestreamOnly = (flags & 8) != 0;
  input.fill(image.samples.data(), image.samples.size());
  for (uint16_t& sample : image.samples) sample = static_cast<uint16_t>(sample & image.largest());
  try {
    const Bytes file = sameAtPortableLevel([&] {
      Bytes bytes;
      jpeg2k::encode(image, options, bytes);
      return bytes;
    });
    const Exact<uint8_t> memory{std::span<const uint8_t>(file)};
    examples::DeepImage decoded;
    EXPECT_EQ(jpeg2k::decode({memory.data(), memory.size()}, {}, decoded).problem, "");
    EXPECT_EQ(decoded.samples.size(), image.samples.size());
    if (lossless) EXPECT_TRUE(decoded.samples == image.samples);
  } catch (const examples::Error&) {
  }
}

}  // namespace zorj::fuzz
