#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "core/row_parallel.h"

namespace zorj::test {
namespace {

// The rows each thread was given, in the order it took them.
std::map<std::thread::id, std::vector<int32_t>> rowsByThread(RoiSize size) {
  std::map<std::thread::id, std::vector<int32_t>> rows;
  std::mutex mutex;
  forEachRow(size, [&](int32_t y) {
    const std::lock_guard lock(mutex);
    rows[std::this_thread::get_id()].push_back(y);
  });
  return rows;
}

void expectEveryRowOnceInBands(RoiSize size) {
  std::vector<int> seen(static_cast<size_t>(size.height), 0);
  for (const auto& [thread, rows] : rowsByThread(size)) {
    for (size_t i = 0; i < rows.size(); ++i) {
      ++seen[static_cast<size_t>(rows[i])];
      EXPECT_EQ(rows[i], rows[0] + static_cast<int32_t>(i));
    }
  }
  EXPECT_EQ(seen, std::vector<int>(seen.size(), 1));
}

class RowParallel : public testing::Test {
 protected:
  void SetUp() override { zorSetNumThreads(3); }
  void TearDown() override { zorSetNumThreads(0); }
};

TEST_F(RowParallel, SmallImagesStayInTheCallingThread) {
  for (const RoiSize size : {RoiSize{128, 64}, RoiSize{8192, 1}, RoiSize{1, 8192}, RoiSize{1, 1}}) {
    const auto rows = rowsByThread(size);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows.begin()->first, std::this_thread::get_id());
    expectEveryRowOnceInBands(size);
  }
}

TEST_F(RowParallel, LargeImagesAreCutIntoOneBandAThread) {
  // The last one's product does not fit 32 bits and is negative there.
  for (const RoiSize size : {RoiSize{128, 65}, RoiSize{1, 10000}, RoiSize{INT32_MAX, 3}, RoiSize{1 << 20, 2049}}) {
    EXPECT_EQ(rowsByThread(size).size(), 3u) << size.width << " x " << size.height;
    expectEveryRowOnceInBands(size);
  }
}

TEST_F(RowParallel, WorksInsideAnotherParallelRegion) {
  std::vector<int> counts(4, 0);
#pragma omp parallel for num_threads(2)
  for (int i = 0; i < 4; ++i) {
    std::mutex mutex;
    forEachRow({100, 100}, [&](int32_t) {
      const std::lock_guard lock(mutex);
      ++counts[static_cast<size_t>(i)];
    });
  }
  EXPECT_EQ(counts, std::vector<int>(4, 100));
}

}  // namespace
}  // namespace zorj::test
