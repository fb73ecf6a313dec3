#include <gtest/gtest.h>
#include <zorcore.h>
#include <zorj.h>

#include "core/memory.h"

namespace zorj::test {
namespace {

TEST(Version, RecordHoldsThisRelease) {
  const LibraryVersion* version = zorjGetLibVersion();
  EXPECT_EQ(version, zorjGetLibVersion());
  EXPECT_EQ(version->major, 6);
}

}  // namespace
}  // namespace zorj::test
