#pragma once

#include <cstddef>
#include <functional>

namespace iorder {

/// How many threads the machine runs at once; at least 1.
size_t HardwareThreads();

/// Calls `function` with 0 to `count` - 1, each once, in ascending order of their beginnings, up to `jobs`
/// (at least 1) at a time on threads of their own; with one job on the calling thread. Returns when all have
/// ended. After an exception no further call begins; the first one raised is raised again.
void RunParallel(size_t count, size_t jobs, const std::function<void(size_t)>& function);

}  // namespace iorder
