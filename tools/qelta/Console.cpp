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

}  // namespace

// A closed pipe then shows as a failing write.
void Console::Prepare() {
#ifdef SIGPIPE
  std::signal(SIGPIPE, SIG_IGN);
#endif
}

void Console::Print(const std::string& text) {
  Check(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void Console::Flush() { Check(std::fflush(stdout) == 0); }

void Console::Complain(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::fprintf(stderr, "qelta: %s\n", text.c_str());
}

}  // namespace qelta
