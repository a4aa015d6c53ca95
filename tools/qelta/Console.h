#pragma once

#include <string>

namespace qelta {

/// The console of the process. All calls of the operating system by this tool are in Console.cpp.
class Console {
 public:
  struct PipeClosed {};  ///< thrown when the reader of the output has gone: nobody wants the rest
  struct OutputFailure {};  ///< thrown when the output cannot be written

  /// Must precede the first output.
  static void Prepare();

  /// Control characters other than line end and tab become blanks.
  static void Print(std::string text);
  static void Flush();

  /// One line on standard error, "qelta: ...", with blanks in place of control characters.
  static void Complain(std::string text);
};

}  // namespace qelta
