// Compares a function with its model on operands that lie in guarded memory, at every instruction-set level.
// The row and block drivers (rows.h, blocks.h) say on which sizes and data.
#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/guarded_memory.h"
#include "support/random.h"

namespace zorj::test {

// A function's pointer argument: a region of samples that is read, written, or both.
struct OperandSpec {
  enum class Role { kSource, kDestination, kInPlace } role;
  size_t sampleSize;
  int width;     // samples a row
  int height;    // rows
  bool stepped;  // false: rows follow one another without a gap, as in a coefficient block
  std::function<void(uint8_t* row, Random&, int round)> fillRow;
};

namespace detail {
template <class T>
OperandSpec operandSpec(OperandSpec::Role role, int width, int height, bool stepped) {
  const auto fill = [width](uint8_t* row, Random& random, int round) {
    std::vector<T> samples(static_cast<size_t>(width));
    if constexpr (std::is_integral_v<T>) fillSamples(samples.data(), samples.size(), random, round);
    std::memcpy(row, samples.data(), samples.size() * sizeof(T));
  };
  return {role, sizeof(T), width, height, stepped, fill};
}
}  // namespace detail

template <class T>
OperandSpec sourceImage(int width, int height) {
  return detail::operandSpec<T>(OperandSpec::Role::kSource, width, height, true);
}
template <class T>
OperandSpec destinationImage(int width, int height) {
  return detail::operandSpec<T>(OperandSpec::Role::kDestination, width, height, true);
}
template <class T>
OperandSpec sourceArray(int count) {
  return detail::operandSpec<T>(OperandSpec::Role::kSource, count, 1, false);
}
template <class T>
OperandSpec destinationArray(int count) {
  return detail::operandSpec<T>(OperandSpec::Role::kDestination, count, 1, false);
}
template <class T>
OperandSpec inPlaceArray(int count) {
  return detail::operandSpec<T>(OperandSpec::Role::kInPlace, count, 1, false);
}
// Gives an array operand values of its own: fill(values, count, random, round).
template <class T, class Fill>
OperandSpec filledWith(OperandSpec spec, Fill fill) {
  const auto width = static_cast<size_t>(spec.width);
  spec.fillRow = [width, fill](uint8_t* row, Random& random, int round) {
    std::vector<T> samples(width);
    fill(samples.data(), samples.size(), random, round);
    std::memcpy(row, samples.data(), width * sizeof(T));
  };
  return spec;
}

// How operands lie in memory.
struct Layout {
  Placement placement;
  int padding;  // bytes between the end of a row and the start of the next, filled with a canary
  const char* name;
};

inline constexpr Layout kLayouts[] = {
    {Placement::kAtEnd, 0, "dense, before a guard page"},
    {Placement::kAtStart, 0, "dense, aligned, after a guard page"},
    {Placement::kAtEnd, 13, "odd step, before a guard page"},
    {Placement::kAtStart, 32, "padded, after a guard page"},
};

// The operands of one call.
class Operands {
 public:
  Operands(const std::vector<OperandSpec>& specs, const Layout& layout, uint64_t seed, int round);

  // May be misaligned for T, as every sample address may.
  template <class T>
  T* at(size_t operand) const {
    return reinterpret_cast<T*>(memory_[operand]->data());
  }
  int32_t step(size_t operand) const { return steps_[operand]; }

  // The number of the first operand that differs from `other` in any byte, padding included, or -1.
  int firstDifference(const Operands& other) const;

 private:
  std::vector<std::unique_ptr<GuardedMemory>> memory_;
  std::vector<int32_t> steps_;
};

using Call = std::function<void(const Operands&)>;

// Calls `subject` at every level and `model` once on the same data in every layout; all bytes must agree.
void expectEqualsModel(const std::string& what, const std::vector<OperandSpec>& specs, uint64_t seed, int round,
                       const Call& subject, const Call& model);

}  // namespace zorj::test
