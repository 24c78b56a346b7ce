#include "platform/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace iorder {

size_t HardwareThreads() {
  return std::max<size_t>(1, std::thread::hardware_concurrency());
}

void RunParallel(size_t count, size_t jobs, const std::function<void(size_t)>& function) {
  std::atomic<size_t> next = 0;
  std::mutex mutex;
  std::exception_ptr failure;
  const auto work = [&] {
    for (size_t index = next++; index < count; index = next++) {
      try {
        function(index);
      } catch (...) {
        const std::lock_guard lock(mutex);
        if (failure == nullptr) failure = std::current_exception();
        next = count;
      }
    }
  };
  const size_t threads = std::min(jobs, count);
  if (threads <= 1) {
    work();
  } else {
    std::vector<std::jthread> pool;
    pool.reserve(threads);
    for (size_t i = 0; i < threads; ++i) pool.emplace_back(work);
  }
  if (failure != nullptr) std::rethrow_exception(failure);
}

}  // namespace iorder
