// In which layer each code-block of a precinct is included first, as packets tell it by a tag tree (T.800 B.10.2,
// B.10.4). Takes time for the bits that are there, however many blocks they leave open.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace examples::jpeg2k {

class InclusionTree {
 public:
  InclusionTree(int32_t wide, int32_t high) : wide_(wide), high_(high) {
    if (wide * high == 0) return;
    const auto last = static_cast<uint32_t>(std::max(wide, high) - 1);
    parts_.push_back({0, static_cast<int32_t>(std::bit_width(last)), 0});
  }

  // Reads which blocks a packet of a layer may have. Calls readBlock(block, isNew), in the order of the blocks, for
  // each that this packet includes first or one before has; what it reads stands between the bits of the tree. False if
  // the bits end or readBlock() returns false.
  template <class Bits, class ReadBlock>
  bool read(int32_t layer, Bits& bits, const ReadBlock& readBlock);

 private:
  static constexpr int32_t kIncluded = -1;
  // A block that is included, or all blocks below a node of the tree that is not known yet, but whose parent is.
  struct Part {
    int32_t block;  // the top left one
    int32_t level;  // of the node: 0 is a leaf
    int32_t layer;  // no block is included in one before
  };
  static bool isBehind(const Part& a, const Part& b) { return a.block > b.block; }

  // Goes down to the top left one of the nodes below; the others are added to the heap of parts that follow.
  void divide(Part& part, std::vector<Part>& others) const;

  int32_t wide_;
  int32_t high_;
  std::vector<Part> parts_;  // of all blocks, in their order
};

inline void InclusionTree::divide(Part& part, std::vector<Part>& others) const {
  if (--part.level == kIncluded) return;
  const int32_t half = 1 << part.level;
  const bool right = part.block % wide_ + half < wide_, below = part.block / wide_ + half < high_;
  const auto add = [&](int32_t block) {
    others.push_back({block, part.level, part.layer});
    std::push_heap(others.begin(), others.end(), isBehind);
  };
  if (right) add(part.block + half);
  if (below) add(part.block + half * wide_);
  if (right && below) add(part.block + half * wide_ + half);
}

template <class Bits, class ReadBlock>
bool InclusionTree::read(int32_t layer, Bits& bits, const ReadBlock& readBlock) {
  std::vector<Part> after, divided;
  after.reserve(parts_.size());
  for (size_t next = 0; next < parts_.size() || !divided.empty();) {
    Part part;
    if (divided.empty() || (next < parts_.size() && isBehind(divided.front(), parts_[next]))) {
      part = parts_[next++];
    } else {
      std::pop_heap(divided.begin(), divided.end(), isBehind);
      part = divided.back();
      divided.pop_back();
    }
    const bool isNew = part.level != kIncluded;
    while (part.level != kIncluded && part.layer <= layer && !bits.ended()) {
      if (bits.bit() != 0) {
        divide(part, divided);
      } else {
        ++part.layer;
      }
    }
    if (bits.ended() || (part.level == kIncluded && !readBlock(part.block, isNew))) return false;
    after.push_back(part);
  }
  parts_ = std::move(after);
  return true;
}

}  // namespace examples::jpeg2k
