#pragma once

#include <unistd.h>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace qelta::test {

#if defined(_WIN32)

// Without forks it must hold in this process.
template <class Check>
bool HoldsInChild(Check check) {
  return check();
}

#else

/// Whether `check` holds in a child of this process, which ends without any destructors.
template <class Check>
bool HoldsInChild(Check check) {
  const pid_t child = fork();
  if (child == 0) {
    bool holds = false;
    try {
      holds = check();
    } catch (...) {
    }
    _exit(holds ? 0 : 1);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

#endif

}  // namespace qelta::test
