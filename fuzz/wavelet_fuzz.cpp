// Levels of tiles of every size and place, with buffers of exactly the size asked for, beside the model; rows and
// columns with exactly the borders that are read.
#include "jpeg2k/wavelet_cases.h"
#include "reference/wavelet97.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

// A region of samples that ends with the last one of its last row.
template <class T>
struct Region {
  int32_t width, height;
  int32_t step;
  Exact<uint8_t> memory;

  Region(Input& input, int32_t regionWidth, int32_t regionHeight)
      : width(regionWidth),
        height(regionHeight),
        step(std::max(1, width * int32_t{sizeof(T)} + input.between(0, 5))),
        memory(width == 0 || height == 0
                   ? 0
                   : static_cast<size_t>(step * (height - 1)) + static_cast<size_t>(width) * sizeof(T),
               input.coin()) {}
  T* data() const { return reinterpret_cast<T*>(memory.data()); }
  uint8_t* at(int32_t x, int32_t y) const { return memory.data() + y * step + x * int32_t{sizeof(T)}; }
  T get(int32_t x, int32_t y) const {
    T sample;
    std::memcpy(&sample, at(x, y), sizeof sample);
    return sample;
  }
  // Not every pattern of bits is a float to compute with.
  void fill(Input& input) const {
    input.fill(memory.data(), memory.size());
    if constexpr (std::is_same_v<T, float>) {
      for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
          int16_t bits;
          std::memcpy(&bits, at(x, y), sizeof bits);
          const float sample = static_cast<float>(bits) / 3;
          std::memcpy(at(x, y), &sample, sizeof sample);
        }
      }
    }
  }
};

template <class W, class T = typename W::Sample>
void tiles(Input& input, const test::TileFunctions<T>& functions) {
  const TileRect tile = {input.between(-2, 2), input.between(-2, 2), input.between(1, 70), input.between(1, 20)};
  const bool forward = input.coin(), apart = input.coin();
  int32_t bytes = -1;
  EXPECT_EQ((apart ? functions.sizeApart : functions.sizeInPlace)(&tile, &bytes), StatusOk);
  const Exact<uint8_t> buffer(static_cast<size_t>(bytes), input.coin());
  const test::BandSizes sizes(tile);
  std::vector<Region<T>> bands;
  for (int band = 0; band < 4; ++band) bands.emplace_back(input, sizes.width(band), sizes.height(band));
  T* const pointers[4] = {bands[0].data(), bands[1].data(), bands[2].data(), bands[3].data()};
  const int32_t steps[4] = {bands[0].step, bands[1].step, bands[2].step, bands[3].step};
  const Region<T> image(input, tile.width, tile.height);
  image.fill(input);

  test::Tile<T> from(static_cast<size_t>(tile.height), std::vector<T>(static_cast<size_t>(tile.width)));
  for (int32_t y = 0; y < tile.height; ++y) {
    for (int32_t x = 0; x < tile.width; ++x) from[static_cast<size_t>(y)][static_cast<size_t>(x)] = image.get(x, y);
  }
  const test::Tile<T> expected = forward ? reference::forwardLevel<W>(from, tile.x & 1, tile.y & 1)
                                         : reference::inverseLevel<W>(from, tile.x & 1, tile.y & 1);
  if (apart && forward) {
    EXPECT_EQ(functions.forwardApart(image.data(), image.step, &tile, pointers, steps, buffer.data()), StatusOk);
    test::forEachBandSample(tile, [&](size_t band, int x, int y, size_t tileX, size_t tileY) {
      EXPECT_EQ(bands[band].get(x, y), expected[tileY][tileX]);
    });
    return;
  }
  if (apart) {
    test::forEachBandSample(tile, [&](size_t band, int x, int y, size_t tileX, size_t tileY) {
      std::memcpy(bands[band].at(x, y), &from[tileY][tileX], sizeof(T));
    });
    EXPECT_EQ(functions.inverseApart(pointers, steps, image.data(), image.step, &tile, buffer.data()), StatusOk);
  } else {
    EXPECT_EQ(
        (forward ? functions.forwardInPlace : functions.inverseInPlace)(image.data(), image.step, &tile, buffer.data()),
        StatusOk);
  }
  for (int32_t y = 0; y < tile.height; ++y) {
    for (int32_t x = 0; x < tile.width; ++x) {
      EXPECT_EQ(image.get(x, y), expected[static_cast<size_t>(y)][static_cast<size_t>(x)]);
    }
  }
}

template <class T>
struct LineFunctions {
  test::ForwardBands<T> forward;
  test::InverseBands<T> inverse;
  bool down;
  test::Borders borders;
};

