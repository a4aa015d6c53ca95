#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "Terminal.h"

namespace qelta {

const char* const Terminal::kInputFile = "/dev/stdin";

// A closed pipe then shows as a failing write.
void Terminal::Prepare() { std::signal(SIGPIPE, SIG_IGN); }

std::vector<std::string> Terminal::GetArguments(int argc, char** argv) {
  return {argv + 1, argv + argc};
}

bool Terminal::IsShowing(std::FILE* file) { return isatty(fileno(file)) != 0; }

bool Terminal::KnowsSequences(std::FILE* file) {
  const char* const kind = std::getenv("TERM");
  return IsShowing(file) && kind != nullptr && std::string(kind) != "dumb";
}

std::size_t Terminal::GetWidth(std::FILE* file) {
  winsize size{};
  return ioctl(fileno(file), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool Terminal::IsPipeClosed() { return errno == EPIPE; }

void Terminal::EndAtOnce(int code) { _exit(code); }

}  // namespace qelta
