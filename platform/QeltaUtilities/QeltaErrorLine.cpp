#include "QeltaErrorLine.h"

#include <cstdio>

namespace qelta {

namespace {

bool IsControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }
bool IsBlank(char c) { return c == ' ' || IsControl(c); }

std::string InOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size() + 1);
  for (std::size_t i = 0; i < text.size();) {
    std::size_t end = i;
    bool broken = false;
    for (; end < text.size() && IsBlank(text[end]); ++end) broken |= IsControl(text[end]);
    if (broken) {
      line += ' ';
    } else {
      line.append(text.substr(i, end - i));
    }
    for (i = end; i < text.size() && !IsBlank(text[i]); ++i) line += text[i];
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace

void WriteErrorLine(std::string_view text) noexcept {
  try {
    const std::string line = InOneLine(text) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
  } catch (...) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fputc('\n', stderr);
  }
}

std::string_view BaseName(std::string_view path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace qelta
