#include "Console.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "ExitCode.h"
#include "Terminal.h"

namespace qelta {
namespace {

constexpr std::size_t kDefaultWidth = 80;
constexpr const char* kClearLine = "\r\033[K";

bool g_IsProgressShown = false;
volatile std::sig_atomic_t g_Guards = 0;
volatile std::sig_atomic_t g_Interrupts = 0;

void Check(bool isDone) {
  if (isDone) return;
  if (Terminal::IsPipeClosed()) throw Console::PipeClosed();
  throw Console::OutputFailure();
}

// Results do not go into a line of progress.
void Write(const std::string& text) {
  if (g_IsProgressShown) Console::ClearProgress();
  Check(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

// Texts of a damaged file must not steer the terminal.
bool IsControl(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

bool IsSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

std::size_t WidthOf(std::FILE* file) {
  const std::size_t width = Terminal::GetWidth(file);
  return width > 0 ? width : kDefaultWidth;
}

// What was not saved is discarded, as after a crash.
void OnInterrupt(int signal) {
  if (g_Guards == 0 || g_Interrupts > 0) Terminal::EndAtOnce(EXIT_INTERRUPTED);
  g_Interrupts = 1;
  std::signal(signal, OnInterrupt);  // some systems ask each time
}

}  // namespace

void Console::Prepare() {
  Terminal::Prepare();
  std::signal(SIGINT, OnInterrupt);
}

void Console::Print(std::string text) { Write(Printable(std::move(text))); }

std::string Console::Printable(std::string text) {
  const auto isStray = [](char c) { return IsControl(c) && c != '\n' && c != '\t'; };
  std::replace_if(text.begin(), text.end(), isStray, ' ');
  return text;
}

void Console::Flush() { Check(std::fflush(stdout) == 0); }

void Console::Complain(std::string text) {
  if (g_IsProgressShown) ClearProgress();
  std::replace_if(text.begin(), text.end(), IsControl, ' ');
  std::fprintf(stderr, "qelta: %s\n", text.c_str());
}

std::size_t Console::GetWidth() { return IsOutputTerminal() ? WidthOf(stdout) : kDefaultWidth; }

bool Console::IsOutputTerminal() { return Terminal::IsShowing(stdout); }

bool Console::IsUtf8() {
  for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') continue;
    const std::string locale = value;
    return locale.find("UTF-8") != std::string::npos || locale.find("utf8") != std::string::npos;
  }
  return false;
}

void Console::PrintBold(const std::string& text) {
  const bool isWanted = Terminal::KnowsSequences(stdout) && !IsSet("NO_COLOR");
  // Blank lines before and the end of the last one stay plain.
  const std::size_t begin = isWanted ? std::min(text.find_first_not_of('\n'), text.size()) : 0;
  const std::size_t end = isWanted ? text.find_last_not_of('\n') + 1 : text.size();
  Print(text.substr(0, begin));
  if (isWanted) Write("\033[1m");
  Print(text.substr(begin, end - begin));
  if (isWanted) Write("\033[0m");
  Print(text.substr(end));
}

bool Console::CanAsk() { return Terminal::IsShowing(stdin) && Terminal::IsShowing(stderr); }

bool Console::AskYes(const std::string& question) {
  if (!CanAsk()) return false;
  std::fprintf(stderr, "%s [y/N] ", question.c_str());
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

bool Console::ShowsProgress() { return Terminal::KnowsSequences(stderr); }

std::size_t Console::GetProgressWidth() { return WidthOf(stderr); }

void Console::ShowProgress(const std::string& line) {
  std::fprintf(stderr, "%s%s", kClearLine, line.c_str());
  std::fflush(stderr);
  g_IsProgressShown = !line.empty();
}

void Console::ClearProgress() {
  if (g_IsProgressShown) ShowProgress("");
}

Console::InterruptGuard::InterruptGuard() { g_Guards = g_Guards + 1; }

Console::InterruptGuard::~InterruptGuard() { g_Guards = g_Guards - 1; }

bool Console::IsInterrupted() { return g_Interrupts > 0; }

void Console::ThrowIfInterrupted() {
  if (IsInterrupted()) throw Interrupted();
}

}  // namespace qelta
