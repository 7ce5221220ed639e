#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace orvane {

// Calls task(i) for every i in [0, count) on at most `threads` threads, the
// calling thread included; each thread takes the next index as it becomes
// free, and all have finished when this returns. With one thread (or one
// index) everything runs on the calling thread, in order.
// REQUIRES: task does not throw; tasks of different indices share no
// mutable state.
template <typename Task>
void parallelFor(std::size_t count, std::size_t threads, const Task& task) {
  threads = std::min(std::max<std::size_t>(threads, 1), count);
  if (threads <= 1) {
    for (std::size_t i = 0; i < count; ++i) task(i);
    return;
  }
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next.fetch_add(1, std::memory_order_relaxed); i < count;
         i = next.fetch_add(1, std::memory_order_relaxed)) {
      task(i);
    }
  };
  std::vector<std::jthread> helpers;
  helpers.reserve(threads - 1);
  for (std::size_t t = 1; t < threads; ++t) helpers.emplace_back(work);
  work();
}

}  // namespace orvane
