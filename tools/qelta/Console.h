#pragma once

#include <cstddef>
#include <string>

namespace qelta {

/// The console of the process; Terminal calls the operating system for it.
class Console {
 public:
  struct PipeClosed {};  ///< thrown when the reader of the output has gone: nobody wants the rest
  struct OutputFailure {};  ///< thrown when the output cannot be written
  struct Interrupted {};    ///< thrown when the user pressed Ctrl-C

  /// Must precede the first output.
  static void Prepare();

  /// Writes the text as Printable gives it.
  static void Print(std::string text);
  /// Control characters other than line end and tab become blanks.
  static std::string Printable(std::string text);
  static void Flush();

  /// One line on standard error, "qelta: ...", with blanks in place of control characters.
  static void Complain(std::string text);

  /// Columns of the terminal that shows the results, or 80 when none does.
  static std::size_t GetWidth();
  static bool IsOutputTerminal();
  /// The locale says that characters are UTF-8.
  static bool IsUtf8();

  /// Lines in bold letters, where the results are on a terminal that the user wants in colour.
  static void PrintBold(const std::string& text);

  /// Asks on the terminal; false when there is none, or for any answer but yes.
  static bool AskYes(const std::string& question);
  static bool CanAsk();

  // A line of progress on standard error, which replaces the one before it.
  static bool ShowsProgress();
  static std::size_t GetProgressWidth();
  static void ShowProgress(const std::string& line);
  static void ClearProgress();

  /// While an object of it lives, Ctrl-C is left to ThrowIfInterrupted; else it ends the process
  /// with EXIT_INTERRUPTED at once. A second Ctrl-C always does.
  class InterruptGuard {
   public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;
  };
  static void ThrowIfInterrupted();
  static bool IsInterrupted();
};

}  // namespace qelta
