#include "QeltaSysUtil.h"

#include <cstdlib>

#include "QeltaStringUtil.h"

std::string QeltaSysUtil::get_env_var(const std::string& name, const std::string& defaultValue,
                                      bool trim) {
  const char* const value = std::getenv(name.c_str());
  if (value == nullptr) return defaultValue;
  return trim ? QeltaStringUtil::Trim(value) : value;
}
