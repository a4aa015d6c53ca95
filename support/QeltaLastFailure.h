#pragma once

#include "QeltaExport.h"

/// The last failure that an entry point caught on the calling thread, so that a program without
/// exceptions can ask what happened. Text and id hold until the next failure on the thread.
class QELTA_EXPORT QeltaLastFailure {
 public:
  /// Never fails; a text is cut after 1023 characters.
  static void Keep(const char* messageId, const char* text) noexcept;

  /// "" when nothing has failed so far.
  static const char* Text() noexcept;
  /// Twelve digits, or "" for a failure without an id.
  static const char* MessageId() noexcept;
};
