#include "QeltaSysUtil.h"

#include "QeltaStringUtil.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <cstdlib>
#endif

namespace {

#if defined(_WIN32)

// The program may set it through a C library other than ours, which has a copy of its own.
bool ReadVariable(const std::string& name, std::string& value) {
  const std::wstring wideName(name.begin(), name.end());
  std::wstring wide(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
  if (wide.empty()) return false;
  const DWORD size = static_cast<DWORD>(wide.size());
  wide.resize(GetEnvironmentVariableW(wideName.c_str(), wide.data(), size));
  return QeltaStringUtil::ToUtf8(wide, value);
}

#else

bool ReadVariable(const std::string& name, std::string& value) {
  const char* const found = std::getenv(name.c_str());
  if (found != nullptr) value = found;
  return found != nullptr;
}

#endif

}  // namespace

std::string QeltaSysUtil::get_env_var(const std::string& name, const std::string& defaultValue,
                                      bool trim) {
  std::string value;
  if (!ReadVariable(name, value)) return defaultValue;
  return trim ? QeltaStringUtil::Trim(value) : value;
}
