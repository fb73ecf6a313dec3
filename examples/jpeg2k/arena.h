// Memory for many small arrays that live as long as the arena.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace examples::jpeg2k {

template <class T>
class Arena {
 public:
  std::span<T> copy(std::span<const T> values) {
    if (values.size() > room_) {
      const size_t size = std::max(values.size(), kChunk);
      chunks_.push_back(std::make_unique_for_overwrite<T[]>(size));
      next_ = chunks_.back().get();
      room_ = size;
    }
    const std::span<T> place(next_, values.size());
    std::copy(values.begin(), values.end(), place.begin());
    next_ += values.size();
    room_ -= values.size();
    return place;
  }

 private:
  static constexpr size_t kChunk = (size_t{1} << 20) / sizeof(T);

  std::vector<std::unique_ptr<T[]>> chunks_;
  T* next_ = nullptr;
  size_t room_ = 0;
};

}  // namespace examples::jpeg2k
