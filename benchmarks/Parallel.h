#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

/// Calls `work(index)` for each index below `count` on that many threads, in no certain order. The first
/// exception ends the calls that haven't begun and is raised again here.
template <typename Work>
void RunParallel(std::size_t count, unsigned threadCount, const Work& work) {
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::atomic_flag failed;
  {
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < std::max(1U, threadCount); ++i) {
      threads.emplace_back([&] {
        try {
          for (std::size_t index = next++; index < count; index = next++) work(index);
        } catch (...) {
          if (!failed.test_and_set()) failure = std::current_exception();
          next = count;
        }
      });
    }
  }
  if (failure) std::rethrow_exception(failure);
}
