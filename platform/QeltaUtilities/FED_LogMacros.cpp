#include "FED_LogMacros.h"

#include <cstdarg>
#include <mutex>
#include <string>

#include "QeltaErrorLine.h"
#include "QeltaFormat.h"

namespace {

std::string KindName(FED_LogMacros::LogMsgType type) {
  switch (type) {
    case FED_LogMacros::LOG_FAILURE:
      return "failure";
    case FED_LogMacros::LOG_CONTINUED:
      return "warning";
    case FED_LogMacros::LOG_REPORT:
      return "report";
  }
  return "message " + std::to_string(static_cast<std::int32_t>(type));
}

void WriteToStandardError(void*, FED_LogMacros::LogMsgType type, const char* file, int line,
                          const char* location, const char* text) {
  std::string entry = KindName(type);
  entry.append(" ").append(qelta::BaseName(file)).append(":").append(std::to_string(line));
  entry.append(" ").append(location).append(": ").append(text);
  qelta::WriteErrorLine(entry);
}

struct SinkAndContext {
  FED_LogMacros::Sink sink;
  void* context;
};

// Both are constant initialised, so static objects of a program may log before main.
std::mutex s_SinkMutex;
SinkAndContext s_Sink = {&WriteToStandardError, nullptr};

SinkAndContext CurrentSink() {
  const std::lock_guard<std::mutex> lock(s_SinkMutex);
  return s_Sink;
}

}  // namespace

void FED_LogMacros::log_msg(LogMsgType type, const char* file, int line, const char* location,
                            const char* format, ...) noexcept {
  std::string formatted;
  const char* text = nullptr;
  std::va_list arguments;
  va_start(arguments, format);
  try {
    formatted = QeltaFormat::Format(format, arguments);
    text = formatted.c_str();
  } catch (...) {
    // The bare format says more than silence.
    text = format != nullptr ? format : "";
  }
  va_end(arguments);
  try {
    const SinkAndContext current = CurrentSink();
    current.sink(current.context, type, qelta::OrUnknown(file), line, qelta::OrUnknown(location),
                 text);
  } catch (...) {
    // Whoever logs is often handling a failure already; a second one must not replace it.
  }
}

void FED_LogMacros::SetSink(Sink sink, void* context) noexcept {
  const SinkAndContext replacement = sink != nullptr
                                         ? SinkAndContext{sink, context}
                                         : SinkAndContext{&WriteToStandardError, nullptr};
  const std::lock_guard<std::mutex> lock(s_SinkMutex);
  s_Sink = replacement;
}
