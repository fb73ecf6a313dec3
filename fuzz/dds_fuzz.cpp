// Files through the texture codec: every level has the size that its header gives, the same pixels at every
// instruction-set level, and what is made of it is a file again.
#include "common/error.h"
#include "dds/codec.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {

namespace dds = examples::dds;

void fuzz(Input& input) {
  constexpr int64_t kMaxPixels = 1 << 14;
  chooseLevel(input);
  const auto format = static_cast<dds::Format>(input.byte() % 4);
  const bool mipmaps = input.coin();
  const Exact<uint8_t> memory(input.rest());
  const std::span<const uint8_t> file(memory.data(), memory.size());
  try {
    const dds::Texture texture = dds::parse(file);
    if (int64_t{texture.width} * texture.height > kMaxPixels) return;
    EXPECT_THROW(dds::decode(file, texture.levels), examples::Error);
    for (int32_t i = 0; i < texture.levels; ++i) {
      const auto decoded = [&] { return dds::decode(file, i); };
      EXPECT_EQ(decoded().width, texture.level(i).width);
      EXPECT_EQ(decoded().height, texture.level(i).height);
      sameAtPortableLevel([&] { return decoded().samples; });
    }
    const examples::Image image = dds::decode(file);
    const Bytes again = sameAtPortableLevel([&] { return dds::encode(image, format, mipmaps); });
    const dds::Texture made = dds::parse(again);
    EXPECT_EQ(made.format, format);
    EXPECT_EQ(made.width, image.width);
    EXPECT_EQ(made.height, image.height);
    EXPECT_EQ(made.levels, mipmaps ? dds::fullChain(image.width, image.height) : 1);
    EXPECT_EQ(dds::decode(again, made.levels - 1).width, made.level(made.levels - 1).width);
  } catch (const examples::Error&) {
  }
}

}  // namespace zorj::fuzz
