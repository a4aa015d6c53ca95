#pragma once

namespace qelta {

enum ExitCode {
  EXIT_DONE = 0,
  EXIT_NOTHING_FOUND = 1,  ///< or different
  EXIT_USAGE = 2,          ///< or a request that conflicts with what is there
  EXIT_BAD_INPUT = 3,      ///< damaged, missing or unreadable
  EXIT_IO_FAILURE = 4,     ///< of a device or of the output
  EXIT_INTERRUPTED = 130   ///< as a shell says of a program that Ctrl-C has ended
};

}  // namespace qelta
