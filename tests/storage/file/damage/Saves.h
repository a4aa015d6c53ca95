#pragma once

#include <string>

#include "ChildProcess.h"
#include "MaintenanceKit.h"
#include "durability/Checkpoints.h"

namespace qelta::test {

/// Makes the saves that follow, up to `last`.
inline void SaveUpTo(std::uint64_t last, FED_FileDatabase& database) {
  for (std::uint64_t number = ReadNumber(database) + 1; number <= last; ++number) {
    MakeCheckpoint(database, number);
    database.Save();
  }
}
inline void SaveUpTo(std::uint64_t last, const std::string& path) {
  SaveUpTo(last, *Open(path, FED_DatabaseDefs::READ_WRITE));
}

/// The same by a process that dies then: nothing is closed.
inline bool SaveAndDie(std::uint64_t last, const std::string& path) {
  return HoldsInChild([&] {
    const auto writer = Open(path, FED_DatabaseDefs::READ_WRITE);
    SaveUpTo(last, *writer);
    _exit(0);
    return true;
  });
}

/// How the database differs from a save; empty when it does not.
inline std::string FindDifference(const std::string& path, std::uint64_t number) {
  return FindDifference(*Open(path), number);
}

}  // namespace qelta::test
