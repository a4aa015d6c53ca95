#pragma once

#include <FED_Database.h>
#include <FED_Exception.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "Console.h"

namespace qelta {

/// Thrown when the system refuses to make a target or to write to it.
struct TargetFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The database that a command writes to, made when it is not there. What is not saved is discarded
/// at the end of the object, and so is a database that it made and never saved: a command that
/// fails leaves nothing behind. While it lives, Ctrl-C is left to Save, or to a Progress.
///
/// For a dry run nothing is ever written: an absent database is an empty one in memory.
class TargetDatabase {
 public:
  /// Fails as a wrong command line does where no database can be, else as the database does.
  TargetDatabase(std::string name, bool isDryRun, std::uint64_t cacheBytes = 0);
  ~TargetDatabase();
  TargetDatabase(const TargetDatabase&) = delete;
  TargetDatabase& operator=(const TargetDatabase&) = delete;

  FED_Database& Get() { return *m_Database; }

  /// Makes all changes durable; does nothing for a database that it made and that has no block yet.
  /// Throws Console::Interrupted after a Ctrl-C.
  void Save();

 private:
  Console::InterruptGuard m_Guard;
  std::string m_Name;
  bool m_IsDryRun;
  bool m_IsNew;
  bool m_IsSaved = false;
  std::unique_ptr<FED_Database> m_Database;
};

/// Fails as a wrong command line does when no database can be written under this name, or, if
/// `isNew`, when something stands there already.
void RequireTarget(const std::string& name, bool isNew);

/// Throws a TargetFailure if the system refused something under the name of the target.
void ThrowIfRefused(const FED_Exception& failure, const std::string& target);

/// Runs `work`, which writes to a target, and tells what the system refuses there from what is
/// wrong with a source.
template <class Work>
auto WithTarget(const std::string& target, Work work) {
  try {
    return work();
  } catch (const FED_Exception& failure) {
    ThrowIfRefused(failure, target);
    throw;
  }
}

/// "1 block", "2 blocks".
std::string CountText(std::uint64_t number, const std::string& what);

}  // namespace qelta
