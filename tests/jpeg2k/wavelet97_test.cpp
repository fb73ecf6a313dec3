#include "reference/wavelet97.h"

#include <cmath>

#include "jpeg2k/wavelet_cases.h"

namespace zorj::test {
namespace {

template <class T>
using Model = reference::Wavelet97<T>;

constexpr Borders kBorders = {{{4, 3}, {3, 4}}, {{1, 2}, {2, 1}}, {{2, 2}, {2, 2}}};

constexpr TileFunctions<int16_t> kTile16 = {"9/7 16s",
                                            &zoriWTFwd_D97_JPEG2K_16s_C1IR,
                                            &zoriWTInv_D97_JPEG2K_16s_C1IR,
                                            &zoriWTFwd_D97_JPEG2K_16s_C1R,
                                            &zoriWTInv_D97_JPEG2K_16s_C1R,
                                            &zoriWTGetBufSize_D97_JPEG2K_16s_C1IR,
                                            &zoriWTGetBufSize_D97_JPEG2K_16s_C1R};
constexpr TileFunctions<int32_t> kTile32 = {"9/7 32s",
                                            &zoriWTFwd_D97_JPEG2K_32s_C1IR,
                                            &zoriWTInv_D97_JPEG2K_32s_C1IR,
                                            &zoriWTFwd_D97_JPEG2K_32s_C1R,
                                            &zoriWTInv_D97_JPEG2K_32s_C1R,
                                            &zoriWTGetBufSize_D97_JPEG2K_32s_C1IR,
                                            &zoriWTGetBufSize_D97_JPEG2K_32s_C1R};

TEST(Wavelet97, RowsEqualModel) {
  expectBandsEqualModel<Model<int16_t>>("9/7 16s rows", &zoriWTFwdRow_D97_JPEG2K_16s_C1R,
                                        &zoriWTInvRow_D97_JPEG2K_16s_C1R, false, kBorders);
  expectBandsEqualModel<Model<int32_t>>("9/7 32s rows", &zoriWTFwdRow_D97_JPEG2K_32s_C1R,
                                        &zoriWTInvRow_D97_JPEG2K_32s_C1R, false, kBorders);
  expectBandsEqualModel<Model<float>>("9/7 32f rows", &zoriWTFwdRow_D97_JPEG2K_32f_C1R,
                                      &zoriWTInvRow_D97_JPEG2K_32f_C1R, false, kBorders);
}

TEST(Wavelet97, ColumnsEqualModel) {
  expectBandsEqualModel<Model<float>>("9/7 32f columns", &zoriWTFwdCol_D97_JPEG2K_32f_C1R,
                                      &zoriWTInvCol_D97_JPEG2K_32f_C1R, true, kBorders);
}

TEST(Wavelet97, TilesEqualModel) {
  expectTilesEqualModel<Model<int16_t>>(kTile16);
  expectTilesEqualModel<Model<int32_t>>(kTile32);
}

// ---- Steps of columns

template <class T>
using ForwardStep = StatusCode(ZORJ_CALL*)(const T*, const T*, const T*, T*, T*, T*, T*, T*, int32_t);
template <class T>
using InverseStep = StatusCode(ZORJ_CALL*)(const T*, const T*, const T*, T*, T*, T*, T*, const T*, int32_t);
enum StepRow : size_t { kA = 3, kB, kC, kD, kE };

template <class T, class Lifting>
struct StepFunctions {
  using Sample = T;
  using Formulas = Lifting;
  const char* what;
  ForwardStep<T> forward;
  InverseStep<T> inverse;
};

constexpr StepFunctions<int16_t, reference::SaturatingLifting> kStep16 = {
    "9/7 16s step", &zoriWTFwdColLift_D97_JPEG2K_16s_C1, &zoriWTInvColLift_D97_JPEG2K_16s_C1};
constexpr StepFunctions<int32_t, reference::FixedLifting> kStep32 = {
    "9/7 32s step", &zoriWTFwdColLift_D97_JPEG2K_32s_C1, &zoriWTInvColLift_D97_JPEG2K_32s_C1};
constexpr StepFunctions<float, reference::FloatLifting> kStepFloat = {
    "9/7 32f step", &zoriWTFwdColLift_D97_JPEG2K_32f_C1, &zoriWTInvColLift_D97_JPEG2K_32f_C1};

// One sample of each row, by the order of the arguments.
template <class Lifting, class T = typename Lifting::Value>
void forwardStepModel(T (&r)[8]) {
  const T d1 = Lifting::d1(r[1], r[0], r[2]), s1 = Lifting::s1(r[0], r[kD], d1), d2 = Lifting::d2(r[kD], r[kA], s1);
  r[kE] = d1;
  r[kB] = s1;
  r[kD] = d2;
  r[kA] = Lifting::low(r[kA], r[kC], d2);
  r[kC] = Lifting::high(r[kC]);
}
template <class Lifting, class T = typename Lifting::Value>
void inverseStepModel(T (&r)[8]) {
  r[kB] = Lifting::s1OfBands(r[0], r[1], r[2]);
  r[kD] = Lifting::d1OfBands(r[1], r[kA], r[kB]);
  r[kA] = Lifting::even(r[kA], r[kC], r[kD]);
  r[kC] = Lifting::odd(r[kC], r[kE], r[kA]);
}

template <class Functions>
void expectStepsEqualModel(const Functions& functions) {
  using T = typename Functions::Sample;
  using Role = OperandSpec::Role;
  const auto expect = [&](bool forward, int width) {
    const Role roles[8] = {Role::kSource,
                           Role::kSource,
                           Role::kSource,
                           Role::kInPlace,
                           Role::kDestination,
                           Role::kInPlace,
                           forward ? Role::kInPlace : Role::kDestination,
                           forward ? Role::kDestination : Role::kSource};
    std::vector<OperandSpec> specs;
    for (const Role role : roles) specs.push_back(waveletImage<T>(role, width, 1));
    expectEqualsModel(
        std::string(functions.what) + (forward ? " forward" : " inverse") + " of width " + std::to_string(width), specs,
        static_cast<uint64_t>(width), width,
        [&](const Operands& o) {
          const auto row = [&](size_t i) { return o.at<T>(i); };
          EXPECT_EQ(forward ? functions.forward(row(0), row(1), row(2), row(3), row(4), row(5), row(6), row(7), width)
                            : functions.inverse(row(0), row(1), row(2), row(3), row(4), row(5), row(6), row(7), width),
                    StatusOk);
        },
        [&](const Operands& o) {
          for (int i = 0; i < width; ++i) {
            T samples[8];
            for (size_t row = 0; row < 8; ++row) samples[row] = sampleAt<T>(o, row, i, 0);
            forward ? forwardStepModel<typename Functions::Formulas>(samples)
                    : inverseStepModel<typename Functions::Formulas>(samples);
            for (size_t row = 0; row < 8; ++row) {
              if (roles[row] != Role::kSource) storeSample(o, row, i, 0, samples[row]);
            }
          }
        });
  };
  for (int width = 1; width <= 130; ++width) {
    expect(true, width);
    expect(false, width);
  }
}

TEST(Wavelet97, StepsEqualModel) {
  expectStepsEqualModel(kStep16);
  expectStepsEqualModel(kStep32);
  expectStepsEqualModel(kStepFloat);
}

// Steps down one column that goes on above and below, whose rows rotate as documented: they must give the subbands
// that the formulas give. Returns the largest difference of the column that comes back, to hold against the header.
template <class Functions>
double expectStepsMakeColumns(const Functions& functions, int limit) {
  using T = typename Functions::Sample;
  using Column = reference::Wavelet97<T, typename Functions::Formulas>;
  constexpr int kPairs = 2000, kRunIn = 4;
  Random random(3);
  double worst = 0;
  std::array<T, 2 * kPairs + 1> x;
  for (T& sample : x) sample = static_cast<T>(random.between(-limit, limit));
  const At<T> xAt = [&](int c) { return x[static_cast<size_t>(c)]; };
  std::array<T, kPairs> low = {}, high = {};
  const At<T> lowAt = [&](int k) { return low[static_cast<size_t>(k)]; };
  const At<T> highAt = [&](int k) { return high[static_cast<size_t>(k)]; };

  T a{}, b{}, c{}, d{}, e{};
  for (int k = 0; k < kPairs; ++k) {
    const T x0 = xAt(2 * k), x1 = xAt(2 * k + 1), x2 = xAt(2 * k + 2);
    functions.forward(&x0, &x1, &x2, &a, &b, &c, &d, &e, 1);
    if (k >= kRunIn) {
      low[static_cast<size_t>(k - 1)] = a;
      high[static_cast<size_t>(k - 2)] = c;
      EXPECT_EQ(a, Column::low(xAt, k - 1)) << functions.what << ' ' << k;
      EXPECT_EQ(c, Column::high(xAt, k - 2)) << functions.what << ' ' << k;
    }
    a = b;
    c = d;
    d = e;
  }
  a = c = e = T{};
  for (int k = kRunIn; k < kPairs - 2; ++k) {
    const T s = lowAt(k), dBefore = highAt(k - 1), dHere = highAt(k);
    functions.inverse(&s, &dBefore, &dHere, &a, &b, &c, &d, &e, 1);
    if (k >= 2 * kRunIn) {
      EXPECT_EQ(a, Column::even(lowAt, highAt, k - 1)) << functions.what << ' ' << k;
      EXPECT_EQ(c, Column::odd(lowAt, highAt, k - 2)) << functions.what << ' ' << k;
      worst = std::max({worst, std::abs(static_cast<double>(a) - static_cast<double>(xAt(2 * k - 2))),
                        std::abs(static_cast<double>(c) - static_cast<double>(xAt(2 * k - 3)))});
    }
    e = a;
    a = b;
    c = d;
  }
  return worst;
}

TEST(Wavelet97, StepsMakeColumns) {
  EXPECT_LE(expectStepsMakeColumns(kStep16, 6000), 4);
  EXPECT_LE(expectStepsMakeColumns(kStep32, 32767), 5);
  constexpr int kLimit = 1 << 20;
  EXPECT_LE(expectStepsMakeColumns(kStepFloat, kLimit), std::ldexp(kLimit, -21));
}

// A caller may keep d1 where the odd samples were, and one row may be both neighbours.
template <class Functions>
void expectStepsInPlace(const Functions& functions) {
  using T = typename Functions::Sample;
  constexpr size_t kWidth = 77;
  Random random(5);
  std::array<std::array<T, kWidth>, 8> rows;
  for (auto& row : rows) fillForWavelets(row.data(), kWidth, random, 1);
  auto apart = rows, inPlace = rows;
  const auto forward = [&](auto& r, size_t b, size_t e) {
    functions.forward(r[0].data(), r[1].data(), r[0].data(), r[kA].data(), r[b].data(), r[kC].data(), r[kD].data(),
                      r[e].data(), kWidth);
  };
  forward(apart, kB, kE);
  forward(inPlace, 0, 1);
  EXPECT_EQ(inPlace[0], apart[kB]);
  EXPECT_EQ(inPlace[1], apart[kE]);
  for (const size_t row : {kA, kC, kD}) EXPECT_EQ(inPlace[row], apart[row]);

  apart = inPlace = rows;
  const auto inverse = [&](auto& r, size_t b, size_t d) {
    functions.inverse(r[0].data(), r[1].data(), r[1].data(), r[kA].data(), r[b].data(), r[kC].data(), r[d].data(),
                      r[kE].data(), kWidth);
  };
  inverse(apart, kB, kD);
  inverse(inPlace, 0, 1);
  EXPECT_EQ(inPlace[0], apart[kB]);
  EXPECT_EQ(inPlace[1], apart[kD]);
  for (const size_t row : {kA, kC, kE}) EXPECT_EQ(inPlace[row], apart[row]);
}

TEST(Wavelet97, StepsWorkInPlace) {
  expectStepsInPlace(kStep16);
  expectStepsInPlace(kStep32);
  expectStepsInPlace(kStepFloat);
}

// ---- What the models do not show

// What a level and its inverse make of samples: the largest difference and the root of the mean square.
struct Error {
  int worst;
  double rms;
};

template <class T>
Error roundTripError(const TileFunctions<T>& functions, int limit) {
  Random random(9);
  int worst = 0;
  double squares = 0, count = 0;
  for (int round = 0; round < 400; ++round) {
    const TileRect tile = {round & 1, round >> 1 & 1, static_cast<int32_t>(random.between(1, 64)),
                           static_cast<int32_t>(random.between(1, 64))};
    const Buffer buffer(functions.sizeInPlace, tile, Placement::kAtEnd);
    std::vector<T> samples(static_cast<size_t>(tile.width) * static_cast<size_t>(tile.height));
    for (T& sample : samples) sample = static_cast<T>(random.between(-limit, limit));
    auto restored = samples;
    const int32_t step = tile.width * static_cast<int32_t>(sizeof(T));
    functions.forwardInPlace(restored.data(), step, &tile, buffer.data());
    functions.inverseInPlace(restored.data(), step, &tile, buffer.data());
    for (size_t i = 0; i < samples.size(); ++i) {
      const int error = std::abs(restored[i] - samples[i]);
      worst = std::max(worst, error);
      squares += double{1} * error * error;
    }
    count += static_cast<double>(samples.size());
  }
  return {worst, std::sqrt(squares / count)};
}

// The errors are those the header tells of.
TEST(Wavelet97, RoundTripErrors) {
  for (const Error error : {roundTripError(kTile16, 4095), roundTripError(kTile32, 4095)}) {
    EXPECT_LE(error.worst, 9);
    EXPECT_NEAR(error.rms, 1.08, 0.01);
  }
  EXPECT_LE(roundTripError(kTile32, 1 << 24).worst, 1 << 9);
}

TEST(Wavelet97, BufferSizes) {
  const auto sizes = [](TileRect tile) {
    std::array<int32_t, 4> bytes;
    zoriWTGetBufSize_D97_JPEG2K_16s_C1IR(&tile, &bytes[0]);
    zoriWTGetBufSize_D97_JPEG2K_32s_C1IR(&tile, &bytes[1]);
    zoriWTGetBufSize_D97_JPEG2K_16s_C1R(&tile, &bytes[2]);
    zoriWTGetBufSize_D97_JPEG2K_32s_C1R(&tile, &bytes[3]);
    return bytes;
  };
  EXPECT_EQ(sizes({0, 0, 2, 2}), (std::array<int32_t, 4>{0, 0, 64, 64}));
  EXPECT_EQ(sizes({1, 1, 17, 3}), (std::array<int32_t, 4>{50, 100, 64 * 3 + 50, 96 * 3 + 100}));
  EXPECT_EQ(sizes({0, 0, 1, -1}), (std::array<int32_t, 4>{18, 36, 18 - 32, 36 - 32}));  // compared without sign
}

TEST(Wavelet97, RefusesTilesWithoutBuffer) {
  expectRefusesTilesWithoutBuffer(kTile16, 8);
  expectRefusesTilesWithoutBuffer(kTile32, 8);
}

TEST(Wavelet97, ChecksArgumentsInOrder) {
  expectTileArgumentOrder(kTile16);
  expectTileArgumentOrder(kTile32);
  expectBandsArgumentOrder<int16_t>("rows", &zoriWTFwdRow_D97_JPEG2K_16s_C1R, &zoriWTInvRow_D97_JPEG2K_16s_C1R);
  expectBandsArgumentOrder<int32_t>("rows", &zoriWTFwdRow_D97_JPEG2K_32s_C1R, &zoriWTInvRow_D97_JPEG2K_32s_C1R);
  expectBandsArgumentOrder<float>("rows", &zoriWTFwdRow_D97_JPEG2K_32f_C1R, &zoriWTInvRow_D97_JPEG2K_32f_C1R);
  expectBandsArgumentOrder<float>("columns", &zoriWTFwdCol_D97_JPEG2K_32f_C1R, &zoriWTInvCol_D97_JPEG2K_32f_C1R);
}

template <class Functions>
void expectStepArgumentOrder(const Functions& functions) {
  using T = typename Functions::Sample;
  const std::array<T, 8> source = {1, 2, 3, 4, 5, 6, 7, 8};
  std::array<T, 8> rows = source;
  std::vector<StatusCode> order(8, StatusNullPointer);
  order.push_back(StatusBadSize);
  const auto written = [&] { return rows != source; };
  const auto check = [&](const auto& function) {
    expectArgumentOrder(
        functions.what, order,
        [&](const Faults& f) {
          const auto row = [&](size_t i) { return f.pointer(i, &rows[i]); };
          return function(row(0), row(1), row(2), row(3), row(4), row(5), row(6), row(7), f.value(8, 1, 0));
        },
        written);
  };
  check(functions.forward);
  check(functions.inverse);
}

TEST(Wavelet97, StepsCheckArgumentsInOrder) {
  expectStepArgumentOrder(kStep16);
  expectStepArgumentOrder(kStep32);
  expectStepArgumentOrder(kStepFloat);
}

}  // namespace
}  // namespace zorj::test
