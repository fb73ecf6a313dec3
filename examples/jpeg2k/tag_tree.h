// Tag trees (T.800 B.10.2): a rectangle of numbers, told bit by bit as far as they are below a threshold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace examples::jpeg2k {

class TagTree {
 public:
  // The largest value: a leaf that has it is never told.
  static constexpr int32_t kUnknown = INT32_MAX;

  TagTree(int32_t wide, int32_t high);

  int32_t leaves() const { return leaves_; }
  // Of a leaf, numbered in rows. When reading: as far as it is known.
  int32_t value(int32_t leaf) const { return nodes_[static_cast<size_t>(leaf)].value; }

  // Before writing: every leaf's value, then what follows for the nodes above.
  void setValue(int32_t leaf, int32_t value) { nodes_[static_cast<size_t>(leaf)].value = value; }
  void finishValues();

  // Tells whether the value of a leaf is below the threshold, and what it is then: `writeBit(bool)`.
  template <class WriteBit>
  void write(int32_t leaf, int32_t threshold, WriteBit&& writeBit);
  // The same, read: whether it is below, and then value() is known. `readBit()` gives a bit.
  template <class ReadBit>
  bool read(int32_t leaf, int32_t threshold, ReadBit&& readBit);

 private:
  static constexpr int32_t kNone = -1;
  struct Node {
    int32_t parent = kNone;
    int32_t low = 0;  // what the bits up to now say of the value: it is not less
    int32_t value = kUnknown;
    bool known = false;
  };

  // Calls visit(node) from the root down to the leaf, with node.low raised to what the node above says.
  template <class Visit>
  void descend(int32_t leaf, Visit&& visit);

  int32_t leaves_;
  std::vector<Node> nodes_;  // level by level from the leaves
};

inline TagTree::TagTree(int32_t wide, int32_t high) : leaves_(wide * high) {
  size_t count = 0;
  for (int32_t w = wide, h = high;; w = (w + 1) / 2, h = (h + 1) / 2) {
    count += static_cast<size_t>(w) * static_cast<size_t>(h);
    if (w * h <= 1) break;
  }
  nodes_.resize(count);
  size_t node = 0;
  for (int32_t w = wide, h = high, above = w * h; w * h > 1; w = (w + 1) / 2, h = (h + 1) / 2, above += w * h) {
    for (int32_t y = 0; y < h; ++y) {
      for (int32_t x = 0; x < w; ++x) nodes_[node++].parent = above + y / 2 * ((w + 1) / 2) + x / 2;
    }
  }
}

inline void TagTree::finishValues() {
  for (size_t i = static_cast<size_t>(leaves_); i < nodes_.size(); ++i) nodes_[i].value = kUnknown;
  for (const Node& node : nodes_) {
    if (node.parent == kNone) continue;
    Node& parent = nodes_[static_cast<size_t>(node.parent)];
    parent.value = std::min(parent.value, node.value);
  }
}

template <class Visit>
void TagTree::descend(int32_t leaf, Visit&& visit) {
  int32_t path[32];
  int32_t length = 0;
  for (int32_t node = leaf; node != kNone; node = nodes_[static_cast<size_t>(node)].parent) path[length++] = node;
  int32_t low = 0;
  while (length > 0) {
    Node& node = nodes_[static_cast<size_t>(path[--length])];
    node.low = std::max(node.low, low);
    visit(node);
    low = node.low;
  }
}

template <class WriteBit>
void TagTree::write(int32_t leaf, int32_t threshold, WriteBit&& writeBit) {
  descend(leaf, [&](Node& node) {
    for (; node.low < threshold && !node.known; ++node.low) {
      if (node.value > node.low) {
        writeBit(false);
      } else {
        writeBit(true);
        node.known = true;
        break;
      }
    }
  });
}

template <class ReadBit>
bool TagTree::read(int32_t leaf, int32_t threshold, ReadBit&& readBit) {
  descend(leaf, [&](Node& node) {
    while (node.low < threshold && !node.known) {
      if (readBit()) {
        node.value = node.low;
        node.known = true;
      } else {
        ++node.low;
      }
    }
  });
  const Node& node = nodes_[static_cast<size_t>(leaf)];
  return node.known && node.value < threshold;
}

}  // namespace examples::jpeg2k
