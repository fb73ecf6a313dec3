// Lossless prediction and reconstruction against the portable level and a copy of the row, on rows of photographic
// 12-bit samples that stay in the first-level cache.
#include <zorj.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

#include "support/compare.h"

namespace zorj::bench {
namespace {

constexpr int32_t kWidth = 4000;

using Row = std::array<int16_t, kWidth>;

struct Rows {
  alignas(64) Row above, row, differences, out;
};

std::shared_ptr<Rows> photographicRows() {
  auto rows = std::make_shared<Rows>();
  for (size_t x = 0; x < kWidth; ++x) {
    const double position = static_cast<double>(x), brightness = 2000 + 1500 * std::sin(position / 90);
    rows->above[x] = static_cast<int16_t>(brightness + 40 * std::sin(position * position));
    rows->row[x] = static_cast<int16_t>(brightness + 40 * std::cos(position * position));
  }
  return rows;
}

void compareRow(const std::string& name, const std::shared_ptr<Rows>& rows, const std::function<void()>& run) {
  auto variants = atEveryLevel(run);
  variants.push_back({"memcpy", [=] { std::memcpy(rows->out.data(), rows->row.data(), 2 * kWidth); }});
  compare(name, kWidth, "samples", variants);
}

}  // namespace

void registerComparisons() {
  const auto first = photographicRows();
  zoriDiffPredFirstRow_JPEG_16s_C1(first->row.data(), first->differences.data(), kWidth, 12, 0);
  compareRow("First row, differences", first,
             [=] { zoriDiffPredFirstRow_JPEG_16s_C1(first->row.data(), first->out.data(), kWidth, 12, 0); });
  compareRow("First row, samples", first, [=] {
    zoriReconstructPredFirstRow_JPEG_16s_C1(first->differences.data(), first->out.data(), kWidth, 12, 0);
  });
  for (int32_t predictor = 1; predictor <= 7; ++predictor) {
    const auto rows = photographicRows();
    zoriDiffPredRow_JPEG_16s_C1(rows->row.data(), rows->above.data(), rows->differences.data(), kWidth, predictor);
    const std::string name = "Predictor " + std::to_string(predictor);
    compareRow(name + ", differences", rows, [=] {
      zoriDiffPredRow_JPEG_16s_C1(rows->row.data(), rows->above.data(), rows->out.data(), kWidth, predictor);
    });
    compareRow(name + ", samples", rows, [=] {
      zoriReconstructPredRow_JPEG_16s_C1(rows->differences.data(), rows->above.data(), rows->out.data(), kWidth,
                                         predictor);
    });
  }
}

}  // namespace zorj::bench
