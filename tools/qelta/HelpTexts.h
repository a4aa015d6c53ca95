#pragma once

namespace qelta {

/// How to select blocks.
extern const char* const kPatternHelp;

/// What all commands have in common.
extern const char* const kGeneralHelp;

/// What the exit codes of all commands mean.
extern const char* const kExitHelp;

}  // namespace qelta
