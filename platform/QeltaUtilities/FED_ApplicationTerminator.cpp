#include "FED_ApplicationTerminator.h"

#include <cstdarg>
#include <string>

#include "QeltaErrorLine.h"
#include "QeltaFormat.h"

namespace {

std::string TerminationLine(const char* condition, const char* file, int line, const char* function,
                            const std::string& text) {
  std::string entry = "terminating: condition '";
  entry.append(qelta::OrUnknown(condition)).append("' in ").append(qelta::OrUnknown(function));
  entry.append(" (").append(qelta::BaseName(qelta::OrUnknown(file)));
  entry.append(":").append(std::to_string(line)).append(")");
  if (!text.empty()) entry.append(": ").append(text);
  return entry;
}

}  // namespace

void FED_ApplicationTerminator::Terminate(const char* condition, const char* file, int line,
                                          const char* function, const char* format, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, format);
  try {
    const std::string text = QeltaFormat::Format(format, arguments);
    qelta::WriteErrorLine(TerminationLine(condition, file, line, function, text));
  } catch (...) {
    qelta::WriteErrorLine(qelta::OrUnknown(function));
  }
  va_end(arguments);
}
