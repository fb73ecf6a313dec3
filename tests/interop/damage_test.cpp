// Truncated and damaged files: decoded as far as they go, with a report, and never a crash.
#include <gtest/gtest.h>

#include "common/error.h"
#include "interop/compare.h"
#include "interop/pictures.h"

namespace interop {
namespace {

// How many of an image's first MCUs (8 x 8 pixels) are those of another.
int equalMcus(const Image& a, const Image& b) {
  const int wide = (a.width + 7) / 8;
  const int all = wide * ((a.height + 7) / 8);
  for (int mcu = 0; mcu < all; ++mcu) {
    for (int y = mcu / wide * 8; y < std::min(mcu / wide * 8 + 8, a.height); ++y) {
      const int left = mcu % wide * 8;
      const int bytes = std::min(8, a.width - left) * a.channels;
      if (!std::equal(a.at(left, y), a.at(left, y) + bytes, b.at(left, y))) return mcu;
    }
  }
  return all;
}

TEST(Damage, TruncatedAnywhereDecodesAsFarAsItGoes) {
  PeerSettings settings;
  for (const auto& scans : {std::vector<std::vector<int>>{}, {{0}, {1, 2}}}) {
    settings.scans = scans;
    settings.restartInterval = settings.restartInterval == 0 ? 4 : 0;
    const std::vector<uint8_t> file = peerEncode(picture(33, 29, 3), settings);
    Image whole;
    ASSERT_TRUE(jpeg::decode(file, {}, whole).complete());
    int equal = 0;
    bool refused = true;
    for (size_t length = 0; length < file.size(); ++length) {
      const std::vector<uint8_t> part(file.begin(), file.begin() + static_cast<ptrdiff_t>(length));
      Image image;
      try {
        EXPECT_FALSE(jpeg::decode(part, {}, image).complete()) << length;
        refused = false;
      } catch (const examples::Error&) {
        EXPECT_TRUE(refused) << "a longer part is refused: " << length;
        continue;
      }
      ASSERT_EQ(image.samples.size(), whole.samples.size());
      const int now = equalMcus(image, whole);
      EXPECT_GE(now, equal) << length;
      equal = now;
      if (now + 1 < equalMcus(whole, whole) && scans.empty()) {
        EXPECT_EQ(image.samples.back(), 128) << "what is missing is grey";
      }
    }
    EXPECT_EQ(equal, equalMcus(whole, whole)) << "only the end-of-image marker is missing";
  }
}

struct Segment {
  size_t first;  // the data between two markers
  size_t last;
};

std::vector<Segment> restartSegments(const std::vector<uint8_t>& file) {
  std::vector<Segment> segments;
  size_t start = 0;
  for (size_t i = 2; i + 1 < file.size(); ++i) {
    if (file[i] != 0xff || file[i + 1] == 0) continue;
    if (start != 0) segments.push_back({start, i});
    start = 0;
    if (file[i + 1] == 0xda) start = i + 2u + static_cast<size_t>(file[i + 2] * 256 + file[i + 3]);
    if (file[i + 1] >= 0xd0 && file[i + 1] <= 0xd7) start = i + 2;
    if (file[i + 1] == 0xd9) break;
  }
  return segments;
}

// One row of MCUs to a restart segment: rows outside the damaged segments stay as they were.
void expectOtherRowsIntact(const std::vector<uint8_t>& damaged, const Image& whole, int firstBad, int lastBad) {
  Image image;
  EXPECT_FALSE(jpeg::decode(damaged, {}, image).complete());
  for (int y = 0; y < whole.height; ++y) {
    if (y / 8 >= firstBad && y / 8 <= lastBad) continue;
    ASSERT_TRUE(std::equal(whole.at(0, y), whole.at(0, y) + whole.step(), image.at(0, y))) << "row " << y;
  }
}

TEST(Damage, RestartMarkersLimitIt) {
  const Image source = picture(40, 8 * 20, 3);
  std::vector<uint8_t> file;
  jpeg::encode(source, {80, jpeg::Sampling::s444, 5}, file);
  Image whole;
  ASSERT_TRUE(jpeg::decode(file, {}, whole).complete());
  const std::vector<Segment> segments = restartSegments(file);
  ASSERT_EQ(segments.size(), 20u);
  const auto offset = [&](size_t position) { return file.begin() + static_cast<ptrdiff_t>(position); };
  for (int row = 0; row < 19; ++row) {
    const Segment segment = segments[static_cast<size_t>(row)];
    std::vector<uint8_t> cut(file.begin(), offset(segment.first + 20));
    cut.insert(cut.end(), offset(segment.last), file.end());
    expectOtherRowsIntact(cut, whole, row, row);

    std::vector<uint8_t> lost(file.begin(), offset(segment.first));  // with its marker: the next segments move up
    lost.insert(lost.end(), offset(segment.last + 2), file.end());
    expectOtherRowsIntact(lost, whole, row, row + 1);

    if (row < 17) {
      std::vector<uint8_t> three(file.begin(), offset(segment.first));
      three.insert(three.end(), offset(segments[static_cast<size_t>(row) + 2].last), file.end());
      expectOtherRowsIntact(three, whole, row, row + 2);
    }

    std::vector<uint8_t> stray = file;  // a marker that cannot be the next
    const uint8_t number = static_cast<uint8_t>(0xd0 + (row + 6) % 8);
    const uint8_t marker[2] = {0xff, number};
    stray.insert(stray.begin() + static_cast<ptrdiff_t>(segment.last - 30), marker, marker + 2);
    expectOtherRowsIntact(stray, whole, row, row);
  }
}

// And threads find the same damage as one alone.
TEST(Damage, RandomBytesNeverCrash) {
  Random random(11);
  PeerSettings settings;
  Image image, same;
  jpeg::CoefficientImage coefficients;
  for (int round = 0; round < 3000; ++round) {
    const int32_t channels = round % 7 == 0 ? 4 : 3;
    settings.factors = {{1 + round % 2, 1 + round / 2 % 2}, {1, 1}, {1, 1}, {1, 1}};
    settings.restartInterval = round % 3;
    settings.scans = round % 5 == 0 ? std::vector<std::vector<int>>{{0}, {1}, {2}} : std::vector<std::vector<int>>{};
    if (channels == 4) settings.scans.clear();
    static std::vector<uint8_t> files[420];
    std::vector<uint8_t>& original = files[round % 420];
    if (original.empty()) original = peerEncode(picture(30, 40, channels), settings);
    std::vector<uint8_t> file = original;
    for (int64_t i = random.between(1, 10); i > 0; --i) {
      const size_t at = static_cast<size_t>(random.between(2, static_cast<int64_t>(file.size()) - 1));
      file[at] = random.oneIn(4) ? uint8_t{0xff} : static_cast<uint8_t>(random.next());
    }
    try {
      const jpeg::DecodeReport report = jpeg::decode(file, {jpeg::Upsampling::triangle, 1 << round % 4}, image);
      EXPECT_EQ(jpeg::decode(file, {jpeg::Upsampling::triangle, 1 << round % 4, 3}, same).problem, report.problem);
      ASSERT_EQ(same.samples, image.samples) << round;
      jpeg::decodeCoefficients(file, coefficients);
      jpeg::inverseTransform(coefficients);
    } catch (const examples::Error&) {
    }
  }
}

TEST(Damage, RefusesImagesFarLargerThanTheirFile) {
  std::vector<uint8_t> file = peerEncode(picture(16, 16, 3), {});
  file.resize(20000, 0xff);  // what fills a file up does not count
  const uint8_t sof[] = {0xff, 0xc0, 0, 17, 8};
  const auto found = std::search(file.begin(), file.end(), std::begin(sof), std::end(sof));
  ASSERT_NE(found, file.end());
  std::fill_n(found + 5, 4, uint8_t{16});  // 4112 x 4112
  Image image;
  EXPECT_THROW(jpeg::decode(file, {}, image), examples::Error);
  EXPECT_EQ(image.samples.size(), 0u);
}

}  // namespace
}  // namespace interop
