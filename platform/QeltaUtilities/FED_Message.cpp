#include "FED_Message.h"

#include <cstdarg>

#include "QeltaFormat.h"

std::string FED_MESSAGE(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = QeltaFormat::Format(format, arguments);
  va_end(arguments);
  return text;
}
