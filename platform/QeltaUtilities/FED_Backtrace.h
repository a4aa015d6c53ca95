#pragma once

#include <string>
#include <vector>

#include "QeltaExport.h"

/// The calls that led to a place in the program.
class QELTA_EXPORT FED_Backtrace {
 public:
  /// One entry per frame, innermost first, at most 16; the innermost is the caller of this
  /// function. An entry is "module+0xoffset", the offset being the place of the call relative to
  /// the module's load address: `addr2line -e module 0xoffset` gives the source line where debug
  /// information is at hand. A frame that belongs to no module is a bare address.
  ///
  /// Costs a few microseconds, may be called from several threads at once, and never throws: the
  /// list is empty when memory is short.
  static std::vector<std::string> GetBacktrace() noexcept;
};
