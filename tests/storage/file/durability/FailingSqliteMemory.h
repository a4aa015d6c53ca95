#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>

namespace qelta::test {

/// While one exists, allocation number `n` (counted from 0) of SQLite fails; later ones succeed.
/// No connection may be open when the first one is made.
class FailingSqliteMemory {
 public:
  explicit FailingSqliteMemory(std::size_t n) {
    static const bool s_IsInstalled = Install();
    s_HasFailed = !s_IsInstalled;
    s_Remaining = n;
  }
  ~FailingSqliteMemory() { s_Remaining = SIZE_MAX; }
  FailingSqliteMemory(const FailingSqliteMemory&) = delete;
  FailingSqliteMemory& operator=(const FailingSqliteMemory&) = delete;

  bool HasFailed() const { return s_HasFailed; }

 private:
  static bool Install() {
    sqlite3_shutdown();
    sqlite3_mem_methods methods{};
    bool done = sqlite3_config(SQLITE_CONFIG_GETMALLOC, &s_Real) == SQLITE_OK;
    methods = s_Real;
    methods.xMalloc = [](int size) { return IsNext() ? nullptr : s_Real.xMalloc(size); };
    methods.xRealloc = [](void* memory, int size) {
      return IsNext() ? nullptr : s_Real.xRealloc(memory, size);
    };
    done = done && sqlite3_config(SQLITE_CONFIG_MALLOC, &methods) == SQLITE_OK;
    return sqlite3_initialize() == SQLITE_OK && done;
  }

  static bool IsNext() {
    if (s_Remaining == SIZE_MAX) return false;
    if (s_Remaining-- > 0) return false;
    s_HasFailed = true;
    return true;
  }

  inline static sqlite3_mem_methods s_Real{};
  inline static std::size_t s_Remaining = SIZE_MAX;
  inline static bool s_HasFailed = false;
};

}  // namespace qelta::test
