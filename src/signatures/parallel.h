#pragma once

#include <cstddef>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace quarnel {

// Runs work(0) to work(count - 1), the first on the caller's thread and the others on threads of
// their own, or one after the other where the system gives none. Returns when all have ended; what
// the first of them raised goes on to the caller.
template <typename Work>
void RunParallel(size_t count, Work&& work) {
  std::vector<std::exception_ptr> errors(count);
  const auto run = [&](size_t i) {
    try {
      work(i);
    } catch (...) {
      errors[i] = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> threads;
    for (size_t i = 1; i < count; ++i) {
      try {
        threads.emplace_back(run, i);
      } catch (const std::system_error&) {
        run(i);
      }
    }
    run(0);
  }
  for (const std::exception_ptr& error : errors) {
    if (error) std::rethrow_exception(error);
  }
}

}  // namespace quarnel
