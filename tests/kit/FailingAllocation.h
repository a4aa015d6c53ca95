#pragma once

#include <cstddef>

namespace qelta::test {

/// While one exists, allocation number `n` (counted from 0) of this thread and all later ones fail
/// with std::bad_alloc. Needs FailingAllocation.cpp among the sources of the test program.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t n);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// True once an allocation was refused.
  bool HasFailed() const;
};

/// Runs `action` with its 0th, 1st, 2nd ... allocation failing, until it gets by without one, and
/// calls `check` after each failed attempt. Returns the number of failed attempts.
template <class Action, class Check>
std::size_t ForEachFailingAllocation(Action action, Check check) {
  for (std::size_t n = 0;; ++n) {
    bool failed = false;
    {
      const FailingAllocation failing(n);
      try {
        action();
      } catch (...) {
      }
      failed = failing.HasFailed();
    }
    if (!failed) return n;
    check();
  }
}

}  // namespace qelta::test
