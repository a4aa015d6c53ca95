#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace qelta {

/// What the console asks of the operating system; each has a file of its own for it.
struct Terminal {
  /// Bytes are written as they are, and escape sequences are understood where that can be had.
  static void Prepare();

  /// The words of the command line after the name of the program, in UTF-8.
  static std::vector<std::string> GetArguments(int argc, char** argv);

  static bool IsShowing(std::FILE* file);
  /// Whether what it shows can be bold, and a line be replaced.
  static bool KnowsSequences(std::FILE* file);
  /// 0 when unknown.
  static std::size_t GetWidth(std::FILE* file);

  /// The file that the standard input can be opened as; null where there is none.
  static const char* const kInputFile;

  /// Whether the write that has just failed did so because nobody reads any more.
  static bool IsPipeClosed();

  /// Without waiting for anything; safe where a signal is handled.
  [[noreturn]] static void EndAtOnce(int code);
};

}  // namespace qelta
