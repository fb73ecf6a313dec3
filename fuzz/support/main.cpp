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

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  testing::GTEST_FLAG(break_on_failure) = true;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zorj::fuzz::Input input({data, size});
  zorj::fuzz::fuzz(input);
  return 0;
}
