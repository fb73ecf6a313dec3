#include "support/operands.h"

#include <gtest/gtest.h>

#include "support/isa_levels.h"

namespace zorj::test {

Operands::Operands(const std::vector<OperandSpec>& specs, const Layout& layout, uint64_t seed, int round) {
  constexpr int kCanary = 0xA5;
  Random random(seed);
  for (const OperandSpec& spec : specs) {
    const size_t rowBytes = spec.sampleSize * static_cast<size_t>(spec.width);
    const size_t step = rowBytes + static_cast<size_t>(spec.stepped ? layout.padding : 0);
    const size_t rows = static_cast<size_t>(spec.height);
    auto memory = std::make_unique<GuardedMemory>(step * (rows - 1) + rowBytes, layout.placement);
    std::memset(memory->data(), kCanary, memory->size());
    if (spec.role != OperandSpec::Role::kDestination) {
      for (size_t y = 0; y < rows; ++y) spec.fillRow(memory->data() + y * step, random, round);
    }
    memory_.push_back(std::move(memory));
    steps_.push_back(static_cast<int32_t>(step));
  }
}

int Operands::firstDifference(const Operands& other) const {
  for (size_t i = 0; i < memory_.size(); ++i) {
    if (std::memcmp(memory_[i]->data(), other.memory_[i]->data(), memory_[i]->size()) != 0) return static_cast<int>(i);
  }
  return -1;
}

void expectEqualsModel(const std::string& what, const std::vector<OperandSpec>& specs, uint64_t seed, int round,
                       const Call& subject, const Call& model) {
  for (const Layout& layout : kLayouts) {
    const Operands expected(specs, layout, seed, round);
    model(expected);
    forEachIsa([&](Isa isa) {
      const Operands actual(specs, layout, seed, round);
      subject(actual);
      const int operand = actual.firstDifference(expected);
      EXPECT_EQ(operand, -1) << what << " differs from its model in argument " << operand << " at " << isaName(isa)
                             << ", " << layout.name << ", seed " << seed << ", data kind " << round % kFillKinds;
    });
  }
}

}  // namespace zorj::test
