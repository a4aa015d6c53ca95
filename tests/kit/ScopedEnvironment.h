#pragma once

#include <cstdlib>
#include <string>

namespace qelta::test {

/// While one exists, the environment variable has this value; a null value means unset. An empty
/// value unsets it on Windows, which knows no empty variables.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const char* value) : m_Name(name) {
    if (const char* const former = std::getenv(name)) {
      m_WasSet = true;
      m_Former = former;
    }
    Set(value);
  }
  ~ScopedEnvironment() { Set(m_WasSet ? m_Former.c_str() : nullptr); }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  void Set(const char* value) const {
#ifdef _WIN32
    _putenv_s(m_Name.c_str(), value == nullptr ? "" : value);
#else
    if (value == nullptr) {
      unsetenv(m_Name.c_str());
    } else {
      setenv(m_Name.c_str(), value, 1);
    }
#endif
  }

  std::string m_Name;
  std::string m_Former;
  bool m_WasSet = false;
};

}  // namespace qelta::test
