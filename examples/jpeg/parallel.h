// Work on several threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <future>
#include <vector>

namespace examples::jpeg {

// Calls task(0) to task(count - 1) at the same time, and waits for all of them. Throws what one of them throws.
template <class Task>
void inParallel(int32_t count, const Task& task) {
  std::vector<std::future<void>> others;
  others.reserve(static_cast<size_t>(count - 1));  // nothing may fail between a task's start and that of task(0)
  for (int32_t i = 1; i < count; ++i) others.push_back(std::async(std::launch::async, [&task, i] { task(i); }));
  task(0);
  for (std::future<void>& other : others) other.get();
}

// The first row, or the end, of each of `parts` strips of `rows` rows.
inline int32_t stripStart(int32_t rows, int32_t parts, int32_t part) {
  return static_cast<int32_t>(int64_t{rows} * part / parts);
}

}  // namespace examples::jpeg
