#include "Console.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>

namespace qelta {
namespace {

void Check(bool isDone) {
  if (isDone) return;
  if (errno == EPIPE) throw Console::PipeClosed();
  throw Console::OutputFailure();
}

// Texts of a damaged file must not steer the terminal.
bool IsControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

}  // namespace

// A closed pipe then shows as a failing write.
void Console::Prepare() {
#ifdef SIGPIPE
  std::signal(SIGPIPE, SIG_IGN);
#endif
}

void Console::Print(std::string text) {
  const auto isStray = [](char c) { return IsControl(c) && c != '\n' && c != '\t'; };
  std::replace_if(text.begin(), text.end(), isStray, ' ');
  Check(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void Console::Flush() { Check(std::fflush(stdout) == 0); }

void Console::Complain(std::string text) {
  std::replace_if(text.begin(), text.end(), IsControl, ' ');
  std::fprintf(stderr, "qelta: %s\n", text.c_str());
}

}  // namespace qelta
