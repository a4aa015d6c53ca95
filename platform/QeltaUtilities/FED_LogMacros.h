#pragma once

#include <cstdint>

#include "QeltaExport.h"

/// The log of the library: every message goes to one sink per process.
///
/// Until a program sets its own sink, each message becomes one line on standard error: kind, base
/// name of the source file, line, location tag, text. Line breaks inside the text become blanks
/// there; a program's own sink gets the text as it is.
class QELTA_EXPORT FED_LogMacros {
 public:
  /// Kind of a message. Other values than these may be cast to the type and are passed on.
  enum LogMsgType : std::int32_t {
    /// An operation failed; its caller gets a status.
    LOG_FAILURE = 1,
    /// Something failed and the work went on.
    LOG_CONTINUED = 2,
    /// A report of what was done.
    LOG_REPORT = 7
  };

  /// Receives a message. The texts are valid during the call only, none of them is null.
  /// It may be called from several threads at once and may log itself. It must not throw; what it
  /// throws is dropped.
  using Sink = void (*)(void* context, LogMsgType type, const char* file, int line,
                        const char* location, const char* text);

  /// Formats the text (conventions of QeltaFormat) and hands it to the sink. Never throws; when
  /// there is no memory for the text, the sink gets the bare format.
  static void log_msg(LogMsgType type, const char* file, int line, const char* location,
                      const char* format, ...) noexcept;

  /// Replaces sink and context together; a null sink restores the default one. A message that
  /// another thread is logging at this moment may still reach the former sink shortly after.
  static void SetSink(Sink sink, void* context) noexcept;
};
