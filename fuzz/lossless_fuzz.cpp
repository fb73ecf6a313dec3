// Prediction and reconstruction of rows: each the other's reverse, and in memory that overlaps where it may.
#include <zorj.h>

#include "reference/lossless.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

int load(const uint8_t* row, size_t i) {
  int16_t sample;
  std::memcpy(&sample, row + 2 * i, sizeof sample);
  return sample;
}
void store(uint8_t* row, size_t i, int value) {
  const auto sample = static_cast<int16_t>(static_cast<uint16_t>(value));
  std::memcpy(row + 2 * i, &sample, sizeof sample);
}
int16_t* samples(uint8_t* row) { return reinterpret_cast<int16_t*>(row); }

void firstRow(Input& input) {
  const int precision = input.between(2, 16), pointTransform = input.between(0, 40);
  const bool odd = input.coin();
  const size_t width = input.rest().size() / 2;
  if (width == 0) return;
  const Exact<uint8_t> row(input.take(2 * width), odd), differences(2 * width, !odd), again(2 * width);
  Bytes expected(2 * width);
  for (size_t i = 0; i < width; ++i) {
    const int predicted = i == 0 ? reference::firstPrediction(precision, pointTransform) : load(row.data(), i - 1);
    store(expected.data(), i, load(row.data(), i) - predicted);
  }
  const int32_t count = static_cast<int32_t>(width);
  EXPECT_EQ(zoriDiffPredFirstRow_JPEG_16s_C1(samples(row.data()), samples(differences.data()), count, precision,
                                             pointTransform),
            StatusOk);
  EXPECT_EQ(differences.values(), expected);
  EXPECT_EQ(zoriReconstructPredFirstRow_JPEG_16s_C1(samples(differences.data()), samples(again.data()), count,
                                                    precision, pointTransform),
            StatusOk);
  EXPECT_EQ(again.values(), row.values());
}

void otherRow(Input& input) {
  const int predictor = input.between(1, 7);
  const bool odd = input.coin();
  const size_t width = input.rest().size() / 4;
  if (width == 0) return;
  const Exact<uint8_t> row(input.take(2 * width), odd), above(input.take(2 * width), !odd);
  const Exact<uint8_t> differences(2 * width, input.coin()), again(2 * width);
  Bytes expected(2 * width);
  for (size_t i = 0; i < width; ++i) {
    const int predicted = i == 0 ? load(above.data(), 0)
                                 : reference::prediction(predictor, load(row.data(), i - 1), load(above.data(), i),
                                                         load(above.data(), i - 1));
    store(expected.data(), i, load(row.data(), i) - predicted);
  }
  const int32_t count = static_cast<int32_t>(width);
  EXPECT_EQ(zoriDiffPredRow_JPEG_16s_C1(samples(row.data()), samples(above.data()), samples(differences.data()), count,
                                        predictor),
            StatusOk);
  EXPECT_EQ(differences.values(), expected);
  EXPECT_EQ(zoriReconstructPredRow_JPEG_16s_C1(samples(differences.data()), samples(above.data()),
                                               samples(again.data()), count, predictor),
            StatusOk);
  EXPECT_EQ(again.values(), row.values());
}

// Predictors 2 and 3 promise to go from the left, sample by sample, wherever the rows lie.
void overlappingRows(Input& input) {
  const int predictor = input.between(2, 3);
  const bool reconstruct = input.coin();
  size_t offsets[3];
  for (size_t& offset : offsets) offset = static_cast<size_t>(input.between(0, 140));
  const size_t width = static_cast<size_t>(input.between(1, 140));
  const Exact<uint8_t> memory(*std::max_element(offsets, offsets + 3) + 2 * width);
  input.fill(memory.data(), memory.size());
  Bytes expected = memory.values();
  uint8_t *const row = expected.data() + offsets[0], *const above = expected.data() + offsets[1];
  for (size_t i = 0; i < width; ++i) {
    const int predicted = load(above, i - (predictor == 3 && i > 0 ? 1 : 0));
    store(expected.data() + offsets[2], i, load(row, i) + (reconstruct ? predicted : -predicted));
  }
  const auto call = reconstruct ? &zoriReconstructPredRow_JPEG_16s_C1 : &zoriDiffPredRow_JPEG_16s_C1;
  EXPECT_EQ(call(samples(memory.data() + offsets[0]), samples(memory.data() + offsets[1]),
                 samples(memory.data() + offsets[2]), static_cast<int32_t>(width), predictor),
            StatusOk);
  EXPECT_EQ(memory.values(), expected);
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  switch (input.byte() % 3) {
    case 0:
      return firstRow(input);
    case 1:
      return otherRow(input);
    default:
      return overlappingRows(input);
  }
}

}  // namespace zorj::fuzz
