#pragma once

#include <cstdint>
#include <cstdlib>
#include <exception>

#include "FED_ApplicationTerminator.h"
#include "FED_Exception.h"
#include "FED_LogMacros.h"
#include "FedStatusCode.h"
#include "QeltaLastFailure.h"

// How the flat entry points for Fortran and C test their arguments and keep failures inside.
namespace qelta {

/// Where an entry point stands: made in its body, so that reports name its own file and line.
struct EntryPoint {
  // Not explicit: an entry point writes {kLocation}.
  constexpr EntryPoint(const char* locationTag, const char* entryName = __builtin_FUNCTION(),
                       const char* sourceFile = __builtin_FILE(), int sourceLine = __builtin_LINE())
      : location(locationTag),
        name(entryName),
        loggedName(entryName),
        file(sourceFile),
        line(sourceLine) {}

  /// The same entry point under another name in the log lines.
  constexpr EntryPoint LoggedAs(const char* otherName) const {
    EntryPoint entry(*this);
    entry.loggedName = otherName;
    return entry;
  }

  const char* location;
  const char* name;
  const char* loggedName;
  const char* file;
  int line;
};

/// Ends the process with exit code 1 after the terminator's line.
template <class... Arguments>
[[noreturn]] void EndProcess(const EntryPoint& entry, const char* condition, const char* format,
                             Arguments... arguments) {
  FED_ApplicationTerminator::Terminate(condition, entry.file, entry.line, entry.name, format,
                                       arguments...);
  std::exit(1);
}

/// Ends the process when an argument is missing.
template <class... Arguments>
void RequireArguments(const EntryPoint& entry, const Arguments*... arguments) {
  const bool isMissing = (... || (arguments == nullptr));
  if (isMissing) EndProcess(entry, "true", nullptr);
}

/// Logs the exception that is being handled, keeps it as the thread's last failure and returns its
/// status.
inline std::int32_t LogCaughtFailure(const EntryPoint& entry) noexcept {
  const auto report = [&](const char* messageId, const char* text) {
    QeltaLastFailure::Keep(messageId, text);
    FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, entry.file, entry.line, entry.location,
                           "Failure in method %s \n%s", entry.loggedName, text);
  };
  try {
    throw;
  } catch (const FED_Exception& failure) {
    report(failure.GetMessageId().c_str(), failure.GetMessageText().c_str());
    return failure.GetStatusCode();
  } catch (const std::exception& exception) {
    report("", exception.what());
  } catch (...) {
    QeltaLastFailure::Keep("", "Unknown exception");
    FED_LogMacros::log_msg(FED_LogMacros::LOG_FAILURE, entry.file, entry.line, entry.location,
                           "Unknown exception catched in method %s \n", entry.loggedName);
  }
  return STATUS_FAILURE;
}

/// Runs `work` and returns its status; nothing escapes.
template <class Work>
std::int32_t Capture(const EntryPoint& entry, Work work) noexcept {
  try {
    work();
    return STATUS_OK;
  } catch (...) {
    return LogCaughtFailure(entry);
  }
}

/// An entry point with a status argument: tests the arguments, sets the status to 0, runs `work`,
/// and puts the status of a failure there.
template <class Work, class... Arguments>
void RunWithStatus(const EntryPoint& entry, std::int32_t* status, Work work,
                   const Arguments*... arguments) noexcept {
  RequireArguments(entry, arguments..., status);
  *status = STATUS_OK;
  const std::int32_t result = Capture(entry, work);
  if (result != STATUS_OK) *status = result;
}

/// An entry point without one: a failure ends the process, with `condition` in the terminator's
/// line.
template <class Work, class... Arguments>
void RunOrEnd(const EntryPoint& entry, const char* condition, Work work,
              const Arguments*... arguments) noexcept {
  RequireArguments(entry, arguments...);
  if (Capture(entry, work) != STATUS_OK) EndProcess(entry, condition, nullptr);
}

/// Widens with the sign, as record indices and field numbers from Fortran are.
inline std::size_t Widen(std::int32_t number) {
  return static_cast<std::size_t>(std::int64_t{number});
}

}  // namespace qelta
