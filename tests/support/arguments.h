// The driver for argument checks.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "zorj/types.h"

namespace zorj::test {

// Which of a function's checks a call is made to fail; check i is the i-th in the documented order.
class Faults {
 public:
  explicit Faults(uint32_t mask) : mask_(mask) {}
  bool operator[](size_t check) const { return (mask_ >> check & 1) != 0; }
  // The argument, or null where `check` is to fail.
  template <class T>
  T* pointer(size_t check, T* valid) const {
    return (*this)[check] ? nullptr : valid;
  }
  // The argument, or a value that fails `check`.
  template <class T>
  T value(size_t check, T valid, T bad) const {
    return (*this)[check] ? bad : valid;
  }

 private:
  uint32_t mask_;
};

// Makes every combination of failing checks and expects the status of the first of them. `order` holds the status of
// each check in the documented order; call(faults) makes the call; written() tells whether an output has changed.
template <class Call, class Written>
void expectArgumentOrder(const std::string& what, const std::vector<StatusCode>& order, const Call& call,
                         const Written& written) {
  for (uint32_t mask = 1; mask < uint32_t{1} << order.size(); ++mask) {
    const Faults faults(mask);
    size_t first = 0;
    while (!faults[first]) ++first;
    EXPECT_EQ(call(faults), order[first]) << what << ", checks failing: bit mask " << mask;
    EXPECT_FALSE(written()) << what << " wrote although check " << first << " failed";
  }
}

}  // namespace zorj::test
