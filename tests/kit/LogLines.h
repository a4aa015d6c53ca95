#pragma once

#include <string>
#include <vector>

#include "FED_LogMacros.h"

namespace qelta::test {

/// Collects what is logged while it exists.
class LogLines {
 public:
  struct Line {
    FED_LogMacros::LogMsgType type;
    std::string file;
    int line;
    std::string location;
    std::string text;
  };

  LogLines() { FED_LogMacros::SetSink(&Collect, this); }
  ~LogLines() { FED_LogMacros::SetSink(nullptr, nullptr); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  std::vector<Line> lines;

 private:
  static void Collect(void* context, FED_LogMacros::LogMsgType type, const char* file, int line,
                      const char* location, const char* text) {
    static_cast<LogLines*>(context)->lines.push_back({type, file, line, location, text});
  }
};

}  // namespace qelta::test
