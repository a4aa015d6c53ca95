#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "FedStatusCode.h"
#include "QeltaExport.h"

/// Small work on texts that does not depend on the locale. A blank is the space and the characters
/// 9 to 13, nothing else.
class QELTA_EXPORT QeltaStringUtil {
 public:
  /// Fills a Fortran character variable: the first characters of `text` and blanks behind them up
  /// to `bufferLength`, without a terminating zero. True when nothing was cut. A buffer length that
  /// is not positive, like a null buffer, writes nothing.
  static bool copy_to_fstr_trunc(const char* text, std::size_t length, char* buffer,
                                 std::int64_t bufferLength);

  /// The decimal number in `text`, with an optional sign and blanks around it. STATUS_NO_NUMBER
  /// where the text holds anything else or nothing, STATUS_OUT_OF_RANGE where an int is too small
  /// for it; `number` is then untouched.
  static FedStatusCode ToInt(const std::string& text, int& number);

  /// The wide characters of a UTF-8 text. False, and `wide` untouched, when it is not UTF-8: cut
  /// characters, surrogates and characters in more bytes than they need are not.
  static bool ToWide(const std::string& utf8, std::wstring& wide);

  /// The UTF-8 text of wide characters, in 16 or in 32 bits each. False, and `utf8` untouched, when
  /// they hold half a surrogate pair or a number beyond the last character.
  static bool ToUtf8(const std::wstring& wide, std::string& utf8);

  /// `text` without the blanks at both ends.
  static std::string Trim(const std::string& text);
};
