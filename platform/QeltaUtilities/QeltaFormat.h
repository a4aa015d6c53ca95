#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>

#include "QeltaExport.h"

/// The one printf formatter behind FED_MESSAGE, the log, the terminator and the failures.
///
/// Formats follow the C library's printf, and `%Iu`, also with flags, width and precision, is an
/// unsigned 64-bit number in decimal on every platform (std::uint64_t, or std::size_t where that
/// has 64 bits). A null format gives an empty text. Where the C library rejects the arguments (a
/// wide character it cannot encode) the format stands in place of the text.
///
/// `arguments` must fit the format; its value is indeterminate afterwards, as with vsnprintf.
class QELTA_EXPORT QeltaFormat {
 public:
  /// The whole text, however long.
  static std::string Format(const char* format, std::va_list arguments);

  /// At most size - 1 characters into `buffer`, always ended with a zero; a size of 0 writes
  /// nothing.
  static void FormatTo(char* buffer, std::size_t size, const char* format, std::va_list arguments);
};
