#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace qelta::test {

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

}  // namespace qelta::test
