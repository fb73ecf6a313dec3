// Work on several threads.
#pragma once

#include <omp.h>

#include <atomic>
#include <cstdint>
#include <exception>

namespace examples::jpeg2k {

// Calls task(index, thread) for all indexes from 0 to count - 1, in any order, where threads are numbered from 0.
// Throws what one of the calls throws, and begins no more of them then.
template <class Task>
void inParallel(int64_t count, int32_t threads, const Task& task) {
  if (threads <= 1 || count <= 1) {
    for (int64_t i = 0; i < count; ++i) task(i, 0);
    return;
  }
  std::exception_ptr thrown;
  std::atomic<bool> failed{false};
#pragma omp parallel for schedule(dynamic) num_threads(threads)
  for (int64_t i = 0; i < count; ++i) {
    if (failed.load(std::memory_order_relaxed)) continue;
    try {
      task(i, omp_get_thread_num());
    } catch (...) {
      failed = true;
#pragma omp critical(examples_jpeg2k_parallel)
      thrown = std::current_exception();
    }
  }
  if (thrown) std::rethrow_exception(thrown);
}

}  // namespace examples::jpeg2k