template <class T>
Bytes transformedLines(Input input, const LineFunctions<T>& functions) {
  const int32_t n = input.between(1, 70), lines = input.between(1, 9), phase = input.between(0, 1);
  const auto region = [&](int32_t length, test::Border border) {
    length += border.before + border.after;
    return functions.down ? Region<T>(input, lines, length) : Region<T>(input, length, lines);
  };
  const auto first = [&](const Region<T>& from, test::Border border) {
    return reinterpret_cast<T*>(functions.down ? from.at(0, border.before) : from.at(border.before, 0));
  };
  const RoiSize size = functions.down ? RoiSize{lines, n} : RoiSize{n, lines};
  if (input.coin()) {
    const test::Border border = functions.borders.x[phase];
    const Region<T> x = region(2 * n, border), low = region(n, {0, 0}), high = region(n, {0, 0});
    x.fill(input);
    EXPECT_EQ(functions.forward(first(x, border), x.step, low.data(), low.step, high.data(), high.step, size, phase),
              StatusOk);
    Bytes result = low.memory.values(), rest = high.memory.values();
    result.insert(result.end(), rest.begin(), rest.end());
    return result;
  }
  const test::Border lowBorder = functions.borders.low[phase], highBorder = functions.borders.high[phase];
  const Region<T> low = region(n, lowBorder), high = region(n, highBorder), x = region(2 * n, {0, 0});
  low.fill(input);
  high.fill(input);
  EXPECT_EQ(functions.inverse(first(low, lowBorder), low.step, first(high, highBorder), high.step, size, x.data(),
                              x.step, phase),
            StatusOk);
  return x.memory.values();
}

template <class T>
void lines(Input& input, test::ForwardBands<T> forward, test::InverseBands<T> inverse, bool down,
           const test::Borders& borders) {
  sameAtPortableLevel([&] { return transformedLines<T>(input, {forward, inverse, down, borders}); });
}

}  // namespace

void fuzz(Input& input) {
  constexpr test::Borders k53 = {{{2, 1}, {1, 2}}, {{0, 1}, {1, 0}}, {{1, 1}, {1, 1}}};
  constexpr test::Borders k97 = {{{4, 3}, {3, 4}}, {{1, 2}, {2, 1}}, {{2, 2}, {2, 2}}};
  chooseLevel(input);
  switch (input.byte() % 12) {
    case 0:
      return tiles<reference::Wavelet53<int16_t>>(
          input,
          {"", &zoriWTFwd_B53_JPEG2K_16s_C1IR, &zoriWTInv_B53_JPEG2K_16s_C1IR, &zoriWTFwd_B53_JPEG2K_16s_C1R,
           &zoriWTInv_B53_JPEG2K_16s_C1R, &zoriWTGetBufSize_B53_JPEG2K_16s_C1IR, &zoriWTGetBufSize_B53_JPEG2K_16s_C1R});
    case 1:
      return tiles<reference::Wavelet53<int32_t>>(
          input,
          {"", &zoriWTFwd_B53_JPEG2K_32s_C1IR, &zoriWTInv_B53_JPEG2K_32s_C1IR, &zoriWTFwd_B53_JPEG2K_32s_C1R,
           &zoriWTInv_B53_JPEG2K_32s_C1R, &zoriWTGetBufSize_B53_JPEG2K_32s_C1IR, &zoriWTGetBufSize_B53_JPEG2K_32s_C1R});
    case 2:
      return tiles<reference::Wavelet97<int16_t>>(
          input,
          {"", &zoriWTFwd_D97_JPEG2K_16s_C1IR, &zoriWTInv_D97_JPEG2K_16s_C1IR, &zoriWTFwd_D97_JPEG2K_16s_C1R,
           &zoriWTInv_D97_JPEG2K_16s_C1R, &zoriWTGetBufSize_D97_JPEG2K_16s_C1IR, &zoriWTGetBufSize_D97_JPEG2K_16s_C1R});
    case 3:
      return tiles<reference::Wavelet97<int32_t>>(
          input,
          {"", &zoriWTFwd_D97_JPEG2K_32s_C1IR, &zoriWTInv_D97_JPEG2K_32s_C1IR, &zoriWTFwd_D97_JPEG2K_32s_C1R,
           &zoriWTInv_D97_JPEG2K_32s_C1R, &zoriWTGetBufSize_D97_JPEG2K_32s_C1IR, &zoriWTGetBufSize_D97_JPEG2K_32s_C1R});
    case 4:
      return lines<int16_t>(input, &zoriWTFwdRow_B53_JPEG2K_16s_C1R, &zoriWTInvRow_B53_JPEG2K_16s_C1R, false, k53);
    case 5:
      return lines<int32_t>(input, &zoriWTFwdRow_B53_JPEG2K_32s_C1R, &zoriWTInvRow_B53_JPEG2K_32s_C1R, false, k53);
    case 6:
      return lines<int16_t>(input, &zoriWTFwdCol_B53_JPEG2K_16s_C1R, &zoriWTInvCol_B53_JPEG2K_16s_C1R, true, k53);
    case 7:
      return lines<int32_t>(input, &zoriWTFwdCol_B53_JPEG2K_32s_C1R, &zoriWTInvCol_B53_JPEG2K_32s_C1R, true, k53);
    case 8:
      return lines<int16_t>(input, &zoriWTFwdRow_D97_JPEG2K_16s_C1R, &zoriWTInvRow_D97_JPEG2K_16s_C1R, false, k97);
    case 9:
      return lines<int32_t>(input, &zoriWTFwdRow_D97_JPEG2K_32s_C1R, &zoriWTInvRow_D97_JPEG2K_32s_C1R, false, k97);
    case 10:
      return lines<float>(input, &zoriWTFwdRow_D97_JPEG2K_32f_C1R, &zoriWTInvRow_D97_JPEG2K_32f_C1R, false, k97);
    default:
      return lines<float>(input, &zoriWTFwdCol_D97_JPEG2K_32f_C1R, &zoriWTInvCol_D97_JPEG2K_32f_C1R, true, k97);
  }
}

}  // namespace zorj::fuzz
