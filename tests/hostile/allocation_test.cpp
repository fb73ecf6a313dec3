// Fails each allocation of the library in turn.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "hostile/scene.h"

namespace zorj::test {
namespace {

// Makes the n-th allocation of a valid call fail.
void expectFailure(const Export& function, Scene& scene, Arena& arena, int failing) {
  const std::string what = function.name + " without allocation " + std::to_string(failing);
  scene.restore();
  const Arena::Contents before = arena.contents();
  arena.failAllocation(failing);
  const int status = scene.call();
  arena.failAllocation(-1);
  EXPECT_EQ(arena.liveAllocations(), 0) << what;
  if (function.has("Huffman")) {
    EXPECT_EQ(status, StatusNullPointer) << what;
    EXPECT_EQ(arena.changed(before, Arena::Bytes::kAll), "") << what;
  } else {
    EXPECT_EQ(status, StatusNoMemory) << what;
    void* created = nullptr;
    std::memcpy(&created, pointerOf<void>(scene.get(scene.place("ppState"))), sizeof created);
    EXPECT_EQ(created, nullptr) << what;
  }
}

TEST(Allocation, EachOfEveryExportMayFail) {
  for (const Export& function : exports()) {
    Arena arena;
    Scene scene(function, {20, 12}, arena);
    scene.restore();
    ASSERT_EQ(scene.call(), StatusOk) << function.name;
    const int count = arena.allocations();
    const bool creates = std::any_of(function.parameters.begin(), function.parameters.end(),
                                     [](const Parameter& parameter) { return parameter.kind == Kind::kCreated; });
    EXPECT_EQ(count > 0, creates) << function.name << ": only what creates an object allocates";
    for (int failing = 0; failing < count; ++failing) expectFailure(function, scene, arena, failing);
  }
}

}  // namespace
}  // namespace zorj::test
