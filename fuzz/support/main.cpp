#include <cstdlib>

#include "support/fuzzer.h"
#include "support/isa_levels.h"

namespace zorj::fuzz {

Isa chooseLevel(Input& input) {
  static const std::vector<Isa> levels = test::availableIsas();
  const Isa level = levels[input.byte() % levels.size()];
  g_isa.store(static_cast<uint8_t>(level));
  return level;
}

}  // namespace zorj::fuzz

namespace {

// After GoogleTest's own listener has printed the failure.
class FailureEndsProgram : public testing::EmptyTestEventListener {
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (result.failed()) std::abort();
  }
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  testing::UnitTest::GetInstance()->listeners().Append(new FailureEndsProgram);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zorj::fuzz::Input input({data, size});
  zorj::fuzz::fuzz(input);
  return 0;
}
