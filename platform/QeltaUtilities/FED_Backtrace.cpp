#include "FED_Backtrace.h"

#include <charconv>
#include <cstdint>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>
#include <unwind.h>
#endif

namespace {

constexpr std::size_t kMostFrames = 16;
// CaptureFrames and GetBacktrace.
constexpr std::size_t kOwnFrames = 2;

/// The places of the calls, innermost first: addresses inside the call instructions, not behind
/// them, since what follows a call may belong to another line.
struct Frames {
  std::uintptr_t address[kMostFrames];
  std::size_t count = 0;
};

struct Module {
  std::uintptr_t base = 0;
  std::string name;
};

#if defined(_WIN32)

[[gnu::noinline]] Frames CaptureFrames() {
  void* returns[kMostFrames];
  Frames frames;
  frames.count = CaptureStackBackTrace(kOwnFrames, kMostFrames, returns, nullptr);
  for (std::size_t i = 0; i < frames.count; ++i) {
    frames.address[i] = reinterpret_cast<std::uintptr_t>(returns[i]) - 1;
  }
  return frames;
}

Module ModuleAt(std::uintptr_t address) {
  constexpr DWORD kByAddress =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  HMODULE handle = nullptr;
  if (!GetModuleHandleExA(kByAddress, reinterpret_cast<const char*>(address), &handle)) return {};
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(handle, path, MAX_PATH);
  return {reinterpret_cast<std::uintptr_t>(handle), std::string(path, length)};
}

#else

struct Walk {
  Frames frames;
  std::size_t ownFrames;
};

_Unwind_Reason_Code KeepFrame(_Unwind_Context* context, void* argument) {
  Walk& walk = *static_cast<Walk*>(argument);
  int isPlaceOfCall = 0;
  const std::uintptr_t address = _Unwind_GetIPInfo(context, &isPlaceOfCall);
  if (address == 0) return _URC_END_OF_STACK;
  if (walk.ownFrames > 0) {
    --walk.ownFrames;
    return _URC_NO_REASON;
  }
  walk.frames.address[walk.frames.count++] = isPlaceOfCall != 0 ? address : address - 1;
  return walk.frames.count < kMostFrames ? _URC_NO_REASON : _URC_END_OF_STACK;
}

[[gnu::noinline]] Frames CaptureFrames() {
  Walk walk = {{}, kOwnFrames};
  _Unwind_Backtrace(&KeepFrame, &walk);
  return walk.frames;
}

std::string ProgramPath() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : "program";
}

Module FromLinkMap(const link_map& map) {
  // The loader gives the program itself no name.
  // Never destroyed: static objects may fail on their way out.
  static const std::string* const s_ProgramPath = new std::string(ProgramPath());
  return {map.l_addr, map.l_name[0] != '\0' ? std::string(map.l_name) : *s_ProgramPath};
}

// The module of a frame on the own stack cannot be unloaded meanwhile.
#if defined(DLFO_EH_SEGMENT_TYPE)

Module ModuleAt(std::uintptr_t address) {
  dl_find_object found;
  if (_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return {};
  return FromLinkMap(*found.dlfo_link_map);
}

#else

Module ModuleAt(std::uintptr_t address) {
  Dl_info info;
  void* map = nullptr;
  const int found = dladdr1(reinterpret_cast<void*>(address), &info, &map, RTLD_DL_LINKMAP);
  return found != 0 && map != nullptr ? FromLinkMap(*static_cast<link_map*>(map)) : Module{};
}

#endif

#endif

std::string FrameText(std::uintptr_t address, const Module& module) {
  char digits[2 * sizeof address];
  const auto end = std::to_chars(digits, digits + sizeof digits, address - module.base, 16).ptr;
  const char* const separator = module.name.empty() ? "0x" : "+0x";
  std::string text;
  text.reserve(module.name.size() + 3 + sizeof digits);
  return text.append(module.name).append(separator).append(digits, end);
}

}  // namespace

std::vector<std::string> FED_Backtrace::GetBacktrace() noexcept try {
  const Frames frames = CaptureFrames();
  std::vector<std::string> entries;
  entries.reserve(frames.count);
  for (std::size_t i = 0; i < frames.count; ++i) {
    entries.push_back(FrameText(frames.address[i], ModuleAt(frames.address[i])));
  }
  return entries;
} catch (...) {
  return {};
}
