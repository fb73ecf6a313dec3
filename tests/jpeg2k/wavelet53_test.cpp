#include "jpeg2k/wavelet_cases.h"

namespace zorj::test {
namespace {

template <class T>
using Model = reference::Wavelet53<T>;

constexpr Borders kBorders = {{{2, 1}, {1, 2}}, {{0, 1}, {1, 0}}, {{1, 1}, {1, 1}}};

constexpr TileFunctions<int16_t> kTile16 = {"5/3 16s",
                                            &zoriWTFwd_B53_JPEG2K_16s_C1IR,
                                            &zoriWTInv_B53_JPEG2K_16s_C1IR,
                                            &zoriWTFwd_B53_JPEG2K_16s_C1R,
                                            &zoriWTInv_B53_JPEG2K_16s_C1R,
                                            &zoriWTGetBufSize_B53_JPEG2K_16s_C1IR,
                                            &zoriWTGetBufSize_B53_JPEG2K_16s_C1R};
constexpr TileFunctions<int32_t> kTile32 = {"5/3 32s",
                                            &zoriWTFwd_B53_JPEG2K_32s_C1IR,
                                            &zoriWTInv_B53_JPEG2K_32s_C1IR,
                                            &zoriWTFwd_B53_JPEG2K_32s_C1R,
                                            &zoriWTInv_B53_JPEG2K_32s_C1R,
                                            &zoriWTGetBufSize_B53_JPEG2K_32s_C1IR,
                                            &zoriWTGetBufSize_B53_JPEG2K_32s_C1R};

TEST(Wavelet53, RowsEqualModel) {
  expectBandsEqualModel<Model<int16_t>>("5/3 16s rows", &zoriWTFwdRow_B53_JPEG2K_16s_C1R,
                                        &zoriWTInvRow_B53_JPEG2K_16s_C1R, false, kBorders);
  expectBandsEqualModel<Model<int32_t>>("5/3 32s rows", &zoriWTFwdRow_B53_JPEG2K_32s_C1R,
                                        &zoriWTInvRow_B53_JPEG2K_32s_C1R, false, kBorders);
}

TEST(Wavelet53, ColumnsEqualModel) {
  expectBandsEqualModel<Model<int16_t>>("5/3 16s columns", &zoriWTFwdCol_B53_JPEG2K_16s_C1R,
                                        &zoriWTInvCol_B53_JPEG2K_16s_C1R, true, kBorders);
  expectBandsEqualModel<Model<int32_t>>("5/3 32s columns", &zoriWTFwdCol_B53_JPEG2K_32s_C1R,
                                        &zoriWTInvCol_B53_JPEG2K_32s_C1R, true, kBorders);
}

TEST(Wavelet53, TilesEqualModel) {
  expectTilesEqualModel<Model<int16_t>>(kTile16);
  expectTilesEqualModel<Model<int32_t>>(kTile32);
}

// ---- Steps of columns

template <class T>
using ForwardStep = StatusCode(ZORJ_CALL*)(const T*, const T*, const T*, T*, const T*, T*, int32_t);
template <class T>
using InverseStep = StatusCode(ZORJ_CALL*)(const T*, const T*, const T*, const T*, T*, T*, int32_t);

// All sums wrap at the width of a sample.
template <class T>
T half(T a, T b) {
  return static_cast<T>(reference::floorDivide(reference::wrapped<T>(int64_t{a} + b), 2));
}
template <class T>
T quarter(T a, T b) {
  return static_cast<T>(reference::floorDivide(reference::wrapped<T>(int64_t{a} + b + 2), 4));
}
template <class T>
T sum(T a, T b) {
  return reference::wrapped<T>(int64_t{a} + b);
}
template <class T>
T difference(T a, T b) {
  return reference::wrapped<T>(int64_t{a} - b);
}

template <class T>
void expectStepsEqualModel(const std::string& what, ForwardStep<T> forward, InverseStep<T> inverse) {
  const auto row = [](int width) { return sourceArray<T>(width); };
  for (int width = 1; width <= 130; ++width) {
    std::vector<OperandSpec> specs(4, row(width));
    specs.resize(6, destinationArray<T>(width));
    expectEqualsModel(
        what + " forward of width " + std::to_string(width), specs, static_cast<uint64_t>(width), width,
        [&](const Operands& o) {
          EXPECT_EQ(forward(o.at<T>(0), o.at<T>(1), o.at<T>(2), o.at<T>(4), o.at<T>(3), o.at<T>(5), width), StatusOk);
        },
        [&](const Operands& o) {
          const auto x = [&](size_t operand, int i) { return sampleAt<T>(o, operand, i, 0); };
          for (int i = 0; i < width; ++i) {
            const T detail = difference(x(1, i), half(x(0, i), x(2, i)));
            storeSample(o, 5, i, 0, detail);
            storeSample(o, 4, i, 0, sum(x(0, i), quarter(detail, x(3, i))));
          }
        });
    expectEqualsModel(
        what + " inverse of width " + std::to_string(width), specs, static_cast<uint64_t>(width), width,
        [&](const Operands& o) {
          EXPECT_EQ(inverse(o.at<T>(0), o.at<T>(1), o.at<T>(2), o.at<T>(3), o.at<T>(4), o.at<T>(5), width), StatusOk);
        },
        [&](const Operands& o) {
          const auto x = [&](size_t operand, int i) { return sampleAt<T>(o, operand, i, 0); };
          for (int i = 0; i < width; ++i) {
            const T even = difference(x(0, i), quarter(x(1, i), x(2, i)));
            storeSample(o, 5, i, 0, even);
            storeSample(o, 4, i, 0, sum(x(1, i), half(even, x(3, i))));
          }
        });
  }
}

TEST(Wavelet53, StepsEqualModel) {
  expectStepsEqualModel<int16_t>("5/3 16s step", &zoriWTFwdColLift_B53_JPEG2K_16s_C1,
                                 &zoriWTInvColLift_B53_JPEG2K_16s_C1);
  expectStepsEqualModel<int32_t>("5/3 32s step", &zoriWTFwdColLift_B53_JPEG2K_32s_C1,
                                 &zoriWTInvColLift_B53_JPEG2K_32s_C1);
}

// A caller may keep results where the samples were.
template <class T>
void expectStepsInPlace(ForwardStep<T> forward, InverseStep<T> inverse) {
  constexpr size_t kWidth = 77;
  Random random(5);
  std::array<std::array<T, kWidth>, 4> x;
  for (auto& row : x) fillSamples(row.data(), kWidth, random, 2);
  auto apart = x, inPlace = x;
  std::array<T, kWidth> low, high;
  forward(x[0].data(), x[1].data(), x[2].data(), low.data(), x[3].data(), high.data(), kWidth);
  forward(inPlace[0].data(), inPlace[1].data(), inPlace[2].data(), inPlace[0].data(), inPlace[3].data(),
          inPlace[1].data(), kWidth);
  EXPECT_TRUE(inPlace[0] == low && inPlace[1] == high && inPlace[2] == x[2] && inPlace[3] == x[3]);
  // Both neighbours one row: the mirrored end of a column.
  forward(apart[0].data(), apart[1].data(), apart[0].data(), low.data(), apart[3].data(), high.data(), kWidth);
  for (size_t i = 0; i < kWidth; ++i) EXPECT_EQ(high[i], static_cast<T>(x[1][i] - x[0][i]));
  inPlace = x;
  inverse(x[0].data(), x[1].data(), x[2].data(), x[3].data(), high.data(), low.data(), kWidth);
  inverse(inPlace[0].data(), inPlace[1].data(), inPlace[2].data(), inPlace[3].data(), inPlace[1].data(),
          inPlace[0].data(), kWidth);
  EXPECT_TRUE(inPlace[0] == low && inPlace[1] == high && inPlace[2] == x[2] && inPlace[3] == x[3]);
}

TEST(Wavelet53, StepsWorkInPlace) {
  expectStepsInPlace<int16_t>(&zoriWTFwdColLift_B53_JPEG2K_16s_C1, &zoriWTInvColLift_B53_JPEG2K_16s_C1);
  expectStepsInPlace<int32_t>(&zoriWTFwdColLift_B53_JPEG2K_32s_C1, &zoriWTInvColLift_B53_JPEG2K_32s_C1);
}

// ---- What the models do not show

template <class T>
void expectReversed(const TileFunctions<T>& functions, int limit) {
  Random random(9);
  for (int round = 0; round < 300; ++round) {
    const TileRect tile = {round & 1, round >> 1 & 1, static_cast<int32_t>(random.between(1, 40)),
                           static_cast<int32_t>(random.between(1, 40))};
    const Buffer buffer(functions.sizeInPlace, tile, Placement::kAtEnd);
    std::vector<T> samples(static_cast<size_t>(tile.width) * static_cast<size_t>(tile.height));
    for (T& sample : samples) sample = static_cast<T>(random.between(-limit, limit));
    auto transformed = samples;
    const int32_t step = tile.width * static_cast<int32_t>(sizeof(T));
    functions.forwardInPlace(transformed.data(), step, &tile, buffer.data());
    functions.inverseInPlace(transformed.data(), step, &tile, buffer.data());
    EXPECT_EQ(transformed, samples) << tile.width << "x" << tile.height;
  }
}

TEST(Wavelet53, IsReversible) {
  expectReversed(kTile16, 8191);
  expectReversed(kTile32, 1 << 28);
}

// Worked by hand, so that the models have something to answer to.
TEST(Wavelet53, RoundsAsDocumented) {
  const int16_t x[5] = {0, 0, 10, 20, 30};
  int16_t low = 0, high = 1;
  zoriWTFwdRow_B53_JPEG2K_16s_C1R(x + 2, 10, &low, 2, &high, 2, {1, 1}, 0);
  EXPECT_TRUE(low == 9 && high == 0) << low << ' ' << high;

  int32_t single = -3;
  const TileRect odd = {1, 1, 1, 1};
  zoriWTFwd_B53_JPEG2K_32s_C1IR(&single, 4, &odd, &low);
  EXPECT_EQ(single, -12);
  const TileRect oddColumn = {1, 0, 1, 1};
  single = -3;
  zoriWTInv_B53_JPEG2K_32s_C1IR(&single, 4, &oddColumn, &low);
  EXPECT_EQ(single, -1);
}

TEST(Wavelet53, BufferSizes) {
  const auto sizes = [](TileRect tile) {
    std::array<int32_t, 4> bytes;
    zoriWTGetBufSize_B53_JPEG2K_16s_C1IR(&tile, &bytes[0]);
    zoriWTGetBufSize_B53_JPEG2K_32s_C1IR(&tile, &bytes[1]);
    zoriWTGetBufSize_B53_JPEG2K_16s_C1R(&tile, &bytes[2]);
    zoriWTGetBufSize_B53_JPEG2K_32s_C1R(&tile, &bytes[3]);
    return bytes;
  };
  EXPECT_EQ(sizes({0, 0, 2, 2}), (std::array<int32_t, 4>{0, 0, 64, 64}));
  EXPECT_EQ(sizes({1, 1, 2, 3}), (std::array<int32_t, 4>{14, 28, 32 * 3 + 14, 32 * 3 + 28}));
  EXPECT_EQ(sizes({0, 0, 17, 3}), (std::array<int32_t, 4>{42, 84, 64 * 3 + 42, 96 * 3 + 84}));
  EXPECT_EQ(sizes({0, 0, -1, 1}), (std::array<int32_t, 4>{10, 20, 10, 20}));  // compared without sign
}

TEST(Wavelet53, RefusesTilesWithoutBuffer) {
  expectRefusesTilesWithoutBuffer(kTile16, 4);
  expectRefusesTilesWithoutBuffer(kTile32, 4);
}

TEST(Wavelet53, ChecksArgumentsInOrder) {
  expectTileArgumentOrder(kTile16);
  expectTileArgumentOrder(kTile32);
  expectBandsArgumentOrder<int16_t>("rows", &zoriWTFwdRow_B53_JPEG2K_16s_C1R, &zoriWTInvRow_B53_JPEG2K_16s_C1R);
  expectBandsArgumentOrder<int32_t>("rows", &zoriWTFwdRow_B53_JPEG2K_32s_C1R, &zoriWTInvRow_B53_JPEG2K_32s_C1R);
  expectBandsArgumentOrder<int16_t>("columns", &zoriWTFwdCol_B53_JPEG2K_16s_C1R, &zoriWTInvCol_B53_JPEG2K_16s_C1R);
  expectBandsArgumentOrder<int32_t>("columns", &zoriWTFwdCol_B53_JPEG2K_32s_C1R, &zoriWTInvCol_B53_JPEG2K_32s_C1R);
}

template <class T>
void expectStepArgumentOrder(ForwardStep<T> forward, InverseStep<T> inverse) {
  const T source[4] = {1, 2, 3, 4};
  T out[2] = {};
  std::vector<StatusCode> order(6, StatusNullPointer);
  order.push_back(StatusBadSize);
  const auto written = [&] { return out[0] != 0 || out[1] != 0; };
  expectArgumentOrder(
      "step", order,
      [&](const Faults& f) {
        return forward(f.pointer(0, &source[0]), f.pointer(1, &source[1]), f.pointer(2, &source[2]),
                       f.pointer(3, &out[0]), f.pointer(4, &source[3]), f.pointer(5, &out[1]), f.value(6, 1, 0));
      },
      written);
  expectArgumentOrder(
      "step", order,
      [&](const Faults& f) {
        return inverse(f.pointer(0, &source[0]), f.pointer(1, &source[1]), f.pointer(2, &source[2]),
                       f.pointer(3, &source[3]), f.pointer(4, &out[0]), f.pointer(5, &out[1]), f.value(6, 1, -1));
      },
      written);
}

TEST(Wavelet53, StepsCheckArgumentsInOrder) {
  expectStepArgumentOrder<int16_t>(&zoriWTFwdColLift_B53_JPEG2K_16s_C1, &zoriWTInvColLift_B53_JPEG2K_16s_C1);
  expectStepArgumentOrder<int32_t>(&zoriWTFwdColLift_B53_JPEG2K_32s_C1, &zoriWTInvColLift_B53_JPEG2K_32s_C1);
}

}  // namespace
}  // namespace zorj::test
