#pragma once

#include "QeltaExport.h"

/// The last word before a process is ended because a caller broke a rule that cannot be reported in
/// any other way.
class QELTA_EXPORT FED_ApplicationTerminator {
 public:
  /// Writes one line to standard error with the condition, the function, file and line, and the
  /// formatted text (conventions of QeltaFormat; `format` may be null), and returns. Ending the
  /// process is the caller's part. Never throws.
  static void Terminate(const char* condition, const char* file, int line, const char* function,
                        const char* format, ...) noexcept;
};
