// Comparisons with memcpy of the bytes a function touches: the limit of what it could reach.
#pragma once

#include <cstring>
#include <memory>

#include "support/compare.h"

namespace zorj::bench {

// The bytes of a source and a destination, and a copy that touches as many.
class Buffers {
 public:
  Buffers(size_t srcBytes, size_t dstBytes)
      : src_(srcBytes, 100), dst_(dstBytes), copied_((srcBytes + dstBytes) / 2, 1), copy_(copied_.size()) {}

  const uint8_t* src() const { return src_.data(); }
  uint8_t* dst() { return dst_.data(); }
  double bytesTouched() const { return static_cast<double>(src_.size() + dst_.size()); }
  void copy() { std::memcpy(copy_.data(), copied_.data(), copied_.size()); }

 private:
  std::vector<uint8_t> src_, dst_, copied_, copy_;
};

inline void compareWithCopy(const std::string& row, const std::shared_ptr<Buffers>& buffers,
                            const std::function<void()>& run) {
  compare(
      row, buffers->bytesTouched(), "bytes",
      {{"AVX2", run, Isa::kAvx2}, {"AVX-512", run, Isa::kAvx512}, {"portable", run, Isa::kPortable}, {"memcpy", [=] {
                                                                                                        buffers->copy();
                                                                                                      }}});
}

}  // namespace zorj::bench
