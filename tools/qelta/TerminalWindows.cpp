#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The order matters.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <QeltaStringUtil.h>

#include "Terminal.h"

namespace qelta {
namespace {

HANDLE ToHandle(std::FILE* file) { return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))); }

}  // namespace

const char* const Terminal::kInputFile = nullptr;

// The console goes on with UTF-8 afterwards; files and pipes get line ends without CR.
void Terminal::Prepare() {
  SetConsoleOutputCP(CP_UTF8);
  for (std::FILE* file : {stdout, stderr}) {
    _setmode(_fileno(file), _O_BINARY);
    DWORD mode = 0;
    if (GetConsoleMode(ToHandle(file), &mode) != 0) {
      SetConsoleMode(ToHandle(file), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
  }
}

// The program's own arguments have lost what the language of the system has no letters for.
std::vector<std::string> Terminal::GetArguments(int, char**) {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) QeltaStringUtil::ToUtf8(words[i], arguments.emplace_back());
  LocalFree(words);
  return arguments;
}

bool Terminal::IsShowing(std::FILE* file) {
  DWORD mode = 0;
  return GetConsoleMode(ToHandle(file), &mode) != 0;
}

bool Terminal::KnowsSequences(std::FILE* file) {
  DWORD mode = 0;
  return GetConsoleMode(ToHandle(file), &mode) != 0 &&
         (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::size_t Terminal::GetWidth(std::FILE* file) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(ToHandle(file), &info) == 0) return 0;
  return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

bool Terminal::IsPipeClosed() {
  const unsigned long error = _doserrno;
  return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA || error == ERROR_PIPE_NOT_CONNECTED;
}

void Terminal::EndAtOnce(int code) {
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
  std::_Exit(code);
}

}  // namespace qelta
