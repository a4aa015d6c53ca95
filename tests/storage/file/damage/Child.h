#pragma once

#include <unistd.h>

#if !defined(_WIN32)
#include <sys/wait.h>

#include <csignal>
#endif

namespace qelta::test {

#if defined(_WIN32)

// Cases that need a fork are compiled, and left out.
class Child {
 public:
  template <class Check>
  explicit Child(Check) {}
  bool AwaitSignal() const { return false; }
  void Kill() {}
  bool EndsWell() { return false; }
};
inline bool WaitForEver() { return false; }
inline bool BecomeNobody() { return false; }

#else

/// A forked process beside this one, which ends without any destructors.
class Child {
 public:
  /// `check(signal)` runs in the child and says whether all is well.
  template <class Check>
  explicit Child(Check check) {
    if (pipe(m_Pipe) != 0) return;
    m_Id = fork();
    if (m_Id == 0) {
      bool holds = false;
      try {
        holds = check([this] { return write(m_Pipe[1], "", 1) == 1; });
      } catch (...) {
      }
      _exit(holds ? 0 : 1);
    }
    close(m_Pipe[1]);
  }
  ~Child() {
    if (m_Id > 0) End(SIGKILL);
    close(m_Pipe[0]);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Waits until it calls `signal`; false when it ends before.
  bool AwaitSignal() const {
    char byte = 0;
    return read(m_Pipe[0], &byte, 1) == 1;
  }
  void Kill() { End(SIGKILL); }
  bool EndsWell() { return End(0); }

 private:
  bool End(int signal) {
    int status = 1;
    kill(m_Id, signal);
    waitpid(m_Id, &status, 0);
    m_Id = -1;
    return status == 0;
  }

  int m_Pipe[2] = {-1, -1};
  pid_t m_Id = -1;
};

/// Until this process is killed.
inline bool WaitForEver() { return pause() == 0; }

/// Gives up the rights of the administrator.
inline bool BecomeNobody() { return geteuid() != 0 || (setgid(65534) == 0 && setuid(65534) == 0); }

#endif

}  // namespace qelta::test
