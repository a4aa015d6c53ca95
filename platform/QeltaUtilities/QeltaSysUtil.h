#pragma once

#include <string>

#include "QeltaExport.h"

/// What the library asks the surrounding system for.
class QELTA_EXPORT QeltaSysUtil {
 public:
  /// The value of an environment variable, without the blanks at both ends when `trim` is set, or
  /// `defaultValue` as it is where the variable does not exist. A variable that exists and is empty
  /// gives an empty text. Must not run while another thread changes the environment.
  static std::string get_env_var(const std::string& name, const std::string& defaultValue,
                                 bool trim);
};
